#include "ConversationCoding.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QUuid someID(u"{3f2504e0-4f89-11d3-9a0c-0305e82c3301}"_s);
const QUuid otherID(u"{a987fbc9-4bed-4078-8f07-9141ba07c9f3}"_s);
const QByteArray someIDText = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";

ChatMessage plainMessage()
{
    return {someID, u"Hola"_s, true, std::nullopt, std::nullopt};
}

QByteArray encodeMessage(const ChatMessage &message)
{
    return encodeConversations({{otherID, u"t"_s, {message}}});
}

/// A document of one conversation that holds one message with these members.
QByteArray documentWithMessage(const QByteArray &members)
{
    return R"([{"id":")" + someIDText + R"(","title":"t","messages":[{)" + members + "}]}]";
}

QByteArray messageMembers(const QByteArray &more = {})
{
    return R"("id":")" + someIDText + R"(","text":"Hola","isUser":true)" + more;
}

std::optional<QList<Conversation>> decoded(const QByteArray &document)
{
    auto result = decodeConversations(document);
    auto *conversations = std::get_if<QList<Conversation>>(&result);
    return conversations ? std::optional(*conversations) : std::nullopt;
}

QString complaint(const QByteArray &document)
{
    const auto result = decodeConversations(document);
    const auto *error = std::get_if<DecodingError>(&result);
    return error ? error->description : QString();
}

} // namespace

class ConversationCodingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheCompactForm();
    void leavesOutAbsentFields();
    void keepsAnEmptyPreviewPresent();
    void escapes_data();
    void escapes();
    void roundTrips();
    void accepts_data();
    void accepts();
    void refuses_data();
    void refuses();
    void neverQuotesTheText();
    void comparesFieldByField();
};

void ConversationCodingTest::writesTheCompactForm()
{
    ChatMessage message = plainMessage();
    message.attachmentName = u"rx.png"_s;
    message.imagePreviewData = QByteArray("\xFF\xD8\xFF", 3);
    QCOMPARE(encodeConversations({{otherID, u"Sístole"_s, {message}}}),
             QByteArray(R"([{"id":"A987FBC9-4BED-4078-8F07-9141BA07C9F3","title":"Sístole",)"
                        R"("messages":[{"id":"3F2504E0-4F89-11D3-9A0C-0305E82C3301",)"
                        R"("text":"Hola","isUser":true,"attachmentName":"rx.png",)"
                        R"("imagePreviewData":"/9j/"}]}])"));
    QCOMPARE(encodeConversations({}), "[]");
}

void ConversationCodingTest::leavesOutAbsentFields()
{
    const QJsonArray array = QJsonDocument::fromJson(encodeMessage(plainMessage())).array();
    const QJsonObject message = array[0][u"messages"_s][0].toObject();
    QCOMPARE(message.keys(), QStringList({u"id"_s, u"isUser"_s, u"text"_s}));
}

void ConversationCodingTest::keepsAnEmptyPreviewPresent()
{
    ChatMessage message = plainMessage();
    message.imagePreviewData = QByteArray();
    const QByteArray document = encodeMessage(message);
    QVERIFY(document.contains(R"("imagePreviewData":"")"));
    const auto conversations = decoded(document);
    QVERIFY(conversations);
    const auto preview = conversations->first().messages.first().imagePreviewData;
    QVERIFY(preview.has_value());
    QCOMPARE(*preview, QByteArray());
}

void ConversationCodingTest::escapes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QString>("readBack");

    const auto same = [](const char *name, const QString &text, const QByteArray &written) {
        QTest::newRow(name) << text << written << text;
    };
    same("quote", u"\""_s, R"(\")");
    same("backslash", u"\\"_s, R"(\\)");
    same("line feed", u"\n"_s, R"(\n)");
    same("carriage return", u"\r"_s, R"(\r)");
    same("tab", u"\t"_s, R"(\t)");
    same("NUL", QString(QChar(0)), R"(\u0000)");
    same("escape", u"\x1B"_s, R"(\u001b)");
    same("delete", u"\x7F"_s, "\x7F");
    same("slash", u"/"_s, "/");
    same("byte order mark", u"\uFEFFa"_s,
         "\xEF\xBB\xBF"
         "a");
    same("line separator", u"\u2028"_s, "\xE2\x80\xA8");
    same("beyond the first plane", u"🫀"_s, "\xF0\x9F\xAB\x80");
    same("last character", QString::fromUcs4(U"\U0010FFFF"), "\xF4\x8F\xBF\xBF");
    const QByteArray replacement = "\xEF\xBF\xBD";
    QTest::newRow("lone high surrogate")
        << u"a"_s + QChar(0xD800) + u"b"_s << "a" + replacement + "b" << u"a\uFFFDb"_s;
    QTest::newRow("lone low surrogate") << QString(QChar(0xDC00)) << replacement << u"\uFFFD"_s;
}

