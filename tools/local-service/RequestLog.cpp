#include "RequestLog.h"

#include <QByteArray>
#include <QDateTime>

#include <algorithm>

static constexpr qsizetype longestPath = 120;
static constexpr qsizetype longestMethod = 20;

// What is no method may be anything: the first word of a question sent without a head, or what
// speaks to the terminal.
static bool isMethod(const QString &text)
{
    return !text.isEmpty() && text.size() <= longestMethod
        && std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'A' && c <= u'Z'; });
}

QByteArray requestLogText(const RequestLogEntry &entry)
{
    // A path never writes a second line, nor speaks to the terminal.
    QByteArray path = entry.path.left(longestPath).toUtf8().toPercentEncoding("/:@!$&'()*+,;=");
    path.truncate(longestPath);
    return (isMethod(entry.method) ? entry.method.toLatin1() : QByteArray("-")) + ' '
        + (path.isEmpty() ? QByteArray("-") : path) + ' ' + QByteArray::number(entry.status) + ' '
        + QByteArray::number(entry.bytes) + " B "
        + QByteArray::number(static_cast<qint64>(entry.duration.count())) + " ms"
        + (entry.failure.isEmpty() ? QByteArray() : ' ' + entry.failure.toUtf8());
}

RequestLog::RequestLog(std::FILE *output)
    : m_output(output)
{ }

void RequestLog::write(const RequestLogEntry &entry)
{
    writeLine(requestLogText(entry));
}

void RequestLog::writeNotice(const QString &sentence)
{
    writeLine(sentence.simplified().toUtf8());
}

void RequestLog::writeLine(const QByteArray &text)
{
    const QByteArray line = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toLatin1()
        + ' ' + text + '\n';
    const std::scoped_lock lock(m_mutex);
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), m_output);
    std::fflush(m_output);
}
