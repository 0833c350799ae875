#include "ChatCompletionParser.h"

#include "ScriptedModel.h"
#include "ThinkingFilter.h"

#include <QTest>

using namespace Qt::StringLiterals;
using State = ChatCompletionParser::State;

static QByteArray piece(const QByteArray &text)
{
    return ModelScript::event(text);
}

static QByteArray choice(const QByteArray &content)
{
    return "data: {\"choices\":[" + content + "]}\n\n";
}

struct Reading
{
    QString text;
    State state = State::Reading;
    ModelFailure failure = ModelFailure::NotUnderstood;
};

static Reading read(const QByteArray &body, qsizetype pieceSize)
{
    ChatCompletionParser parser;
    QString text;
    for (qsizetype at = 0; at < body.size(); at += pieceSize)
        text += parser.feed(body.mid(at, pieceSize));
    text += parser.finish();
    return {text, parser.state(), parser.failure()};
}

Q_DECLARE_METATYPE(ChatCompletionParser::State)
Q_DECLARE_METATYPE(ModelFailure)

class ChatCompletionParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryDialect_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("text");
        QTest::addColumn<State>("state");

        const QByteArray done = "data: [DONE]\n\n";
        const QByteArray word = piece("Célula ") + piece("\\ud83e") + piece("\\uddeb");
        const QString text = u"Célula 🧫"_s;
        QTest::newRow("plain") << word + done << text << State::Whole;
        QTest::newRow("CR LF") << QByteArray(word + done).replace("\n", "\r\n") << text
                               << State::Whole;
        QTest::newRow("CR") << QByteArray(word + done).replace("\n", "\r") << text << State::Whole;
        QTest::newRow("byte order mark") << "\xEF\xBB\xBF" + word + done << text << State::Whole;
        QTest::newRow("no blank after the colon")
            << QByteArray(word + done).replace("data: ", "data:") << text << State::Whole;
        QTest::newRow("comments") << ": ping\n\n" + word + ":\n: OPENROUTER PROCESSING\n\n" + done
                                  << text << State::Whole;
        QTest::newRow("other fields")
            << "id: 7\nretry: 10\nevent: message\n" + word + "id\n" + done << text << State::Whole;
        QTest::newRow("no blank line at the end") << word + "data: [DONE]" << text << State::Whole;
        QTest::newRow("no blank lines at all")
            << QByteArray(word + done).replace("\n\n", "\n") << text << State::Whole;
        QTest::newRow("no end") << word << text << State::Reading;
        QTest::newRow("reason instead of an end")
            << word + choice(R"({"delta":{},"finish_reason":"stop"})") << text << State::Whole;
        QTest::newRow("reason with the last piece")
            << choice(R"({"delta":{"content":"uno"},"finish_reason":"stop"})") << u"uno"_s
            << State::Whole;
        QTest::newRow("empty and null reasons")
            << choice(R"({"delta":{"content":"uno"},"finish_reason":""})")
                + choice(R"({"delta":{"content":" dos"},"finish_reason":null})") + done
            << u"uno dos"_s << State::Whole;
        QTest::newRow("nothing after the end") << word + done + piece("no") << text << State::Whole;
        QTest::newRow("null content") << choice(R"({"delta":{"role":"assistant","content":null}})")
                + word + done << text << State::Whole;
        QTest::newRow("thoughts in a field of their own")
            << choice(R"({"delta":{"content":null,"reasoning_content":"pienso"}})")
                + choice(R"({"delta":{"content":"","reasoning":"pienso"}})") + word + done
            << text << State::Whole;
        QTest::newRow("no choices")
            << word + "data: {\"choices\":[],\"usage\":{\"total_tokens\":3}}\n\n" + done << text
            << State::Whole;
        QTest::newRow("null error")
            << "data: {\"error\":null,\"choices\":[{\"delta\":{\"content\":\"a\"}}]}\n\n" + done
            << u"a"_s << State::Whole;
        QTest::newRow("parts")
            << choice(R"({"delta":{"content":[{"type":"text","text":"uno"},{"type":"x"}]}})") + done
            << u"uno"_s << State::Whole;
        QTest::newRow("an event on several lines")
            << QByteArray(
                   "data: {\"choices\":\ndata: [{\"delta\":\ndata: {\"content\":\"a\"}}]}\n\n")
                + done
            << u"a"_s << State::Whole;
        QTest::newRow("too long") << word + choice(R"({"delta":{},"finish_reason":"length"})")
                + done << text << State::TooLong;
        QTest::newRow("filtered") << word
                + choice(R"({"delta":{},"finish_reason":"content_filter"})")
                                  << text << State::Withheld;
        QTest::newRow("a whole completion") << QByteArray(
            R"({"choices":[{"message":{"content":"uno\ndos"},"finish_reason":"stop"}]})")
                                            << u"uno\ndos"_s << State::Whole;
        QTest::newRow("a whole completion on many lines") << QByteArray(
            "{\n  \"choices\": [\n    {\n\n      \"message\": {\"content\": \"uno\"}\n"
            "    }\n  ]\n}\n") << u"uno"_s << State::Whole;
        QTest::newRow("bytes that are no UTF-8") << piece("a\xFF"
                                                          "b")
                + done << u"a\uFFFDb"_s << State::Whole;
        QTest::newRow("nothing") << QByteArray() << QString() << State::Reading;
    }
    void readsEveryDialect()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, text);
        QFETCH(State, state);
        for (qsizetype pieceSize = 1; pieceSize <= body.size() + 1; ++pieceSize) {
            const Reading reading = read(body, pieceSize);
            QCOMPARE(reading.text, text);
            QCOMPARE(reading.state, state);
        }
    }

    void recognizesFailures_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("text");
        QTest::addColumn<ModelFailure>("failure");

        const auto reported = ModelFailure::ReportedError;
        const auto notUnderstood = ModelFailure::NotUnderstood;
        const QByteArray error = R"({"error":{"message":"se rompió","code":500}})";
        QTest::newRow("an event") << piece("uno") + "data: " + error + "\n\n"
                                  << u"uno"_s << reported;
        QTest::newRow("an event of its own name")
            << piece("uno") + "event: error\ndata: {\"message\":\"x\"}\n\n"
            << u"uno"_s << reported;
        QTest::newRow("an event of its own name, no JSON")
            << QByteArray("event: error\ndata: se rompió\n\n") << u""_s << reported;
        QTest::newRow("a text") << QByteArray("data: {\"error\":\"x\"}\n\n") << u""_s << reported;
        QTest::newRow("a field") << "error: " + error + "\n\n" << u""_s << reported;
        QTest::newRow("a bare line") << piece("uno") + error + "\n" << u"uno"_s << reported;
        QTest::newRow("the only thing") << error << u""_s << reported;
        QTest::newRow("the only thing, on many lines")
            << QByteArray(error).replace(",", ",\n") << u""_s << reported;
        QTest::newRow("a reason") << choice(R"({"delta":{"content":""},"finish_reason":"error"})")
                                  << u""_s << reported;
        QTest::newRow("HTML") << QByteArray("<html>\n<body>502</body>\n</html>\n") << u""_s
                              << notUnderstood;
        QTest::newRow("an event that is no JSON") << piece("uno") + "data: {\"choices\":[\n\n"
                                                  << u"uno"_s << notUnderstood;
        QTest::newRow("an event cut at the end")
            << piece("uno") + "data: {\"choices\":[{\"del" << u"uno"_s << notUnderstood;
        QTest::newRow("too deep") << "data: " + QByteArray(5000, '[') + "\n\n"
                                  << u""_s << notUnderstood;
    }
    void recognizesFailures()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, text);
        QFETCH(ModelFailure, failure);
        for (const qsizetype pieceSize : {1, 2, 3, 7, 100, 10'000}) {
            const Reading reading = read(body, pieceSize);
            QCOMPARE(reading.text, text);
            QCOMPARE(reading.state, State::Failed);
            QCOMPARE(reading.failure, failure);
        }
    }

    void boundsWhatItHolds_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("one line") << QByteArray(1000, 'x');
        QTest::newRow("one event") << QByteArray("data: ") + QByteArray(1000, 'x') + '\n';
        QTest::newRow("one completion") << QByteArray(1000, '{') + '\n';
    }
    void boundsWhatItHolds()
    {
        QFETCH(QByteArray, line);
        ChatCompletionParser parser;
        qsizetype fed = 0;
        while (parser.state() == State::Reading && fed < 3 * ChatCompletionParser::longestEvent) {
            parser.feed(line);
            fed += line.size();
        }
        QCOMPARE(parser.state(), State::Failed);
        QVERIFY(fed < ChatCompletionParser::longestEvent + 20'000);
    }

    void withholdsThoughts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        QTest::newRow("none") << u"a < b y c"_s << u"a < b y c"_s;
        QTest::newRow("first") << u"<think>\nhmm <b> </thin\n</think>\n\nHola"_s << u"\n\nHola"_s;
        QTest::newRow("twice") << u"a<think>b</think>c<think>d</think>e"_s << u"ace"_s;
        QTest::newRow("never ended") << u"a<think>b</thin"_s << u"a"_s;
        QTest::newRow("a mark cut off") << u"a<thin"_s << u"a<thin"_s;
        QTest::newRow("a mark begun twice") << u"a<<think>b</</think>c"_s << u"a<c"_s;
        QTest::newRow("empty") << u"<think></think>Hola"_s << u"Hola"_s;
    }
    void withholdsThoughts()
    {
        QFETCH(QString, text);
        QFETCH(QString, shown);
        for (qsizetype pieceSize = 1; pieceSize <= text.size(); ++pieceSize) {
            ThinkingFilter filter;
            QString result;
            for (qsizetype at = 0; at < text.size(); at += pieceSize)
                result += filter.feed(text.mid(at, pieceSize));
            QCOMPARE(result + filter.finish(), shown);
        }
    }
};

QTEST_APPLESS_MAIN(ChatCompletionParserTest)
#include "ChatCompletionParserTest.moc"
