#include "LineBreaking.h"

#include "CharacterClass.h"
#include "FontMetricsCache.h"

#include <algorithm>
#include <optional>

namespace {
// How much text is shaped at once. QTextLayout looks at a whole word again for every line it makes
// of it, so a word of a million characters takes 16 s at once and a third of a second in pieces.
constexpr qsizetype longestShapedText = 1024;

// Longer than any word or address. Shaping takes 500 ns a character, adding up widths 5 ns.
constexpr qsizetype longestKernedWord = 4096;

// Fills lines with words of known widths.
class PlainLineFiller
{
public:
    PlainLineFiller(const FontMetricsCache &metrics, double width)
        : m_metrics(metrics)
        , m_width(width)
    { }

    // False when the word does not fit on a line of its own.
    bool addWordPart(qsizetype length, double width)
    {
        if (m_x + width > m_width && m_break.position > m_lineStart)
            endLineAtBreak();
        m_position += length;
        m_x += width;
        m_visibleX = m_x;
        return m_x <= m_width;
    }

    void addSpaces(qsizetype count, double width)
    {
        m_position += count;
        m_x += width;
        allowBreak();
    }

    // On lines of its own, after what stands before it.
    void beginUnkernedWord()
    {
        if (m_break.position > m_lineStart)
            endLineAtBreak();
        m_isKerned = false;
    }

    void addUnkernedCharacter(double width)
    {
        if (m_x + width > m_width && m_position > m_lineStart) {
            allowBreak();
            endLineAtBreak();
        }
        ++m_position;
        m_x += width;
        m_visibleX = m_x;
    }

    void allowBreak() { m_break = {m_position, m_x, m_visibleX}; }

    QList<TextLine> finished()
    {
        appendLine(m_position, m_visibleX);
        return std::move(m_lines);
    }

private:
    struct BreakPlace
    {
        qsizetype position = 0;
        double x = 0;
        double visibleX = 0;
    };

    void endLineAtBreak()
    {
        appendLine(m_break.position, m_break.visibleX);
        m_lineStart = m_break.position;
        m_x -= m_break.x;
        m_visibleX = std::max(m_visibleX - m_break.x, 0.0);
    }

    void appendLine(qsizetype end, double width)
    {
        m_lines.append({.start = m_lineStart,
                        .length = end - m_lineStart,
                        .top = double(m_lines.size()) * m_metrics.lineHeight(),
                        .width = width,
                        .ascent = m_metrics.ascent(),
                        .height = m_metrics.lineHeight(),
                        .isKerned = m_isKerned});
    }

