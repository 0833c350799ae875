#include "FontMetricsCache.h"

#include "Theme.h"

#include <QFontMetricsF>
#include <QTextBoundaryFinder>
#include <QTextLayout>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
// Long enough for any word of a language; what is longer is broken where it must be, by shaping.
constexpr qsizetype longestWord = 64;
// About 3 MB each. A reader's vocabulary stays far below; hostile text must not grow it for ever.
constexpr qsizetype mostWords = 20'000;

struct CharacterRange
{
    char16_t first;
    char16_t last;
};
// Letters, digits and signs that stand side by side without forming or moving one another.
constexpr std::array plainCharacters{
    CharacterRange{0x0021, 0x007e}, // Basic Latin
    CharacterRange{0x00a0, 0x00ac}, // Latin-1, up to the soft hyphen
    CharacterRange{0x00ae, 0x024f}, // Latin-1 and Latin Extended
    CharacterRange{0x0370, 0x03ff}, // Greek
    CharacterRange{0x0400, 0x0482}, // Cyrillic, up to its combining marks
    CharacterRange{0x048a, 0x052f},
    CharacterRange{0x1e00, 0x1eff}, // Latin Extended Additional
    CharacterRange{0x2010, 0x2027}, // dashes, quotation marks, bullets, the ellipsis
    CharacterRange{0x2030, 0x205e},
    CharacterRange{0x2070, 0x20bf}, // superscripts, subscripts, currency signs
    CharacterRange{0x2100, 0x22ff}, // letter-like signs, fractions, arrows, operators
};

constexpr double unknown = -2;
constexpr double notPlain = -1;

bool isPlainCharacter(QChar c)
{
    const auto after
        = std::ranges::upper_bound(plainCharacters, c.unicode(), {}, &CharacterRange::first);
    return after != plainCharacters.begin() && c.unicode() <= std::prev(after)->last;
}
} // namespace

FontMetricsCache &FontMetricsCache::of(double points, QFont::Weight weight)
{
    // Never freed: as static objects the fonts would outlive the application they belong to.
    static auto &caches
        = *new std::map<std::pair<double, QFont::Weight>, std::unique_ptr<FontMetricsCache>>;
    std::unique_ptr<FontMetricsCache> &cache = caches[{points, weight}];
    if (!cache)
        cache.reset(new FontMetricsCache(points, weight));
    return *cache;
}

FontMetricsCache::FontMetricsCache(double points, QFont::Weight weight)
    : m_font(Theme::font(points, weight))
    , m_unkernedFont(m_font)
{
    m_unkernedFont.setKerning(false);
    m_unkernedFont.setStyleStrategy(
        QFont::StyleStrategy(m_font.styleStrategy() | QFont::PreferNoShaping));
    QTextLayout sample(u"x"_s, m_font);
    sample.beginLayout();
    const QTextLine line = sample.createLine();
    sample.endLayout();
    m_ascent = line.ascent();
    m_lineHeight = line.height();
    m_spaceWidth = QFontMetricsF(m_font).horizontalAdvance(u' ');
}

const FontMetricsCache::Word &FontMetricsCache::word(QStringView text)
{
    static const Word tooLong;
    if (text.size() > longestWord)
        return tooLong;
    const auto known = m_words.constFind(QString::fromRawData(text.constData(), text.size()));
    if (known != m_words.constEnd())
        return *known;
    if (m_words.size() >= mostWords)
        m_words.clear();
    const QString key = text.toString();
    return *m_words.insert(key, measured(key));
}

double FontMetricsCache::unkernedWidth(QChar c)
{
    constexpr size_t end = plainCharacters.back().last + 1;
    if (c.unicode() >= end)
        return notPlain;
    if (m_unkernedWidths.empty())
        m_unkernedWidths.assign(end, unknown);
    double &width = m_unkernedWidths[c.unicode()];
    if (width == unknown) {
        const QFontMetricsF metrics(m_unkernedFont);
        width = isPlainCharacter(c) && metrics.inFont(c) ? metrics.horizontalAdvance(c) : notPlain;
    }
    return width;
}

FontMetricsCache::Word FontMetricsCache::measured(const QString &text) const
{
    const QFontMetricsF metrics(m_font);
    const bool isPlain = std::ranges::all_of(
        text, [&](QChar c) { return isPlainCharacter(c) && metrics.inFont(c); });
    if (!isPlain)
        return {};

    Word word{.width = metrics.horizontalAdvance(text), .isPlain = true, .breaks = {}};
    QTextBoundaryFinder finder(QTextBoundaryFinder::Line, text);
    for (qsizetype end = finder.toNextBoundary(); end > 0 && end < text.size();
         end = finder.toNextBoundary())
        word.breaks.append({end, metrics.horizontalAdvance(text, int(end))});
    return word;
}
