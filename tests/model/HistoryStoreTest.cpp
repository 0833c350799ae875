#include "HistoryStore.h"

#include "ConversationCoding.h"
#include "MemoryPreferenceBackend.h"
#include "PreferenceStore.h"
#include "StandardOutputCapture.h"

#include <QSemaphore>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString someID = u"3F2504E0-4F89-11D3-9A0C-0305E82C3301"_s;

QList<Conversation> someConversations()
{
    QByteArray everyByte;
    for (int i = 0; i < 256; ++i)
        everyByte.append(char(i));
    return {{QUuid(someID),
             u"Más nueva"_s,
             {{QUuid::createUuid(), u"¿Qué es?"_s, true, u"rx.jpg"_s, everyByte},
              {QUuid::createUuid(), u"# Una placa\n"_s, false, std::nullopt, std::nullopt}}},
            {QUuid::createUuid(), defaultConversationTitle, {}}};
}

} // namespace

class HistoryStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_memory = std::make_shared<PreferenceMemory>(); }

    void readsBackWhatWasSaved();
    void storesOneDocumentUnderItsKey();
    void nothingUsableIsEmptySilently_data();
    void nothingUsableIsEmptySilently();
    void anUnreadableDocumentIsOneLine_data();
    void anUnreadableDocumentIsOneLine();
    void readsASaveThatIsStillPending();
    void encodesOffTheCallingThread();
    void laterChangesDoNotReachASave();
    void removes();
    void aFailedSaveIsOneLine();
    void aFailureAtTheEndIsOneLine();
    void aDocumentOutOfReachIsOneLineAndKept();
    void aDocumentOutOfReachCanBeCleared();
    void aCorruptDocumentOutOfReachIsReplaced();
    void aDamagedStoreIsOneLine();
    void aLostStoreIsOneLineAndWrittenAnew();

private:
    std::unique_ptr<PreferenceStore> openStore() const
    {
        return std::make_unique<PreferenceStore>(
            std::make_unique<MemoryPreferenceBackend>(m_memory));
    }

    std::shared_ptr<PreferenceMemory> m_memory;
};

void HistoryStoreTest::readsBackWhatWasSaved()
{
    const QList<Conversation> conversations = someConversations();
    {
        const auto store = openStore();
        HistoryStore(store.get()).save(conversations);
    }
    const auto store = openStore();
    QCOMPARE(HistoryStore(store.get()).load(), conversations);
}

void HistoryStoreTest::storesOneDocumentUnderItsKey()
{
    const auto store = openStore();
    HistoryStore historyStore(store.get());
    historyStore.save(someConversations());
    historyStore.save({{QUuid(someID), u"Nueva conversación"_s, {}}});
    QVERIFY(store->flush());
    const QHash<QString, PreferenceValue> expected{
        {u"aulora.conversations.v3"_s,
         QByteArray(R"([{"id":"3F2504E0-4F89-11D3-9A0C-0305E82C3301",)"
                    R"("title":"Nueva conversación","messages":[]}])")}};
    QCOMPARE(m_memory->values(), expected);
}

void HistoryStoreTest::nothingUsableIsEmptySilently_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<PreferenceValue>("value");
    const QByteArray document = encodeConversations(someConversations());
    QTest::newRow("nothing") << u"other"_s << PreferenceValue(true);
    QTest::newRow("empty list") << HistoryStore::historyKey << PreferenceValue(QByteArray("[]"));
    QTest::newRow("text") << HistoryStore::historyKey
                          << PreferenceValue(QString::fromUtf8(document));
    QTest::newRow("boolean") << HistoryStore::historyKey << PreferenceValue(true);
    QTest::newRow("older version") << u"aulora.conversations.v2"_s << PreferenceValue(document);
}

void HistoryStoreTest::nothingUsableIsEmptySilently()
{
    QFETCH(QString, key);
    QFETCH(PreferenceValue, value);
    m_memory->setValue(key, value);
    StandardOutputCapture output;
    {
        const auto store = openStore();
        QCOMPARE(HistoryStore(store.get()).load(), QList<Conversation>());
    }
    QCOMPARE(output.text(), "");
    QCOMPARE(m_memory->value(key), value);
}

