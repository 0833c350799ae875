// The reducer of a model's Markdown: whatever the text and wherever it is cut, it gives the same
// lines, none empty and none with a line end.

#include "MarkdownReducer.h"

#include <cstdint>
#include <cstdlib>

namespace {

QStringList reduce(const QString &text, qsizetype pieceSize)
{
    MarkdownReducer reducer;
    QStringList lines;
    for (qsizetype at = 0; at < text.size(); at += pieceSize)
        lines += reducer.feed(text.mid(at, pieceSize));
    return lines + reducer.finish();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    // The first byte says where the rest is cut.
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data) + 1,
                                           static_cast<qsizetype>(size) - 1);
    const QStringList lines = reduce(text, text.size() + 1);
    if (lines != reduce(text, data[0] % 16 + 1))
        std::abort();
    for (const QString &line : lines) {
        if (line.trimmed().isEmpty() || line.contains(u'\n'))
            std::abort();
    }
    return 0;
}
