#include "AuloraAppearance.h"

#include <QHash>
#include <QTest>

using namespace Qt::StringLiterals;

class AuloraAppearanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasThreeCases_data();
    void hasThreeCases();
    void offersThemInOrder();
    void namesNoCase_data();
    void namesNoCase();
};

void AuloraAppearanceTest::hasThreeCases_data()
{
    QTest::addColumn<AuloraAppearance>("appearance");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("symbol");
    QTest::newRow("system") << AuloraAppearance::system << u"system"_s << u"Sistema"_s
                            << u"circle.lefthalf.filled"_s;
    QTest::newRow("light") << AuloraAppearance::light << u"light"_s << u"Claro"_s << u"sun.max"_s;
    QTest::newRow("dark") << AuloraAppearance::dark << u"dark"_s << u"Oscuro"_s << u"moon"_s;
}

void AuloraAppearanceTest::hasThreeCases()
{
    QFETCH(AuloraAppearance, appearance);
    QFETCH(QString, raw);
    QFETCH(QString, shown);
    QFETCH(QString, symbol);
    QCOMPARE(rawValue(appearance), raw);
    QCOMPARE(label(appearance), shown);
    QCOMPARE(symbolName(appearance), symbol);
    QCOMPARE(appearanceFromRawValue(raw), appearance);
    QCOMPARE(qHash(appearance), qHash(raw));
}

void AuloraAppearanceTest::offersThemInOrder()
{
    const QList expected{AuloraAppearance::system, AuloraAppearance::light, AuloraAppearance::dark};
    QCOMPARE(allAppearances(), expected);
}

void AuloraAppearanceTest::namesNoCase_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << u""_s;
    QTest::newRow("capitals") << u"Dark"_s;
    QTest::newRow("label") << u"Oscuro"_s;
    QTest::newRow("blank behind") << u"dark "_s;
}

void AuloraAppearanceTest::namesNoCase()
{
    QFETCH(QString, text);
    QCOMPARE(appearanceFromRawValue(text), std::nullopt);
}

QTEST_APPLESS_MAIN(AuloraAppearanceTest)
#include "AuloraAppearanceTest.moc"
