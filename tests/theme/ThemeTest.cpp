#include "Theme.h"

#include <QFontInfo>
#include <QGlyphRun>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QRawFont>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

class ThemeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void palette_data();
    void palette();
    void greensStayInBothSchemes();
    void opacityMultipliesAlpha();
    void appearance_data();
    void appearance();
    void bindingsFollowTheScheme();
    void fontSize_data();
    void fontSize();
    void fontWeight_data();
    void fontWeight();
    void fontOfACharacter_data();
    void fontOfACharacter();
    void tracking();
};

namespace {

QColor gray(double level, double alpha)
{
    const auto value = static_cast<float>(level);
    return QColor::fromRgbF(value, value, value, static_cast<float>(alpha));
}

Theme *forced(const QString &appearance, QObject *parent)
{
    auto *theme = new Theme(parent);
    theme->setAppearanceRawValue(appearance);
    return theme;
}

} // namespace

void ThemeTest::palette_data()
{
    QTest::addColumn<QString>("appearance");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QColor>("color");

    const auto row = [](const char *name, QColor light, QColor dark) {
        QTest::addRow("%s, light", name) << u"light"_s << QByteArray(name) << light;
        QTest::addRow("%s, dark", name) << u"dark"_s << QByteArray(name) << dark;
    };
    const auto accent = QColor::fromRgbF(0.08F, 0.43F, 0.32F);
    const auto accentSoft = QColor::fromRgbF(0.08F, 0.43F, 0.32F, 0.09F);
    const auto accentDeep = QColor::fromRgbF(0.035F, 0.19F, 0.16F);
    row("accent", accent, accent);
    row("accentSoft", accentSoft, accentSoft);
    row("accentDeep", accentDeep, accentDeep);
    row("panelBackground", QColor(0xff, 0xff, 0xff), QColor(0x1e, 0x1e, 0x1e));
    row("hairline", gray(0, 0.85 * 0.07), gray(1, 0.85 * 0.07));
    row("primary", gray(0, 0.85), gray(1, 0.85));
    row("secondary", gray(0, 0.50), gray(1, 0.55));
    row("textBackground", QColor(0xff, 0xff, 0xff), QColor(0x1e, 0x1e, 0x1e));
    row("separator", gray(0, 0.10), gray(1, 0.10));
    row("windowBackground", QColor(0xec, 0xec, 0xec), QColor(0x32, 0x32, 0x32));
    row("orange", QColor(0xff, 0x95, 0x00), QColor(0xff, 0x9f, 0x0a));
    row("red", QColor(0xff, 0x3b, 0x30), QColor(0xff, 0x45, 0x3a));
    row("gray", QColor(0x8e, 0x8e, 0x93), QColor(0x98, 0x98, 0x9d));
}

void ThemeTest::palette()
{
    QFETCH(QString, appearance);
    QFETCH(QByteArray, name);
    QFETCH(QColor, color);

    const auto actual = forced(appearance, this)->property(name).value<QColor>();
    // Channels are kept in 16 bits.
    constexpr double precision = 1.0 / 65535;
    QVERIFY(actual.isValid());
    QVERIFY2(std::abs(actual.redF() - color.redF()) <= precision, qPrintable(actual.name()));
    QVERIFY2(std::abs(actual.greenF() - color.greenF()) <= precision, qPrintable(actual.name()));
    QVERIFY2(std::abs(actual.blueF() - color.blueF()) <= precision, qPrintable(actual.name()));
    QVERIFY2(std::abs(actual.alphaF() - color.alphaF()) <= precision,
             qPrintable(QString::number(actual.alphaF())));
}

void ThemeTest::greensStayInBothSchemes()
{
    Theme theme;
    theme.setAppearanceRawValue(u"light"_s);
    const QColor panel = theme.panelBackground();
    const QColor hairline = theme.hairline();
    const auto accent = theme.property("accent").value<QColor>();
    theme.setAppearanceRawValue(u"dark"_s);
    QVERIFY(theme.panelBackground() != panel);
    QVERIFY(theme.hairline() != hairline);
    QCOMPARE(theme.property("accent").value<QColor>(), accent);
}

void ThemeTest::opacityMultipliesAlpha()
{
    const QColor half = Theme::atOpacity(gray(0, 0.85), 0.5);
    QCOMPARE(half.rgb(), QColor(Qt::black).rgb());
    QVERIFY(std::abs(half.alphaF() - 0.425F) < 0.0001F);
    QCOMPARE(Theme::atOpacity(Theme::accent(), 1), Theme::accent());
    QCOMPARE(Theme::atOpacity(Theme::accent(), 0).alpha(), 0);
}

void ThemeTest::appearance_data()
{
    QTest::addColumn<QString>("rawValue");
    QTest::addColumn<bool>("dark");

    // When the desktop states no preference, the light palette of the test counts.
    QTest::newRow("light") << u"light"_s << false;
    QTest::newRow("dark") << u"dark"_s << true;
    QTest::newRow("system") << u"system"_s << false;
    QTest::newRow("unknown") << u"sepia"_s << false;
    QTest::newRow("other case") << u"Dark"_s << false;
    QTest::newRow("empty") << QString() << false;
}

