#pragma once

#include <QPointer>
#include <QQuickItem>

/// Tells every `MessageSlot` directly within the column `content` which part of it is near the
/// visible part of `flickable`, in which the column scrolls up and down. At most once a frame, for
/// a few nanoseconds a slot.
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
    bool m_awaitsLayout = true;
};
