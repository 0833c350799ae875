#pragma once

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

/// Triggers once, some time after it was started.
///
/// Qt's own Timer runs on the clock of its animations. When it starts just as an animation
/// written in C++ ends, Qt 6.4 stops that clock twice and says so on the program's output.
class Delay : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// In milliseconds; 0 waits until all that is pending has been dealt with.
    Q_PROPERTY(int interval READ interval WRITE setInterval NOTIFY intervalChanged REQUIRED)
    Q_PROPERTY(bool running READ isRunning NOTIFY runningChanged)

public:
    explicit Delay(QObject *parent = nullptr);

    int interval() const { return m_timer.interval(); }
    void setInterval(int interval);
    bool isRunning() const { return m_timer.isActive(); }

    /// Starts it, or has it wait for all its time again.
    Q_INVOKABLE void restart();

Q_SIGNALS:
    void intervalChanged();
    void runningChanged();
    void triggered();

private:
    QTimer m_timer;
};
