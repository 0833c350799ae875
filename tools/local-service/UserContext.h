#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// One question and the whole text that was answered.
struct ChatTurn
{
    QString question;
    QString answer;
};

/// What the service remembers of one user that an answer may lean on.
struct UserContext
{
    /// What the user asked about before, newest first, each once.
    QStringList subjects;
    /// The turns of the conversation under way, oldest first; empty when it begins anew.
    QList<ChatTurn> turns;
    /// What practice questions that went wrong were about, newest first, each once.
    QStringList toReview = {};
};
