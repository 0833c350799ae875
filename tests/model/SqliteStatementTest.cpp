#include "SqliteStatement.h"

#include "SqliteConnection.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

class SqliteStatementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueThatIsTooLongIsNotStoredAsNull()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"a.sqlite"_s);
        QVERIFY(QFile(path).open(QIODevice::WriteOnly));
        auto opened = SqliteConnection::open(path, SqliteConnection::Access::readWrite);
        auto *connection = std::get_if<SqliteConnection>(&opened);
        QVERIFY(connection);
        QVERIFY(
            !connection->execute("CREATE TABLE kept(value); INSERT INTO kept VALUES('before')"));
        sqlite3_limit(connection->handle(), SQLITE_LIMIT_LENGTH, 1000);

        const PreferenceValue tooLong = QByteArray(2000, 'a');
        SqliteStatement update(*connection, "UPDATE kept SET value = ?");
        update.bind(1, tooLong);
        QCOMPARE(update.step(), SqliteStatement::Step::failed);
        QVERIFY(!update.error().description.isEmpty());

        SqliteStatement query(*connection, "SELECT value FROM kept");
        QCOMPARE(query.step(), SqliteStatement::Step::row);
        QCOMPARE(query.text(0), u"before"_s);
    }
};

QTEST_GUILESS_MAIN(SqliteStatementTest)
#include "SqliteStatementTest.moc"
