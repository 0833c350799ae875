#pragma once

#include "ModelFailure.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

class QJsonObject;

/// Reads the body of a streamed chat completion as it arrives, cut anywhere, and gives the text of
/// the answer without what the model thought. Takes what servers really send: comments, "data:"
/// with and without a blank, line ends of any kind, a last event without a blank line or without
/// "[DONE]", a whole completion instead of a stream, and errors as an event, as a bare line or as
/// the only thing in the body.
class ChatCompletionParser
{
public:
    /// In bytes: the longest event or whole completion read.
    static constexpr qsizetype longestEvent = 1 << 20;

    enum class State {
        Reading,
        /// The model said that it ended.
        Whole,
        /// It ended because the answer reached the length it may have.
        TooLong,
        /// Its provider took the rest away.
        Withheld,
        Failed,
    };

    /// The text that `bytes` add. Past the end nothing is read.
    QString feed(QByteArrayView bytes);

    /// The text that the end of the body completes. Whoever wants to know whether the model said
    /// that it ended looks at `state()`.
    QString finish();

    State state() const { return m_state; }
    /// Why the state is Failed.
    ModelFailure failure() const { return m_failure; }

private:
    QString takeLine(QByteArrayView line);
    QString takeData(QByteArrayView data);
    QString takeBareLine(QByteArrayView line);
    QString takeObject(const QJsonObject &object);
    void fail(ModelFailure failure);

    State m_state = State::Reading;
    ModelFailure m_failure = ModelFailure::NotUnderstood;
    QByteArray m_line;
    bool m_isAfterCarriageReturn = false;
    bool m_isAtStart = true;
    /// The data of the event that is being read, as far as it is no JSON yet.
    QByteArray m_data;
    bool m_isErrorEvent = false;
    /// Lines that belong to no event: one whole completion, or an error, on many lines.
    QByteArray m_document;
};