void HistoryStoreTest::anUnreadableDocumentIsOneLine_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("line");
    const QByteArray id = R"("id":")" + someID.toLatin1() + '"';
    QTest::newRow("empty") << QByteArray("")
                           << QByteArray("Error cargando historial: se esperaba una lista\n");
    QTest::newRow("corrupt") << QByteArray(
        "[{]") << QByteArray("Error cargando historial: JSON no válido en el byte 2\n");
    QTest::newRow("second conversation without title")
        << "[{" + id + R"(,"title":"t","messages":[]},{)" + id + R"(,"messages":[]}])"
        << QByteArray("Error cargando historial: [1].title: falta el campo\n");
    QTest::newRow("bad UUID") << QByteArray(R"([{"id":"x","title":"t","messages":[]}])")
                              << QByteArray(
                                     "Error cargando historial: [0].id: el UUID no es válido\n");
    QTest::newRow("bad base64")
        << "[{" + id + R"(,"title":"t","messages":[{)" + id
            + R"(,"text":"","isUser":true,"imagePreviewData":"x"}]}])"
        << QByteArray("Error cargando historial: [0].messages[0].imagePreviewData: "
                      "el base64 no es válido\n");
}

void HistoryStoreTest::anUnreadableDocumentIsOneLine()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, line);
    m_memory->setValue(HistoryStore::historyKey, document);
    StandardOutputCapture output;
    const auto store = openStore();
    HistoryStore historyStore(store.get());
    QCOMPARE(historyStore.load(), QList<Conversation>());
    QCOMPARE(output.text(), line);
    QVERIFY(store->flush());
    QCOMPARE(m_memory->value(HistoryStore::historyKey), PreferenceValue(document));

    historyStore.save(someConversations());
    QVERIFY(store->flush());
    QCOMPARE(historyStore.load().size(), 2);
    QCOMPARE(output.text(), line);
}

void HistoryStoreTest::readsASaveThatIsStillPending()
{
    m_memory->setFailure(u"lleno"_s);
    const auto store = openStore();
    const QList<Conversation> conversations = someConversations();
    StandardOutputCapture output;
    HistoryStore historyStore(store.get());
    historyStore.save(conversations);
    QCOMPARE(historyStore.load(), conversations);
}

void HistoryStoreTest::encodesOffTheCallingThread()
{
    const auto store = openStore();
    QSemaphore started;
    QSemaphore mayEnd;
    store->setData(u"slow"_s, [&] {
        started.release();
        mayEnd.acquire();
        return QByteArray();
    });
    started.acquire();
    // The store shares the list until another one replaces it, so that a lost store can be
    // rewritten.
    const QList<Conversation> conversations = someConversations();
    QVERIFY(conversations.isDetached());
    HistoryStore historyStore(store.get());
    historyStore.save(conversations);
    QVERIFY(!conversations.isDetached());
    mayEnd.release();
    QVERIFY(store->flush());
    QVERIFY(!conversations.isDetached());
    historyStore.save({});
    QVERIFY(store->flush());
    QTRY_VERIFY(conversations.isDetached());
}

void HistoryStoreTest::laterChangesDoNotReachASave()
{
    QList<Conversation> conversations = someConversations();
    const QList<Conversation> saved = conversations;
    const auto store = openStore();
    HistoryStore historyStore(store.get());
    historyStore.save(conversations);
    conversations.first().messages.first().text.append(u" y algo más"_s);
    QVERIFY(store->flush());
    QCOMPARE(historyStore.load(), saved);
}

void HistoryStoreTest::removes()
{
    const auto store = openStore();
    HistoryStore historyStore(store.get());
    historyStore.save(someConversations());
    QVERIFY(store->flush());
    historyStore.remove();
    QCOMPARE(historyStore.load(), QList<Conversation>());
    QVERIFY(store->flush());
    QVERIFY(m_memory->values().isEmpty());
}

void HistoryStoreTest::aFailedSaveIsOneLine()
{
    const QList<Conversation> conversations = someConversations();
    const QByteArray stored = "[]";
    m_memory->setValue(HistoryStore::historyKey, stored);
    m_memory->setFailure(u"disco\nlleno"_s);
    StandardOutputCapture output;
    const auto store = openStore();
    HistoryStore historyStore(store.get());
    historyStore.save(conversations);
    QTRY_COMPARE(output.text(), "Error guardando historial: disco lleno\n");
    historyStore.save(conversations);
    QVERIFY(!store->flush());
    QCOMPARE(m_memory->value(HistoryStore::historyKey), PreferenceValue(stored));

    m_memory->setFailure(std::nullopt);
    QVERIFY(store->flush());
    QCOMPARE(m_memory->value(HistoryStore::historyKey),
             PreferenceValue(encodeConversations(conversations)));
    QCOMPARE(output.text(), "Error guardando historial: disco lleno\n");
}

