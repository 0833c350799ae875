#include "PreferenceStore.h"

#include "MemoryPreferenceBackend.h"
#include "SettingsPreferenceBackend.h"
#include "SqlitePreferenceBackend.h"

#include <QDataStream>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

PreferenceStore::DataSource constant(const QByteArray &bytes)
{
    return [bytes] { return bytes; };
}

/// A value whose evaluation lasts until a test says so.
class SlowValue
{
public:
    explicit SlowValue(QByteArray bytes)
        : m_bytes(std::move(bytes))
    { }

    PreferenceStore::DataSource source()
    {
        return [this] {
            m_started.release();
            m_mayEnd.acquire();
            return m_bytes;
        };
    }
    void waitForStart() { m_started.acquire(); }
    void end() { m_mayEnd.release(); }

private:
    QByteArray m_bytes;
    QSemaphore m_started;
    QSemaphore m_mayEnd;
};

bool readSettings(QIODevice &device, QSettings::SettingsMap &map)
{
    QDataStream stream(&device);
    stream >> map;
    return stream.status() == QDataStream::Ok;
}

bool writeSettings(QIODevice &device, const QSettings::SettingsMap &map)
{
    QDataStream stream(&device);
    stream << map;
    return stream.status() == QDataStream::Ok;
}

std::unique_ptr<PreferenceBackend> makeSqlite(const QString &folder)
{
    return std::make_unique<SqlitePreferenceBackend>(folder + u"/data/preferences.sqlite"_s);
}

/// A file format that keeps the types of values apart, as the user defaults do.
std::unique_ptr<PreferenceBackend> makeSettings(const QString &folder)
{
    static const QSettings::Format format
        = QSettings::registerFormat(u"typed"_s, readSettings, writeSettings);
    return std::make_unique<SettingsPreferenceBackend>([folder] {
        return std::make_unique<QSettings>(folder + u"/data/preferences.typed"_s, format);
    });
}

using MakeBackend = std::unique_ptr<PreferenceBackend> (*)(const QString &folder);

} // namespace

Q_DECLARE_METATYPE(MakeBackend)

class PreferenceStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Over each back-end.
    void keepsValues_data() { backends(); }
    void keepsValues();
    void keepsTypesApart_data() { backends(); }
    void keepsTypesApart();
    void keepsEmptyValues_data() { backends(); }
    void keepsEmptyValues();
    void removes_data() { backends(); }
    void removes();
    void keepsTheNewestValue_data() { backends(); }
    void keepsTheNewestValue();
    void keepsLargeValues_data() { backends(); }
    void keepsLargeValues();
    void keepsManyKeys_data() { backends(); }
    void keepsManyKeys();
    void commitsAgainAfterAFailure_data() { backends(); }
    void commitsAgainAfterAFailure();

    // Over memory.
    void readsWhatIsPending();
    void tellsEveryChange();
    void evaluatesOffTheCallingThread();
    void coalesces();
    void reportsAFailureOnce();
    void retriesByItself();
    void retriesWithTheNextChange();
    void aNewerValueWinsOverAFailedOne();
    void triesOnceMoreAtTheEnd();
    void textsThatCannotBeReadStay();
    void textsReadLateAreTold();
    void aTextReadLateStaysUntilItIsTold();
    void bytesThatCannotBeReadStay();
    void bytesReadLateAreMergedWithEveryValue();
    void bytesReadAtLastAreTheReaders();
    void theReadFailureEndsOnceAllIsRead();
    void aRemovalNeedNotReadFirst();
    void whatIsNeverReadStaysAtTheEnd();
    void aLostStoreBeginsAnewWithAllThatIsHeld();
    void aStoreLostWhileItIsReadIsWrittenAtOnce();
    void aLostStoreKeepsWhatCouldOnlyBeReadLate();

private:
    static void backends();
};

void PreferenceStoreTest::backends()
{
    QTest::addColumn<MakeBackend>("makeBackend");
    QTest::newRow("SQLite") << MakeBackend(makeSqlite);
    QTest::newRow("settings") << MakeBackend(makeSettings);
}