void ConversationCodingTest::escapes()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, written);
    QFETCH(QString, readBack);
    ChatMessage message = plainMessage();
    message.text = text;
    const QByteArray document = encodeMessage(message);
    QVERIFY2(document.contains(R"("text":")" + written + R"(","isUser")"), document.constData());
    const auto conversations = decoded(document);
    QVERIFY(conversations);
    QCOMPARE(conversations->first().messages.first().text, readBack);
}

void ConversationCodingTest::roundTrips()
{
    QByteArray everyByte;
    for (int i = 0; i < 256; ++i)
        everyByte.append(char(i));
    QList<Conversation> conversations;
    for (int size = 0; size < 260; ++size) {
        ChatMessage message{QUuid::createUuid(), QString(size, u'ñ'), size % 2 == 0,
                            u"imagen \"%1\""_s.arg(size), everyByte.left(size)};
        if (size % 3 == 0)
            message.attachmentName.reset();
        conversations.append({QUuid::createUuid(), u"\\ %1"_s.arg(size), {message, message}});
    }
    conversations.append({someID, QString(), {}});
    QCOMPARE(decoded(encodeConversations(conversations)), conversations);
}

void ConversationCodingTest::accepts_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QList<Conversation>>("expected");

    const auto messageRow
        = [](const char *name, const QByteArray &members, const ChatMessage &message) {
              QTest::newRow(name) << documentWithMessage(members)
                                  << QList<Conversation>{{someID, u"t"_s, {message}}};
          };
    const auto textRow = [&](const char *name, const QByteArray &text, const QString &meaning) {
        ChatMessage message = plainMessage();
        message.text = meaning;
        messageRow(name, R"("id":")" + someIDText + R"(","isUser":true,"text":")" + text + '"',
                   message);
    };
    const ChatMessage plain = plainMessage();
    ChatMessage withPreview = plain;
    withPreview.imagePreviewData = QByteArray("\xFF\xD8\xFF\xE0", 4);
    ChatMessage fromAssistant = plain;
    fromAssistant.isUser = false;

    QTest::newRow("empty list") << QByteArray("[]") << QList<Conversation>();
    QTest::newRow("white space") << QByteArray(" \t\r\n[ \n] \n") << QList<Conversation>();
    QTest::newRow("no messages") << R"([{"messages":[],"title":"t","id":")" + someIDText + R"("}])"
                                 << QList<Conversation>{{someID, u"t"_s, {}}};
    QTest::newRow("lower-case UUID")
        << R"([{"id":")" + someIDText.toLower() + R"(","title":"","messages":[]}])"
        << QList<Conversation>{{someID, QString(), {}}};
    const QByteArray beforeMessages = R"([{"id":")" + someIDText + R"(","title":"t",)";
    const QByteArray goodMessages = R"("messages":[{)" + messageMembers() + "}]";
    for (const QByteArray messages :
         {R"("messages":[])", R"("messages":7)", R"("messages":[{}])", R"("messages":[[{"a":[]}]])",
          R"("messages":[{"id":"x","text":[1,{"b":"]"}]}])"}) {
        QTest::newRow("repeated messages, the last count: " + messages) << beforeMessages + messages
                + ',' + goodMessages + "}]" << QList<Conversation>{{someID, u"t"_s, {plain}}};
    }
    messageRow("exactly the three keys", messageMembers(), plain);
    messageRow("null attachment name", messageMembers(R"(,"attachmentName":null)"), plain);
    messageRow("null preview", messageMembers(R"(,"imagePreviewData":null)"), plain);
    messageRow("preview", messageMembers(R"(,"imagePreviewData":"/9j/4A==")"), withPreview);
    messageRow("escaped slashes", messageMembers(R"(,"imagePreviewData":"\/9j\/4A==")"),
               withPreview);
    messageRow("unknown keys",
               messageMembers(R"(,"x":[1,-0.5e+3,{"y":[null,true,false,"\u00e9",{}]},[]],"":0)"),
               plain);
    messageRow("key in other case", messageMembers(R"(,"Text":5)"), plain);
    messageRow("escaped key", messageMembers(R"(,"is\u0055ser":false)"), fromAssistant);
    messageRow("repeated key, the last counts", messageMembers(R"(,"isUser":false)"),
               fromAssistant);
    messageRow("repeated key, an earlier one of a wrong type",
               R"("isUser":"x","text":[{}],)" + messageMembers(), plain);
    messageRow("spread out",
               "\n \"id\" : \"" + someIDText + "\" ,\t\"text\" : \"Hola\" , \"isUser\" : true \r\n",
               plain);
    messageRow("deep ignored value",
               messageMembers(",\"x\":" + QByteArray(500, '[') + QByteArray(500, ']')), plain);
    textRow("every escape", R"(\"\\\/\b\f\n\r\t\u00e9\u00E9)", u"\"\\/\b\f\n\r\téé"_s);
    textRow("escaped NUL", R"(a\u0000b)", u"a"_s + QChar(0) + u"b"_s);
    textRow("escaped pair", R"(\ud83e\udec0)", u"🫀"_s);
    textRow("lone high surrogate", R"(\ud800)", u"\uFFFD"_s);
    textRow("lone low surrogate", R"(\udc00)", u"\uFFFD"_s);
    textRow("reversed pair", R"(\udc00\ud800)", u"\uFFFD\uFFFD"_s);
    textRow("high surrogate before another escape", R"(\ud800\n)", u"\uFFFD\n"_s);
    textRow("high surrogate before a character", R"(\ud800\u0041)", u"\uFFFDA"_s);
    textRow("two high surrogates and a low one", R"(\ud83e\ud83e\udec0)", u"\uFFFD🫀"_s);
    textRow("two, three and four bytes", "é€🫀", u"é€🫀"_s);
    textRow("non-character", "\xEF\xBF\xBF", u"\uFFFF"_s);
}

