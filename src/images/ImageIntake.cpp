#include "ImageIntake.h"

#include "BackgroundWork.h"
#include "ChatMessage.h"
#include "ContentType.h"
#include "ContentView.h"
#include "DroppedItems.h"
#include "ImageLimits.h"
#include "ImagePreview.h"
#include "LocalFile.h"

#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString unreadableFileText = u"No pude leer la imagen seleccionada."_s;
const QString unreadableDropText = u"No pude leer la imagen arrastrada."_s;
const QString tooLargeText
    = u"La imagen es demasiado grande. Elegí una imagen de menos de %1 MB."_s.arg(maximumImageBytes
                                                                                  >> 20);
const QString noImageText = u"El archivo no parece ser una imagen válida."_s;

struct ImageItem
{
    std::shared_ptr<ItemProvider> provider;
    QString typeIdentifier;
};

std::optional<ImageItem> firstImage(const ItemProviders &providers)
{
    for (const auto &provider : providers) {
        const QStringList types = provider->registeredTypeIdentifiers();
        const auto type = std::find_if(types.begin(), types.end(), conformsToImage);
        if (type != types.end())
            return ImageItem{.provider = provider, .typeIdentifier = *type};
    }
    return std::nullopt;
}

} // namespace

ImageIntake::ImageIntake(ContentView *contentView, QObject *parent)
    : QObject(parent)
    , m_contentView(contentView)
{
    connect(contentView, &ContentView::imageAnalysisEnabledChanged, this, [this] {
        cancelJobs();
        Q_EMIT takesDropsChanged();
    });
    connect(contentView, &ContentView::isLoadingChanged, this, &ImageIntake::takesDropsChanged);
    // The pending image is discarded with the composer's text, and so are images still being
    // imported.
    connect(contentView, &ContentView::composerAboutToBeEmptied, this, &ImageIntake::cancelJobs);
    connect(contentView, &ContentView::selectedImageChanged, this, [this] {
        if (m_contentView->selectedImageData() != m_prepared.bytes)
            setPrepared({});
    });
}

template <typename Finish>
auto ImageIntake::unlessCancelled(ImportJob job, Finish finish)
{
    return [this, job, finish](const auto &result) {
        if (job.generation == m_generation)
            finish(result);
    };
}

std::optional<QByteArray> ImageIntake::preview(const QByteArray &bytes) const
{
    if (!bytes.isEmpty() && bytes == m_prepared.bytes)
        return m_prepared.preview;
    return makePreviewData(bytes);
}

void ImageIntake::handleImportedFile(const QList<QUrl> &urls)
{
    if (!m_contentView->imageAnalysisEnabled() || urls.isEmpty())
        return;
    const QUrl &url = urls.first();
    const ImportJob job = beginJob();
    runThenFinish(
        loadingPool(), this, [url] { return readLocalFile(url, maximumImageBytes + 1); },
        unlessCancelled(job, [this, job, url](const std::optional<QByteArray> &bytes) {
            if (!bytes) {
                refuse(job, unreadableFileText);
                return;
            }
            const QFileInfo file(url.fileName(QUrl::FullyDecoded));
            check(job, *bytes, file.fileName(), typeForExtension(file.suffix()));
        }));
}

void ImageIntake::handleImportedFile(const ImportError &error)
{
    if (m_contentView->imageAnalysisEnabled())
        m_contentView->setImageImportError(error.localizedDescription);
}

bool ImageIntake::takesDrops() const
{
    return m_contentView->imageAnalysisEnabled() && !m_contentView->isLoading();
}

bool ImageIntake::containsImage(const ItemProviders &providers)
{
    return firstImage(providers).has_value();
}

