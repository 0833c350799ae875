#include "SqlitePreferenceBackend.h"

#include "DiskCalls.h"
#include "FileStamp.h"
#include "PreferenceStore.h"
#include "SqliteConnection.h"
#include "UserPreferenceStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray randomBytes(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = char(QRandomGenerator::global()->generate());
    return bytes;
}

PreferenceStore::DataSource constant(const QByteArray &bytes)
{
    return [bytes] { return bytes; };
}

std::unique_ptr<PreferenceStore> openStore(const QString &path)
{
    return std::make_unique<PreferenceStore>(std::make_unique<SqlitePreferenceBackend>(path));
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes `bytes` at `offset` of a file, past SQLite, so that the time of its last change is
/// another.
void overwrite(const QString &path, qint64 offset, const QByteArray &bytes)
{
    const auto before = FileStamp::of(path);
    do {
        QFile file(path);
        QVERIFY(file.open(QFile::ReadWrite));
        QVERIFY(file.seek(offset));
        QCOMPARE(file.write(bytes), bytes.size());
    } while (FileStamp::of(path) == before);
}

int mode(const QString &path)
{
    struct stat status = {};
    return stat(qPrintable(path), &status) == 0 ? int(status.st_mode & 07777) : -1;
}

int appendRow(void *rows, int columns, char **values, char ** /*names*/)
{
    QStringList row;
    for (int column = 0; column < columns; ++column)
        row.append(QString::fromUtf8(values[column]));
    static_cast<QStringList *>(rows)->append(row.join(u'|'));
    return 0;
}

/// What another program reads from the database: rows of text, columns joined by a bar, or the
/// description of a failure.
QStringList query(const QString &path, const QString &statement)
{
    QStringList rows;
    sqlite3 *database = nullptr;
    if (sqlite3_open(qPrintable(path), &database) != SQLITE_OK
        || sqlite3_exec(database, statement.toUtf8().constData(), appendRow, &rows, nullptr)
            != SQLITE_OK)
        rows.append(QString::fromUtf8(sqlite3_errmsg(database)));
    sqlite3_close(database);
    return rows;
}

/// Another program's connection, on which `statements` were run.
SqliteConnection otherProgram(const QString &path, const char *statements)
{
    auto opened = SqliteConnection::open(path, SqliteConnection::Access::readWrite);
    auto *connection = std::get_if<SqliteConnection>(&opened);
    if (!connection)
        qFatal("The database cannot be opened");
    if (const auto error = connection->execute(statements))
        qFatal("%s", qPrintable(error->description));
    return std::move(*connection);
}

constexpr auto unfinishedReading = "BEGIN; SELECT value FROM preferences";

/// Runs as a user who is not root, so that file modes have an effect.
class OrdinaryUser
{
public:
    explicit OrdinaryUser(const QString &folder)
    {
        constexpr uid_t nobody = 65534;
        if (m_original == 0)
            m_isOrdinary = chown(qPrintable(folder), nobody, nobody) == 0 && seteuid(nobody) == 0;
    }
    ~OrdinaryUser()
    {
        if (seteuid(m_original) != 0)
            qFatal("The test's own user cannot be restored");
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

    bool isOrdinary() const { return m_isOrdinary; }

private:
    uid_t m_original = geteuid();
    bool m_isOrdinary = m_original != 0;
};

/// Lets no file of this process grow beyond `bytes` while it lives, as a full disk would.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_original);
        const rlimit limit{bytes, m_original.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_original); }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_original = {};
};

/// Gives a file or folder another mode while it lives.
class Mode
{
public:
    Mode(const QString &path, mode_t mode)
        : m_path(path.toLocal8Bit())
    {
        struct stat status = {};
        if (stat(m_path.constData(), &status) != 0 || chmod(m_path.constData(), mode) != 0)
            qFatal("The mode of %s cannot be changed", m_path.constData());
        m_original = status.st_mode;
    }
    ~Mode() { chmod(m_path.constData(), m_original); }
    Mode(const Mode &) = delete;
    Mode &operator=(const Mode &) = delete;

private:
    QByteArray m_path;
    mode_t m_original = 0;
};

/// Lets no read of the database succeed while it lives.
std::shared_ptr<DiskCalls> brokenDisk(const QString &path)
{
    const QByteArray file = QFile::encodeName(QFileInfo(path).canonicalFilePath());
    return std::make_shared<DiskCalls>(file, [](const DiskCall &call) {
        return DiskAnswer{.error = call.kind == DiskCall::Kind::read ? EIO : 0};
    });
}

} // namespace

class SqlitePreferenceBackendTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_data = m_folder->filePath(u"data"_s);
        m_path = m_data + u"/preferences.sqlite"_s;
    }

    void hasTheAgreedTable();
    void readsWhatAnotherProgramWrote();
    void aWrongStorageClassIsAbsent_data();
    void aWrongStorageClassIsAbsent();
    void livesInTheUsersDataFolder();
    void ignoresARelativeDataFolder();

    void belongsToTheUserAlone_data();
    void belongsToTheUserAlone();
    void removesTheRightsOfOthers();
    void forgetsWhatWasRemoved();
    void forgetsWhatWasReplaced();

    void movesAMalformedFileAside_data();
    void movesAMalformedFileAside();
    void movesALaterDamageAside();
    void keepsAMovedFileUntilTheHistoryIsCleared();
    void losesNothingToAnotherProgram_data();
    void losesNothingToAnotherProgram();
    void keepsItsLogFromAnotherDatabase();
    void noticesAFileReplacedWhileItCommits();
    void givesUpOnAFileReplacedOverAndOver();
    void waitsUntilTheNewcomerCanBeMoved();
    void anotherProgramsCommitIsNoDamage_data();
    void anotherProgramsCommitIsNoDamage();
    void aCommitItWaitedForIsNoDamage();
    void writesStringsAnewAfterDamageToTheHistory();
    void believesNoSizeBeyondTheFile();
    void readsAfterAKilledProgram();

    void survivesAFolderThatCannotBeMade();
    void survivesSomethingElseInPlaceOfTheFile_data();
    void survivesSomethingElseInPlaceOfTheFile();
    void survivesAFullDisk();
    void survivesAReadOnlyFolder();
    void survivesAnotherProgramsLongRead();
    void keepsWhatItCannotRead_data();
    void keepsWhatItCannotRead();
    void takesNoFailedReadForDamage();
    void mergesWithAReadableFilePutInPlace();
    void mergesWithAFilePutInPlaceOfAHistoryNotRead();

