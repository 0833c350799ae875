#include "UuidText.h"

#include <QTest>

using namespace Qt::StringLiterals;

class UuidTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesUpperCase()
    {
        const QUuid uuid(u"{3f2504e0-4f89-11d3-9a0c-0305e82c3301}"_s);
        QCOMPARE(uuidText(uuid), u"3F2504E0-4F89-11D3-9A0C-0305E82C3301"_s);
    }

    void parsesOnlyTheCanonicalForm_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("parses");

        QTest::newRow("upper case") << u"3F2504E0-4F89-11D3-9A0C-0305E82C3301"_s << true;
        QTest::newRow("lower case") << u"3f2504e0-4f89-11d3-9a0c-0305e82c3301"_s << true;
        QTest::newRow("nil") << u"00000000-0000-0000-0000-000000000000"_s << true;
        QTest::newRow("braces") << u"{3F2504E0-4F89-11D3-9A0C-0305E82C3301}"_s << false;
        QTest::newRow("trailing junk") << u"3F2504E0-4F89-11D3-9A0C-0305E82C3301x"_s << false;
        QTest::newRow("short") << u"3F2504E0-4F89-11D3-9A0C-0305E82C330"_s << false;
        QTest::newRow("no hyphens") << u"3F2504E04F8911D39A0C0305E82C33010000"_s << false;
        QTest::newRow("moved hyphen") << u"3F2504E04-F89-11D3-9A0C-0305E82C3301"_s << false;
        QTest::newRow("no digit") << u"GF2504E0-4F89-11D3-9A0C-0305E82C3301"_s << false;
        QTest::newRow("full-width digit") << u"３F2504E0-4F89-11D3-9A0C-0305E82C3301"_s << false;
        QTest::newRow("empty") << u""_s << false;
    }
    void parsesOnlyTheCanonicalForm()
    {
        QFETCH(QString, text);
        QFETCH(bool, parses);
        const auto uuid = parseUuid(text);
        QCOMPARE(uuid.has_value(), parses);
        if (parses)
            QCOMPARE(uuidText(*uuid), text.toUpper());
    }
};

QTEST_APPLESS_MAIN(UuidTextTest)
#include "UuidTextTest.moc"
