#include "BoldMarkdownText.h"

AttributedText makeAttributedText(const QString &text, double size, QFont::Weight baseWeight)
{
    constexpr QStringView marker = u"**";

    AttributedText result{.text = {}, .size = size, .runs = {}};
    const auto append = [&](QStringView piece, bool bold) {
        if (piece.isEmpty())
            return;
        result.runs.append({result.text.size(), piece.size(), bold ? QFont::Bold : baseWeight});
        result.text.append(piece);
    };

    QStringView remaining = text;
    bool bold = false;
    for (;;) {
        const qsizetype end = remaining.indexOf(marker);
        if (end < 0)
            break;
        append(remaining.first(end), bold);
        bold = !bold;
        remaining = remaining.sliced(end + marker.size());
    }
    append(remaining, bold);
    return result;
}