void PreferenceStoreTest::keepsValues()
{
    QFETCH(MakeBackend, makeBackend);
    const QTemporaryDir folder;
    QByteArray everyByte;
    for (int i = 0; i < 256; ++i)
        everyByte.append(char(i));
    {
        PreferenceStore store(makeBackend(folder.path()));
        QCOMPARE(store.data(u"a.bytes"_s), std::nullopt);
        QCOMPARE(store.string(u"a.text"_s), std::nullopt);
        QCOMPARE(store.boolean(u"a.flag"_s), std::nullopt);
        store.setData(u"a.bytes"_s, constant(everyByte));
        store.setString(u"a.text"_s, u"Ñandú \U0001FAC0 \"'\n"_s);
        store.setBoolean(u"a.flag"_s, true);
        store.setBoolean(u"a.other.flag"_s, false);
    }
    PreferenceStore store(makeBackend(folder.path()));
    QCOMPARE(store.data(u"a.bytes"_s), everyByte);
    QCOMPARE(store.string(u"a.text"_s), u"Ñandú \U0001FAC0 \"'\n"_s);
    QCOMPARE(store.boolean(u"a.flag"_s), true);
    QCOMPARE(store.boolean(u"a.other.flag"_s), false);
    QCOMPARE(store.string(u"A.text"_s), std::nullopt);
}

void PreferenceStoreTest::keepsTypesApart()
{
    QFETCH(MakeBackend, makeBackend);
    const QTemporaryDir folder;
    const auto check = [](const PreferenceStore &store) {
        QCOMPARE(store.string(u"bytes"_s), std::nullopt);
        QCOMPARE(store.boolean(u"bytes"_s), std::nullopt);
        QCOMPARE(store.data(u"text"_s), std::nullopt);
        QCOMPARE(store.boolean(u"text"_s), std::nullopt);
        QCOMPARE(store.data(u"flag"_s), std::nullopt);
        QCOMPARE(store.string(u"flag"_s), std::nullopt);
        QCOMPARE(store.string(u"changed"_s), std::nullopt);
        QCOMPARE(store.data(u"changed"_s), "now bytes");
    };
    {
        PreferenceStore store(makeBackend(folder.path()));
        store.setData(u"bytes"_s, constant("true"));
        store.setString(u"text"_s, u"true"_s);
        store.setBoolean(u"flag"_s, true);
        store.setString(u"changed"_s, u"a text"_s);
        QVERIFY(store.flush());
        store.setData(u"changed"_s, constant("now bytes"));
        check(store);
    }
    check(PreferenceStore(makeBackend(folder.path())));
}

void PreferenceStoreTest::keepsEmptyValues()
{
    QFETCH(MakeBackend, makeBackend);
    const QTemporaryDir folder;
    {
        PreferenceStore store(makeBackend(folder.path()));
        store.setData(u"null bytes"_s, constant({}));
        store.setData(u"empty bytes"_s, constant(""));
        store.setString(u"null text"_s, QString());
        store.setString(u"empty text"_s, u""_s);
    }
    const PreferenceStore store(makeBackend(folder.path()));
    QCOMPARE(store.data(u"null bytes"_s), QByteArray());
    QCOMPARE(store.data(u"empty bytes"_s), QByteArray());
    QCOMPARE(store.string(u"null text"_s), QString());
    QCOMPARE(store.string(u"empty text"_s), QString());
}

void PreferenceStoreTest::removes()
{
    QFETCH(MakeBackend, makeBackend);
    const QTemporaryDir folder;
    {
        PreferenceStore store(makeBackend(folder.path()));
        store.setData(u"bytes"_s, constant("1"));
        store.setString(u"text"_s, u"1"_s);
        store.setString(u"kept"_s, u"1"_s);
        store.remove(u"never there"_s);
        QVERIFY(store.flush());
        store.remove(u"bytes"_s);
        store.remove(u"text"_s);
        QCOMPARE(store.data(u"bytes"_s), std::nullopt);
        QCOMPARE(store.string(u"text"_s), std::nullopt);
    }
    const PreferenceStore store(makeBackend(folder.path()));
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    QCOMPARE(store.string(u"text"_s), std::nullopt);
    QCOMPARE(store.string(u"kept"_s), u"1"_s);
}

