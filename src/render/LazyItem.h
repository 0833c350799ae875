#pragma once

#include <QPointer>
#include <QQmlComponent>
#include <QQuickItem>

/// Holds an item only while it is of use. It is as large as the item, which keeps the size it has
/// given itself, and of no size without one.
///
/// Before Qt 6.5 a Loader cannot create components of a file with `ComponentBehavior: Bound`.
class LazyItem : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_CLASSINFO("DefaultProperty", "component")
    Q_PROPERTY(QQmlComponent *component READ component WRITE setComponent NOTIFY componentChanged)
    Q_PROPERTY(bool active READ isActive WRITE setActive NOTIFY activeChanged)
    Q_PROPERTY(QQuickItem *item READ item NOTIFY itemChanged)

public:
    using QQuickItem::QQuickItem;

    QQmlComponent *component() const { return m_component; }
    void setComponent(QQmlComponent *component);
    bool isActive() const { return m_isActive; }
    void setActive(bool active);
    /// Null while inactive.
    QQuickItem *item() const { return m_item; }

Q_SIGNALS:
    void componentChanged();
    void activeChanged();
    void itemChanged();

protected:
    void componentComplete() override;

private:
    void remake();
    void followItemSize();

    QPointer<QQmlComponent> m_component;
    bool m_isActive = true;
    QPointer<QQuickItem> m_item;
};
