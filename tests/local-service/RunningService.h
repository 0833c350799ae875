#pragma once

#include "HttpsExchange.h"

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <memory>

/// The program itself, on a free port, for as long as this object lives.
class RunningService
{
public:
    /// `rate` is the value of its option, `more` is whatever else it is started with.
    explicit RunningService(const QString &rate, const QStringList &more = {},
                            const QProcessEnvironment &environment
                            = QProcessEnvironment::systemEnvironment());
    ~RunningService();
    Q_DISABLE_COPY_MOVE(RunningService)

    QString readyLine() const { return m_readyLine; }
    quint16 port() const;
    std::unique_ptr<HttpsExchange> send(const QByteArray &request) const;
    /// Asks `message`, which is JSON without its quotes, as one and the same user.
    std::unique_ptr<HttpsExchange> ask(const QByteArray &message,
                                       const QByteArray &headers = {}) const;
    /// What it wrote to its standard error so far.
    QString log();
    void signal(int number) const;
    bool hasEnded() const { return m_process.state() == QProcess::NotRunning; }
    /// 0 only when the program ended by itself and well.
    int outcome() const;

private:
    QProcess m_process;
    QString m_readyLine;
    QString m_log;
};