void PreferenceStoreTest::keepsTheNewestValue()
{
    QFETCH(MakeBackend, makeBackend);
    const QTemporaryDir folder;
    {
        PreferenceStore store(makeBackend(folder.path()));
        for (int i = 0; i <= 1000; ++i) {
            store.setData(u"bytes"_s, constant(QByteArray::number(i)));
            QCOMPARE(store.data(u"bytes"_s), QByteArray::number(i));
            if (i % 100 == 0)
                QVERIFY(store.flush());
        }
        store.remove(u"bytes"_s);
        store.setData(u"bytes"_s, constant("last"));
    }
    QCOMPARE(PreferenceStore(makeBackend(folder.path())).data(u"bytes"_s), "last");
}

void PreferenceStoreTest::keepsLargeValues()
{
    QFETCH(MakeBackend, makeBackend);
    const QTemporaryDir folder;
    const QByteArray large = QByteArray("0123456789abcdef").repeated(1 << 17);
    for (const qsizetype size : {large.size(), qsizetype(70'000), large.size() - 1, qsizetype(1)}) {
        {
            PreferenceStore store(makeBackend(folder.path()));
            store.setData(u"bytes"_s, constant(large.last(size)));
        }
        QCOMPARE(PreferenceStore(makeBackend(folder.path())).data(u"bytes"_s), large.last(size));
    }
}

void PreferenceStoreTest::keepsManyKeys()
{
    QFETCH(MakeBackend, makeBackend);
    const QTemporaryDir folder;
    {
        PreferenceStore store(makeBackend(folder.path()));
        for (int i = 0; i < 500; ++i)
            store.setString(u"key.%1"_s.arg(i), QString::number(i));
    }
    const PreferenceStore store(makeBackend(folder.path()));
    for (int i = 0; i < 500; ++i)
        QCOMPARE(store.string(u"key.%1"_s.arg(i)), QString::number(i));
}

void PreferenceStoreTest::commitsAgainAfterAFailure()
{
    QFETCH(MakeBackend, makeBackend);
    const QTemporaryDir folder;
    QFile obstacle(folder.filePath(u"data"_s));
    QVERIFY(obstacle.open(QFile::WriteOnly));
    obstacle.close();
    {
        PreferenceStore store(makeBackend(folder.path()));
        const QSignalSpy failures(&store, &PreferenceStore::commitFailed);
        QCOMPARE(store.data(u"bytes"_s), std::nullopt);
        store.setData(u"bytes"_s, constant("1"));
        store.setString(u"text"_s, u"1"_s);
        QVERIFY(!store.flush());
        QVERIFY(!store.flush());
        QCOMPARE(failures.size(), 1);
        QVERIFY(obstacle.remove());
        QVERIFY(store.flush());
        QCOMPARE(failures.size(), 1);
    }
    const PreferenceStore store(makeBackend(folder.path()));
    QCOMPARE(store.data(u"bytes"_s), "1");
    QCOMPARE(store.string(u"text"_s), u"1"_s);
}

void PreferenceStoreTest::readsWhatIsPending()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"bytes"_s, QByteArray("stored"));
    memory->setValue(u"text"_s, u"stored"_s);
    memory->setFailure(u"full"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    QCOMPARE(store.data(u"bytes"_s), "stored");
    QCOMPARE(store.string(u"text"_s), u"stored"_s);
    store.setData(u"bytes"_s, constant("pending"));
    store.setString(u"text"_s, u"pending"_s);
    QCOMPARE(store.data(u"bytes"_s), "pending");
    QVERIFY(!store.flush());
    QCOMPARE(store.data(u"bytes"_s), "pending");
    QCOMPARE(store.string(u"text"_s), u"pending"_s);
    store.remove(u"bytes"_s);
    store.remove(u"text"_s);
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    QCOMPARE(store.string(u"text"_s), std::nullopt);
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("stored")));
}

