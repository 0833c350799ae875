#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <optional>

/// Turns the bytes of a reply, in whatever chunks they arrive, into lines of text.
///
/// A line ends at LF, CR, CR LF, NEL, LINE SEPARATOR or PARAGRAPH SEPARATOR, also when a chunk ends
/// in the middle of one, and is returned without its line end. Empty lines are lines. Bytes that
/// are no UTF-8 never stop a reply: each maximal subpart of an ill-formed sequence becomes one
/// U+FFFD, as Unicode recommends. Every other character passes through, NUL and a byte order mark
/// included.
class LineDecoder
{
public:
    /// The lines that `bytes` complete, in order. A line ended by CR is complete at once, whatever
    /// follows.
    QStringList decode(QByteArrayView bytes);

    /// The last line when no line end follows it; nothing when the bytes ended with a line end.
    /// Resets the decoder.
    std::optional<QString> finish();

private:
    /// Bytes of the line that has not ended yet.
    QByteArray m_pending;
    /// How many of them are known to hold no line end, so that none is looked at twice.
    qsizetype m_scanned = 0;
    /// The last chunk ended with a CR: a LF that comes next belongs to the same line end.
    bool m_mayContinueWithLineFeed = false;
};
