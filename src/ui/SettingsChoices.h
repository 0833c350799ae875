#pragma once

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

/// What the settings offer to choose from, in the order in which it is offered.
class SettingsChoices : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// Maps of `value` (the raw value that is stored), `label` and `icon` (a symbol's name).
    Q_PROPERTY(QVariantList appearances READ appearances CONSTANT)
    /// Maps of `value` and `label`.
    Q_PROPERTY(QVariantList textSizes READ textSizes CONSTANT)

public:
    using QObject::QObject;

    static QVariantList appearances();
    static QVariantList textSizes();
};