private:
    QStringList filesAside() const
    {
        return QDir(m_data).entryList({u"preferences.sqlite.corrupt-*"_s},
                                      QDir::AllEntries | QDir::Hidden | QDir::System);
    }

    /// An older state of the database, which somebody keeps elsewhere.
    QString makeBackup() const
    {
        const QString path = m_folder->filePath(u"backup/preferences.sqlite"_s);
        const auto store = openStore(path);
        store->setString(u"identifier"_s, u"aulora-0"_s);
        store->setData(u"history"_s, constant("old"));
        return path;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_data;
    QString m_path;
};

void SqlitePreferenceBackendTest::hasTheAgreedTable()
{
    const auto store = openStore(m_path);
    store->setData(u"a.history"_s, constant("[]"));
    store->setString(u"b.text"_s, u"true"_s);
    store->setBoolean(u"c.yes"_s, true);
    store->setBoolean(u"d.no"_s, false);
    QVERIFY(store->flush());
    QCOMPARE(query(m_path, u"SELECT sql FROM sqlite_schema WHERE type = 'table'"_s),
             QStringList(u"CREATE TABLE preferences(key TEXT PRIMARY KEY, value)"_s));
    QCOMPARE(query(m_path, u"SELECT key, typeof(value), value FROM preferences ORDER BY key"_s),
             QStringList({u"a.history|blob|[]"_s, u"b.text|text|true"_s, u"c.yes|integer|1"_s,
                          u"d.no|integer|0"_s}));
    QCOMPARE(query(m_path, u"PRAGMA journal_mode"_s), QStringList(u"wal"_s));
}

void SqlitePreferenceBackendTest::readsWhatAnotherProgramWrote()
{
    QVERIFY(openStore(m_path)->flush());
    QCOMPARE(query(m_path,
                   u"INSERT INTO preferences VALUES('text', 'ñ'), ('yes', 1), ('no', 0), "
                   "('bytes', x'00FF')"_s),
             QStringList());
    const auto store = openStore(m_path);
    QCOMPARE(store->string(u"text"_s), u"ñ"_s);
    QCOMPARE(store->boolean(u"yes"_s), true);
    QCOMPARE(store->boolean(u"no"_s), false);
    QCOMPARE(store->data(u"bytes"_s), QByteArray("\0\xFF", 2));
}

void SqlitePreferenceBackendTest::aWrongStorageClassIsAbsent_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("real") << u"1.5"_s;
    QTest::newRow("null") << u"NULL"_s;
}

void SqlitePreferenceBackendTest::aWrongStorageClassIsAbsent()
{
    QFETCH(QString, value);
    QVERIFY(openStore(m_path)->flush());
    QCOMPARE(query(m_path, u"INSERT INTO preferences VALUES('key', %1)"_s.arg(value)),
             QStringList());
    const auto store = openStore(m_path);
    QCOMPARE(store->data(u"key"_s), std::nullopt);
    QCOMPARE(store->string(u"key"_s), std::nullopt);
    QCOMPARE(store->boolean(u"key"_s), std::nullopt);
    store->setString(u"key"_s, u"replaced"_s);
    QVERIFY(store->flush());
    QCOMPARE(query(m_path, u"SELECT value FROM preferences"_s), QStringList(u"replaced"_s));
}

void SqlitePreferenceBackendTest::livesInTheUsersDataFolder()
{
#ifdef Q_OS_MACOS
    QSKIP("macOS keeps preferences in the user defaults");
#endif
    const QByteArray original = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", m_data.toUtf8());
    {
        const auto store = makeUserPreferenceStore();
        store->setString(u"text"_s, u"1"_s);
    }
    const QString folder = userDataFolder();
    qputenv("XDG_DATA_HOME", original);
    QCOMPARE(folder, m_data + u"/aulora-ia"_s);
    QCOMPARE(query(folder + u"/preferences.sqlite"_s, u"SELECT value FROM preferences"_s),
             QStringList(u"1"_s));
    QCOMPARE(mode(folder), 0700);
}

void SqlitePreferenceBackendTest::ignoresARelativeDataFolder()
{
#ifdef Q_OS_MACOS
    QSKIP("macOS has no XDG_DATA_HOME");
#endif
    const QByteArray original = qgetenv("XDG_DATA_HOME");
    QStringList folders;
    for (const char *relative : {"", "data", "./data", "../data", "~/data"}) {
        qputenv("XDG_DATA_HOME", relative);
        folders.append(userDataFolder());
    }
    qputenv("XDG_DATA_HOME", original);
    QCOMPARE(folders, QStringList(5, QDir::homePath() + u"/.local/share/aulora-ia"_s));
}