void ThemeTest::appearance()
{
    QFETCH(QString, rawValue);
    QFETCH(bool, dark);

    Theme theme;
    theme.setAppearanceRawValue(dark ? u"light"_s : u"dark"_s);
    const QSignalSpy changed(&theme, &Theme::schemeChanged);
    theme.setAppearanceRawValue(rawValue);
    QCOMPARE(theme.isDark(), dark);
    QCOMPARE(theme.appearanceRawValue(), rawValue);
    QCOMPARE(changed.count(), 1);
    theme.setAppearanceRawValue(rawValue);
    QCOMPARE(changed.count(), 1);
}

void ThemeTest::bindingsFollowTheScheme()
{
    QQmlEngine engine;
    engine.addImportPath(u":/qt/qml"_s);
    QQmlComponent component(&engine);
    component.setData(R"(
        import QtQuick
        import Aulora.Theme

        QtObject {
            property string appearance: "light"
            property color primary: Theme.primaryAt(0.5)
            property color accent: Theme.accentAt(0.24)
            property color red: Theme.red
            onAppearanceChanged: Theme.appearanceRawValue = appearance
            Component.onCompleted: Theme.appearanceRawValue = appearance
        }
    )",
                      {});
    const std::unique_ptr<QObject> object(component.create());
    QVERIFY2(object, qPrintable(component.errorString()));
    const auto color
        = [&object](const char *name) { return object->property(name).value<QColor>(); };

    const QColor accent = color("accent");
    QVERIFY(std::abs(accent.alphaF() - 0.24F) < 0.0001F);
    QCOMPARE(color("primary").lightness(), 0);
    QVERIFY(std::abs(color("primary").alphaF() - 0.425F) < 0.0001F);

    object->setProperty("appearance", u"dark"_s);
    QCOMPARE(color("primary").lightness(), 255);
    QVERIFY(std::abs(color("primary").alphaF() - 0.425F) < 0.0001F);
    QCOMPARE(color("red"), QColor(0xff, 0x45, 0x3a));
    QCOMPARE(color("accent"), accent);
}

void ThemeTest::fontSize_data()
{
    QTest::addColumn<double>("points");

    for (const double points : {8.0, 8.5, 10.5, 12.5, 13.5, 14.5, 14.5 * 1.15, 20.0})
        QTest::addRow("%.3f", points) << points;
}

void ThemeTest::fontSize()
{
    QFETCH(double, points);

    const QFont font = Theme::font(points);
    const double density = QGuiApplication::primaryScreen()->logicalDotsPerInch();
    QVERIFY(std::abs(font.pointSizeF() * density / 72 - points) < 1e-6);
    // The platform rounds to whole pixels, and no further.
    QVERIFY(std::abs(QFontInfo(font).pixelSize() - points) <= 0.5);
}

void ThemeTest::fontWeight_data()
{
    QTest::addColumn<int>("weight");

    QTest::newRow("regular") << int(QFont::Normal);
    QTest::newRow("medium") << int(QFont::Medium);
    QTest::newRow("semibold") << int(QFont::DemiBold);
    QTest::newRow("bold") << int(QFont::Bold);
}

void ThemeTest::fontWeight()
{
    QFETCH(int, weight);

    const auto font = Theme::font(13, weight);
    QCOMPARE(int(font.weight()), weight);
    // The font's own face, not a synthetic bold.
    QCOMPARE(QRawFont::fromFont(font).weight(), weight);
}

void ThemeTest::fontOfACharacter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isEmoji");

    QTest::newRow("letters") << u"aÁñ"_s << false;
    QTest::newRow("digits") << u"0123456789"_s << false;
    QTest::newRow("signs that emoji fonts have too") << u"#*©®"_s << false;
    QTest::newRow("mathematics") << u"√≥µ→₂⁺"_s << false;
    QTest::newRow("a face") << u"😀"_s << true;
    QTest::newRow("a physician, of several characters") << u"👩‍⚕️"_s << true;
}

void ThemeTest::fontOfACharacter()
{
    QFETCH(QString, text);
    QFETCH(bool, isEmoji);

    for (const auto weight : {QFont::Normal, QFont::Medium, QFont::DemiBold, QFont::Bold}) {
        QTextLayout layout(text, Theme::font(13, weight));
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        const auto runs = layout.glyphRuns();
        QCOMPARE(std::ranges::any_of(runs,
                                     [](const QGlyphRun &run) {
                                         return run.rawFont().familyName() == u"Noto Color Emoji";
                                     }),
                 isEmoji);
    }
}

void ThemeTest::tracking()
{
    const auto font = Theme::font(8, QFont::Medium, 0.8);
    QCOMPARE(font.letterSpacingType(), QFont::AbsoluteSpacing);
    // Kept in 64ths of a pixel.
    QVERIFY(std::abs(font.letterSpacing() - 0.8) <= 1.0 / 64);
    QCOMPARE(Theme::font(8).letterSpacing(), 0.0);
}

int main(int argc, char *argv[])
{
    // Do not depend on the appearance of the desktop that runs the tests.
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("XDG_RUNTIME_DIR");
    QGuiApplication application(argc, argv);
    ThemeTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ThemeTest.moc"
