#pragma once

#include <QObject>
#include <QUrl>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

/// The folders that a chooser has at hand: the person's own, as far as there are any, and the
/// whole of the machine, for what is plugged into it.
class ChooserPlaces : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// Maps of `label`, `symbol` (its name) and `folder`. The disk is asked off the main thread, so
    /// at first there are only those that need no asking.
    Q_PROPERTY(QVariantList places READ places NOTIFY found)
    /// Where to begin: among the pictures, or at home where there is no folder for them. Empty
    /// until all is found.
    Q_PROPERTY(QUrl start READ start NOTIFY found)

public:
    explicit ChooserPlaces(QObject *parent = nullptr);

    QVariantList places() const { return m_places; }
    QUrl start() const { return m_start; }

Q_SIGNALS:
    void found();

private:
    QVariantList m_places;
    QUrl m_start;
};