void SqlitePreferenceBackendTest::belongsToTheUserAlone_data()
{
    QTest::addColumn<int>("mask");
    QTest::newRow("open mask") << 0;
    QTest::newRow("usual mask") << 022;
    QTest::newRow("strict mask") << 077;
    QTest::newRow("mask that withdraws from the owner") << 0200;
}

void SqlitePreferenceBackendTest::belongsToTheUserAlone()
{
    QFETCH(int, mask);
    const mode_t original = umask(mode_t(mask));
    const auto store = openStore(m_path);
    store->setString(u"text"_s, u"1"_s);
    const bool isCommitted = store->flush();
    umask(original);
    QVERIFY(isCommitted);
    QCOMPARE(mode(m_data), 0700);
    QCOMPARE(mode(m_path), 0600);
    QCOMPARE(mode(m_path + u"-wal"_s), 0600);
    QCOMPARE(mode(m_path + u"-shm"_s), 0600);
}

void SqlitePreferenceBackendTest::removesTheRightsOfOthers()
{
    QVERIFY(openStore(m_path)->flush());
    QCOMPARE(chmod(qPrintable(m_data), 0755), 0);
    QCOMPARE(chmod(qPrintable(m_path), 0644), 0);
    QVERIFY(openStore(m_path)->flush());
    QCOMPARE(mode(m_data), 0700);
    QCOMPARE(mode(m_path), 0600);
}

