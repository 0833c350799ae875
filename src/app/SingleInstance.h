// The application: the entry point, the one composition root, and the window around every screen.
#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>

/// One running program per user and data folder. Two would undo each other's saves, since each
/// rewrites the whole history; so a second launch raises the first's window and leaves.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    /// `folder` is where the program's data lives; it is made if need be. Where no lock can be
    /// made, as in a read-only folder, the program counts as the first: nothing can be saved there.
    explicit SingleInstance(const QString &folder, QObject *parent = nullptr);

    bool isFirst() const { return m_isFirst; }

    /// Asks the first instance to raise its window. Gives up after two seconds.
    void raiseFirst() const;

Q_SIGNALS:
    /// Another launch asked this first instance to show itself.
    void raiseRequested();

private:
    QString m_serverName;
    QLockFile m_lock;
    QLocalServer m_server;
    bool m_isFirst = true;
};
