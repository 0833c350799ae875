#pragma once

#include <QString>
#include <QtGlobal>

#include <chrono>
#include <cstdio>
#include <mutex>

/// What is worth writing down of one exchange. Nothing of what was asked or answered.
struct RequestLogEntry
{
    QString method;
    QString path;
    int status = 0;
    /// Of the answer's body.
    qint64 bytes = 0;
    std::chrono::milliseconds duration{};
    /// Why the model failed, one sentence of our own; empty when it did not.
    QString failure;
};

/// One line a request: the time (UTC), method, path, status, bytes, milliseconds and, when a model
/// failed, why. Safe to use
/// from many threads.
class RequestLog
{
public:
    /// `output` is borrowed and outlives this object.
    explicit RequestLog(std::FILE *output);

    void write(const RequestLogEntry &entry);

    /// One line about the service itself; `sentence` is one of our own.
    void writeNotice(const QString &sentence);

private:
    void writeLine(const QByteArray &text);

    std::mutex m_mutex;
    std::FILE *m_output;
};

/// The part of a log line after the time. Of the path only printable ASCII shows, the rest
/// percent-encoded, at most 120 characters. A method that is not up to 20 capital letters shows as
/// a hyphen.
QByteArray requestLogText(const RequestLogEntry &entry);
