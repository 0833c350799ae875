#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QPointF>
#include <QPointer>

class QQuickItem;

/// Scrolls the flickable around an item while the pointer is dragged beyond its upper or lower
/// edge, the faster the further.
class EdgeScroller : public QObject
{
    Q_OBJECT

public:
    explicit EdgeScroller(QQuickItem *item);

    /// The pointer is at `scenePosition`.
    void follow(QPointF scenePosition);
    void stop();

Q_SIGNALS:
    /// Other content is below the pointer, which has not moved.
    void scrolled(QPointF scenePosition);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    double distanceBeyondEdge() const;

    QQuickItem *m_item;
    QPointer<QQuickItem> m_flickable;
    QPointF m_scenePosition;
    QBasicTimer m_timer;
};
