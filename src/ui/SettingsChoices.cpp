#include "SettingsChoices.h"

#include "AuloraAppearance.h"
#include "AuloraTextSize.h"

#include <QVariantMap>

using namespace Qt::StringLiterals;

QVariantList SettingsChoices::appearances()
{
    QVariantList choices;
    for (const AuloraAppearance appearance : allAppearances()) {
        choices.append(QVariantMap{{u"value"_s, rawValue(appearance)},
                                   {u"label"_s, label(appearance)},
                                   {u"icon"_s, symbolName(appearance)}});
    }
    return choices;
}

QVariantList SettingsChoices::textSizes()
{
    QVariantList choices;
    for (const AuloraTextSize size : allTextSizes())
        choices.append(QVariantMap{{u"value"_s, rawValue(size)}, {u"label"_s, label(size)}});
    return choices;
}
