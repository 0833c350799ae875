// The decoder of a reply: whatever the bytes and wherever they are cut, it gives the same lines,
// and none holds a line end.

#include "LineDecoder.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

static QStringList decode(QByteArrayView bytes, qsizetype pieceSize)
{
    LineDecoder decoder;
    QStringList lines;
    for (qsizetype at = 0; at < bytes.size(); at += pieceSize)
        lines += decoder.decode(bytes.sliced(at, std::min(pieceSize, bytes.size() - at)));
    if (const auto last = decoder.finish())
        lines += *last;
    return lines;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    // The first byte says where the rest is cut.
    const QByteArrayView bytes(data + 1, qsizetype(size) - 1);
    const QStringList lines = decode(bytes, bytes.size());
    if (lines != decode(bytes, data[0] % 16 + 1))
        std::abort();
    const auto isLineEnd = [](QChar c) {
        return c == u'\n' || c == u'\r' || c == u'\x85' || c == u'\u2028' || c == u'\u2029';
    };
    for (const QString &line : lines) {
        if (std::ranges::any_of(line, isLineEnd))
            std::abort();
    }
    return 0;
}
