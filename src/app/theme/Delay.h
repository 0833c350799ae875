#pragma once

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

/// Triggers once, some time after it was started.
///
/// QML's Timer runs on the clock of Qt's animations. When it is started just as an animation
/// written in C++ ends, Qt 6.4 stops that clock twice and prints a warning.
class Delay : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// In milliseconds; 0 triggers when the event loop has handled what is pending.
    Q_PROPERTY(int interval READ interval WRITE setInterval NOTIFY intervalChanged REQUIRED)
    Q_PROPERTY(bool running READ isRunning NOTIFY runningChanged)

public:
    explicit Delay(QObject *parent = nullptr);

    int interval() const { return m_timer.interval(); }
    void setInterval(int interval);
    bool isRunning() const { return m_timer.isActive(); }

    /// Starts the whole interval, again if it is running.
    Q_INVOKABLE void restart();

Q_SIGNALS:
    void intervalChanged();
    void runningChanged();
    void triggered();

private:
    QTimer m_timer;
};