void ConversationCodingTest::accepts()
{
    QFETCH(QByteArray, document);
    QFETCH(QList<Conversation>, expected);
    QCOMPARE(complaint(document), QString());
    QCOMPARE(decoded(document), expected);
}

void ConversationCodingTest::refuses_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("description");

    const auto row = [](const char *name, const QByteArray &document, const QString &description) {
        QTest::newRow(name) << document << description;
    };
    const auto messageRow
        = [&](const char *name, const QByteArray &members, const QString &description) {
              row(name, documentWithMessage(members), u"[0].messages[0]"_s + description);
          };
    const auto previewRow = [&](const char *name, const QByteArray &base64) {
        messageRow(name, messageMembers(R"(,"imagePreviewData":")" + base64 + '"'),
                   u".imagePreviewData: el base64 no es válido"_s);
    };
    const auto jsonRow = [](const char *name, const QByteArray &document) {
        QTest::newRow(name) << document << u"JSON no válido en el byte"_s;
    };
    const auto valueRow = [&](const char *name, const QByteArray &value) {
        jsonRow(name, documentWithMessage(messageMembers(R"(,"x":)" + value)));
    };
    const QByteArray id = R"("id":")" + someIDText + '"';

    row("nothing", "", u"se esperaba una lista"_s);
    row("object", "{}", u"se esperaba una lista"_s);
    row("null", "null", u"se esperaba una lista"_s);
    row("byte order mark", "\xEF\xBB\xBF[]", u"se esperaba una lista"_s);
    const QByteArray beforeMessages = "[{" + id + R"(,"title":"t","messages":)";
    row("repeated messages, the last of a wrong type", beforeMessages + R"([],"messages":7}])",
        u"[0].messages: se esperaba una lista"_s);
    row("repeated messages, the last with a wrong record",
        beforeMessages + R"(7,"messages":[{}]}])", u"[0].messages[0].id: falta el campo"_s);
    row("wrong messages, then no title", "[{" + id + R"(,"messages":[{}],"title":null}])",
        u"[0].title: se esperaba un texto"_s);
    for (const QByteArray rest :
         {"[{}", "[{}]", "[{}],", "[{]}]", "7", "tru}]", "[{}],\"title\":}]"})
        jsonRow("wrong messages, then no JSON: " + rest, beforeMessages + rest);
    row("number for a conversation", "[5]", u"[0]: se esperaba un objeto"_s);
    row("conversation without id", R"([{"title":"t","messages":[]}])", u"[0].id: falta el campo"_s);
    row("conversation without title", "[{" + id + R"(,"messages":[]}])",
        u"[0].title: falta el campo"_s);
    row("second conversation without title",
        "[{" + id + R"(,"title":"t","messages":[]},{)" + id + R"(,"messages":[]}])",
        u"[1].title: falta el campo"_s);
    row("conversation without messages", "[{" + id + R"(,"title":"t"}])",
        u"[0].messages: falta el campo"_s);
    row("null messages", "[{" + id + R"(,"title":"t","messages":null}])",
        u"[0].messages: se esperaba una lista"_s);
    row("null title", "[{" + id + R"(,"title":null,"messages":[]}])",
        u"[0].title: se esperaba un texto"_s);
    row("messages in an object", "[{" + id + R"(,"title":"t","messages":{}}])",
        u"[0].messages: se esperaba una lista"_s);
    row("second message is a list",
        documentWithMessage(messageMembers() + "},[]").replace("[]}", "[]"),
        u"[0].messages[1]: se esperaba un objeto"_s);

    messageRow("message without id", R"("text":"","isUser":true)", u".id: falta el campo"_s);
    messageRow("message without text", id + R"(,"isUser":true)", u".text: falta el campo"_s);
    messageRow("message without isUser", id + R"(,"text":"")", u".isUser: falta el campo"_s);
    messageRow("number for an id", R"("id":7,"text":"","isUser":true)",
               u".id: se esperaba un texto"_s);
    messageRow("bad UUID", R"("id":"x","text":"","isUser":true)", u".id: el UUID no es válido"_s);
    messageRow("UUID behind a byte order mark",
               "\"id\":\"\xEF\xBB\xBF" + someIDText + R"(","text":"","isUser":true)",
               u".id: el UUID no es válido"_s);
    messageRow("UUID in braces", R"("id":"{)" + someIDText + R"(}","text":"","isUser":true)",
               u".id: el UUID no es válido"_s);
    messageRow("UUID with a tail", R"("id":")" + someIDText + R"(0","text":"","isUser":true)",
               u".id: el UUID no es válido"_s);
    messageRow("null text", id + R"(,"text":null,"isUser":true)", u".text: se esperaba un texto"_s);
    messageRow("number for isUser", id + R"(,"text":"","isUser":1)",
               u".isUser: se esperaba un valor lógico"_s);
    messageRow("text for isUser", id + R"(,"text":"","isUser":"true")",
               u".isUser: se esperaba un valor lógico"_s);
    messageRow("null isUser", id + R"(,"text":"","isUser":null)",
               u".isUser: se esperaba un valor lógico"_s);
    messageRow("boolean for a name", messageMembers(R"(,"attachmentName":false)"),
               u".attachmentName: se esperaba un texto"_s);
    messageRow("list for a preview", messageMembers(R"(,"imagePreviewData":[255])"),
               u".imagePreviewData: se esperaba un texto"_s);
    messageRow("repeated key, the last of a wrong type", messageMembers(R"(,"text":1)"),
               u".text: se esperaba un texto"_s);

    previewRow("base64 without padding", "/9j/4A");
    previewRow("base64 with half its padding", "/9j/4A=");
    previewRow("base64 with stray bits after one byte", "/9==");
    previewRow("base64 with stray bits after two bytes", "/9j=");
    previewRow("base64 of padding alone", "====");
    previewRow("base64 with three paddings", "/===");
    previewRow("base64 with padding within", "/9==/9j/");
    previewRow("base64 with a line end", R"(/9j/\n/9j)");
    previewRow("base64 of the URL alphabet", "_-j_");
    previewRow("base64 with a space", "/9j ");
    previewRow("base64 beyond ASCII", "/9jé");
    previewRow("base64 of one character", "/");

    row("unterminated list", "[", u"[0]: se esperaba un objeto"_s);
    jsonRow("text after the list", "[] x");
    jsonRow("second list", "[][]");
    row("list closed as an object", "[}", u"[0]: se esperaba un objeto"_s);
    row("comma alone", "[,]", u"[0]: se esperaba un objeto"_s);
    row("trailing comma", documentWithMessage(messageMembers()).chopped(1) + ",]",
        u"[1]: se esperaba un objeto"_s);
    jsonRow("cut off", documentWithMessage(messageMembers()).chopped(3));
    valueRow("trailing comma in an object", R"({"a":1,})");
    valueRow("trailing comma in a list", "[1,]");
    valueRow("missing comma", "[1 2]");
    valueRow("missing colon", R"({"a" 1})");
    valueRow("key without quotes", "{a:1}");
    valueRow("number for a key", "{1:1}");
    valueRow("mismatched brackets", "[{]}");
    valueRow("no value", "");
    valueRow("leading zero", "01");
    valueRow("plus sign", "+1");
    valueRow("minus alone", "-");
    valueRow("no digit before the point", ".5");
    valueRow("no digit after the point", "5.");
    valueRow("no exponent", "1e");
    valueRow("no exponent after its sign", "1e-");
    valueRow("hexadecimal", "0x10");
    valueRow("not a number", "NaN");
    valueRow("literal in capitals", "True");
    valueRow("literal cut off", "tru");
    valueRow("literal with a tail", "nullx");
    valueRow("single quotes", "'a'");
    valueRow("comment", "/* */1");
    valueRow("unknown escape", R"("\x41")");
    valueRow("escape cut off", R"("\u00e")");
    valueRow("escape with no hexadecimal digit", R"("\u00eg")");
    valueRow("line feed in a text", "\"a\nb\"");
    valueRow("NUL in a text", QByteArray("\"a\0b\"", 5));
    valueRow("NUL between values", QByteArray("\0001", 2));
    valueRow("deeper than the limit", QByteArray(600, '[') + QByteArray(600, ']'));
    valueRow("a million lists", QByteArray(1'000'000, '['));
    valueRow("a million objects", QByteArray(R"({"":)").repeated(1'000'000));

    const auto utf8Row = [](const char *name, const QByteArray &bytes) {
        QTest::newRow(name) << documentWithMessage(messageMembers(R"(,"x":")" + bytes + '"'))
                            << u"el documento no es UTF-8 válido"_s;
    };
    utf8Row("lone continuation byte", "\x80");
    utf8Row("sequence cut off", "\xC3");
    utf8Row("overlong", "\xC0\xAF");
    utf8Row("surrogate in UTF-8", "\xED\xA0\x80");
    utf8Row("beyond the last character", "\xF4\x90\x80\x80");
    utf8Row("Latin-1", "\xE9");
}

