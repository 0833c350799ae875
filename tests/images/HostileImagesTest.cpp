#include "HostileImages.h"

#include "BackgroundWork.h"
#include "ImagePreview.h"
#include "ResourceUse.h"
#include "SampleImages.h"
#include "Screen.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr auto timeLimit = 20s; // Checked code is several times slower.
#else
constexpr auto timeLimit = 2s;
#endif
constexpr auto frameLimit = 50ms;
constexpr qint64 memoryLimit = 256; // MB

struct Verdict
{
    bool isTaken = false;
    std::chrono::nanoseconds time;
};

Verdict judge(const QByteArray &bytes)
{
    const auto begin = threadTime();
    const auto preview = makePreviewData(bytes);
    return {.isTaken = preview.has_value(), .time = threadTime() - begin};
}

/// `bytes` with some of them changed, left out, doubled or cut off.
QByteArray damaged(QByteArray bytes, QRandomGenerator &random)
{
    const int wounds = 1 + random.bounded(8);
    for (int i = 0; i < wounds && !bytes.isEmpty(); ++i) {
        const auto at = random.bounded(bytes.size());
        const auto length = std::min<qsizetype>(1 + random.bounded(64), bytes.size() - at);
        switch (random.bounded(6)) {
        case 0:
            bytes[at] = char(random.bounded(256));
            break;
        case 1:
            bytes[at] = char(bytes[at] ^ (1 << random.bounded(8)));
            break;
        case 2:
            bytes.replace(at, length, QByteArray(length, random.bounded(2) == 0 ? '\0' : '\xFF'));
            break;
        case 3:
            bytes.remove(at, length);
            break;
        case 4:
            bytes.insert(at, bytes.mid(random.bounded(bytes.size()), length));
            break;
        default:
            bytes.truncate(std::max<qsizetype>(at, bytes.size() / 2));
        }
    }
    return bytes;
}

} // namespace

class HostileImagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Load now what is loaded once for the whole process, so that it is not measured.
        for (const QByteArray &bytes : soundImages())
            QVERIFY(makePreviewData(bytes));
        QVERIFY(hostileImages().size() >= 60);
    }

    void endsWithinItsLimits_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("outcome");
        for (const HostileImage &image : hostileImages())
            QTest::newRow(image.name.constData()) << image.bytes << int(image.outcome);
    }
    void endsWithinItsLimits()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, outcome);
        resetMemoryPeak();
        const Verdict verdict = judge(bytes);
        const qint64 growth = memoryGrowth();
        if (outcome != int(Outcome::Either))
            QCOMPARE(verdict.isTaken, outcome == int(Outcome::Taken));
        QVERIFY2(verdict.time < timeLimit, QByteArray::number(verdict.time / 1ms).constData());
        if (canMeasureMemory())
            QVERIFY2(growth < memoryLimit, QByteArray::number(growth).constData());
    }

    void isTakenOrRefusedWithoutBlockingTheWindow()
    {
        Screen screen;
        const QStringList refusals{
            u"El archivo no parece ser una imagen válida."_s,
            u"La imagen es demasiado grande. Elegí una imagen de menos de 12 MB."_s};
        for (const HostileImage &image : hostileImages()) {
            const auto begin = threadTime();
            screen.intake.acceptImage(image.bytes, u"a.jpg"_s, u"image/jpeg"_s);
            decodingPool()->waitForDone();
            QCoreApplication::processEvents();
            const auto time = threadTime() - begin;
            QVERIFY2(time < frameLimit, image.name.constData());

            const bool isTaken = screen.contentView.hasSelectedImage();
            QVERIFY2(isTaken != screen.contentView.hasImageImportError(), image.name.constData());
            if (isTaken)
                QVERIFY2(screen.contentView.selectedImageData() == image.bytes,
                         image.name.constData());
            else
                QVERIFY2(refusals.contains(screen.contentView.imageImportErrorText()),
                         image.name.constData());
            screen.contentView.clearSelectedImage();
            screen.contentView.dismissImageImportError();
        }
    }

    void survivesDamage_data()
    {
        QTest::addColumn<quint32>("seed");
        const int seeds = std::max(12, qEnvironmentVariableIntValue("AULORA_MUTATION_SEEDS"));
        for (int seed = 1; seed <= seeds; ++seed)
            QTest::addRow("seed %d", seed) << quint32(seed);
    }
    void survivesDamage()
    {
        QFETCH(quint32, seed);
        constexpr int damagesPerImage = 6;
        QRandomGenerator random(seed);
        const QList<QByteArray> sound = soundImages();
        int taken = 0;
        for (int i = 0; i < damagesPerImage * sound.size(); ++i) {
            const QByteArray bytes = damaged(sound[i % sound.size()], random);
            resetMemoryPeak();
            const Verdict verdict = judge(bytes);
            const QByteArray which = "number " + QByteArray::number(i);
            QVERIFY2(verdict.time < timeLimit, which.constData());
            if (canMeasureMemory())
                QVERIFY2(memoryGrowth() < memoryLimit, which.constData());
            taken += verdict.isTaken ? 1 : 0;
        }
        // Some damaged files are read and some refused; otherwise this would prove little.
        QVERIFY(taken > 0 && taken < damagesPerImage * sound.size());
    }
};

QTEST_MAIN(HostileImagesTest)
#include "HostileImagesTest.moc"