void PreferenceStoreTest::tellsEveryChange()
{
    PreferenceStore store(
        std::make_unique<MemoryPreferenceBackend>(std::make_shared<PreferenceMemory>()));
    QStringList keys;
    connect(&store, &PreferenceStore::changed, this, [&](const QString &key) {
        keys.append(key);
        if (key == u"text"_s)
            QCOMPARE(store.string(key), u"seen"_s);
    });
    store.setData(u"bytes"_s, constant("1"));
    store.setString(u"text"_s, u"seen"_s);
    store.setString(u"text"_s, u"seen"_s);
    store.setBoolean(u"flag"_s, true);
    store.remove(u"flag"_s);
    QCOMPARE(keys, QStringList({u"bytes"_s, u"text"_s, u"text"_s, u"flag"_s, u"flag"_s}));
}

void PreferenceStoreTest::evaluatesOffTheCallingThread()
{
    PreferenceStore store(
        std::make_unique<MemoryPreferenceBackend>(std::make_shared<PreferenceMemory>()));
    QThread *evaluatedOn = nullptr;
    store.setData(u"bytes"_s, [&evaluatedOn] {
        evaluatedOn = QThread::currentThread();
        return QByteArray("1");
    });
    QVERIFY(store.flush());
    QVERIFY(evaluatedOn);
    QVERIFY(evaluatedOn != QThread::currentThread());
}

void PreferenceStoreTest::coalesces()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    SlowValue slow("1");
    store.setData(u"slow"_s, slow.source());
    slow.waitForStart();
    int evaluations = 0;
    for (int i = 0; i < 100; ++i)
        store.setData(u"bytes"_s, [&evaluations, i] {
            ++evaluations;
            return QByteArray::number(i);
        });
    store.setString(u"text"_s, u"1"_s);
    slow.end();
    QVERIFY(store.flush());
    QCOMPARE(evaluations, 1);
    QCOMPARE(memory->attempts().size(), 2);
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("99")));
    QCOMPARE(memory->value(u"text"_s), PreferenceValue(u"1"_s));
}

void PreferenceStoreTest::reportsAFailureOnce()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    const QSignalSpy failures(&store, &PreferenceStore::commitFailed);

    memory->setFailure(u"full"_s);
    store.setString(u"text"_s, u"1"_s);
    QTRY_COMPARE(failures.size(), 1);
    QCOMPARE(failures.first().first(), u"full"_s);
    store.setString(u"text"_s, u"2"_s);
    QVERIFY(!store.flush());
    QVERIFY(!store.flush());
    QCOMPARE(failures.size(), 1);

    memory->setFailure(std::nullopt);
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"text"_s), PreferenceValue(u"2"_s));
    QCOMPARE(failures.size(), 1);

    memory->setFailure(u"full again"_s);
    store.setString(u"text"_s, u"3"_s);
    QVERIFY(!store.flush());
    QCOMPARE(failures.size(), 2);
    QCOMPARE(failures.last().first(), u"full again"_s);
}

void PreferenceStoreTest::retriesByItself()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setFailure(u"full"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    store.setString(u"text"_s, u"1"_s);
    QTRY_COMPARE_WITH_TIMEOUT(memory->attempts().size(), 3, 20'000);
    const auto attempts = memory->attempts();
    QVERIFY(attempts[1] - attempts[0] >= 1s);
    QVERIFY(attempts[2] - attempts[1] >= 2s);
    memory->setFailure(std::nullopt);
    QTRY_COMPARE_WITH_TIMEOUT(memory->value(u"text"_s), PreferenceValue(u"1"_s), 20'000);
}

void PreferenceStoreTest::retriesWithTheNextChange()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setFailure(u"full"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    store.setString(u"first"_s, u"1"_s);
    QTRY_COMPARE(memory->attempts().size(), 1);
    memory->setFailure(std::nullopt);
    store.setString(u"second"_s, u"2"_s);
    QTRY_COMPARE_WITH_TIMEOUT(memory->attempts().size(), 2, 900);
    QCOMPARE(memory->value(u"first"_s), PreferenceValue(u"1"_s));
    QCOMPARE(memory->value(u"second"_s), PreferenceValue(u"2"_s));
}

void PreferenceStoreTest::aNewerValueWinsOverAFailedOne()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setFailure(u"full"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    SlowValue older("older");
    store.setData(u"bytes"_s, older.source());
    older.waitForStart();
    store.setData(u"bytes"_s, constant("newer"));
    older.end();
    QVERIFY(!store.flush());
    memory->setFailure(std::nullopt);
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("newer")));
}

