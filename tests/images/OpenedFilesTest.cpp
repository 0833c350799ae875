#include "HostileImages.h"
#include "ImageLimits.h"
#include "ImagePreview.h"
#include "LocalFile.h"

#include <QDir>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString beginMark = u"/aulora-begins-to-read"_s;
const QString endMark = u"/aulora-has-read"_s;

/// A system call that only marks a place in the record.
void mark(const QString &path)
{
    [[maybe_unused]] const int result = ::access(QFile::encodeName(path).constData(), F_OK);
}

/// What the traced program does: reads every file of `folder` as the intake would.
int readFiles(const QString &folder)
{
    // Open now the libraries and tables that are opened once for the whole process.
    for (const QByteArray &bytes : soundImages())
        makePreviewData(bytes);
    const QStringList names = QDir(folder).entryList(QDir::Files);
    mark(beginMark);
    for (const QString &name : names) {
        const QUrl url = QUrl::fromLocalFile(QDir(folder).filePath(name));
        const auto bytes = readLocalFile(url, maximumImageBytes + 1);
        if (!bytes)
            return 1;
        makePreviewData(*bytes);
    }
    mark(endMark);
    return 0;
}

/// The paths in a record of strace, between the two marks.
QStringList openedPaths(const QByteArray &record)
{
    QStringList paths;
    bool isReading = false;
    for (const QByteArray &line : record.split('\n')) {
        const qsizetype begin = line.indexOf('"');
        const qsizetype end = line.indexOf('"', begin + 1);
        if (begin < 0 || end < 0)
            continue;
        const QString path = QString::fromLocal8Bit(line.sliced(begin + 1, end - begin - 1));
        if (path == beginMark)
            isReading = true;
        else if (path == endMark)
            isReading = false;
        else if (isReading && !path.isEmpty()) // Empty: a question about a file already open
            paths.append(path);
    }
    return paths;
}

} // namespace

/// No file is opened but the one chosen, whatever it says inside, nor is that one read beyond its
/// limit.
class OpenedFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsNoFurtherThanTheLimit()
    {
        const QByteArray bytes("0123456789abcdefghij");
        const QTemporaryDir folder;
        QFile file(folder.filePath(u"a.png"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
        file.close();
        const QUrl url = QUrl::fromLocalFile(file.fileName());
        QCOMPARE(readLocalFile(url, 10), bytes.first(10));
        QCOMPARE(readLocalFile(url, 20), bytes);
        QCOMPARE(readLocalFile(url, 21), bytes);
    }

    void opensNothingButTheFileChosen()
    {
        const QString strace = QStandardPaths::findExecutable(u"strace"_s);
        if (strace.isEmpty())
            QSKIP("strace is not installed");
        if (QProcess::execute(strace, {u"-o"_s, u"/dev/null"_s, u"true"_s}) != 0)
            QSKIP("this system lets no program be traced");

        const QTemporaryDir folder;
        QStringList expected;
        for (const HostileImage &image : hostileImages()) {
            // The name says nothing about the format, or names a wrong one.
            QFile file(folder.filePath(QString::number(expected.size()) + u".jpg"_s));
            QVERIFY(file.open(QIODevice::WriteOnly));
            QCOMPARE(file.write(image.bytes), image.bytes.size());
            expected.append(file.fileName());
        }
        const QTemporaryDir recordFolder;
        const QString recordPath = recordFolder.filePath(u"record"_s);
        QProcess traced;
        traced.setProcessChannelMode(QProcess::MergedChannels);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"AULORA_READ_FOLDER"_s, folder.path());
        // LeakSanitizer does not work in a traced process.
        environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
        traced.setProcessEnvironment(environment);
        traced.start(strace,
                     {u"-f"_s, u"-e"_s, u"trace=%file,%network"_s, u"-s"_s, u"4096"_s, u"-o"_s,
                      recordPath, QCoreApplication::applicationFilePath()});
        QVERIFY(traced.waitForFinished(240'000));
        QVERIFY2(traced.exitCode() == 0, traced.readAll().last(2'000).constData());

        QFile record(recordPath);
        QVERIFY(record.open(QIODevice::ReadOnly));
        QStringList opened = openedPaths(record.readAll());
        opened.sort();
        expected.sort();
        QCOMPARE(opened, expected);
    }
};

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const QString folder = qEnvironmentVariable("AULORA_READ_FOLDER");
    if (!folder.isEmpty())
        return readFiles(folder);
    OpenedFilesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "OpenedFilesTest.moc"