void SqlitePreferenceBackendTest::forgetsWhatWasRemoved()
{
    const auto store = openStore(m_path);
    const QByteArray secret = randomBytes(16);
    const auto filesWithTheSecret = [&] {
        QStringList names;
        for (const QString &name : QDir(m_data).entryList(QDir::Files)) {
            if (contents(m_data + u'/' + name).contains(secret))
                names.append(name);
        }
        return names;
    };
    for (const int repetitions : {1, 1'000, 100'000, 30'000, 1}) {
        store->setData(u"history"_s, constant((secret + "0123456").repeated(repetitions)));
        QVERIFY(store->flush());
    }
    QVERIFY(!filesWithTheSecret().isEmpty());

    store->setData(u"history"_s, constant(secret.repeated(100'000)));
    QVERIFY(store->flush());
    store->remove(u"history"_s);
    store->setData(u"history"_s, constant("[]"));
    QVERIFY(store->flush());
    QCOMPARE(filesWithTheSecret(), QStringList());
}

void SqlitePreferenceBackendTest::forgetsWhatWasReplaced()
{
    const auto store = openStore(m_path);
    const QByteArray secret = randomBytes(16);
    for (const int repetitions : {100'000, 200}) {
        store->setData(u"history"_s, constant(secret.repeated(repetitions)));
        QVERIFY(store->flush());
        store->setData(u"history"_s, constant("[]"));
        QVERIFY(store->flush());
        for (const QString &name : QDir(m_data).entryList(QDir::Files))
            QVERIFY2(!contents(m_data + u'/' + name).contains(secret), qPrintable(name));
    }
}

void SqlitePreferenceBackendTest::movesAMalformedFileAside_data()
{
    using Damage = std::function<void(const QString &path)>;
    QTest::addColumn<Damage>("damage");
    QTest::newRow("no database") << Damage([](const QString &path) {
        QFile::resize(path, 0);
        overwrite(path, 0, "This is a text and no database. " + randomBytes(10'000));
    });
    QTest::newRow("header overwritten")
        << Damage([](const QString &path) { overwrite(path, 0, randomBytes(100)); });
    QTest::newRow("first page overwritten after its header")
        << Damage([](const QString &path) { overwrite(path, 100, QByteArray(3'900, '\xFF')); });
    QTest::newRow("cut off in a page")
        << Damage([](const QString &path) { QFile::resize(path, 5'000); });
    QTest::newRow("cut off within the history")
        << Damage([](const QString &path) { QFile::resize(path, QFile(path).size() / 2); });
    QTest::newRow("with a log beside it") << Damage([](const QString &path) {
        overwrite(path, 0, randomBytes(4'096));
        QFile log(path + u"-wal"_s);
        QVERIFY(log.open(QFile::WriteOnly));
        log.write(randomBytes(5'000));
    });
}

void SqlitePreferenceBackendTest::movesAMalformedFileAside()
{
    QFETCH(std::function<void(const QString &path)>, damage);
    {
        const auto store = openStore(m_path);
        store->setData(u"history"_s, constant(randomBytes(300'000)));
        store->setString(u"text"_s, u"before"_s);
    }
    damage(m_path);
    const QByteArray damaged = contents(m_path);
    {
        const auto store = openStore(m_path);
        QCOMPARE(store->data(u"history"_s), std::nullopt);
        store->setData(u"history"_s, constant("[]"));
        store->setString(u"text"_s, u"after"_s);
        QVERIFY(store->flush());
    }
    QCOMPARE(filesAside().filter(QRegularExpression(u"\\d{8}T\\d{9}Z\\z"_s)).size(), 1);
    QCOMPARE(contents(m_data + u'/' + filesAside().first()), damaged);
    QCOMPARE(mode(m_data + u'/' + filesAside().first()), 0600);
    const auto store = openStore(m_path);
    QCOMPARE(store->data(u"history"_s), "[]");
    QCOMPARE(store->string(u"text"_s), u"after"_s);
}

void SqlitePreferenceBackendTest::movesALaterDamageAside()
{
    const auto store = openStore(m_path);
    store->setString(u"identifier"_s, u"aulora-1"_s);
    // More than the connection keeps in memory, where it would not see the damage.
    store->setData(u"history"_s, constant(randomBytes(6'000'000)));
    QVERIFY(store->flush());
    overwrite(m_path, 0, randomBytes(QFile(m_path).size()));
    store->setData(u"history"_s, constant("[]"));
    QVERIFY(store->flush());
    QCOMPARE(filesAside().size(), 1);
    const auto next = openStore(m_path);
    QCOMPARE(next->string(u"identifier"_s), u"aulora-1"_s);
    QCOMPARE(next->data(u"history"_s), "[]");
}

void SqlitePreferenceBackendTest::keepsAMovedFileUntilTheHistoryIsCleared()
{
    const QByteArray secret = randomBytes(16);
    {
        const auto store = openStore(m_path);
        store->setData(u"history"_s, constant(secret.repeated(1'000)));
    }
    overwrite(m_path, 0, randomBytes(100));
    {
        const auto store = openStore(m_path);
        QCOMPARE(store->data(u"history"_s), std::nullopt);
        store->setData(u"history"_s, constant("[]"));
        QVERIFY(store->flush());
    }
    QVERIFY(QFile::copy(m_path, m_data + u'/' + filesAside().first() + u"-wal"_s));
    const auto store = openStore(m_path);
    store->setData(u"history"_s, constant("[1]"));
    QVERIFY(store->flush());
    QCOMPARE(filesAside().size(), 2);
    QVERIFY(contents(m_data + u'/' + filesAside().first()).contains(secret));

    // One commit for both, as clearing the history makes it.
    const QString other = m_data + u"/other.sqlite.corrupt-1"_s;
    QVERIFY(QFile::copy(m_path, other));
    store->remove(u"history"_s);
    store->setData(u"history"_s, constant("[]"));
    QVERIFY(store->flush());
    QCOMPARE(filesAside(), QStringList());
    QVERIFY(QFile::exists(other));
    QCOMPARE(store->data(u"history"_s), "[]");
}

void SqlitePreferenceBackendTest::losesNothingToAnotherProgram_data()
{
    using Fault = std::function<void(const QString &path, const QString &backup)>;
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<int>("aside");
    const auto row = [](const char *name, int aside, const Fault &fault) {
        QTest::newRow(name) << fault << aside;
    };
    const auto remove = [](const QString &path) { QVERIFY(QFile::remove(path)); };
    const auto rename = [](const QString &from, const QString &to) {
        QCOMPARE(std::rename(qPrintable(from), qPrintable(to)), 0);
    };

    row("an older database renamed over it", 1,
        [=](const QString &path, const QString &backup) { rename(backup, path); });
    row("an older database copied over it", 1, [](const QString &path, const QString &backup) {
        QFile::resize(path, 0);
        overwrite(path, 0, contents(backup));
    });
    row("an older database with a log", 2, [=](const QString &path, const QString &backup) {
        const SqliteConnection reader = otherProgram(backup, unfinishedReading);
        query(backup, u"INSERT INTO preferences VALUES('later', 'in the log')"_s);
        QVERIFY(QFile(backup + u"-wal"_s).size() > 0);
        for (const QString &suffix : {QString(), u"-wal"_s}) {
            QVERIFY(QFile::copy(backup + suffix, path + u".copy"_s));
            rename(path + u".copy"_s, path + suffix);
        }
    });
    row("deleted", 0, [=](const QString &path, const QString &) { remove(path); });
    row("deleted with its log", 0, [=](const QString &path, const QString &) {
        for (const QString &suffix : {QString(), u"-wal"_s, u"-shm"_s})
            remove(path + suffix);
    });
    row("moved away", 0, [=](const QString &path, const QString &backup) { rename(path, backup); });
    row("folder deleted", 0, [](const QString &path, const QString &) {
        QVERIFY(QFileInfo(path).dir().removeRecursively());
    });
    row("folder renamed", 0, [=](const QString &path, const QString &) {
        rename(QFileInfo(path).path(), QFileInfo(path).path() + u".old"_s);
    });
    row("folder replaced", 1, [=](const QString &path, const QString &backup) {
        rename(QFileInfo(path).path(), QFileInfo(path).path() + u".old"_s);
        rename(QFileInfo(backup).path(), QFileInfo(path).path());
    });
    row("a text in its place", 1, [=](const QString &path, const QString &) {
        remove(path);
        overwrite(path, 0, "This is a text.");
    });
    row("emptied", 1, [](const QString &path, const QString &) { QFile::resize(path, 0); });
    row("cut off", 1,
        [](const QString &path, const QString &) { QFile::resize(path, QFile(path).size() / 2); });
    row("overwritten", 1, [](const QString &path, const QString &) {
        overwrite(path, 0, randomBytes(QFile(path).size()));
    });
    row("overwritten within the history", 1,
        [](const QString &path, const QString &) { overwrite(path, 200'000, randomBytes(100)); });
    row("a folder in its place", 1, [=](const QString &path, const QString &backup) {
        remove(path);
        QVERIFY(QDir().mkpath(path));
        rename(backup, path + u"/preferences.sqlite"_s);
    });
    row("a FIFO in its place", 1, [=](const QString &path, const QString &) {
        remove(path);
        QCOMPARE(mkfifo(qPrintable(path), 0600), 0);
    });
    row("a link to another database", 0, [=](const QString &path, const QString &backup) {
        remove(path);
        QVERIFY(QFile::link(backup, path));
    });
    row("a link to a folder", 1, [=](const QString &path, const QString &backup) {
        remove(path);
        QVERIFY(QFile::link(QFileInfo(backup).path(), path));
    });
    row("a link to nothing", 0, [=](const QString &path, const QString &backup) {
        remove(path);
        QVERIFY(QFile::link(backup + u".none"_s, path));
    });
    row("a link to itself", 1, [=](const QString &path, const QString &) {
        remove(path);
        QVERIFY(QFile::link(path, path));
    });
}

void SqlitePreferenceBackendTest::losesNothingToAnotherProgram()
{
    QFETCH(std::function<void(const QString &path, const QString &backup)>, fault);
    QFETCH(int, aside);
    const QByteArray history = randomBytes(300'000);
    const QString backup = makeBackup();
    const auto store = openStore(m_path);
    const QSignalSpy repairs(store.get(), &PreferenceStore::repairedWhileCommitting);
    const QSignalSpy failures(store.get(), &PreferenceStore::commitFailed);
    store->setString(u"identifier"_s, u"aulora-1"_s);
    store->setBoolean(u"flag"_s, false);
    store->setData(u"history"_s, constant(history));
    QVERIFY(store->flush());
    QCOMPARE(repairs.size(), 0);

    fault(m_path, backup);
    store->setString(u"text"_s, u"after"_s);
    QVERIFY(store->flush());
    QCOMPARE(repairs.size(), 1);
    QVERIFY(!repairs.first().first().toString().isEmpty());
    QCOMPARE(filesAside().size(), aside);
    store->setString(u"text"_s, u"later"_s);
    QVERIFY(store->flush());
    QCOMPARE(repairs.size(), 1);
    QCOMPARE(failures.size(), 0);
    QCOMPARE(query(m_path, u"PRAGMA integrity_check"_s), QStringList(u"ok"_s));
    QCOMPARE(mode(m_data), 0700);
    QCOMPARE(mode(m_path), 0600);
    {
        const auto next = openStore(m_path);
        QCOMPARE(next->string(u"identifier"_s), u"aulora-1"_s);
        QCOMPARE(next->string(u"text"_s), u"later"_s);
        QCOMPARE(next->boolean(u"flag"_s), false);
        QCOMPARE(next->data(u"history"_s), history);
    }

    store->remove(u"history"_s);
    store->setData(u"history"_s, constant("[]"));
    QVERIFY(store->flush());
    QCOMPARE(filesAside(), QStringList());
    QVERIFY(QFileInfo(backup).dir().entryList({u"*corrupt*"_s}).isEmpty());
    QCOMPARE(openStore(m_path)->string(u"identifier"_s), u"aulora-1"_s);
}

void SqlitePreferenceBackendTest::keepsItsLogFromAnotherDatabase()
{
    const QString backup = makeBackup();
    const auto store = openStore(m_path);
    store->setData(u"history"_s, constant("first"));
    QVERIFY(store->flush());
    {
        const SqliteConnection reader = otherProgram(m_path, unfinishedReading);
        store->setData(u"history"_s, constant("second"));
        QVERIFY(!store->flush());
        QVERIFY(QFile(m_path + u"-wal"_s).size() > 0);
        QCOMPARE(std::rename(qPrintable(backup), qPrintable(m_path)), 0);
    }
    QVERIFY(store->flush());
    QCOMPARE(filesAside().size(), 1);
    QCOMPARE(openStore(m_data + u'/' + filesAside().first())->data(u"history"_s), "old");
    QCOMPARE(openStore(m_path)->data(u"history"_s), "second");
}

void SqlitePreferenceBackendTest::noticesAFileReplacedWhileItCommits()
{
    const QString backup = makeBackup();
    const auto store = openStore(m_path);
    const QSignalSpy repairs(store.get(), &PreferenceStore::repairedWhileCommitting);
    int evaluations = 0;
    // The second evaluation is that of a database begun anew, which is open by then.
    store->setData(u"history"_s, [&] {
        if (++evaluations == 2)
            std::rename(qPrintable(backup), qPrintable(m_path));
        return QByteArray("kept");
    });
    QVERIFY(store->flush());
    QVERIFY(QFile::remove(m_path));
    store->setString(u"text"_s, u"after"_s);
    QVERIFY(store->flush());
    QCOMPARE(evaluations, 3);
    QCOMPARE(repairs.size(), 2);
    QCOMPARE(filesAside().size(), 1);
    const auto next = openStore(m_path);
    QCOMPARE(next->data(u"history"_s), "kept");
    QCOMPARE(next->string(u"text"_s), u"after"_s);
}

void SqlitePreferenceBackendTest::givesUpOnAFileReplacedOverAndOver()
{
    const auto store = openStore(m_path);
    const QSignalSpy failures(store.get(), &PreferenceStore::commitFailed);
    bool isDisturbed = true;
    store->setData(u"history"_s, [&] {
        if (isDisturbed)
            QFile::remove(m_path);
        return QByteArray("kept");
    });
    QVERIFY(store->flush());
    QVERIFY(QFile::remove(m_path));
    store->setString(u"text"_s, u"after"_s);
    QVERIFY(!store->flush());
    QCOMPARE(failures.size(), 1);
    isDisturbed = false;
    QVERIFY(store->flush());
    const auto next = openStore(m_path);
    QCOMPARE(next->data(u"history"_s), "kept");
    QCOMPARE(next->string(u"text"_s), u"after"_s);
}

void SqlitePreferenceBackendTest::waitsUntilTheNewcomerCanBeMoved()
{
    const OrdinaryUser user(m_folder->path());
    QVERIFY(user.isOrdinary());
    const QString backup = makeBackup();
    const QByteArray newcomer = contents(backup);
    const auto store = openStore(m_path);
    const QSignalSpy failures(store.get(), &PreferenceStore::commitFailed);
    store->setData(u"history"_s, constant("new"));
    QVERIFY(store->flush());
    QCOMPARE(std::rename(qPrintable(backup), qPrintable(m_path)), 0);
    {
        const Mode readOnly(m_data, 0500);
        store->setString(u"text"_s, u"after"_s);
        QVERIFY(!store->flush());
        QVERIFY(!store->flush());
        QCOMPARE(failures.size(), 1);
        QCOMPARE(contents(m_path), newcomer);
    }
    QVERIFY(store->flush());
    QCOMPARE(contents(m_data + u'/' + filesAside().first()), newcomer);
    const auto next = openStore(m_path);
    QCOMPARE(next->data(u"history"_s), "new");
    QCOMPARE(next->string(u"text"_s), u"after"_s);
}

void SqlitePreferenceBackendTest::anotherProgramsCommitIsNoDamage_data()
{
    QTest::addColumn<QString>("statements");
    const QString insertion = u"INSERT INTO preferences VALUES('other', 'theirs')"_s;
    QTest::newRow("in the log") << insertion;
    QTest::newRow("in the database") << insertion + u"; PRAGMA wal_checkpoint(TRUNCATE)"_s;
}

void SqlitePreferenceBackendTest::anotherProgramsCommitIsNoDamage()
{
    QFETCH(QString, statements);
    const auto store = openStore(m_path);
    const QSignalSpy repairs(store.get(), &PreferenceStore::repairedWhileCommitting);
    store->setString(u"text"_s, u"before"_s);
    QVERIFY(store->flush());
    query(m_path, statements);
    store->setString(u"text"_s, u"after"_s);
    QVERIFY(store->flush());
    QCOMPARE(repairs.size(), 0);
    QCOMPARE(query(m_path, u"SELECT value FROM preferences ORDER BY key"_s),
             QStringList({u"theirs"_s, u"after"_s}));
}

void SqlitePreferenceBackendTest::aCommitItWaitedForIsNoDamage()
{
    const auto store = openStore(m_path);
    const QSignalSpy repairs(store.get(), &PreferenceStore::repairedWhileCommitting);
    store->setString(u"text"_s, u"before"_s);
    QVERIFY(store->flush());

    auto other = otherProgram(m_path,
                              "BEGIN IMMEDIATE; INSERT INTO preferences VALUES('other', 'theirs')");
    store->setString(u"text"_s, u"after"_s);
    QVERIFY(!store->flush());
    QVERIFY(!other.execute("COMMIT; PRAGMA wal_checkpoint(TRUNCATE)"));
    QVERIFY(store->flush());
    QCOMPARE(repairs.size(), 0);
    QCOMPARE(query(m_path, u"SELECT value FROM preferences ORDER BY key"_s),
             QStringList({u"theirs"_s, u"after"_s}));
}

void SqlitePreferenceBackendTest::writesStringsAnewAfterDamageToTheHistory()
{
    {
        const auto store = openStore(m_path);
        store->setString(u"identifier"_s, u"aulora-1"_s);
        store->setData(u"history"_s, constant(randomBytes(300'000)));
    }
    // Where the second page of the history tells which one is next.
    constexpr qint64 pageSize = 65'536;
    overwrite(m_path, 4 * pageSize, QByteArray(4, '\xFF'));
    const auto store = openStore(m_path);
    const QSignalSpy repairs(store.get(), &PreferenceStore::repairedWhileReading);
    QCOMPARE(store->data(u"history"_s), std::nullopt);
    // Without anything being set.
    QVERIFY(store->flush());
    QCOMPARE(repairs.size(), 1);
    QCOMPARE(filesAside().size(), 1);
    QCOMPARE(openStore(m_path)->string(u"identifier"_s), u"aulora-1"_s);
}

void SqlitePreferenceBackendTest::believesNoSizeBeyondTheFile()
{
    {
        const auto store = openStore(m_path);
        store->setData(u"history"_s, constant(randomBytes(20'000)));
    }
    // A row's size and number; its header: the length of that, "history" as text, a BLOB's size.
    const QByteArray file = contents(m_path);
    const QByteArray row("\x81\x9C\x2C\x01\x05\x1B\x82\xB8\x4C", 9);
    QCOMPARE(file.count(row), 1);
    overwrite(m_path, file.indexOf(row), QByteArray("\xBF\xFF\x6C\x01\x05\x1B\xFF\xFF\x4C", 9));
    const auto store = openStore(m_path);
    QCOMPARE(store->data(u"history"_s), std::nullopt);
    QCOMPARE(filesAside().size(), 1);
}

void SqlitePreferenceBackendTest::readsAfterAKilledProgram()
{
    const QByteArray history = randomBytes(300'000);
    const QString copy = m_folder->filePath(u"copy"_s);
    {
        const auto store = openStore(m_path);
        store->setData(u"history"_s, constant("[]"));
        QVERIFY(store->flush());
        // Another program's unfinished reading keeps the newest commit in the log.
        const SqliteConnection reader = otherProgram(m_path, unfinishedReading);
        store->setData(u"history"_s, constant(history));
        store->flush();
        QVERIFY(QDir().mkpath(copy));
        for (const QString &name : {u"preferences.sqlite"_s, u"preferences.sqlite-wal"_s})
            QVERIFY(QFile::copy(m_data + u'/' + name, copy + u'/' + name));
    }
    QVERIFY(QFile(copy + u"/preferences.sqlite-wal"_s).size() > history.size());
    QCOMPARE(openStore(copy + u"/preferences.sqlite"_s)->data(u"history"_s), history);
}

void SqlitePreferenceBackendTest::survivesAFolderThatCannotBeMade()
{
    QFile obstacle(m_data);
    QVERIFY(obstacle.open(QFile::WriteOnly));
    obstacle.close();
    const auto store = openStore(m_path);
    const QSignalSpy failures(store.get(), &PreferenceStore::commitFailed);
    QCOMPARE(store->data(u"history"_s), std::nullopt);
    store->setData(u"history"_s, constant("[]"));
    QVERIFY(!store->flush());
    QVERIFY(!store->flush());
    QCOMPARE(failures.size(), 1);
    QCOMPARE(store->data(u"history"_s), "[]");
    QVERIFY(obstacle.remove());
    QVERIFY(store->flush());
    QCOMPARE(openStore(m_path)->data(u"history"_s), "[]");
}

void SqlitePreferenceBackendTest::survivesSomethingElseInPlaceOfTheFile_data()
{
    using Obstacle = std::function<void(const QString &path)>;
    QTest::addColumn<Obstacle>("obstacle");
    QTest::newRow("folder") << Obstacle([](const QString &path) { QVERIFY(QDir().mkpath(path)); });
    QTest::newRow("FIFO") << Obstacle([](const QString &path) {
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QCOMPARE(mkfifo(qPrintable(path), 0600), 0);
    });
}

void SqlitePreferenceBackendTest::survivesSomethingElseInPlaceOfTheFile()
{
    QFETCH(std::function<void(const QString &path)>, obstacle);
    obstacle(m_path);
    const auto store = openStore(m_path);
    const QSignalSpy failures(store.get(), &PreferenceStore::commitFailed);
    QCOMPARE(store->data(u"history"_s), std::nullopt);
    QVERIFY(store->readFailure());
    store->setData(u"history"_s, constant("[]"));
    QVERIFY(!store->flush());
    QCOMPARE(failures.size(), 1);
    QVERIFY(!failures.first().first().toString().isEmpty());
    QCOMPARE(filesAside(), QStringList());
    QCOMPARE(std::remove(qPrintable(m_path)), 0);
    QVERIFY(store->flush());
    QCOMPARE(openStore(m_path)->data(u"history"_s), "[]");
}

void SqlitePreferenceBackendTest::survivesAFullDisk()
{
    const QByteArray small = randomBytes(10'000);
    const QByteArray large = randomBytes(3'000'000);
    const auto store = openStore(m_path);
    const QSignalSpy failures(store.get(), &PreferenceStore::commitFailed);
    store->setData(u"history"_s, constant(small));
    QVERIFY(store->flush());
    {
        const FileSizeLimit limit(1'000'000);
        store->setData(u"history"_s, constant(large));
        QVERIFY(!store->flush());
        QVERIFY(!store->flush());
        QCOMPARE(failures.size(), 1);
        QCOMPARE(openStore(m_path)->data(u"history"_s), small);
    }
    QVERIFY(store->flush());
    QCOMPARE(openStore(m_path)->data(u"history"_s), large);
    QVERIFY(QFile(m_path).size() < 2 * large.size());
}

void SqlitePreferenceBackendTest::survivesAReadOnlyFolder()
{
    const OrdinaryUser user(m_folder->path());
    QVERIFY(user.isOrdinary());
    const QByteArray history = randomBytes(300'000);
    {
        const auto store = openStore(m_path);
        store->setData(u"history"_s, constant(history));
        store->setString(u"text"_s, u"before"_s);
    }
    QCOMPARE(chmod(qPrintable(m_path), 0400), 0);
    QCOMPARE(chmod(qPrintable(m_data), 0500), 0);
    const QByteArray file = contents(m_path);

    const auto store = openStore(m_path);
    const QSignalSpy failures(store.get(), &PreferenceStore::commitFailed);
    QCOMPARE(store->string(u"text"_s), u"before"_s);
    QCOMPARE(store->data(u"history"_s), history);
    store->setData(u"history"_s, constant("[]"));
    QVERIFY(!store->flush());
    QVERIFY(!store->flush());
    QCOMPARE(failures.size(), 1);
    QCOMPARE(contents(m_path), file);

    QCOMPARE(chmod(qPrintable(m_data), 0700), 0);
    QCOMPARE(chmod(qPrintable(m_path), 0600), 0);
    QVERIFY(store->flush());
    QCOMPARE(openStore(m_path)->data(u"history"_s), "[]");
}

void SqlitePreferenceBackendTest::survivesAnotherProgramsLongRead()
{
    const auto store = openStore(m_path);
    store->setData(u"history"_s, constant("first"));
    QVERIFY(store->flush());
    {
        const SqliteConnection reader = otherProgram(m_path, unfinishedReading);
        store->setData(u"history"_s, constant("second"));
        QVERIFY(!store->flush());
        QCOMPARE(store->data(u"history"_s), "second");
    }
    QVERIFY(store->flush());
    QCOMPARE(contents(m_path + u"-wal"_s), "");
    QCOMPARE(openStore(m_path)->data(u"history"_s), "second");
}

void SqlitePreferenceBackendTest::keepsWhatItCannotRead_data()
{
    using Fault = std::function<std::shared_ptr<void>(const QString &path)>;
    QTest::addColumn<Fault>("fault");
    QTest::newRow("file without rights")
        << Fault([](const QString &path) { return std::make_shared<Mode>(path, 0); });
    QTest::newRow("folder without rights") << Fault(
        [](const QString &path) { return std::make_shared<Mode>(QFileInfo(path).path(), 0); });
    QTest::newRow("held by another program") << Fault([](const QString &path) {
        return std::make_shared<SqliteConnection>(
            otherProgram(path,
                         "PRAGMA locking_mode=EXCLUSIVE;"
                         "INSERT INTO preferences VALUES('holder', 'was here')"));
    });
    QTest::newRow("disk that cannot be read")
        << Fault([](const QString &path) { return brokenDisk(path); });
}

void SqlitePreferenceBackendTest::keepsWhatItCannotRead()
{
    QFETCH(std::function<std::shared_ptr<void>(const QString &path)>, fault);
    const OrdinaryUser user(m_folder->path());
    QVERIFY(user.isOrdinary());
    const QByteArray history = randomBytes(300'000);
    {
        const auto store = openStore(m_path);
        store->setData(u"history"_s, constant(history));
        store->setString(u"identifier"_s, u"aulora-1"_s);
    }
    {
        std::shared_ptr<void> faulty = fault(m_path);
        const auto store = openStore(m_path);
        store->setMerge(u"history"_s, [](const QByteArray &set, const QByteArray &stored) {
            return set + stored;
        });
        const QSignalSpy failures(store.get(), &PreferenceStore::commitFailed);
        QCOMPARE(store->string(u"identifier"_s), std::nullopt);
        QCOMPARE(store->data(u"history"_s), std::nullopt);
        QVERIFY(!store->readFailure().value_or(QString()).isEmpty());
        store->setString(u"identifier"_s, u"aulora-2"_s);
        store->setData(u"history"_s, constant("begun"));
        QVERIFY(!store->flush());
        QCOMPARE(failures.size(), 1);
        faulty.reset();
        QVERIFY(store->flush());
        QCOMPARE(failures.size(), 1);
    }
    QCOMPARE(filesAside(), QStringList());
    const auto store = openStore(m_path);
    QCOMPARE(store->string(u"identifier"_s), u"aulora-1"_s);
    QCOMPARE(store->data(u"history"_s), "begun" + history);
}

void SqlitePreferenceBackendTest::mergesWithAReadableFilePutInPlace()
{
    const OrdinaryUser user(m_folder->path());
    QVERIFY(user.isOrdinary());
    const QString backup = makeBackup();
    QVERIFY(openStore(m_path)->flush());
    QCOMPARE(chmod(qPrintable(m_path), 0), 0);
    const auto store = openStore(m_path);
    store->setMerge(u"history"_s,
                    [](const QByteArray &set, const QByteArray &stored) { return set + stored; });
    QCOMPARE(store->data(u"history"_s), std::nullopt);
    QVERIFY(store->readFailure());
    store->setData(u"history"_s, constant("begun, "));
    QCOMPARE(std::rename(qPrintable(backup), qPrintable(m_path)), 0);
    QVERIFY(store->flush());
    QCOMPARE(filesAside(), QStringList());
    const auto next = openStore(m_path);
    QCOMPARE(next->string(u"identifier"_s), u"aulora-0"_s);
    QCOMPARE(next->data(u"history"_s), "begun, old");
}

void SqlitePreferenceBackendTest::mergesWithAFilePutInPlaceOfAHistoryNotRead()
{
    const QString backup = makeBackup();
    {
        const auto store = openStore(m_path);
        store->setString(u"identifier"_s, u"aulora-1"_s);
        store->setData(u"history"_s, constant(randomBytes(300'000)));
    }
    const auto store = openStore(m_path);
    store->setMerge(u"history"_s,
                    [](const QByteArray &set, const QByteArray &stored) { return set + stored; });
    QCOMPARE(store->string(u"identifier"_s), u"aulora-1"_s);
    {
        const auto broken = brokenDisk(m_path);
        QCOMPARE(store->data(u"history"_s), std::nullopt);
        QVERIFY(store->readFailure());
    }
    QCOMPARE(filesAside(), QStringList());
    QCOMPARE(std::rename(qPrintable(backup), qPrintable(m_path)), 0);
    store->setData(u"history"_s, constant("begun, "));
    QVERIFY(store->flush());
    QCOMPARE(filesAside().size(), 1);
    const auto next = openStore(m_path);
    QCOMPARE(next->string(u"identifier"_s), u"aulora-1"_s);
    QCOMPARE(next->data(u"history"_s), "begun, old");
}

void SqlitePreferenceBackendTest::takesNoFailedReadForDamage()
{
    const QByteArray history = randomBytes(300'000);
    {
        const auto store = openStore(m_path);
        store->setData(u"history"_s, constant(history));
        store->setString(u"identifier"_s, u"aulora-1"_s);
    }
    const QByteArray file = QFile::encodeName(QFileInfo(m_path).canonicalFilePath());
    int reads = 0;
    for (int failing = 1; failing == 1 || reads >= failing - 1; ++failing) {
        reads = 0;
        const DiskCalls disk(file, [&](const DiskCall &call) {
            reads += call.kind == DiskCall::Kind::read;
            const bool fails = call.kind == DiskCall::Kind::read && reads == failing;
            return DiskAnswer{.error = fails ? EIO : 0};
        });
        const auto store = openStore(m_path);
        const auto identifier = store->string(u"identifier"_s);
        const auto document = store->data(u"history"_s);
        const QByteArray context = "read " + QByteArray::number(failing);
        QVERIFY2(identifier == u"aulora-1"_s || store->readFailure(), context.constData());
        QVERIFY2(document == history || store->readFailure(), context.constData());
        QVERIFY2(filesAside().isEmpty(), context.constData());
    }
    QVERIFY(reads > 0);
}

QTEST_GUILESS_MAIN(SqlitePreferenceBackendTest)
#include "SqlitePreferenceBackendTest.moc"
