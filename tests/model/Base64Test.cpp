#include "Base64.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

class Base64Test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesEveryLength()
    {
        QRandomGenerator random(1);
        for (qsizetype size = 0; size < 300; ++size) {
            QByteArray bytes(size, Qt::Uninitialized);
            std::generate(bytes.begin(), bytes.end(), [&] { return char(random.generate()); });
            const auto decoded = decodeBase64(bytes.toBase64());
            QVERIFY(decoded && !decoded->isNull());
            QCOMPARE(*decoded, bytes);
        }
    }

    void decodesTheSevenVectorsOfTheStandard_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("0") << QByteArray("") << QByteArray("");
        QTest::newRow("1") << QByteArray("Zg==") << QByteArray("f");
        QTest::newRow("2") << QByteArray("Zm8=") << QByteArray("fo");
        QTest::newRow("3") << QByteArray("Zm9v") << QByteArray("foo");
        QTest::newRow("4") << QByteArray("Zm9vYg==") << QByteArray("foob");
        QTest::newRow("5") << QByteArray("Zm9vYmE=") << QByteArray("fooba");
        QTest::newRow("6") << QByteArray("Zm9vYmFy") << QByteArray("foobar");
    }
    void decodesTheSevenVectorsOfTheStandard()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, bytes);
        QCOMPARE(decodeBase64(text), bytes);
    }

    void takesNoCharacterOutsideTheAlphabetAnywhere()
    {
        const QByteArray good = "AAAAAAAA";
        const QByteArray others = "+/";
        for (qsizetype place = 0; place < good.size(); ++place) {
            for (int c = 0; c < 256; ++c) {
                const bool isDigit = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')
                    || (c >= '0' && c <= '9') || others.contains(char(c));
                const bool isPadding = c == '=' && place == good.size() - 1;
                QByteArray text = good;
                text[place] = char(c);
                QCOMPARE(decodeBase64(text).has_value(), isDigit || isPadding);
            }
        }
    }

    void acceptsOnlyCanonicalEncodings()
    {
        const QByteArray characters = "ABQgwz09+/===-_ \n";
        const qsizetype count = characters.size();
        for (qsizetype i = 0; i < count * count * count * count; ++i) {
            QByteArray text = "Zm9v";
            for (qsizetype place = 0, rest = i; place < 4; ++place, rest /= count)
                text += characters[rest % count];
            const auto lenient
                = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
            const bool isCanonical = lenient && lenient.decoded.toBase64() == text;
            const auto expected = isCanonical ? std::optional(lenient.decoded) : std::nullopt;
            QCOMPARE(decodeBase64(text), expected);
        }
    }

    void rejectsAnIncompleteGroup()
    {
        for (const char *text : {"Z", "Zm", "Zm9", "Zm9vY", "Zm9vYg", "Zm9vYg=", "=", "=="})
            QVERIFY2(!decodeBase64(text), text);
    }
};

QTEST_APPLESS_MAIN(Base64Test)
#include "Base64Test.moc"
