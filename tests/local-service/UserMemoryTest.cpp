#include "UserMemory.h"

#include "MemorySchema.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <csignal>
#include <memory>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

static UserMemory::Exchange exchange(const QString &subject, const QStringList &toReview = {})
{
    return {{u"pregunta "_s + subject, u"respuesta "_s + subject}, subject, toReview};
}

class UserMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_now = 1'700'000'000;
    }

    void keepsTheNewestFirstAndOnce()
    {
        UserMemory memory;
        QVERIFY(memory.context(u"u"_s).subjects.isEmpty());
        for (const auto &subject : {u"a"_s, u"b"_s, u"a"_s, u"c"_s})
            memory.remember(u"u"_s, exchange(subject, {u"x "_s + subject}));
        const UserContext context = memory.context(u"u"_s);
        QCOMPARE(context.subjects, (QStringList{u"c"_s, u"a"_s, u"b"_s}));
        QCOMPARE(context.toReview, (QStringList{u"x c"_s, u"x a"_s, u"x b"_s}));
        QCOMPARE(context.turns.size(), 4);
        QCOMPARE(context.turns.first().question, u"pregunta a"_s);
        QCOMPARE(context.turns.last().answer, u"respuesta c"_s);
        QVERIFY(memory.context(u"v"_s).subjects.isEmpty());
    }

    void keepsNothingEmpty()
    {
        UserMemory memory;
        memory.remember({}, exchange(u"a"_s));
        memory.remember(u"u"_s, exchange(u""_s, {u""_s}));
        QVERIFY(memory.context({}).turns.isEmpty());
        QVERIFY(memory.context(u"u"_s).subjects.isEmpty());
        QVERIFY(memory.context(u"u"_s).toReview.isEmpty());
        QCOMPARE(memory.context(u"u"_s).turns.size(), 1);
    }

    void boundsWhatItKeepsOfOneUser()
    {
        UserMemory memory;
        const QString longText(1'000'000, u'x');
        for (int i = 0; i < 20; ++i)
            memory.remember(u"u"_s, {{longText, longText}, QString::number(i), {longText}});
        const UserContext context = memory.context(u"u"_s);
        QCOMPARE(context.subjects, (QStringList{u"19"_s, u"18"_s, u"17"_s, u"16"_s, u"15"_s}));
        QCOMPARE(context.turns.size(), 1);
        QVERIFY(context.turns.first().answer.size() + context.turns.first().question.size()
                <= UserMemory::longestContext);
        QVERIFY(context.toReview.first().size() < 200);
    }

    void forgetsAConversationAfterHalfAnHourOfSilence()
    {
        const QString file = m_folder->filePath(u"m"_s);
        UserMemory memory(file, {}, clock());
        memory.remember(u"u"_s, exchange(u"Secreto"_s));
        m_now += UserMemory::conversationLimit - 1;
        QCOMPARE(memory.context(u"u"_s).turns.size(), 1);
        memory.remember(u"u"_s, exchange(u"b"_s));
        m_now += UserMemory::conversationLimit - 1;
        QCOMPARE(memory.context(u"u"_s).turns.size(), 2);
        m_now += 1;
        QVERIFY(memory.context(u"u"_s).turns.isEmpty());
        QCOMPARE(memory.context(u"u"_s).subjects.size(), 2);
        QCOMPARE(rows(file, "turns"), 2);
        memory.forgetOld();
        QCOMPARE(rows(file, "turns"), 0);
        QCOMPARE(memory.context(u"u"_s).subjects.size(), 2);
    }

    void forgetsAUserAfter180Days()
    {
        const QString file = m_folder->filePath(u"m"_s);
        UserMemory memory(file, {}, clock());
        memory.remember(u"u"_s, exchange(u"a"_s, {u"b"_s}));
        m_now += UserMemory::userLimit - 1;
        QCOMPARE(memory.context(u"u"_s).subjects.size(), 1);
        m_now += 1;
        QVERIFY(memory.context(u"u"_s).subjects.isEmpty());
        memory.forgetOld();
        for (const char *table : {"users", "subjects", "reviews", "turns"})
            QCOMPARE(rows(file, table), 0);
    }

    void forgetsWhoAsksAndNobodyElse()
    {
        const QString file = m_folder->filePath(u"m"_s);
        {
            UserMemory memory(file);
            memory.remember(u"u"_s, exchange(u"Secreto del uno"_s, {u"Secreto del dos"_s}));
            memory.remember(u"v"_s, exchange(u"a"_s));
            QVERIFY(memory.forget(u"u"_s));
            QVERIFY(memory.context(u"u"_s).subjects.isEmpty());
            QCOMPARE(memory.context(u"v"_s).subjects, QStringList{u"a"_s});
            QVERIFY(memory.forget(u"nadie"_s));
            for (const QString &name : QDir(m_folder->path()).entryList(QDir::Files))
                QVERIFY2(!bytes(m_folder->filePath(name)).contains("Secreto"), qPrintable(name));
        }
        QVERIFY(!bytes(file).contains("Secreto"));
    }

    void isForItsOwnerAloneAndTellsNoId()
    {
        const QString file = m_folder->filePath(u"m"_s);
        {
            QFile existing(file);
            QVERIFY(existing.open(QIODevice::WriteOnly));
            QVERIFY(existing.setPermissions(existing.permissions() | QFile::ReadOther));
        }
        UserMemory memory(file);
        memory.remember(u"aulora-1234"_s, exchange(u"a"_s));
        for (const QString &name : QDir(m_folder->path()).entryList(QDir::Files)) {
            const QString path = m_folder->filePath(name);
            QCOMPARE(
                QFile::permissions(path)
                    & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
                QFile::Permissions());
            QVERIFY(!bytes(path).contains("aulora-1234"));
        }
    }

    void opensItsFileOnlyWhenItIsNeeded()
    {
        const QString file = m_folder->filePath(u"m"_s);
        UserMemory memory(file);
        QVERIFY(!QFile::exists(file));
        memory.context(u"u"_s);
        QVERIFY(QFile::exists(file));
    }

    void survivesARestart()
    {
        const QString file = m_folder->filePath(u"m"_s);
        {
            UserMemory memory(file);
            memory.remember(u"u"_s, exchange(u"a"_s, {u"b"_s}));
        }
        UserMemory memory(file);
        QCOMPARE(memory.context(u"u"_s).subjects, QStringList{u"a"_s});
        QCOMPARE(memory.context(u"u"_s).toReview, QStringList{u"b"_s});
        QCOMPARE(memory.context(u"u"_s).turns.size(), 1);
    }

    // Each of two processes writes for as long as it lives and says so; both are killed.
    void losesNothingWhenTwoProcessesAreKilled()
    {
        const QString file = m_folder->filePath(u"m"_s);
        std::array<int, 2> said{};
        QCOMPARE(::pipe(said.data()), 0);
        std::array<pid_t, 2> writers{};
        for (char name : {'a', 'b'}) {
            const pid_t child = ::fork();
            if (child == 0) {
                UserMemory memory(file);
                for (int i = 0;; ++i) {
                    const QString user = QChar::fromLatin1(name) + QString::number(i);
                    memory.remember(user, exchange(u"s"_s));
                    if (::write(said[1], &name, 1) != 1)
                        ::_exit(1);
                }
            }
            writers[static_cast<size_t>(name - 'a')] = child;
        }
        std::array<int, 2> written{};
        while (written[0] < 40 || written[1] < 40) {
            char name = 0;
            QCOMPARE(::read(said[0], &name, 1), 1);
            ++written[static_cast<size_t>(name - 'a')];
        }
        for (const pid_t writer : writers) {
            ::kill(writer, SIGKILL);
            ::waitpid(writer, nullptr, 0);
        }
        ::close(said[0]);
        ::close(said[1]);

        UserMemory memory(file);
        for (char name : {'a', 'b'}) {
            for (int i = 0; i < written[static_cast<size_t>(name - 'a')]; ++i) {
                const QString user = QChar::fromLatin1(name) + QString::number(i);
                QCOMPARE(memory.context(user).subjects, QStringList{u"s"_s});
            }
        }
    }

    void upgradesAnEarlierFile()
    {
        const QString file = m_folder->filePath(u"m"_s);
        {
            // What version 1 left, for the user "u".
            SqliteDatabase database;
            QVERIFY(database.open(file));
            const QByteArray user = QCryptographicHash::hash("u", QCryptographicHash::Sha256);
            for (const char *statement :
                 {"create table users(user blob primary key, used integer not null) without rowid",
                  "create index users_by_use on users(used)",
                  "create table subjects(number integer primary key, user blob not null references "
                  "users on delete cascade, subject text not null, unique(user, subject))",
                  "create table turns(number integer primary key, user blob not null references "
                  "users on delete cascade, question text not null, answer text not null)",
                  "create index turns_by_user on turns(user, number)", "pragma user_version = 1"})
                QVERIFY(database.run(statement));
            QVERIFY(database.run("insert into users values(?, ?)", {user, m_now}));
            QVERIFY(
                database.run("insert into subjects(user, subject) values(?, 'Nefrona')", {user}));
        }
        UserMemory memory(file, {}, clock());
        QCOMPARE(memory.context(u"u"_s).subjects, QStringList{u"Nefrona"_s});
        memory.remember(u"u"_s, exchange(u"a"_s, {u"b"_s}));
        QCOMPARE(memory.context(u"u"_s).toReview, QStringList{u"b"_s});
        SqliteDatabase database;
        QVERIFY(database.open(file));
        QCOMPARE(database.run("pragma user_version")->first().first().toInt(), memorySchemaVersion);
    }

    void saysWhyItCannotRemember_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::newRow("a folder that is not there") << u"folder"_s;
        QTest::newRow("no database") << u"no database"_s;
        QTest::newRow("a later version") << u"version"_s;
    }
    void saysWhyItCannotRemember()
    {
        QFETCH(QString, fault);
        const QString file = m_folder->filePath(fault == "folder"_L1 ? u"no/m"_s : u"m"_s);
        if (fault == "no database"_L1) {
            QFile text(file);
            QVERIFY(text.open(QIODevice::WriteOnly));
            text.write(QByteArray(5000, 'x'));
        } else if (fault == "version"_L1) {
            SqliteDatabase database;
            QVERIFY(database.open(file));
            QVERIFY(database.run("pragma user_version = 99"));
        }
        const QByteArray before = bytes(file);
        QStringList problems;
        UserMemory memory(file, [&](const QString &problem) { problems += problem; });
        memory.remember(u"u"_s, exchange(u"a"_s));
        QVERIFY(memory.context(u"u"_s).subjects.isEmpty());
        QVERIFY(!memory.forget(u"u"_s));
        QCOMPARE(problems.size(), 1);
        QVERIFY(!problems.first().isEmpty());
        if (fault != "version"_L1)
            QCOMPARE(bytes(file), before);
    }

    void servesManyThreads()
    {
        UserMemory memory;
        std::vector<std::thread> threads;
        threads.reserve(8);
        for (int t = 0; t < 8; ++t) {
            threads.emplace_back([&memory, t] {
                for (int i = 0; i < 200; ++i) {
                    memory.remember(QString::number(i % 50), exchange(QString::number(t)));
                    memory.context(QString::number(i % 50));
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        const auto subjects = memory.context(u"49"_s).subjects;
        QCOMPARE(subjects.size(), UserMemory::mostSubjects);
        QCOMPARE(QSet<QString>(subjects.begin(), subjects.end()).size(), subjects.size());
    }

private:
    UserMemory::Clock clock()
    {
        return [this] { return m_now; };
    }
    static QByteArray bytes(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static int rows(const QString &file, const QByteArray &table)
    {
        SqliteDatabase database;
        database.open(file);
        const auto counted = database.run("select count(*) from " + table);
        return counted ? counted->first().first().toInt() : -1;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    qint64 m_now = 0;
};

QTEST_APPLESS_MAIN(UserMemoryTest)
#include "UserMemoryTest.moc"
