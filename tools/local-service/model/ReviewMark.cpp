#include "ReviewMark.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

std::optional<QString> reviewMark(const QString &line)
{
    constexpr qsizetype longestTopic = 60;
    static const QRegularExpression mark(
        u"^[\\s*>-]*\\[\\[\\s*repasar\\s*:\\s*(.*?)\\s*\\]\\][\\s*.]*$"_s,
        QRegularExpression::CaseInsensitiveOption);
    const auto match = mark.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    return match.captured(1).remove(u"**"_s).left(longestTopic).trimmed();
}
