#pragma once

#include <QCoreApplication>
#include <QQuickWindow>

#include <chrono>

/// Returns once a frame that was begun after the call is on the screen.
inline void waitForFrame(QQuickWindow &window)
{
    bool isShown = false;
    QObject context;
    QObject::connect(&window, &QQuickWindow::frameSwapped, &context,
                     [&isShown] { isShown = true; });
    window.update();
    while (!isShown)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Lets animations and what was put off come to an end.
inline void settle(QQuickWindow &window)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
    while (std::chrono::steady_clock::now() < end)
        QCoreApplication::processEvents();
    waitForFrame(window);
}