void PreferenceStoreTest::triesOnceMoreAtTheEnd()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    {
        memory->setFailure(u"full"_s);
        PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
        store.setString(u"text"_s, u"1"_s);
        QVERIFY(!store.flush());
        memory->setFailure(std::nullopt);
    }
    QCOMPARE(memory->value(u"text"_s), PreferenceValue(u"1"_s));
    {
        memory->setFailure(u"full"_s);
        PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
        store.setString(u"text"_s, u"2"_s);
    }
    QCOMPARE(memory->value(u"text"_s), PreferenceValue(u"1"_s));
}

void PreferenceStoreTest::textsThatCannotBeReadStay()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"identifier"_s, u"stored"_s);
    memory->setValue(u"flag"_s, false);
    memory->setReadFailure(u"no permission"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    const QSignalSpy failures(&store, &PreferenceStore::commitFailed);
    QCOMPARE(store.string(u"identifier"_s), std::nullopt);
    QCOMPARE(store.readFailure(), u"no permission"_s);
    store.setString(u"identifier"_s, u"made anew"_s);
    store.setBoolean(u"flag"_s, true);
    store.setString(u"other"_s, u"set"_s);
    QCOMPARE(store.string(u"identifier"_s), u"made anew"_s);
    QVERIFY(!store.flush());
    QCOMPARE(failures.size(), 1);
    QCOMPARE(failures.first().first(), u"no permission"_s);
    QCOMPARE(memory->attempts().size(), 0);

    // A commit that fails after everything was read must not lose what was read.
    memory->setReadFailure(std::nullopt);
    memory->setFailure(u"full"_s);
    QVERIFY(!store.flush());
    memory->setFailure(std::nullopt);
    QVERIFY(store.flush());
    QCOMPARE(store.readFailure(), std::nullopt);
    QCOMPARE(memory->value(u"identifier"_s), PreferenceValue(u"stored"_s));
    QCOMPARE(memory->value(u"flag"_s), PreferenceValue(false));
    QCOMPARE(memory->value(u"other"_s), PreferenceValue(u"set"_s));

    store.setBoolean(u"flag"_s, true);
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"flag"_s), PreferenceValue(true));
}

void PreferenceStoreTest::textsReadLateAreTold()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"identifier"_s, u"stored"_s);
    memory->setValue(u"flag"_s, false);
    memory->setReadFailure(u"busy"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    QCOMPARE(store.string(u"identifier"_s), std::nullopt);
    store.setBoolean(u"flag"_s, true);
    store.setString(u"other"_s, u"set"_s);
    QVERIFY(!store.flush());

    // Without a further change or flush.
    const QSignalSpy changes(&store, &PreferenceStore::changed);
    memory->setReadFailure(std::nullopt);
    QTRY_COMPARE_WITH_TIMEOUT(changes.size(), 2, 20'000);
    const QStringList keys{changes[0].first().toString(), changes[1].first().toString()};
    QVERIFY(keys.contains(u"identifier"_s) && keys.contains(u"flag"_s));
    QCOMPARE(store.string(u"identifier"_s), u"stored"_s);
    QCOMPARE(store.boolean(u"flag"_s), false);
    QCOMPARE(store.string(u"other"_s), u"set"_s);
    QVERIFY(store.flush());
    QCOMPARE(changes.size(), 2);
}

void PreferenceStoreTest::aTextReadLateStaysUntilItIsTold()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"identifier"_s, u"stored"_s);
    memory->setReadFailure(u"busy"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    QCOMPARE(store.string(u"identifier"_s), std::nullopt);
    memory->setReadFailure(std::nullopt);

    // All is read by the time that a value is evaluated, and this thread has not been told yet.
    SlowValue slow("1");
    store.setData(u"slow"_s, slow.source());
    slow.waitForStart();
    QCOMPARE(store.string(u"identifier"_s), std::nullopt);
    store.setString(u"identifier"_s, u"made anew"_s);
    slow.end();
    QVERIFY(store.flush());
    QCOMPARE(store.string(u"identifier"_s), u"stored"_s);
    QCOMPARE(memory->value(u"identifier"_s), PreferenceValue(u"stored"_s));

    store.setString(u"identifier"_s, u"changed"_s);
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"identifier"_s), PreferenceValue(u"changed"_s));
}

