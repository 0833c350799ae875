#include "BottomScroller.h"

#include <QQuickWindow>
#include <QTimer>

void BottomScroller::scrollToBottom()
{
    QTimer::singleShot(delay, Qt::PreciseTimer, this, &BottomScroller::awaitLayout);
}

void BottomScroller::awaitLayout()
{
    if (m_awaitedWindow || !window())
        return;
    m_awaitedWindow = window();
    connect(m_awaitedWindow, &QQuickWindow::afterAnimating, this,
            &BottomScroller::layoutIsFinished);
    m_awaitedWindow->update();
}

void BottomScroller::layoutIsFinished()
{
    m_awaitedWindow->disconnect(this);
    m_awaitedWindow.clear();
    Q_EMIT scrollDue();
}
