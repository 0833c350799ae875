#include "StoredPreference.h"

#include "MemoryPreferenceBackend.h"
#include "PreferenceStore.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString textKey = u"test.text"_s;
const QString flagKey = u"test.flag"_s;

} // namespace

/// Holds a preference of each type.
class Owner : public QObject
{
    Q_OBJECT

public:
    explicit Owner(PreferenceStore *store)
        : text(store, textKey, u"usual"_s, this, &Owner::textChanged)
        , flag(store, flagKey, true, this, &Owner::flagChanged)
    { }

    StoredPreference<QString> text;
    StoredPreference<bool> flag;

Q_SIGNALS:
    void textChanged();
    void flagChanged();
};

class StoredPreferenceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_memory = std::make_shared<PreferenceMemory>();
        m_store = std::make_unique<PreferenceStore>(
            std::make_unique<MemoryPreferenceBackend>(m_memory));
    }
    void cleanup() { m_store.reset(); }

    void yieldsDefaultsWithoutWritingThem();
    void storesUnderItsKey();
    void yieldsWhatIsStored();
    void yieldsDefaultsForOtherTypes();
    void aChangeReachesEveryObject();
    void tellsOnlyRealChanges();

private:
    std::shared_ptr<PreferenceMemory> m_memory;
    std::unique_ptr<PreferenceStore> m_store;
};

void StoredPreferenceTest::yieldsDefaultsWithoutWritingThem()
{
    const Owner owner(m_store.get());
    QCOMPARE(owner.text.value(), u"usual"_s);
    QCOMPARE(owner.flag.value(), true);
    QVERIFY(m_store->flush());
    QVERIFY(m_memory->values().isEmpty());
}

void StoredPreferenceTest::storesUnderItsKey()
{
    Owner owner(m_store.get());
    owner.text.set(u"dark"_s);
    owner.flag.set(false);
    QVERIFY(m_store->flush());
    const QHash<QString, PreferenceValue> expected{{textKey, u"dark"_s}, {flagKey, false}};
    QCOMPARE(m_memory->values(), expected);
}

void StoredPreferenceTest::yieldsWhatIsStored()
{
    m_store->setString(textKey, u""_s);
    m_store->setBoolean(flagKey, false);
    const Owner owner(m_store.get());
    QCOMPARE(owner.text.value(), u""_s);
    QCOMPARE(owner.flag.value(), false);
}

void StoredPreferenceTest::yieldsDefaultsForOtherTypes()
{
    m_store->setData(textKey, [] { return QByteArray("large"); });
    m_store->setString(flagKey, u"false"_s);
    const Owner owner(m_store.get());
    QCOMPARE(owner.text.value(), u"usual"_s);
    QCOMPARE(owner.flag.value(), true);
}

void StoredPreferenceTest::aChangeReachesEveryObject()
{
    Owner one(m_store.get());
    const Owner other(m_store.get());
    const QSignalSpy text(&other, &Owner::textChanged);
    const QSignalSpy flag(&other, &Owner::flagChanged);

    one.text.set(u"dark"_s);
    QCOMPARE(other.text.value(), u"dark"_s);
    QCOMPARE(text.size(), 1);
    QCOMPARE(flag.size(), 0);
    one.flag.set(false);
    QCOMPARE(other.flag.value(), false);
    QCOMPARE(text.size(), 1);
    QCOMPARE(flag.size(), 1);
}

void StoredPreferenceTest::tellsOnlyRealChanges()
{
    Owner owner(m_store.get());
    const QSignalSpy text(&owner, &Owner::textChanged);
    const QSignalSpy flag(&owner, &Owner::flagChanged);

    owner.text.set(u"usual"_s);
    owner.flag.set(true);
    m_store->remove(textKey);
    m_store->setString(u"test.other"_s, u"dark"_s);
    QCOMPARE(text.size(), 0);
    QCOMPARE(flag.size(), 0);

    owner.text.set(u"dark"_s);
    owner.text.set(u"dark"_s);
    QCOMPARE(text.size(), 1);
    m_store->remove(textKey);
    QCOMPARE(owner.text.value(), u"usual"_s);
    QCOMPARE(text.size(), 2);
}

QTEST_GUILESS_MAIN(StoredPreferenceTest)
#include "StoredPreferenceTest.moc"
