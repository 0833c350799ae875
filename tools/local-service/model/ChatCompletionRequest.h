#pragma once

#include "UserContext.h"

#include <QByteArray>
#include <QString>

/// What a model is asked.
struct ChatCompletionRequest
{
    QString modelName;
    QString systemPrompt;
    /// The turns before the question, oldest first.
    QList<ChatTurn> turns;
    QString question;
    /// A JPEG that comes with the question; empty when there is none.
    QByteArray jpeg;

    /// The body of the request, which asks for a streamed answer.
    QByteArray json() const;
};
