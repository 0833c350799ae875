#include "HistorySession.h"

#include "ConversationCoding.h"
#include "HistoryStore.h"
#include "PreferenceStore.h"
#include "SqlitePreferenceBackend.h"

#include <algorithm>
#include <thread>
#include <variant>

using namespace Qt::StringLiterals;

namespace {

const QString lastWord = u"Fin"_s;

/// The number of a conversation, which its title spells.
int number(const Conversation &conversation)
{
    return conversation.title.toInt();
}

} // namespace

std::unique_ptr<PreferenceStore> openStore(const QString &path)
{
    return std::make_unique<PreferenceStore>(std::make_unique<SqlitePreferenceBackend>(path));
}

void HistorySession::run(PreferenceStore &store, int last,
                         const std::function<void(int)> &acknowledge) const
{
    HistoryStore historyStore(&store);
    QList<Conversation> conversations = historyStore.load();
    const int first = conversations.isEmpty() ? 1 : number(conversations.first()) + 1;
    for (int next = first; next <= last; ++next) {
        conversations.prepend({QUuid::createUuid(), QString::number(next), {}});
        if (conversations.size() > keptConversations)
            conversations.removeLast();
        historyStore.save(conversations);

        QList<ChatMessage> &messages = conversations.first().messages;
        messages.append({QUuid::createUuid(), u"¿Pregunta?"_s, true, u"rx.jpg"_s,
                         QByteArray(previewSize, char(next))});
        historyStore.save(conversations);

        messages.append({QUuid::createUuid(), QString(), false, std::nullopt, std::nullopt});
        for (int line = 0; line < next % 50; ++line) {
            messages.last().text.append(u"Línea %1\n"_s.arg(line));
            std::this_thread::sleep_for(linePause);
        }
        messages.last().text.append(lastWord);
        historyStore.save(conversations);
        if (next % 4 == 0 && store.flush())
            acknowledge(next);
    }
}

std::optional<QString> HistorySession::complaint(const QByteArray &document,
                                                 const QSet<int> &acknowledged) const
{
    const auto decoded = decodeConversations(document);
    if (const auto *error = std::get_if<DecodingError>(&decoded))
        return error->description;
    const auto &conversations = std::get<QList<Conversation>>(decoded);
    const int newest = acknowledged.isEmpty() ? 0 : *std::ranges::max_element(acknowledged);
    const int first = conversations.isEmpty() ? 0 : number(conversations.first());
    if (first < newest)
        return u"conversation %1 is acknowledged, %2 is the newest stored"_s.arg(newest).arg(first);
    for (qsizetype i = 0; i < conversations.size(); ++i) {
        const Conversation &conversation = conversations[i];
        if (number(conversation) != first - i)
            return u"conversation %1 is missing"_s.arg(first - i);
        if (!acknowledged.contains(number(conversation)))
            continue;
        const QList<ChatMessage> &messages = conversation.messages;
        if (messages.size() != 2 || !messages[1].text.endsWith(lastWord)
            || messages[0].imagePreviewData != QByteArray(previewSize, char(first - i)))
            return u"conversation %1 is acknowledged and not whole"_s.arg(first - i);
    }
    return std::nullopt;
}
