// The way of a reply to the screen: whatever the text and the width, its blocks are cut into bold
// and other runs, and those into lines, and no character is lost on the way or comes twice.

#include "BoldMarkdownText.h"
#include "LineBreaking.h"
#include "MarkdownBlock.h"

#include <QGuiApplication>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Lives as long as the process, as fonts need it.
    new QGuiApplication(*argc, *argv);
    return 0;
}

static void check(const AttributedText &text, qsizetype sourceLength, double width)
{
    qsizetype end = 0;
    for (const AttributedText::Run &run : text.runs) {
        if (run.start != end || run.length <= 0)
            std::abort();
        end += run.length;
    }
    if (end != text.text.size() || end > sourceLength)
        std::abort();

    const auto direction = text.text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    const QList<TextLine> lines = breakLines(text, direction, width);
    qsizetype lineEnd = 0;
    for (const TextLine &line : lines) {
        if (line.start != lineEnd || line.length < 0 || line.height <= 0)
            std::abort();
        lineEnd += line.length;
        if (line.length > 0)
            shapedLine(text, direction, line);
    }
    if (lines.isEmpty() || lineEnd != text.text.size())
        std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    // The first byte says how wide the screen is.
    const double width = 20 + 3 * double(data[0]);
    const QString text
        = QString::fromUtf8(reinterpret_cast<const char *>(data) + 1, qsizetype(size) - 1);
    const QList<MarkdownBlock> blocks = parseBlocks(text);
    if (blocks.size() != text.count(u'\n') + 1)
        std::abort();
    constexpr double pointSize = 14.5;
    for (const MarkdownBlock &block : blocks)
        check(makeAttributedText(block.text, pointSize, QFont::Normal), block.text.size(), width);
    return 0;
}
