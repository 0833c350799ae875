#pragma once

#include "Conversation.h"

#include <QList>
#include <QSet>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class PreferenceStore;

std::unique_ptr<PreferenceStore> openStore(const QString &path);

/// What a person and an assistant do to a history that is to survive something: one question after
/// another, each in a conversation of its own, saved at the moments at which the program saves.
struct HistorySession
{
    /// Older conversations go, so that the document keeps its size.
    qsizetype keptConversations = 0;
    /// In bytes, of the picture kept with each question.
    qsizetype previewSize = 0;
    /// Between the lines of a reply.
    std::chrono::microseconds linePause{0};

    /// Goes on with the stored conversations, up to the one with the number `last`.
    /// `acknowledge(n)` is called when the conversation with the number n is on disk with its whole
    /// reply, as far as the store says: every fourth, so that most saves overlap with what follows.
    void run(PreferenceStore &store, int last, const std::function<void(int)> &acknowledge) const;

    /// What a stored document lacks of the acknowledged conversations; nothing when all is well.
    std::optional<QString> complaint(const QByteArray &document,
                                     const QSet<int> &acknowledged) const;
};
