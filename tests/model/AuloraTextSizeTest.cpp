#include "AuloraTextSize.h"

#include <QHash>
#include <QTest>

using namespace Qt::StringLiterals;

class AuloraTextSizeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasThreeCases_data();
    void hasThreeCases();
    void offersThemInOrder();
    void namesNoCase_data();
    void namesNoCase();
};

void AuloraTextSizeTest::hasThreeCases_data()
{
    QTest::addColumn<AuloraTextSize>("size");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<double>("scale");
    QTest::newRow("compact") << AuloraTextSize::compact << u"compact"_s << u"Compacto"_s << 0.9;
    QTest::newRow("standard") << AuloraTextSize::standard << u"standard"_s << u"Normal"_s << 1.0;
    QTest::newRow("large") << AuloraTextSize::large << u"large"_s << u"Grande"_s << 1.15;
}

void AuloraTextSizeTest::hasThreeCases()
{
    QFETCH(AuloraTextSize, size);
    QFETCH(QString, raw);
    QFETCH(QString, shown);
    QFETCH(double, scale);
    QCOMPARE(rawValue(size), raw);
    QCOMPARE(label(size), shown);
    QCOMPARE(scaleFactor(size), scale);
    QCOMPARE(scaleFactorForRawValue(raw), scale);
    QCOMPARE(textSizeFromRawValue(raw), size);
    QCOMPARE(qHash(size), qHash(raw));
}

void AuloraTextSizeTest::offersThemInOrder()
{
    const QList expected{AuloraTextSize::compact, AuloraTextSize::standard, AuloraTextSize::large};
    QCOMPARE(allTextSizes(), expected);
}

void AuloraTextSizeTest::namesNoCase_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << u""_s;
    QTest::newRow("capitals") << u"LARGE"_s;
    QTest::newRow("label") << u"Grande"_s;
    QTest::newRow("number") << u"1.15"_s;
}

void AuloraTextSizeTest::namesNoCase()
{
    QFETCH(QString, text);
    QCOMPARE(textSizeFromRawValue(text), std::nullopt);
    QCOMPARE(scaleFactorForRawValue(text), 1.0);
}

QTEST_APPLESS_MAIN(AuloraTextSizeTest)
#include "AuloraTextSizeTest.moc"
