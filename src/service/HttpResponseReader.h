#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

/// Reads one HTTP/1.0 or 1.1 response, in whatever pieces it arrives: its status and, when that is
/// a success, its body freed of chunk framing. Interim responses before it are skipped. A body that
/// is compressed or framed in a way nobody asked for makes a success invalid, and what is neither
/// head nor body must not grow beyond reason.
class HttpResponseReader
{
public:
    enum class State {
        Head, ///< the head has not come whole
        Body, ///< the status is known and more of the body may come
        Complete, ///< also when the status is no success: nobody reads the body then
        Invalid, ///< what came is no response this reader takes
    };

    /// Most bytes in a row that are no body: far more than any real head.
    static constexpr qsizetype maximumOverhead = qsizetype(256) * 1024;

    /// Takes the next bytes and returns what they hold of the body. Bytes after the response's end
    /// are dropped.
    QByteArray read(QByteArrayView bytes);

    /// Says that no more bytes come, which completes a body whose length nothing else tells.
    void endOfConnection();

    State state() const;

    /// Meaningful from `Body` on.
    int statusCode() const { return m_statusCode; }

private:
    enum class Phase {
        StatusLine,
        Fields,
        BodyOfKnownLength,
        BodyUntilTheEnd,
        ChunkSize,
        ChunkData,
        ChunkEnd,
        Trailers,
        Complete,
        Invalid,
    };

    /// Cuts one line off the front of `bytes`; nothing while its end has not come.
    std::optional<QByteArray> takeLine(QByteArrayView &bytes);
    /// Cuts off the front of `bytes` what still belongs to the body or chunk.
    QByteArrayView takeData(QByteArrayView &bytes);

    Phase afterLine(const QByteArray &line);
    Phase afterStatusLine(const QByteArray &line);
    bool isNoStatusLine() const;
    void readField(const QByteArray &line);
    Phase afterHead();
    Phase afterChunkSize(const QByteArray &line);

    Phase m_phase = Phase::StatusLine;
    /// The line that has not ended yet.
    QByteArray m_line;
    /// Bytes since the start or the last chunk that were no body.
    qsizetype m_overhead = 0;
    int m_statusCode = 0;
    bool m_isReadable = true;
    bool m_isChunked = false;
    std::optional<qint64> m_contentLength;
    /// Bytes left of the body or of the chunk.
    qint64 m_remaining = 0;
};