bool ImageIntake::handleDrop(const ItemProviders &providers)
{
    if (!takesDrops())
        return false;
    const auto image = firstImage(providers);
    if (!image)
        return false;

    const ImportJob job = beginJob();
    auto promise = std::make_shared<QPromise<LoadedItem>>();
    whenFinished(promise->future(), this,
                 unlessCancelled(job, [this, job, image](const LoadedItem &item) {
                     handleDroppedData(job, item, *image->provider, image->typeIdentifier);
                 }));
    promise->start();
    image->provider->loadDataRepresentation(image->typeIdentifier, [promise](LoadedItem item) {
        promise->addResult(std::move(item));
        promise->finish();
    });
    return true;
}

void ImageIntake::handleDroppedData(ImportJob job, const LoadedItem &item,
                                    const ItemProvider &provider, const QString &typeIdentifier)
{
    if (item.error)
        refuse(job, *item.error);
    else if (item.data)
        check(job, *item.data, provider.suggestedName().value_or(defaultImageName), typeIdentifier);
    else
        refuse(job, unreadableDropText);
}

void ImageIntake::acceptImage(const QByteArray &bytes, const QString &name,
                              const std::optional<QString> &typeIdentifier)
{
    check(beginJob(), bytes, name, typeIdentifier);
}

bool ImageIntake::pasteImage()
{
    const QMimeData *mimeData = QGuiApplication::clipboard()->mimeData();
    return mimeData && handleDrop(pastedItems(mimeData));
}

void ImageIntake::whenSettled(std::function<void()> action)
{
    if (m_waiting)
        return;
    if (m_runningJobs.isEmpty())
        action();
    else
        m_waiting = Waiting{.lastNumber = m_lastJob, .action = std::move(action), .takeLater = {}};
}

void ImageIntake::cancelJobs()
{
    ++m_generation;
    m_runningJobs.clear();
    stopWaiting();
}

ImageIntake::ImportJob ImageIntake::beginJob()
{
    m_runningJobs.insert(++m_lastJob);
    return {.generation = m_generation, .number = m_lastJob};
}

void ImageIntake::check(ImportJob job, const QByteArray &bytes, const QString &name,
                        const std::optional<QString> &typeIdentifier)
{
    if (bytes.size() > maximumImageBytes) {
        refuse(job, tooLargeText);
        return;
    }
    // One decoding serves the check, the chip and the preview kept with the message.
    const auto finish
        = [this, job, bytes, name, typeIdentifier](const std::optional<QByteArray> &preview) {
              if (!preview) {
                  refuse(job, noImageText);
                  return;
              }
              take(job, {.bytes = bytes, .preview = *preview}, name, typeIdentifier);
              endJob(job);
          };
    runThenFinish(
        decodingPool(), this, [bytes] { return makePreviewData(bytes); },
        unlessCancelled(job, finish));
}

void ImageIntake::take(ImportJob job, const PreparedImage &image, const QString &name,
                       const std::optional<QString> &typeIdentifier)
{
    if (job.generation != m_generation || job.number < m_lastTakenJob)
        return;
    if (m_waiting && job.number > m_waiting->lastNumber) {
        m_waiting->takeLater.insert(job.number, [this, job, image, name, typeIdentifier] {
            take(job, image, name, typeIdentifier);
        });
        return;
    }
    m_lastTakenJob = job.number;
    setPrepared(image);
    m_contentView->setSelectedImage(image.bytes, name, preferredMimeType(typeIdentifier));
}

void ImageIntake::refuse(ImportJob job, const QString &reason)
{
    m_contentView->setImageImportError(reason);
    endJob(job);
}

void ImageIntake::endJob(ImportJob job)
{
    m_runningJobs.remove(job.number);
    const auto isWaitedFor = [this](int number) { return number <= m_waiting->lastNumber; };
    if (m_waiting && std::ranges::none_of(m_runningJobs, isWaitedFor))
        stopWaiting();
}

void ImageIntake::stopWaiting()
{
    if (!m_waiting)
        return;
    const Waiting waiting = *std::exchange(m_waiting, std::nullopt);
    waiting.action();
    for (const auto &takeOne : waiting.takeLater)
        takeOne();
}

void ImageIntake::setPrepared(PreparedImage image)
{
    m_prepared = std::move(image);
    Q_EMIT pendingPreviewChanged();
}
