#pragma once

#include <QString>

/// Takes what a model thinks aloud, from <think> to </think>, out of a text that arrives cut
/// anywhere, the marks themselves included.
class ThinkingFilter
{
public:
    /// The part of what arrived so far that is not thought and not returned before.
    QString feed(const QString &text);

    /// What was held back because it could have become a mark.
    QString finish();

private:
    bool m_isThinking = false;
    QString m_held;
};
