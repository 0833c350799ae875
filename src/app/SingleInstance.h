// The application: the entry point, the one composition root, and the window around every screen.
#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

class QLocalSocket;

/// One running program per user and data folder. Two would undo each other's saves, since each
/// rewrites the whole history; so a second launch raises the first's window and leaves.
///
/// The running program holds a lock (`flock`) on the file `instance.lock` in that folder, whose
/// content does not matter; the kernel releases the lock when the process dies. A second launch
/// reaches it through a socket in the user's runtime folder.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        First, ///< this process holds the lock
        RaisedOther, ///< another holds it, and has been asked to raise its window
        NoAnswer, ///< another holds it, and has not answered: it was stopped, or hangs
    };

    /// `folder` is where the program's data lives.
    explicit SingleInstance(const QString &folder, QObject *parent = nullptr);
    ~SingleInstance() override;

    SingleInstance(const SingleInstance &) = delete;
    SingleInstance &operator=(const SingleInstance &) = delete;

    /// Takes the lock, or asks the process that holds it to raise its window, and waits until that
    /// answers or ends: two seconds, or six while it does not listen because it is starting or
    /// ending. Creates the folder if it is missing. Where no lock can be made, as in a read-only
    /// folder, this process counts as the first: nothing can be saved there.
    Outcome claim();

    /// This first instance is ending: another launch waits for that instead of for an answer.
    void stopListening();

Q_SIGNALS:
    /// Another launch asked this first instance to show itself.
    void raiseRequested();

private:
    bool takeLock();
    void listen();
    void answer(QLocalSocket *launch);

    QString m_folder;
    QString m_socketPath;
    int m_lockFile = -1;
    QLocalServer m_server;
};
