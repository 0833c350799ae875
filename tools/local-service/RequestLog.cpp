#include "RequestLog.h"

#include <QByteArray>
#include <QDateTime>

static constexpr qsizetype longestPath = 120;

QByteArray requestLogText(const RequestLogEntry &entry)
{
    // A path never writes a second line, nor speaks to the terminal.
    QByteArray path = entry.path.left(longestPath).toUtf8().toPercentEncoding("/:@!$&'()*+,;=");
    path.truncate(longestPath);
    return (entry.method.isEmpty() ? QByteArray("-") : entry.method.toLatin1()) + ' '
        + (path.isEmpty() ? QByteArray("-") : path) + ' ' + QByteArray::number(entry.status) + ' '
        + QByteArray::number(entry.bytes) + " B "
        + QByteArray::number(static_cast<qint64>(entry.duration.count())) + " ms";
}

RequestLog::RequestLog(std::FILE *output)
    : m_output(output)
{ }

void RequestLog::write(const RequestLogEntry &entry)
{
    const QByteArray line = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toLatin1()
        + ' ' + requestLogText(entry) + '\n';
    const std::scoped_lock lock(m_mutex);
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), m_output);
    std::fflush(m_output);
}
