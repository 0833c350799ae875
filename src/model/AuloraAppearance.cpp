#include "AuloraAppearance.h"

#include <QHash>

using namespace Qt::StringLiterals;

QString rawValue(AuloraAppearance appearance)
{
    switch (appearance) {
    case AuloraAppearance::system:
        return u"system"_s;
    case AuloraAppearance::light:
        return u"light"_s;
    case AuloraAppearance::dark:
        return u"dark"_s;
    }
    Q_UNREACHABLE();
}

QString label(AuloraAppearance appearance)
{
    switch (appearance) {
    case AuloraAppearance::system:
        return u"Sistema"_s;
    case AuloraAppearance::light:
        return u"Claro"_s;
    case AuloraAppearance::dark:
        return u"Oscuro"_s;
    }
    Q_UNREACHABLE();
}

QString symbolName(AuloraAppearance appearance)
{
    switch (appearance) {
    case AuloraAppearance::system:
        return u"circle.lefthalf.filled"_s;
    case AuloraAppearance::light:
        return u"sun.max"_s;
    case AuloraAppearance::dark:
        return u"moon"_s;
    }
    Q_UNREACHABLE();
}

std::optional<AuloraAppearance> appearanceFromRawValue(QStringView text)
{
    for (const AuloraAppearance appearance : allAppearances) {
        if (rawValue(appearance) == text)
            return appearance;
    }
    return std::nullopt;
}

size_t qHash(AuloraAppearance appearance, size_t seed)
{
    return qHash(rawValue(appearance), seed);
}