void PreferenceStoreTest::bytesThatCannotBeReadStay()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    QVERIFY(store.flush());
    QCOMPARE(store.string(u"text"_s), std::nullopt);
    memory->setValue(u"bytes"_s, QByteArray("stored"));
    memory->setReadFailure(u"busy"_s);
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    QCOMPARE(store.data(u"none"_s), std::nullopt);
    QCOMPARE(store.readFailure(), u"busy"_s);
    store.setData(u"bytes"_s, constant("begun"));
    store.setData(u"none"_s, constant("begun"));
    QVERIFY(!store.flush());
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("stored")));

    memory->setReadFailure(std::nullopt);
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("stored")));
    QCOMPARE(memory->value(u"none"_s), PreferenceValue(QByteArray("begun")));
}

void PreferenceStoreTest::bytesReadLateAreMergedWithEveryValue()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"bytes"_s, QByteArray("stored"));
    memory->setReadFailure(u"busy"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    store.setMerge(u"bytes"_s, [](const QByteArray &set, const QByteArray &stored) {
        return set + '+' + stored;
    });
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    store.setData(u"bytes"_s, constant("one"));
    QVERIFY(!store.flush());
    memory->setReadFailure(std::nullopt);
    for (const QByteArray &set : {QByteArray("two"), QByteArray("three")}) {
        store.setData(u"bytes"_s, constant(set));
        QVERIFY(store.flush());
        QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(set + "+stored"));
    }
    store.remove(u"bytes"_s);
    store.setData(u"bytes"_s, constant("alone"));
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("alone")));
}

void PreferenceStoreTest::bytesReadAtLastAreTheReaders()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"bytes"_s, QByteArray("stored"));
    memory->setValue(u"flag"_s, false);
    memory->setReadFailure(u"busy"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    QCOMPARE(store.boolean(u"flag"_s), std::nullopt);
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    memory->setReadFailure(std::nullopt);
    QCOMPARE(store.data(u"bytes"_s), "stored");
    store.setData(u"bytes"_s, constant("changed"));
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("changed")));
    store.setBoolean(u"flag"_s, true);
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"flag"_s), PreferenceValue(true));
}

void PreferenceStoreTest::theReadFailureEndsOnceAllIsRead()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setReadFailure(u"busy"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    QCOMPARE(store.string(u"text"_s), std::nullopt);
    QCOMPARE(store.readFailure(), u"busy"_s);
    memory->setReadFailure(std::nullopt);
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    QCOMPARE(store.readFailure(), std::nullopt);

    // Reading one key says nothing about another that was not read.
    memory->setReadFailure(u"busy again"_s);
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    memory->setReadFailure(std::nullopt);
    QCOMPARE(store.data(u"other"_s), std::nullopt);
    QCOMPARE(store.readFailure(), u"busy again"_s);
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    QCOMPARE(store.readFailure(), std::nullopt);
}

void PreferenceStoreTest::aRemovalNeedNotReadFirst()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"bytes"_s, QByteArray("stored"));
    memory->setReadFailure(u"busy"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    store.setData(u"bytes"_s, constant("begun"));
    QVERIFY(!store.flush());
    store.remove(u"bytes"_s);
    store.setData(u"bytes"_s, constant("fresh"));
    QVERIFY(!store.flush());
    memory->setReadFailure(std::nullopt);
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("fresh")));
}

