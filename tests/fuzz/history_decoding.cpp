// The reader of a stored history: whatever the bytes, it ends, and what it reads is written and
// read again as the same.

#include "ConversationCoding.h"

#include <cstdint>
#include <cstdlib>
#include <variant>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray document(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto decoded = decodeConversations(document);
    if (const auto *error = std::get_if<DecodingError>(&decoded)) {
        if (error->description.isEmpty())
            std::abort();
        return 0;
    }
    const auto *conversations = std::get_if<QList<Conversation>>(&decoded);
    const auto again = decodeConversations(encodeConversations(*conversations));
    const auto *same = std::get_if<QList<Conversation>>(&again);
    if (!same || *same != *conversations)
        std::abort();
    return 0;
}
