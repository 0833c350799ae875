#include "AuloraTextSize.h"

#include <QHash>

using namespace Qt::StringLiterals;

QString rawValue(AuloraTextSize size)
{
    switch (size) {
    case AuloraTextSize::compact:
        return u"compact"_s;
    case AuloraTextSize::standard:
        return u"standard"_s;
    case AuloraTextSize::large:
        return u"large"_s;
    }
    Q_UNREACHABLE();
}

QString label(AuloraTextSize size)
{
    switch (size) {
    case AuloraTextSize::compact:
        return u"Compacto"_s;
    case AuloraTextSize::standard:
        return u"Normal"_s;
    case AuloraTextSize::large:
        return u"Grande"_s;
    }
    Q_UNREACHABLE();
}

double scaleFactor(AuloraTextSize size)
{
    switch (size) {
    case AuloraTextSize::compact:
        return 0.9;
    case AuloraTextSize::standard:
        return 1.0;
    case AuloraTextSize::large:
        return 1.15;
    }
    Q_UNREACHABLE();
}

std::optional<AuloraTextSize> textSizeFromRawValue(QStringView text)
{
    for (const AuloraTextSize size : allTextSizes) {
        if (rawValue(size) == text)
            return size;
    }
    return std::nullopt;
}

double scaleFactorForRawValue(QStringView text)
{
    return scaleFactor(textSizeFromRawValue(text).value_or(AuloraTextSize::standard));
}

size_t qHash(AuloraTextSize size, size_t seed)
{
    return qHash(rawValue(size), seed);
}