void PreferenceStoreTest::whatIsNeverReadStaysAtTheEnd()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"bytes"_s, QByteArray("stored"));
    memory->setReadFailure(u"busy"_s);
    {
        PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
        QCOMPARE(store.data(u"bytes"_s), std::nullopt);
        store.setData(u"bytes"_s, constant("begun"));
    }
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("stored")));
}

void PreferenceStoreTest::aLostStoreBeginsAnewWithAllThatIsHeld()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"identifier"_s, u"stored"_s);
    memory->setValue(u"bytes"_s, QByteArray("stored"));
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    QSignalSpy repairs(&store, &PreferenceStore::repairedWhileCommitting);
    QCOMPARE(store.data(u"bytes"_s), "stored");
    store.remember(u"bytes"_s, constant("stored"));
    store.setData(u"other bytes"_s, constant("set"));
    store.setString(u"removed"_s, u"set"_s);
    store.setBoolean(u"flag"_s, true);
    QVERIFY(store.flush());
    store.remove(u"removed"_s);
    QVERIFY(store.flush());

    memory->lose();
    store.setString(u"text"_s, u"set"_s);
    QVERIFY(store.flush());
    QCOMPARE(repairs.size(), 1);
    QCOMPARE(repairs.first().first(), u"lost"_s);
    auto values = memory->values();
    values.removeIf(
        [](const auto &entry) { return std::holds_alternative<std::monostate>(entry.value()); });
    QCOMPARE(values,
             (QHash<QString, PreferenceValue>{{u"identifier"_s, u"stored"_s},
                                              {u"bytes"_s, QByteArray("stored")},
                                              {u"other bytes"_s, QByteArray("set")},
                                              {u"flag"_s, true},
                                              {u"text"_s, u"set"_s}}));

    // A value set after it was read wins.
    store.setData(u"bytes"_s, constant("newer"));
    store.remember(u"bytes"_s, constant("older"));
    QVERIFY(store.flush());
    store.remember(u"bytes"_s, constant("older"));
    memory->lose();
    store.setString(u"text"_s, u"again"_s);
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("newer")));
    QCOMPARE(repairs.size(), 2);
}

void PreferenceStoreTest::aStoreLostWhileItIsReadIsWrittenAtOnce()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"identifier"_s, u"stored"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    const QSignalSpy repairs(&store, &PreferenceStore::repairedWhileReading);
    QCOMPARE(store.string(u"identifier"_s), u"stored"_s);
    memory->lose();
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    QVERIFY(store.flush());
    QCOMPARE(repairs.size(), 1);
    QCOMPARE(memory->value(u"identifier"_s), PreferenceValue(u"stored"_s));
}

void PreferenceStoreTest::aLostStoreKeepsWhatCouldOnlyBeReadLate()
{
    const auto memory = std::make_shared<PreferenceMemory>();
    memory->setValue(u"bytes"_s, QByteArray("stored"));
    memory->setValue(u"merged bytes"_s, QByteArray("stored"));
    memory->setReadFailure(u"busy"_s);
    PreferenceStore store(std::make_unique<MemoryPreferenceBackend>(memory));
    store.setMerge(u"merged bytes"_s, [](const QByteArray &set, const QByteArray &stored) {
        return set + '+' + stored;
    });
    QCOMPARE(store.data(u"bytes"_s), std::nullopt);
    QCOMPARE(store.data(u"merged bytes"_s), std::nullopt);
    store.setData(u"merged bytes"_s, constant("set"));
    QVERIFY(!store.flush());
    memory->setReadFailure(std::nullopt);
    QVERIFY(store.flush());
    memory->lose();
    store.setString(u"text"_s, u"after"_s);
    QVERIFY(store.flush());
    QCOMPARE(memory->value(u"bytes"_s), PreferenceValue(QByteArray("stored")));
    QCOMPARE(memory->value(u"merged bytes"_s), PreferenceValue(QByteArray("set+stored")));
}

QTEST_GUILESS_MAIN(PreferenceStoreTest)
#include "PreferenceStoreTest.moc"
