#include "ChatEndpoint.h"

#include "AnswerComposer.h"
#include "StudyNotes.h"
#include "UserMemory.h"

#include <QTest>

using namespace Qt::StringLiterals;

// `text` with its apostrophes as quotes, so that JSON stays readable here.
static QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

static IncomingRequest question(const QByteArray &message, const QByteArray &user = "u")
{
    IncomingRequest request;
    request.method = u"POST"_s;
    request.path = u"/api/chat"_s;
    request.contentType = u"application/json"_s;
    request.body = json("{'message':'" + message + "','userId':'" + user + "'}");
    return request;
}

class ChatEndpointTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesInOrder_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<int>("status");

        QTest::newRow("path") << u"path"_s << 404;
        QTest::newRow("path below") << u"path below"_s << 404;
        QTest::newRow("method") << u"method"_s << 405;
        QTest::newRow("media type") << u"type"_s << 415;
        QTest::newRow("no media type") << u"no type"_s << 415;
        QTest::newRow("compressed") << u"encoding"_s << 415;
        QTest::newRow("too large") << u"large"_s << 413;
        QTest::newRow("no room") << u"no room"_s << 503;
        QTest::newRow("cut") << u"broken"_s << 400;
        QTest::newRow("not JSON") << u"json"_s << 400;
    }
    void refusesInOrder()
    {
        QFETCH(QString, change);
        QFETCH(int, status);
        // Everything after the first fault is wrong as well.
        IncomingRequest request = question("hola");
        request.body = "{";
        const QStringList order{u"json"_s,       u"broken"_s,  u"no room"_s, u"large"_s,
                                u"encoding"_s,   u"no type"_s, u"type"_s,    u"method"_s,
                                u"path below"_s, u"path"_s};
        for (const QString &fault : order.mid(0, order.indexOf(change) + 1)) {
            if (fault == "broken"_L1)
                request.bodyState = BodyState::Broken;
            else if (fault == "no room"_L1)
                request.bodyState = BodyState::NoRoom;
            else if (fault == "large"_L1)
                request.bodyState = BodyState::TooLarge;
            else if (fault == "encoding"_L1)
                request.contentEncoding = u"gzip"_s;
            else if (fault == "no type"_L1)
                request.contentType.clear();
            else if (fault == "type"_L1)
                request.contentType = u"application/jsonp"_s;
            else if (fault == "method"_L1)
                request.method = u"PUT"_s;
            else if (fault == "path below"_L1)
                request.path = u"/api/chat/"_s;
            else if (fault == "path"_L1)
                request.path = u"/"_s;
        }
        ChatEndpoint endpoint(m_notes, m_composer, m_memory);
        const auto outcome = endpoint.respond(request);
        const auto *refusal = std::get_if<Refusal>(&outcome);
        QVERIFY(refusal);
        QCOMPARE(refusal->status, status);
        QVERIFY(refusal->reason.endsWith(u'.'));
    }

    void acceptsParametersOfTheMediaType()
    {
        ChatEndpoint endpoint(m_notes, m_composer, m_memory);
        IncomingRequest request = question("hola");
        request.contentType = u"Application/JSON ; charset=utf-8"_s;
        QVERIFY(std::holds_alternative<Answer>(endpoint.respond(request)));
    }

    void answersAnEmergencyBeforeAnythingElse()
    {
        ChatEndpoint endpoint(m_notes, m_composer, m_memory);
        for (const char *message : {"me duele el pecho y se me va al brazo",
                                    "olvidá lo que sabés de mí, me quiero morir"}) {
            const auto urgent = EmergencyAnswers(m_notes).answerTo(QString::fromUtf8(message));
            QVERIFY2(urgent, message);
            QCOMPARE(std::get<Answer>(endpoint.respond(question(message, "c"))).lines,
                     urgent->lines);
        }
    }

    void caresBeforeWhateverItAnswers()
    {
        ChatEndpoint endpoint(m_notes, m_composer, m_memory);
        for (const char *message :
             {"me quiero morir con este parcial, explicame la mitosis",
              "me quiero morir con este parcial, olvidá lo que sabés de mí"}) {
            const auto lines = std::get<Answer>(endpoint.respond(question(message, "d"))).lines;
            QVERIFY2(lines.first().contains(u"135"_s), qUtf8Printable(lines.first()));
            QVERIFY(lines.size() > 1);
        }
        IncomingRequest image = question("me quiero morir con este parcial, ¿qué es esto?");
        image.body.replace(R"("userId")", R"("imageBase64":"AAAA","userId")");
        const auto lines = std::get<Answer>(endpoint.respond(image)).lines;
        QVERIFY2(lines.first().contains(u"135"_s), qUtf8Printable(lines.first()));
    }

    void remembersEachUsersSubjects()
    {
        qint64 now = 1'000'000;
        UserMemory memory({}, {}, [&now] { return now; });
        ChatEndpoint endpoint(m_notes, m_composer, memory);
        // Each question begins a conversation: what was studied in earlier ones is mentioned there.
        const auto linesFor = [&](const QByteArray &message, const QByteArray &user) {
            now += UserMemory::conversationLimit + 1;
            return std::get<Answer>(endpoint.respond(question(message, user))).lines;
        };
        const auto mention = u"Venías estudiando"_s;
        QVERIFY(linesFor("Quiero estudiar Histología.", "a").filter(mention).isEmpty());
        QVERIFY(linesFor("la mitosis", "b").filter(mention).isEmpty());
        QCOMPARE(linesFor("la nefrona", "a").filter(mention + u" **Histología**:"_s).size(), 1);
        QCOMPARE(
            linesFor("el hueso", "a").filter(mention + u" **Nefrona** e **Histología**:"_s).size(),
            1);
        QVERIFY(linesFor("Explicame paso a paso: la mitosis", "b").filter(mention).isEmpty());
        QVERIFY(linesFor("la nefrona", "").filter(mention).isEmpty());
        QVERIFY(linesFor("la mitosis", "").filter(mention).isEmpty());
    }

private:
    StudyNotes m_notes;
    AnswerComposer m_composer{m_notes};
    UserMemory m_memory;
};

QTEST_GUILESS_MAIN(ChatEndpointTest)
#include "ChatEndpointTest.moc"
