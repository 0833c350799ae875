#include "HistoryStore.h"

#include "ConversationCoding.h"
#include "PreferenceStore.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void printLine(const QString &text)
{
    // A description with line ends of its own must still be one line.
    const QByteArray line = text.simplified().toUtf8() + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

/// What was begun while the stored conversations could not be read, before them: newest first.
QByteArray mergedDocuments(const QByteArray &begun, const QByteArray &stored)
{
    auto storedConversations = decodeConversations(stored);
    const auto *older = std::get_if<QList<Conversation>>(&storedConversations);
    if (!older)
        return begun;
    auto conversations = std::get<QList<Conversation>>(decodeConversations(begun));
    conversations.removeIf([](const Conversation &one) { return one.messages.isEmpty(); });
    return encodeConversations(conversations + *older);
}

} // namespace

HistoryStore::HistoryStore(PreferenceStore *store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    connect(store, &PreferenceStore::commitFailed, this, [](const QString &description) {
        printLine(u"Error guardando historial: "_s + description);
    });
    store->setMerge(historyKey, mergedDocuments);
}

HistoryStore::~HistoryStore()
{
    // A failure of the last save still finds someone who says it.
    m_store->flush();
}

QList<Conversation> HistoryStore::load() const
{
    const auto document = m_store->data(historyKey);
    if (!document) {
        if (const auto failure = m_store->readFailure())
            printLine(u"Error cargando historial: "_s + *failure);
        return {};
    }
    auto decoded = decodeConversations(*document);
    if (const auto *error = std::get_if<DecodingError>(&decoded)) {
        printLine(u"Error cargando historial: "_s + error->description);
        return {};
    }
    return std::get<QList<Conversation>>(std::move(decoded));
}

void HistoryStore::save(const QList<Conversation> &conversations)
{
    m_store->setData(historyKey, [conversations] { return encodeConversations(conversations); });
}

void HistoryStore::remove()
{
    m_store->remove(historyKey);
}
