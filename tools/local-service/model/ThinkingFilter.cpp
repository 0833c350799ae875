#include "ThinkingFilter.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

static constexpr auto opening = "<think>"_L1;
static constexpr auto closing = "</think>"_L1;

// How many of the last characters of `text` may be the beginning of `mark`.
static qsizetype beginningAtEnd(QStringView text, QLatin1StringView mark)
{
    for (qsizetype length = std::min(text.size(), mark.size() - 1); length > 0; --length) {
        if (text.last(length) == mark.first(length))
            return length;
    }
    return 0;
}

QString ThinkingFilter::feed(const QString &text)
{
    QString rest = std::exchange(m_held, {}) + text;
    QString shown;
    for (;;) {
        const auto mark = m_isThinking ? closing : opening;
        const qsizetype at = rest.indexOf(mark);
        const qsizetype end = at < 0 ? rest.size() - beginningAtEnd(rest, mark) : at;
        if (!m_isThinking)
            shown += QStringView(rest).first(end);
        if (at < 0) {
            m_held = rest.sliced(end);
            return shown;
        }
        rest = rest.sliced(at + mark.size());
        m_isThinking = !m_isThinking;
    }
}

QString ThinkingFilter::finish()
{
    const QString held = std::exchange(m_held, {});
    return m_isThinking ? QString() : held;
}
