#include "Theme.h"

#include "AuloraAppearance.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QScreen>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// Screens use medium and semibold weights, which most desktops' default fonts lack.
bool hasScreenWeights(const QString &family)
{
    bool medium = false;
    bool semibold = false;
    const auto styles = QFontDatabase::styles(family);
    for (const auto &style : styles) {
        const int weight = QFontDatabase::weight(family, style);
        medium = medium || weight == QFont::Medium;
        semibold = semibold || weight == QFont::DemiBold;
    }
    return medium && semibold;
}

/// A letter comes from the first of its families that has it. Emoji fonts have digits of their own,
/// so the text's family comes before them; the system's font may have emoji without colour, so it
/// comes after them.
QFont interfaceFont()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
#ifndef Q_OS_MACOS // whose system font has every weight but lists no styles, and finds its own
                   // emoji
    QStringList families;
    const auto addIfThere = [&families](const QString &family) {
        if (QFontDatabase::hasFamily(family))
            families.append(family);
    };
    if (!hasScreenWeights(font.family()))
        addIfThere(u"Inter"_s);
    if (families.isEmpty())
        families.append(font.family());
    addIfThere(u"Noto Color Emoji"_s);
    families.append(font.family());
    families.removeDuplicates();
    font.setFamilies(families);
#endif
    return font;
}

/// The scheme that an appearance asks for whatever the desktop's is.
std::optional<ColorScheme> forcedScheme(const QString &appearanceRawValue)
{
    switch (appearanceFromRawValue(appearanceRawValue).value_or(AuloraAppearance::system)) {
    case AuloraAppearance::system:
        break;
    case AuloraAppearance::light:
        return ColorScheme::Light;
    case AuloraAppearance::dark:
        return ColorScheme::Dark;
    }
    return std::nullopt;
}

} // namespace

Theme::Theme(QObject *parent)
    : QObject(parent)
    , m_colors(systemColors(m_scheme))
{
    connect(&m_schemeSource, &ColorSchemeSource::schemeChanged, this, &Theme::updateScheme);
    updateScheme();
}

QColor Theme::accent()
{
    return QColor::fromRgbF(0.08F, 0.43F, 0.32F);
}

QColor Theme::accentSoft()
{
    return atOpacity(accent(), 0.09);
}

QColor Theme::accentDeep()
{
    return QColor::fromRgbF(0.035F, 0.19F, 0.16F);
}

QColor Theme::hairline() const
{
    return atOpacity(m_colors.primary, 0.07);
}

void Theme::setAppearanceRawValue(const QString &rawValue)
{
    if (m_appearanceRawValue == rawValue)
        return;
    m_appearanceRawValue = rawValue;
    updateScheme();
    Q_EMIT appearanceRawValueChanged();
}

QColor Theme::atOpacity(QColor color, double opacity)
{
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

QFont Theme::font(double points, int weight, double tracking)
{
    static const QFont base = interfaceFont();
    constexpr double pointsPerInch = 72;
    const auto *screen = QGuiApplication::primaryScreen();
    const double dotsPerInch = screen ? screen->logicalDotsPerInch() : pointsPerInch;

    QFont font = base;
    font.setPointSizeF(points * pointsPerInch / dotsPerInch);
    font.setWeight(static_cast<QFont::Weight>(weight));
    if (tracking != 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, tracking);
    return font;
}

void Theme::updateScheme()
{
    const auto scheme = forcedScheme(m_appearanceRawValue).value_or(m_schemeSource.scheme());
    if (m_scheme == scheme)
        return;
    m_scheme = scheme;
    m_colors = systemColors(scheme);
    Q_EMIT schemeChanged();
}
