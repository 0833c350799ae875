#include "HttpResponseReader.h"

#include <QList>

#include <algorithm>
#include <cctype>
#include <utility>

namespace {

constexpr QByteArrayView protocol("HTTP/1.");

/// The decimal number that `text` is, digits only.
std::optional<qint64> decimalNumber(const QByteArray &text)
{
    const bool isDigits = !text.isEmpty()
        && std::all_of(text.cbegin(), text.cend(), [](char c) { return c >= '0' && c <= '9'; });
    bool fits = false;
    const qint64 number = text.toLongLong(&fits);
    return isDigits && fits ? std::optional(number) : std::nullopt;
}

} // namespace

QByteArray HttpResponseReader::read(QByteArrayView bytes)
{
    QByteArray body;
    while (!bytes.isEmpty() && m_phase != Phase::Complete && m_phase != Phase::Invalid) {
        switch (m_phase) {
        case Phase::BodyUntilTheEnd:
            body += std::exchange(bytes, {});
            break;
        case Phase::BodyOfKnownLength:
            body += takeData(bytes);
            if (m_remaining == 0)
                m_phase = Phase::Complete;
            break;
        case Phase::ChunkData:
            body += takeData(bytes);
            if (m_remaining == 0)
                m_phase = Phase::ChunkEnd;
            break;
        default:
            const std::optional<QByteArray> line = takeLine(bytes);
            if (m_overhead > maximumOverhead || isNoStatusLine())
                m_phase = Phase::Invalid;
            else if (line)
                m_phase = afterLine(*line);
        }
    }
    return body;
}

void HttpResponseReader::endOfConnection()
{
    if (m_phase == Phase::BodyUntilTheEnd)
        m_phase = Phase::Complete;
}

HttpResponseReader::State HttpResponseReader::state() const
{
    switch (m_phase) {
    case Phase::StatusLine:
    case Phase::Fields:
        return State::Head;
    case Phase::Complete:
        return State::Complete;
    case Phase::Invalid:
        return State::Invalid;
    default:
        return State::Body;
    }
}

std::optional<QByteArray> HttpResponseReader::takeLine(QByteArrayView &bytes)
{
    const qsizetype end = bytes.indexOf('\n');
    const QByteArrayView piece = end < 0 ? bytes : bytes.first(end + 1);
    bytes = bytes.sliced(piece.size());
    m_line += piece;
    m_overhead += piece.size();
    if (end < 0)
        return std::nullopt;
    m_line.chop(m_line.endsWith("\r\n") ? 2 : 1);
    return std::exchange(m_line, {});
}

QByteArrayView HttpResponseReader::takeData(QByteArrayView &bytes)
{
    const QByteArrayView data = bytes.first(std::min<qint64>(bytes.size(), m_remaining));
    bytes = bytes.sliced(data.size());
    m_remaining -= data.size();
    return data;
}

HttpResponseReader::Phase HttpResponseReader::afterLine(const QByteArray &line)
{
    switch (m_phase) {
    case Phase::StatusLine:
        return afterStatusLine(line);
    case Phase::Fields:
        if (line.isEmpty())
            return afterHead();
        readField(line);
        return Phase::Fields;
    case Phase::ChunkSize:
        return afterChunkSize(line);
    case Phase::ChunkEnd:
        return line.isEmpty() ? Phase::ChunkSize : Phase::Invalid;
    default: // trailers, which say nothing to us
        return line.isEmpty() ? Phase::Complete : Phase::Trailers;
    }
}

/// What is no HTTP may never end a line, and need not be waited for.
bool HttpResponseReader::isNoStatusLine() const
{
    return m_phase == Phase::StatusLine
        && !m_line.startsWith(protocol.first(std::min(protocol.size(), m_line.size())));
}

HttpResponseReader::Phase HttpResponseReader::afterStatusLine(const QByteArray &line)
{
    // HTTP/1.1 200 OK
    constexpr qsizetype codePosition = 9;
    constexpr qsizetype codeLength = 3;
    const auto code = decimalNumber(line.mid(codePosition, codeLength));
    const QByteArray reason = line.mid(codePosition + codeLength);
    const bool isStatusLine = line.startsWith(protocol) && line.mid(codePosition - 1, 1) == " "
        && code && *code >= 100 && (reason.isEmpty() || reason.startsWith(' '));
    if (!isStatusLine)
        return Phase::Invalid;
    m_statusCode = int(*code);
    m_isReadable = true;
    m_isChunked = false;
    m_contentLength.reset();
    return Phase::Fields;
}

void HttpResponseReader::readField(const QByteArray &line)
{
    const qsizetype colon = line.indexOf(':');
    const QByteArray name = line.first(std::max<qsizetype>(colon, 0)).toLower();
    const QByteArray value = line.mid(colon + 1).trimmed().toLower();
    if (name == "transfer-encoding") {
        m_isReadable = m_isReadable && value == "chunked" && !m_isChunked;
        m_isChunked = true;
    } else if (name == "content-length") {
        const auto length = decimalNumber(value);
        m_isReadable = m_isReadable && length && m_contentLength.value_or(*length) == *length;
        m_contentLength = length;
    } else if (name == "content-encoding") {
        m_isReadable = m_isReadable && value == "identity";
    }
}

HttpResponseReader::Phase HttpResponseReader::afterHead()
{
    constexpr int switchingProtocols = 101;
    constexpr int noContent = 204;
    if (m_statusCode < 200 && m_statusCode != switchingProtocols)
        return Phase::StatusLine;
    const bool isSuccess = m_statusCode >= 200 && m_statusCode <= 299;
    if (!isSuccess || m_statusCode == noContent)
        return Phase::Complete;
    if (!m_isReadable)
        return Phase::Invalid;
    if (m_isChunked)
        return Phase::ChunkSize;
    if (!m_contentLength)
        return Phase::BodyUntilTheEnd;
    m_remaining = *m_contentLength;
    return m_remaining == 0 ? Phase::Complete : Phase::BodyOfKnownLength;
}

HttpResponseReader::Phase HttpResponseReader::afterChunkSize(const QByteArray &line)
{
    // A size may be followed by extensions, which say nothing to us.
    const QByteArray digits = line.split(';').constFirst().trimmed();
    const bool isDigits = !digits.isEmpty()
        && std::all_of(digits.cbegin(), digits.cend(),
                       [](unsigned char c) { return std::isxdigit(c); });
    bool fits = false;
    m_remaining = digits.toLongLong(&fits, 16);
    if (!isDigits || !fits)
        return Phase::Invalid;
    if (m_remaining == 0)
        return Phase::Trailers;
    m_overhead = 0;
    return Phase::ChunkData;
}