void ConversationCodingTest::refuses()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, description);
    QElapsedTimer timer;
    timer.start();
    const QString text = complaint(document);
    QVERIFY2(text.startsWith(description), qPrintable(text));
    QVERIFY(timer.elapsed() < 2000);
}

void ConversationCodingTest::neverQuotesTheText()
{
    const QByteArray secret = "secreto";
    const QList<QByteArray> documents{
        documentWithMessage(R"("id":")" + secret + '"'),
        documentWithMessage(messageMembers(R"(,"imagePreviewData":")" + secret + '"')),
        documentWithMessage(messageMembers(",\"" + secret + "\":" + secret)),
        '"' + secret + '"',
    };
    for (const QByteArray &document : documents) {
        const QString text = complaint(document);
        QVERIFY(!text.isEmpty());
        QVERIFY2(!text.contains(QString::fromUtf8(secret)), qPrintable(text));
    }
}

void ConversationCodingTest::comparesFieldByField()
{
    const ChatMessage message = plainMessage();
    QCOMPARE(message, plainMessage());
    ChatMessage other = message;
    other.imagePreviewData = QByteArray("a");
    QVERIFY(other != message);
    ChatMessage another = message;
    another.imagePreviewData = QByteArray("b");
    QVERIFY(other != another);
    another.imagePreviewData = QByteArray("a");
    QCOMPARE(other, another);
    ChatMessage empty = message;
    empty.imagePreviewData = QByteArray();
    QVERIFY(empty != message);
    ChatMessage named = message;
    named.attachmentName = QString();
    QVERIFY(named != message);

    const Conversation conversation{someID, u"t"_s, {message}};
    QCOMPARE(conversation, (Conversation{someID, u"t"_s, {message}}));
    QVERIFY(conversation != (Conversation{otherID, u"t"_s, {message}}));
    QVERIFY(conversation != (Conversation{someID, u"T"_s, {message}}));
    QVERIFY(conversation != (Conversation{someID, u"t"_s, {message, message}}));
    QVERIFY(conversation != (Conversation{someID, u"t"_s, {named}}));
}

QTEST_APPLESS_MAIN(ConversationCodingTest)
#include "ConversationCodingTest.moc"
