#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class QQuickWindow;

/// Tells when a list has to scroll to its end after it has changed.
///
/// Every change schedules a task of its own, a moment later, and none is dropped. Tasks that are
/// due within one frame would start the same scroll from the same place, so it is started once, and
/// in a frame whose layout is finished, when the end of the list is known.
class BottomScroller : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

public:
    /// Milliseconds from a change to its scroll.
    static constexpr int delay = 60;

    using QQuickItem::QQuickItem;

    Q_INVOKABLE void scrollToBottom();

Q_SIGNALS:
    /// The time to start the scroll; all sizes and positions are those about to be shown.
    void scrollDue();

private:
    void awaitLayout();
    void layoutIsFinished();

    QPointer<QQuickWindow> m_awaitedWindow;
};
