#include "HistorySession.h"
#include "HistoryStore.h"
#include "PreferenceStore.h"
#include "RecordedDisk.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// Several pages of the database, so that there is much to lose and to mix up.
constexpr HistorySession session{.keptConversations = 6, .previewSize = 40'000, .linePause = {}};

const QString fileName = u"preferences.sqlite"_s;

struct Acknowledgement
{
    /// How much the disk had been told by then.
    qsizetype moment;
    int number;
};

} // namespace

/// Cuts the power of a program that saves, at moments chosen by chance, and looks at what a disk
/// may hold then. AULORA_POWER_CUTS says how often.
class PowerCutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyAcknowledgedSaveSurvives();
};

void PowerCutTest::everyAcknowledgedSaveSurvives()
{
    constexpr int fewCuts = 60;
    const int cuts = qEnvironmentVariable("AULORA_POWER_CUTS", QString::number(fewCuts)).toInt();
    QVERIFY(cuts > 0);

    const QTemporaryDir folder;
    const QString data = QDir(folder.path()).canonicalPath() + u"/data"_s;
    RecordedDisk disk(data);
    QList<Acknowledgement> acknowledgements;
    // Closed and opened again in between, as between two runs of the program.
    for (const int last : {12, 24, 36}) {
        const auto store = openStore(QDir(data).filePath(fileName));
        session.run(*store, last, [&](int number) {
            acknowledgements.append({.moment = disk.now(), .number = number});
        });
    }
    disk.stop();
    QCOMPARE(acknowledgements.size(), 9);

    QRandomGenerator random(20'26);
    int losses = 0;
    for (int cut = 0; cut < cuts; ++cut) {
        const qsizetype moment = random.bounded(disk.now() + 1);
        const QTemporaryDir left;
        disk.rebuild(moment, random, left.path());
        QSet<int> acknowledged;
        for (const Acknowledgement &one : std::as_const(acknowledgements)) {
            if (one.moment <= moment)
                acknowledged.insert(one.number);
        }

        const QString path = left.filePath(fileName);
        auto store = openStore(path);
        auto complaint
            = session.complaint(store->data(HistoryStore::historyKey).value_or("[]"), acknowledged);
        if (!complaint && store->readFailure())
            complaint = store->readFailure();
        // And it can be gone on with.
        const QByteArray next = "[]";
        store->setData(HistoryStore::historyKey, [next] { return next; });
        if (!complaint && !store->flush())
            complaint = u"nothing can be saved any more"_s;
        store.reset();
        if (!complaint && openStore(path)->data(HistoryStore::historyKey) != next)
            complaint = u"what is saved afterwards is lost"_s;
        if (complaint) {
            ++losses;
            qWarning("cut %d after %lld of %lld: %s", cut, qlonglong(moment), qlonglong(disk.now()),
                     qPrintable(*complaint));
        }
    }
    std::printf("%d power cuts among %lld calls, %lld acknowledged saves; lost: %d\n", cuts,
                qlonglong(disk.now()), qlonglong(acknowledgements.size()), losses);
    std::fflush(stdout);
    QCOMPARE(losses, 0);
}

QTEST_GUILESS_MAIN(PowerCutTest)
#include "PowerCutTest.moc"