    const FontMetricsCache &m_metrics;
    double m_width;
    QList<TextLine> m_lines;
    qsizetype m_lineStart = 0;
    qsizetype m_position = 0;
    double m_x = 0; // within the line, the spaces included
    double m_visibleX = 0; // where its last word ends
    BreakPlace m_break;
    bool m_isKerned = true; // false from the line on which an unkerned word begins
};

qsizetype lengthOfSpaces(QStringView text)
{
    return std::ranges::find_if(text, [](QChar c) { return c != u' '; }) - text.begin();
}

bool addWord(PlainLineFiller &filler, QStringView text, const FontMetricsCache::Word &word)
{
    if (!word.isPlain)
        return false;
    FontMetricsCache::Break done;
    for (const FontMetricsCache::Break &next : word.breaks) {
        if (!filler.addWordPart(next.position - done.position, next.width - done.width))
            return false;
        filler.allowBreak();
        done = next;
    }
    return filler.addWordPart(text.size() - done.position, word.width - done.width);
}

// False when not all of its characters are plain.
bool addUnkernedWord(PlainLineFiller &filler, QStringView word, FontMetricsCache &metrics)
{
    filler.beginUnkernedWord();
    for (const QChar c : word) {
        const double width = metrics.unkernedWidth(c);
        if (width < 0)
            return false;
        filler.addUnkernedCharacter(width);
    }
    return true;
}

// Nothing when the text is not all plain words that fit.
std::optional<QList<TextLine>> plainLines(const AttributedText &text, double width)
{
    PlainLineFiller filler(FontMetricsCache::of(text.size, QFont::Normal), width);
    for (const AttributedText::Run &run : text.runs) {
        FontMetricsCache &metrics = FontMetricsCache::of(text.size, run.weight);
        QStringView rest = QStringView(text.text).sliced(run.start, run.length);
        while (!rest.isEmpty()) {
            if (const qsizetype spaces = lengthOfSpaces(rest)) {
                filler.addSpaces(spaces, double(spaces) * metrics.spaceWidth());
                rest = rest.sliced(spaces);
                continue;
            }
            const qsizetype space = rest.indexOf(u' ');
            const QStringView word = space < 0 ? rest : rest.first(space);
            const bool isAdded = word.size() > longestKernedWord
                ? addUnkernedWord(filler, word, metrics)
                : addWord(filler, word, metrics.word(word));
            if (!isAdded)
                return std::nullopt;
            rest = rest.sliced(word.size());
        }
    }
    return filler.finished();
}

// A layout of a stretch of the text with the weights of its runs.
std::unique_ptr<QTextLayout> layoutOf(const AttributedText &text, Qt::LayoutDirection direction,
                                      qsizetype start, qsizetype length, bool isKerned = true)
{
    const auto fontOf = [&](QFont::Weight weight) {
        const FontMetricsCache &metrics = FontMetricsCache::of(text.size, weight);
        return isKerned ? metrics.font() : metrics.unkernedFont();
    };
    auto run = std::ranges::upper_bound(
        text.runs, start, {}, [](const AttributedText::Run &r) { return r.start + r.length; });
    const QFont::Weight weight = run != text.runs.end() ? run->weight : QFont::Normal;
    auto layout = std::make_unique<QTextLayout>(text.text.sliced(start, length), fontOf(weight));
    QTextOption option;
    option.setTextDirection(direction);
    option.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout->setTextOption(option);

    // Only for what differs: QTextLayout looks up the font of a format for every stretch it shapes.
    QList<QTextLayout::FormatRange> formats;
    for (; run != text.runs.end() && run->start < start + length; ++run) {
        if (run->weight == weight)
            continue;
        const qsizetype from = std::max(run->start, start);
        const qsizetype to = std::min(run->start + run->length, start + length);
        QTextCharFormat format;
        format.setFont(fontOf(run->weight));
        formats.append({int(from - start), int(to - from), format});
    }
    layout->setFormats(formats);
    return layout;
}

qsizetype lengthWithoutSpacesAtEnd(QStringView text)
{
    while (text.endsWith(u' '))
        text.chop(1);
    return text.size();
}

qsizetype endOfShapedText(const QString &text, qsizetype start)
{
    const qsizetype end = std::min(start + longestShapedText, text.size());
    const bool splitsPair
        = end < text.size() && text[end].isLowSurrogate() && text[end - 1].isHighSurrogate();
    return splitsPair ? end - 1 : end;
}

QList<TextLine> shapedLines(const AttributedText &text, Qt::LayoutDirection direction, double width)
{
    QList<TextLine> lines;
    double top = 0;
    qsizetype start = 0;
    do {
        const qsizetype end = endOfShapedText(text.text, start);
        const auto layout = layoutOf(text, direction, start, end - start);
        layout->beginLayout();
        for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine())
            line.setLineWidth(width);
        layout->endLayout();

        // The last line may go on in what was not shaped yet, so it is made again with it.
        const bool isLast = end == text.text.size();
        const int complete = isLast ? layout->lineCount() : std::max(layout->lineCount() - 1, 1);
        qsizetype next = start;
        for (int i = 0; i < complete; ++i) {
            const QTextLine line = layout->lineAt(i);
            lines.append({.start = start + line.textStart(),
                          .length = line.textLength(),
                          .top = top,
                          .width = line.naturalTextWidth(),
                          .ascent = line.ascent(),
                          .height = line.height()});
            top += line.height();
            next = start + line.textStart() + line.textLength();
        }
        start = std::max(next, start + 1);
    } while (start < text.text.size());
    return lines;
}
} // namespace

QList<TextLine> breakLines(const AttributedText &text, Qt::LayoutDirection direction, double width)
{
    if (auto lines = plainLines(text, width))
        return *lines;
    return shapedLines(text, direction, width);
}

std::unique_ptr<QTextLayout> shapedLine(const AttributedText &text, Qt::LayoutDirection direction,
                                        const TextLine &line)
{
    const bool keepsSpaces
        = direction == Qt::LeftToRight && line.start + line.length == text.text.size();
    const qsizetype length = keepsSpaces
        ? line.length
        : lengthWithoutSpacesAtEnd(QStringView(text.text).sliced(line.start, line.length));
    auto layout = layoutOf(text, direction, line.start, length, line.isKerned);
    QTextOption option = layout->textOption();
    option.setWrapMode(QTextOption::NoWrap);
    layout->setTextOption(option);
    // Else the glyphs are forgotten once the line is laid out, and found again to be drawn.
    layout->setCacheEnabled(true);
    layout->beginLayout();
    layout->createLine().setLineWidth(line.width);
    layout->endLayout();
    return layout;
}