void HistoryStoreTest::aFailureAtTheEndIsOneLine()
{
    m_memory->setFailure(u"lleno"_s);
    StandardOutputCapture output;
    {
        const auto store = openStore();
        HistoryStore(store.get()).save(someConversations());
    }
    QCOMPARE(output.text(), "Error guardando historial: lleno\n");
}

void HistoryStoreTest::aDocumentOutOfReachIsOneLineAndKept()
{
    const QList<Conversation> stored = someConversations();
    m_memory->setValue(HistoryStore::historyKey, encodeConversations(stored));
    m_memory->setReadFailure(u"sin permiso"_s);
    const Conversation untouched{QUuid::createUuid(), defaultConversationTitle, {}};
    const Conversation begun{QUuid::createUuid(), u"¿Y ahora?"_s, stored.first().messages};
    {
        StandardOutputCapture output;
        const auto store = openStore();
        HistoryStore historyStore(store.get());
        QCOMPARE(historyStore.load(), QList<Conversation>());
        QCOMPARE(output.text(), "Error cargando historial: sin permiso\n");
        historyStore.save({untouched});
        QVERIFY(!store->flush());
        QVERIFY(!store->flush());
        QCOMPARE(output.text(),
                 "Error cargando historial: sin permiso\nError guardando historial: sin permiso\n");
        QCOMPARE(m_memory->value(HistoryStore::historyKey),
                 PreferenceValue(encodeConversations(stored)));

        m_memory->setReadFailure(std::nullopt);
        QVERIFY(store->flush());
        QCOMPARE(m_memory->value(HistoryStore::historyKey),
                 PreferenceValue(encodeConversations(stored)));
        historyStore.save({untouched, begun});
    }
    const auto store = openStore();
    QCOMPARE(HistoryStore(store.get()).load(), QList<Conversation>{begun} + stored);
}

void HistoryStoreTest::aDocumentOutOfReachCanBeCleared()
{
    m_memory->setValue(HistoryStore::historyKey, encodeConversations(someConversations()));
    m_memory->setReadFailure(u"sin permiso"_s);
    const QList<Conversation> fresh{{QUuid::createUuid(), defaultConversationTitle, {}}};
    StandardOutputCapture output;
    const auto store = openStore();
    HistoryStore historyStore(store.get());
    QCOMPARE(historyStore.load(), QList<Conversation>());
    historyStore.remove();
    historyStore.save(fresh);
    m_memory->setReadFailure(std::nullopt);
    QVERIFY(store->flush());
    QCOMPARE(m_memory->value(HistoryStore::historyKey),
             PreferenceValue(encodeConversations(fresh)));
}

void HistoryStoreTest::aCorruptDocumentOutOfReachIsReplaced()
{
    m_memory->setValue(HistoryStore::historyKey, QByteArray("[{]"));
    m_memory->setReadFailure(u"sin permiso"_s);
    StandardOutputCapture output;
    const auto store = openStore();
    HistoryStore historyStore(store.get());
    QCOMPARE(historyStore.load(), QList<Conversation>());
    historyStore.save(someConversations());
    m_memory->setReadFailure(std::nullopt);
    for (int saves = 0; saves < 2; ++saves) {
        QVERIFY(store->flush());
        historyStore.save(someConversations());
    }
    QCOMPARE(historyStore.load().size(), 2);
    QCOMPARE(output.text().count("Error cargando historial: JSON no válido en el byte 2\n"), 1);
}

void HistoryStoreTest::aDamagedStoreIsOneLine()
{
    m_memory->setValue(HistoryStore::historyKey, encodeConversations(someConversations()));
    m_memory->lose();
    StandardOutputCapture output;
    {
        const auto store = openStore();
        HistoryStore historyStore(store.get());
        QCOMPARE(historyStore.load(), QList<Conversation>());
        historyStore.save(someConversations());
    }
    QCOMPARE(output.text(), "Error cargando historial: lost\n");
}

void HistoryStoreTest::aLostStoreIsOneLineAndWrittenAnew()
{
    const QByteArray document = encodeConversations(someConversations());
    m_memory->setValue(HistoryStore::historyKey, document);
    StandardOutputCapture output;
    {
        const auto store = openStore();
        HistoryStore historyStore(store.get());
        QCOMPARE(historyStore.load().size(), 2);
        m_memory->lose();
        store->setString(u"text"_s, u"after"_s);
        QVERIFY(store->flush());
        store->setString(u"text"_s, u"later"_s);
    }
    QCOMPARE(output.text(), "Error guardando historial: lost\n");
    QCOMPARE(m_memory->value(HistoryStore::historyKey), PreferenceValue(document));
}

QTEST_GUILESS_MAIN(HistoryStoreTest)
#include "HistoryStoreTest.moc"
