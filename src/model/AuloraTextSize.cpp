#include "AuloraTextSize.h"

#include "EnumCases.h"

#include <QHash>

namespace {

struct Details
{
    QStringView rawValue;
    QStringView label;
    double scaleFactor;
};

/// Nothing for a number that is no case.
constexpr std::optional<Details> details(AuloraTextSize size)
{
    switch (size) {
    case AuloraTextSize::compact:
        return Details{.rawValue = u"compact", .label = u"Compacto", .scaleFactor = 0.9};
    case AuloraTextSize::standard:
        return Details{.rawValue = u"standard", .label = u"Normal", .scaleFactor = 1.0};
    case AuloraTextSize::large:
        return Details{.rawValue = u"large", .label = u"Grande", .scaleFactor = 1.15};
    }
    return std::nullopt;
}

} // namespace

QList<AuloraTextSize> allTextSizes()
{
    return casesWith(details);
}

QString rawValue(AuloraTextSize size)
{
    return details(size).value_or(Details()).rawValue.toString();
}

QString label(AuloraTextSize size)
{
    return details(size).value_or(Details()).label.toString();
}

double scaleFactor(AuloraTextSize size)
{
    return details(size).value_or(Details()).scaleFactor;
}

std::optional<AuloraTextSize> textSizeFromRawValue(QStringView text)
{
    return caseWithRawValue(details, text);
}

double scaleFactorForRawValue(QStringView text)
{
    return scaleFactor(textSizeFromRawValue(text).value_or(AuloraTextSize::standard));
}

size_t qHash(AuloraTextSize size, size_t seed)
{
    return qHash(details(size).value_or(Details()).rawValue, seed);
}
