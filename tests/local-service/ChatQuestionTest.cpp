#include "ChatQuestion.h"

#include <QTest>

using namespace Qt::StringLiterals;

// `text` with its apostrophes as quotes, so that JSON stays readable here.
static QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

class ChatQuestionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAQuestion()
    {
        const auto parsed
            = parseChatQuestion(json("{'message':'  ¿Qué es?\\n','userId':'aulora-1','otra':1}"));
        const auto *question = std::get_if<ChatQuestion>(&parsed);
        QVERIFY(question);
        QCOMPARE(question->message, u"¿Qué es?"_s);
        QCOMPARE(question->userId, u"aulora-1"_s);
        QVERIFY(!question->image);
    }

    void readsEveryEscape()
    {
        const auto parsed = parseChatQuestion(
            json(R"({'message':'a\u0000\"\\\/\b\f\n\r\tb','userId':'\\','\"':'\\\"'})"));
        const auto *question = std::get_if<ChatQuestion>(&parsed);
        QVERIFY(question);
        QCOMPARE(question->message, u"a\0\"\\/\b\f\n\r\tb"_s);
        QCOMPARE(question->userId, u"\\"_s);
    }

    void readsAnImage()
    {
        const auto parsed
            = parseChatQuestion(json("{'message':'','userId':'','imageBase64':'AAEC/"
                                     "w==','imageMimeType':'image/png','imageName':'a.png'}"));
        const auto *question = std::get_if<ChatQuestion>(&parsed);
        QVERIFY(question);
        QVERIFY(question->image);
        QCOMPARE(question->image->bytes, QByteArray("\x00\x01\x02\xff", 4));
        QCOMPARE(question->image->declaredType, u"image/png"_s);
        QCOMPARE(question->image->name, u"a.png"_s);
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("reason");

        const auto notJson = u"El cuerpo no es un objeto JSON válido."_s;
        const auto notBase64 = u"El campo \"imageBase64\" no es Base64 válido."_s;
        const auto image = [](const QByteArray &base64) {
            return json("{'message':'m','userId':'u','imageBase64':'" + base64 + "'}");
        };
        QTest::newRow("empty body") << QByteArray() << notJson;
        QTest::newRow("cut short") << json("{'message':'m'") << notJson;
        QTest::newRow("invalid UTF-8") << json("{'message':'\xff','userId':'u'}") << notJson;
        QTest::newRow("junk after the object") << json("{'message':'m','userId':'u'}x") << notJson;
        QTest::newRow("too deep") << QByteArray(5000, '[') + QByteArray(5000, ']')
                                  << u"El JSON tiene demasiados niveles anidados."_s;
        QTest::newRow("two objects") << json("{'message':'m','userId':'u'}").repeated(2) << notJson;
        QTest::newRow("too deep below a key")
            << "{\"a\":" + QByteArray(5000, '[') << u"El JSON tiene demasiados niveles anidados."_s;
        for (const char *value : {"[]", "1", "\"a\"", "null", "true"})
            QTest::newRow(value) << QByteArray(value) << notJson;
        QTest::newRow("NUL in a text")
            << json("{'message':'a") + '\0' + json("b','userId':'u'}") << notJson;
        QTest::newRow("NUL between")
            << json("{'message':'a',") + '\0' + json("'userId':'u'}") << notJson;
        QTest::newRow("line end in a text") << json("{'message':'a\nb','userId':'u'}") << notJson;
        QTest::newRow("tab in a key") << json("{'message':'a','userId':'u','\t':1}") << notJson;
        QTest::newRow("no such escape") << json("{'message':'a\\x','userId':'u'}") << notJson;
        QTest::newRow("no message") << json("{'userId':'u'}") << u"Falta el campo \"message\"."_s;
        QTest::newRow("no user") << json("{'message':'m'}") << u"Falta el campo \"userId\"."_s;
        QTest::newRow("message is a number")
            << json("{'message':1,'userId':'u'}") << u"El campo \"message\" debe ser un texto."_s;
        QTest::newRow("message is null") << json("{'message':null,'userId':'u'}")
                                         << u"El campo \"message\" debe ser un texto."_s;
        QTest::newRow("user is a list")
            << json("{'message':'m','userId':[]}") << u"El campo \"userId\" debe ser un texto."_s;
        QTest::newRow("image is an object") << json("{'message':'m','userId':'u','imageBase64':{}}")
                                            << u"El campo \"imageBase64\" debe ser un texto."_s;
        QTest::newRow("type is a number") << json("{'message':'m','userId':'u','imageMimeType':3}")
                                          << u"El campo \"imageMimeType\" debe ser un texto."_s;
        QTest::newRow("name is true") << json("{'message':'m','userId':'u','imageName':true}")
                                      << u"El campo \"imageName\" debe ser un texto."_s;
        QTest::newRow("user too long")
            << json("{'message':'m','userId':'" + QByteArray(257, 'u') + "'}")
            << u"El campo \"userId\" es demasiado largo."_s;
        QTest::newRow("nothing asked")
            << json("{'message':' \\t\\n','userId':'u'}") << u"La pregunta está vacía."_s;
        QTest::newRow("not Base64") << image("???") << notBase64;
        QTest::newRow("no padding") << image("AAEC/w") << notBase64;
        QTest::newRow("too much padding") << image("AAEC/w===") << notBase64;
        QTest::newRow("stray tail bits") << image("AAEC/x==") << notBase64;
        QTest::newRow("line break") << image(json("AAEC\\nAAEC")) << notBase64;
        QTest::newRow("URL alphabet") << image("AAEC_w==") << notBase64;
        QTest::newRow("full-width letter") << image("ＡAEC") << notBase64;
        QTest::newRow("no bytes") << image("") << u"La imagen está vacía."_s;
    }
    void refuses()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, reason);
        const auto parsed = parseChatQuestion(body);
        const auto *refusal = std::get_if<Refusal>(&parsed);
        QVERIFY(refusal);
        QCOMPARE(refusal->reason, reason);
        QCOMPARE(refusal->status, 400);
    }
};

QTEST_APPLESS_MAIN(ChatQuestionTest)
#include "ChatQuestionTest.moc"
