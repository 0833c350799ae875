#include "ChatRequestBody.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray bodyOf(const ChatRequest &request)
{
    auto body = ChatRequestBody::serialise(request);
    QByteArray bytes;
    while (body) {
        const QByteArray block = body->takeNextBlock();
        if (block.isEmpty())
            break;
        bytes += block;
    }
    return bytes;
}

ChatRequest questionWith(const ChatRequestImage &image)
{
    return {.message = u"hola"_s, .userId = u"aulora-1"_s, .image = image};
}

QJsonObject parsed(const QByteArray &json)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    return error.error == QJsonParseError::NoError ? document.object() : QJsonObject();
}

QByteArray bytesOfSize(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 random = 7;
    for (char &byte : bytes) {
        random = random * 1664525 + 1013904223;
        byte = char(random >> 24);
    }
    return bytes;
}

} // namespace

class ChatRequestBodyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheKeysInOrder()
    {
        QCOMPARE(bodyOf({.message = u"hola"_s, .userId = u"aulora-1"_s, .image = {}}),
                 R"({"message":"hola","userId":"aulora-1"})"_ba);
        QCOMPARE(
            bodyOf(questionWith({.data = "abcd", .name = u"a.png"_s, .mimeType = u"image/png"_s})),
            R"({"message":"hola","userId":"aulora-1","imageBase64":"YWJjZA==",)"
            R"("imageMimeType":"image/png","imageName":"a.png"})"_ba);
    }

    void namesAnImageThatHasNoNameOrType()
    {
        const QJsonObject object
            = parsed(bodyOf(questionWith({.data = "abc", .name = {}, .mimeType = {}})));
        QCOMPARE(object.value(u"imageName"_s).toString(), u"imagen"_s);
        QCOMPARE(object.value(u"imageMimeType"_s).toString(), u"image/jpeg"_s);
        QCOMPARE(object.size(), 5);
    }

    void keepsAnEmptyNameAndType()
    {
        const QJsonObject object
            = parsed(bodyOf(questionWith({.data = "abc", .name = u""_s, .mimeType = u""_s})));
        QCOMPARE(object.value(u"imageName"_s).toString(u"absent"_s), u""_s);
        QCOMPARE(object.value(u"imageMimeType"_s).toString(u"absent"_s), u""_s);
    }

    void writesTextThatReadsBackTheSame_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << u""_s;
        QTest::newRow("Spanish") << u"¿Qué es el ñandú?"_s;
        QTest::newRow("quotes") << u"\"a\" \\ /"_s;
        QTest::newRow("lines") << u"a\nb\r\n\tc\u2028\u0085"_s;
        QTest::newRow("control characters") << u"\0\x01\x1F\x7F"_s;
        QTest::newRow("other planes") << u"😀𝄞"_s;
        QTest::newRow("looks like JSON") << u"\"}],{"_s;
    }
    void writesTextThatReadsBackTheSame()
    {
        QFETCH(QString, text);
        const ChatRequestImage image{.data = "abc", .name = text, .mimeType = text};
        const QJsonObject object
            = parsed(bodyOf({.message = text, .userId = text, .image = image}));
        for (const QString &key : {u"message"_s, u"userId"_s, u"imageName"_s, u"imageMimeType"_s})
            QCOMPARE(object.value(key).toString(u"absent"_s), text);
    }

    void writesAccentsAsUtf8()
    {
        QVERIFY(bodyOf({.message = u"ñ😀"_s, .userId = {}, .image = {}}).contains("\"ñ😀\""));
    }

    void replacesLoneSurrogates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const QChar high(0xD83D);
        const QChar low(0xDE00);
        QTest::newRow("high at the end") << u"a"_s + high << u"a\uFFFD"_s;
        QTest::newRow("high in the middle") << high + u"a"_s << u"\uFFFDa"_s;
        QTest::newRow("low") << low + u"a"_s << u"\uFFFDa"_s;
        QTest::newRow("two high, one low") << QString(high) + high + low << u"\uFFFD😀"_s;
        QTest::newRow("low then high") << QString(low) + high << u"\uFFFD\uFFFD"_s;
    }
    void replacesLoneSurrogates()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        const QByteArray body = bodyOf({.message = text, .userId = {}, .image = {}});
        QVERIFY(body.isValidUtf8());
        QVERIFY(body.contains('"' + expected.toUtf8() + '"'));
    }

    void encodesImagesOfAnySize_data()
    {
        QTest::addColumn<qsizetype>("size");
        constexpr qsizetype block = qsizetype(48) * 1024;
        for (const qsizetype size :
             {qsizetype(0), qsizetype(1), qsizetype(2), qsizetype(3), block - 1, block, block + 1,
              2 * block + 2, qsizetype(12'582'912)})
            QTest::addRow("%lld bytes", (long long)size) << size;
    }
    void encodesImagesOfAnySize()
    {
        QFETCH(qsizetype, size);
        const QByteArray image = bytesOfSize(size);
        const QByteArray body = bodyOf(questionWith({.data = image, .name = {}, .mimeType = {}}));
        const QJsonObject object = parsed(body);
        QCOMPARE(object.value(u"imageBase64"_s).toString(u"absent"_s).toLatin1(), image.toBase64());
        QVERIFY(!body.contains('\n') && !body.contains('\r') && !body.contains("\\"));
    }

    void tellsItsLengthAndComesInSmallBlocks()
    {
        const ChatRequest request
            = questionWith({.data = bytesOfSize(1'000'000), .name = {}, .mimeType = {}});
        auto body = ChatRequestBody::serialise(request);
        const qint64 length = body->contentLength();
        qint64 size = 0;
        while (true) {
            const QByteArray block = body->takeNextBlock();
            if (block.isEmpty())
                break;
            QVERIFY(block.size() <= qsizetype(64) * 1024);
            size += block.size();
        }
        QCOMPARE(size, length);
        QVERIFY(body->takeNextBlock().isEmpty());
    }

    void refusesATextThatIsTooLong()
    {
        QString text(ChatRequestBody::maximumTextLength, u'a');
        QVERIFY(ChatRequestBody::serialise({.message = text, .userId = {}, .image = {}}));
        text += u'a';
        QVERIFY(!ChatRequestBody::serialise({.message = text, .userId = {}, .image = {}}));
    }
};

QTEST_APPLESS_MAIN(ChatRequestBodyTest)
#include "ChatRequestBodyTest.moc"
