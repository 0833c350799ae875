// The reader of a model's stream: whatever the bytes and wherever they are cut, it ends, and
// cutting them changes nothing.

#include "ChatCompletionParser.h"
#include "ThinkingFilter.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

struct Reading
{
    QString text;
    ChatCompletionParser::State state;

    bool operator==(const Reading &) const = default;
};

Reading read(QByteArrayView bytes, qsizetype pieceSize)
{
    ChatCompletionParser parser;
    ThinkingFilter filter;
    QString text;
    for (qsizetype at = 0; at < bytes.size(); at += pieceSize) {
        const qsizetype size = std::min(pieceSize, bytes.size() - at);
        text += filter.feed(parser.feed(bytes.sliced(at, size)));
    }
    text += filter.feed(parser.finish()) + filter.finish();
    return {text, parser.state()};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    // The first byte says where the rest is cut.
    const QByteArrayView bytes(data + 1, static_cast<qsizetype>(size) - 1);
    if (read(bytes, bytes.size()) != read(bytes, data[0] % 16 + 1))
        std::abort();
    return 0;
}
