#include "AuloraAppearance.h"

#include "EnumCases.h"

#include <QHash>

namespace {

struct Details
{
    QStringView rawValue;
    QStringView label;
    QStringView symbolName;
};

/// Nothing for a number that is no case.
constexpr std::optional<Details> details(AuloraAppearance appearance)
{
    switch (appearance) {
    case AuloraAppearance::system:
        return Details{
            .rawValue = u"system", .label = u"Sistema", .symbolName = u"circle.lefthalf.filled"};
    case AuloraAppearance::light:
        return Details{.rawValue = u"light", .label = u"Claro", .symbolName = u"sun.max"};
    case AuloraAppearance::dark:
        return Details{.rawValue = u"dark", .label = u"Oscuro", .symbolName = u"moon"};
    }
    return std::nullopt;
}

} // namespace

QList<AuloraAppearance> allAppearances()
{
    return casesWith(details);
}

QString rawValue(AuloraAppearance appearance)
{
    return details(appearance).value_or(Details()).rawValue.toString();
}

QString label(AuloraAppearance appearance)
{
    return details(appearance).value_or(Details()).label.toString();
}

QString symbolName(AuloraAppearance appearance)
{
    return details(appearance).value_or(Details()).symbolName.toString();
}

std::optional<AuloraAppearance> appearanceFromRawValue(QStringView text)
{
    return caseWithRawValue(details, text);
}

size_t qHash(AuloraAppearance appearance, size_t seed)
{
    return qHash(details(appearance).value_or(Details()).rawValue, seed);
}
