#include "LazyItem.h"

#include <QQmlContext>
#include <QQmlEngine>

void LazyItem::setComponent(QQmlComponent *component)
{
    if (m_component == component)
        return;
    m_component = component;
    remake();
    Q_EMIT componentChanged();
}

void LazyItem::setActive(bool active)
{
    if (m_isActive == active)
        return;
    m_isActive = active;
    remake();
    Q_EMIT activeChanged();
}

void LazyItem::componentComplete()
{
    QQuickItem::componentComplete();
    remake();
}

void LazyItem::remake()
{
    if (!isComponentComplete())
        return;
    if (m_item) {
        // It may be the item itself that brought this about.
        m_item->disconnect(this);
        m_item->setParentItem(nullptr);
        m_item->deleteLater();
        m_item.clear();
    }
    if (m_isActive && m_component) {
        QQmlContext *context = m_component->creationContext();
        QObject *object = m_component->beginCreate(context ? context : qmlContext(this));
        m_item = qobject_cast<QQuickItem *>(object);
        if (m_item) {
            m_item->setParent(this);
            m_item->setParentItem(this);
        }
        m_component->completeCreate();
        if (!m_item)
            delete object;
    }
    if (m_item) {
        connect(m_item, &QQuickItem::widthChanged, this, &LazyItem::followItemSize);
        connect(m_item, &QQuickItem::heightChanged, this, &LazyItem::followItemSize);
    }
    followItemSize();
    Q_EMIT itemChanged();
}

void LazyItem::followItemSize()
{
    if (m_item)
        setImplicitSize(m_item->width(), m_item->height());
    else
        setImplicitSize(0, 0);
}
