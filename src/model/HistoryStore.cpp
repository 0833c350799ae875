#include "HistoryStore.h"

#include "ConversationCoding.h"
#include "PreferenceStore.h"

#include <cstdio>
#include <memory>
#include <mutex>

using namespace Qt::StringLiterals;

namespace {

void printLine(const QString &text)
{
    // A description with line ends of its own must still be one line.
    const QByteArray line = text.simplified().toUtf8() + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

void printLoadFailure(const QString &description)
{
    printLine(u"Error cargando historial: "_s + description);
}

void printSaveFailure(const QString &description)
{
    printLine(u"Error guardando historial: "_s + description);
}

/// The conversations begun while the stored ones could not be read, then the stored ones: newest
/// first. When these cannot be decoded either, that is printed once.
QByteArray mergedDocuments(const QByteArray &begun, const QByteArray &stored,
                           std::once_flag &isToldOfDecoding)
{
    auto storedConversations = decodeConversations(stored);
    if (const auto *error = std::get_if<DecodingError>(&storedConversations)) {
        std::call_once(isToldOfDecoding, [error] { printLoadFailure(error->description); });
        return begun;
    }
    auto conversations = std::get<QList<Conversation>>(decodeConversations(begun));
    conversations.removeIf([](const Conversation &one) { return one.messages.isEmpty(); });
    return encodeConversations(conversations + std::get<QList<Conversation>>(storedConversations));
}

} // namespace

HistoryStore::HistoryStore(PreferenceStore *store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    connect(store, &PreferenceStore::commitFailed, this, printSaveFailure);
    connect(store, &PreferenceStore::repairedWhileReading, this, printLoadFailure);
    connect(store, &PreferenceStore::repairedWhileCommitting, this, printSaveFailure);
    store->setMerge(historyKey,
                    [isToldOfDecoding = std::make_shared<std::once_flag>()](
                        const QByteArray &begun, const QByteArray &stored) {
                        return mergedDocuments(begun, stored, *isToldOfDecoding);
                    });
}

HistoryStore::~HistoryStore()
{
    // Flush while commitFailed is still connected, so that a failure of the last save is printed.
    m_store->flush();
}

QList<Conversation> HistoryStore::load() const
{
    const auto document = m_store->data(historyKey);
    if (!document) {
        if (const auto failure = m_store->readFailure())
            printLoadFailure(*failure);
        return {};
    }
    auto decoded = decodeConversations(*document);
    if (const auto *error = std::get_if<DecodingError>(&decoded)) {
        printLoadFailure(error->description);
        return {};
    }
    auto conversations = std::get<QList<Conversation>>(std::move(decoded));
    m_store->remember(historyKey, [conversations] { return encodeConversations(conversations); });
    return conversations;
}

void HistoryStore::save(const QList<Conversation> &conversations)
{
    m_store->setData(historyKey, [conversations] { return encodeConversations(conversations); });
}

void HistoryStore::remove()
{
    m_store->remove(historyKey);
}
