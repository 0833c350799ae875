#include "ModelReply.h"

#include "ScriptedModel.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

static ModelService serviceAt(quint16 port)
{
    ModelService service = *modelServiceAt(u"http://127.0.0.1:%1/v1"_s.arg(port));
    service.modelName = u"prueba"_s;
    service.connectionLimit = 5s;
    service.silenceLimit = 5s;
    return service;
}

struct Result
{
    QStringList lines;
    ModelReply::State state = ModelReply::State::Waiting;
    ModelFailure failure = ModelFailure::Empty;
    std::optional<ModelReply::Outcome> outcome;
};

static Result result(const ModelService &service)
{
    Result result;
    ModelReply reply(service, "{}", {}, [&](const auto &outcome) { result.outcome = outcome; });
    const auto limit = Clock::now() + 30s;
    for (;;) {
        result.state = reply.wait(limit);
        if (result.state != ModelReply::State::Line)
            break;
        result.lines += reply.takeLine();
    }
    if (result.state == ModelReply::State::Failed)
        result.failure = reply.failure();
    return result;
}

static QByteArray piece(const QByteArray &text)
{
    return ModelScript::event(text);
}

static const QByteArray done = "data: [DONE]\n\n";
static const QByteArray lengthReason
    = "data: {\"choices\":[{\"delta\":{},\"finish_reason\":\"length\"}]}\n\n";

Q_DECLARE_METATYPE(ModelScript)
Q_DECLARE_METATYPE(ModelFailure)

class ModelReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksAsTheServiceExpects()
    {
        const ScriptedModel model(ModelScript::whole(piece("Hola") + done));
        ModelService service = serviceAt(model.port());
        service.key = "clave-secreta";
        ModelReply reply(service, R"({"a":1})", {}, {});
        while (reply.wait(Clock::now() + 30s) == ModelReply::State::Line)
            reply.takeLine();
        const QByteArray request = model.requests().value(0);
        QVERIFY(request.startsWith("POST /v1/chat/completions HTTP/1.1\r\n"));
        QVERIFY(request.contains("\r\nAuthorization: Bearer clave-secreta\r\n"));
        QVERIFY(request.contains("\r\nContent-Type: application/json\r\n"));
        QVERIFY(request.endsWith("\r\n\r\n{\"a\":1}"));
    }

    void givesWholeAnswers_data()
    {
        QTest::addColumn<ModelScript>("script");
        QTest::addColumn<QStringList>("lines");

        const QByteArray answer
            = piece("# Uno\\n\\nd") + piece("os <thi") + piece("nk>no</think>") + piece("🧫");
        const QStringList lines{u"# Uno"_s, u"dos 🧫"_s};
        const auto row
            = [](const char *name, const QByteArray &bytes, const QStringList &expected) {
                  ModelScript script;
                  script.steps = {{bytes, {}}};
                  QTest::addRow("%s", name) << script << expected;
                  script.pieceSize = 1;
                  QTest::addRow("%s, byte by byte", name) << script << expected;
              };
        const QByteArray chunkedHead = ModelScript::head(200, "Transfer-Encoding: chunked\r\n");
        row("chunked", chunkedHead + ModelScript::chunk(answer + done) + "0\r\n\r\n", lines);
        row("chunked, no [DONE]", chunkedHead + ModelScript::chunk(answer) + "0\r\n\r\n", lines);
        row("ended by closing", ModelScript::head() + answer + done, lines);
        row("[DONE] without a blank line", ModelScript::head() + answer + "data: [DONE]", lines);
        row("with a length",
            ModelScript::head(200, "Content-Length: " + QByteArray::number(answer.size()) + "\r\n")
                + answer,
            lines);
        const QByteArray reason
            = "data: {\"choices\":[{\"delta\":{},\"finish_reason\":\"stop\"}]}\n\n";
        row("a reason instead of [DONE]", ModelScript::head() + answer + reason, lines);
        row("cut for its length", ModelScript::head() + answer + lengthReason,
            lines
                + QStringList{u"(La respuesta se cortó porque llegó al largo máximo. Pedime que "
                              "siga.)"_s});
        row("not streamed",
            ModelScript::head(200, "Content-Type: application/json\r\n")
                + R"({"choices":[{"message":{"content":"# Uno\n\ndos 🧫"}}]})",
            lines);
    }
    void givesWholeAnswers()
    {
        QFETCH(ModelScript, script);
        QFETCH(QStringList, lines);
        const ScriptedModel model(script);
        const Result got = result(serviceAt(model.port()));
        QCOMPARE(got.lines, lines);
        QCOMPARE(got.state, ModelReply::State::Whole);
        QVERIFY(got.outcome);
        QCOMPARE(got.outcome->text, lines.join(u'\n'));
    }

    void endsWithTheModelsEndThoughItStaysConnected()
    {
        ModelScript script;
        script.steps = {{ModelScript::head() + piece("Hola") + "data: [DONE]\n", {}}};
        script.end = ModelScript::End::Stay;
        const ScriptedModel model(script);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(result(serviceAt(model.port())).lines, QStringList{u"Hola"_s});
        QVERIFY(timer.elapsed() < 3000);
    }

    void saysWhyItFails_data()
    {
        QTest::addColumn<ModelScript>("script");
        QTest::addColumn<ModelFailure>("failure");
        QTest::addColumn<QStringList>("lines");

        const auto row = [](const char *name, const QByteArray &bytes, ModelFailure failure,
                            const QStringList &lines = {}) {
            ModelScript script;
            script.steps = {{bytes, {}}};
            QTest::newRow(name) << script << failure << lines;
        };
        const QByteArray body = "Content-Length: 2\r\n";
        row("401", ModelScript::head(401, body) + "{}", ModelFailure::KeyRefused);
        row("403", ModelScript::head(403, body) + "{}", ModelFailure::KeyRefused);
        row("404", ModelScript::head(404, body) + "{}", ModelFailure::NotFound);
        row("429", ModelScript::head(429, body) + "{}", ModelFailure::TooManyQuestions);
        row("400", ModelScript::head(400, body) + "{}", ModelFailure::OtherStatus);
        row("500", ModelScript::head(500, body) + "{}", ModelFailure::OtherStatus);
        row("503", ModelScript::head(503, body) + "{}", ModelFailure::OtherStatus);
        row("504", ModelScript::head(504, body) + "{}", ModelFailure::Silent);
        row("a redirection",
            ModelScript::head(302, body + "Location: http://127.0.0.1:9/\r\n") + "{}",
            ModelFailure::OtherStatus);
        row("closed without a word", "", ModelFailure::BrokenOff);
        row("no HTTP", "hola\r\n\r\n", ModelFailure::BrokenOff);
        row("nothing said", ModelScript::head() + done, ModelFailure::Empty);
        row("only thoughts", ModelScript::head() + piece("<think>hmm") + done, ModelFailure::Empty);
        row("an error with status 200",
            ModelScript::head(200, "Content-Type: application/json\r\n") + R"({"error":"x"})",
            ModelFailure::ReportedError);
        row("HTML with status 200", ModelScript::head() + "<html></html>\n",
            ModelFailure::NotUnderstood);
        row("closed in the middle", ModelScript::head() + piece("uno\\n\\nd"),
            ModelFailure::BrokenOff, {u"uno"_s});
        row("closed in an event", ModelScript::head() + piece("uno\\n\\nd") + "data: {",
            ModelFailure::NotUnderstood, {u"uno"_s});
        row("closed in a chunk",
            ModelScript::head(200, "Transfer-Encoding: chunked\r\n")
                + ModelScript::chunk(piece("uno\\n\\nd")) + "ff\r\ndata:",
            ModelFailure::BrokenOff, {u"uno"_s});
        row("an error in the middle",
            ModelScript::head() + piece("uno\\n\\nd") + "data: {\"error\":{}}\n\n" + piece("os"),
            ModelFailure::ReportedError, {u"uno"_s});
    }
    void saysWhyItFails()
    {
        QFETCH(ModelScript, script);
        QFETCH(ModelFailure, failure);
        QFETCH(QStringList, lines);
        const ScriptedModel model(script);
        const Result got = result(serviceAt(model.port()));
        QCOMPARE(got.state, ModelReply::State::Failed);
        QCOMPARE(got.failure, failure);
        QCOMPARE(got.lines, lines);
        QVERIFY(!got.outcome);
    }

    void noticesThatNobodyListens()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const quint16 port = server.serverPort();
        server.close();
        QCOMPARE(result(serviceAt(port)).failure, ModelFailure::Unreachable);
    }

    void noticesSilence_data()
    {
        QTest::addColumn<ModelScript>("script");
        const auto row = [](const char *name, const QByteArray &bytes) {
            ModelScript script;
            script.steps = {{bytes, {}}};
            script.end = ModelScript::End::Stay;
            QTest::newRow(name) << script;
        };
        row("from the beginning", "");
        row("after the head", ModelScript::head());
        row("in the middle", ModelScript::head() + piece("uno"));
    }
    void noticesSilence()
    {
        QFETCH(ModelScript, script);
        const ScriptedModel model(script);
        ModelService service = serviceAt(model.port());
        service.silenceLimit = 300ms;
        const Result got = result(service);
        QCOMPARE(got.state, ModelReply::State::Failed);
        QCOMPARE(got.failure, ModelFailure::Silent);
    }

    void waitsForASlowModelThatShowsItIsThere()
    {
        ModelScript script;
        script.steps = {{ModelScript::head(), 200ms},
                        {": ping\n\n", 200ms},
                        {": ping\n\n", 200ms},
                        {": ping\n\n", 200ms},
                        {piece("Hola") + done, {}}};
        const ScriptedModel model(script);
        ModelService service = serviceAt(model.port());
        service.silenceLimit = 500ms;
        QCOMPARE(result(service).lines, QStringList{u"Hola"_s});
    }

    void givesTheFirstLineBeforeTheModelsLast()
    {
        ModelScript script;
        script.steps = {{ModelScript::head() + piece("uno\\n\\ndo"), {}}};
        script.end = ModelScript::End::Stay;
        const ScriptedModel model(script);
        ModelReply reply(serviceAt(model.port()), "{}", {}, {});
        QCOMPARE(reply.wait(Clock::now() + 30s), ModelReply::State::Line);
        QCOMPARE(reply.takeLine(), u"uno"_s);
        QCOMPARE(reply.wait(Clock::now() + 10ms), ModelReply::State::Waiting);
    }

    void givesTheFirstLinesThoughTheModelSaysNothing()
    {
        const ScriptedModel model(ModelScript::whole(done));
        bool isWhole = false;
        ModelReply reply(serviceAt(model.port()), "{}", {u"antes"_s},
                         [&](const auto &) { isWhole = true; });
        QCOMPARE(reply.wait(Clock::now() + 30s), ModelReply::State::Line);
        QCOMPARE(reply.takeLine(), u"antes"_s);
        // They are no answer of the model.
        QCOMPARE(reply.wait(Clock::now() + 30s), ModelReply::State::Failed);
        QVERIFY(!isWhole);
    }

    void endsTheModelsWorkWhenItGoes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("before the head") << QByteArray();
        QTest::newRow("in the middle") << ModelScript::head() + piece("uno\\n\\ndo");
    }
    void endsTheModelsWorkWhenItGoes()
    {
        QFETCH(QByteArray, bytes);
        ModelScript script;
        script.steps = {{bytes, {}}};
        script.end = ModelScript::End::Stay;
        const ScriptedModel model(script);
        QElapsedTimer timer;
        {
            ModelReply reply(serviceAt(model.port()), "{}", {}, {});
            QTRY_COMPARE_WITH_TIMEOUT(model.requests().size(), 1, 30'000);
            timer.start();
        }
        QTRY_COMPARE_WITH_TIMEOUT(model.leavings(), 1, 30'000);
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    }

    void boundsTheAnswer()
    {
        ModelScript script;
        script.steps = {{ModelScript::head(), {}}};
        for (int i = 0; i < 2000; ++i)
            script.steps.append({piece(QByteArray(200, 'x') + "\\n\\n"), {}});
        script.end = ModelScript::End::Stay;
        const ScriptedModel model(script);
        const Result got = result(serviceAt(model.port()));
        QCOMPARE(got.state, ModelReply::State::Whole);
        QVERIFY(got.lines.last().contains(u"se cortó"_s));
        QVERIFY(got.outcome->text.size() < ModelReply::longestAnswer + 10'000);
    }

    void takesOutWhatIsToBeReviewed()
    {
        const ScriptedModel model(ModelScript::whole(
            piece("No: es la nefrona.\\n\\n[[repasar: la nefrona]]\\n- [[Repasar:asa de Henle]]\\n")
            + done));
        const Result got = result(serviceAt(model.port()));
        QCOMPARE(got.lines, QStringList{u"No: es la nefrona."_s});
        QCOMPARE(got.outcome->toReview, (QStringList{u"la nefrona"_s, u"asa de Henle"_s}));
        QCOMPARE(got.outcome->text, u"No: es la nefrona."_s);
    }
};

QTEST_GUILESS_MAIN(ModelReplyTest)
#include "ModelReplyTest.moc"
