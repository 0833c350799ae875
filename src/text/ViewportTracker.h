#pragma once

#include <QList>
#include <QPointer>
#include <QQuickItem>

class TrackedItem;

/// Tells every `TrackedItem` that has it as its tracker which part is near the visible part of
/// `flickable`, in which the column `content` scrolls up and down. The items are within the column,
/// directly or in others that are neither scaled nor rotated. At most once a frame, for a few
/// nanoseconds an item.
class ViewportTracker : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(
        QQuickItem *flickable READ flickable WRITE setFlickable NOTIFY flickableChanged REQUIRED)
    Q_PROPERTY(QQuickItem *content READ content WRITE setContent NOTIFY contentChanged REQUIRED)

public:
    using QQuickItem::QQuickItem;

    QQuickItem *flickable() const { return m_flickable; }
    void setFlickable(QQuickItem *flickable);
    QQuickItem *content() const { return m_content; }
    void setContent(QQuickItem *content);

    /// Only a `TrackedItem` calls these, for itself.
    void add(TrackedItem *item);
    void remove(TrackedItem *item);

Q_SIGNALS:
    void flickableChanged();
    void contentChanged();

protected:
    void updatePolish() override;

private Q_SLOTS:
    void schedule() { polish(); }

private:
    void scheduleAfterLayout();

    QPointer<QQuickItem> m_flickable;
    QPointer<QQuickItem> m_content;
    QList<TrackedItem *> m_items;
    bool m_awaitsLayout = true;
};
