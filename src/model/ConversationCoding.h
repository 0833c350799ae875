#pragma once

#include "Conversation.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <variant>

/// Why a document could not be read. The description names the path of the offending field (for
/// example `[1].messages[0].id`) and never quotes the user's text.
struct DecodingError
{
    QString description;
};

/// The JSON array of `conversations`, in UTF-8: compact, UUIDs in upper case, previews as one
/// base64 string, absent optional fields left out. Text that is no valid UTF-16 is written with
/// U+FFFD in place of each lone surrogate.
QByteArray encodeConversations(const QList<Conversation> &conversations);

/// Reads what `encodeConversations` or another writer of the same form wrote. Strict: a missing
/// key, a wrong type, a malformed UUID or base64 fails the whole document, and unknown keys are
/// ignored. Keys may come in any order; of a repeated key the last one counts.
std::variant<QList<Conversation>, DecodingError> decodeConversations(QByteArrayView document);
