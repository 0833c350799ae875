#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QVariantAnimation>
#include <QtQml/qqmlregistration.h>

class QQuickWindow;

/// Scrolls a list to its end after it has changed.
///
/// Every change schedules a task of its own, `delay` later; none is dropped. Tasks due within one
/// frame start one scroll, after the frame's layout, when the end of the list is known. While a
/// scroll runs, a task that falls due restarts it with the next frame of Qt's animations. A scroll
/// that has just begun is left alone for one frame, so that a flood of changes moves the list with
/// every second frame, the pace at which a growing reply shows its lines.
class BottomScroller : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// What scrolls: an item with a `contentY`.
    Q_PROPERTY(QQuickItem *flickable MEMBER m_flickable REQUIRED)
    /// The last item in it: its bottom edge is scrolled to the flickable's.
    Q_PROPERTY(QQuickItem *end MEMBER m_end REQUIRED)

public:
    /// Milliseconds from a change to its scroll.
    static constexpr int delay = 60;
    /// Milliseconds that a scroll takes.
    static constexpr int duration = 180;

    explicit BottomScroller(QQuickItem *parent = nullptr);

    Q_INVOKABLE void scrollToBottom();

private:
    void awaitLayout();
    void layoutIsFinished();
    void step(double progress);
    bool hasJustBegun() const;

    QPointer<QQuickItem> m_flickable;
    QPointer<QQuickItem> m_end;
    QPointer<QQuickWindow> m_awaitedWindow;
    QVariantAnimation m_animation{this}; ///< from 0 to 1
    double m_from = 0;
};
