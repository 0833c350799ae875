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
    = u"La imagen es demasiado grande. Elegí una imagen de menos de 12 MB."_s;
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
        giveUp();
        Q_EMIT takesDropsChanged();
    });
    connect(contentView, &ContentView::isLoadingChanged, this, &ImageIntake::takesDropsChanged);
    // A pending image goes with the composer's text; so does one about to be pending.
    connect(contentView, &ContentView::composerAboutToBeEmptied, this, &ImageIntake::giveUp);
    connect(contentView, &ContentView::selectedImageChanged, this, [this] {
        if (m_contentView->selectedImageData() != m_prepared.bytes)
            setPrepared({});
    });
}

template <typename Finish>
auto ImageIntake::unlessGivenUp(Arrival arrival, Finish finish)
{
    return [this, arrival, finish](const auto &result) {
        if (arrival.generation == m_generation)
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
    const Arrival arrival = begin();
    runThenFinish(
        loadingPool(), this, [url] { return readLocalFile(url, maximumImageBytes + 1); },
        unlessGivenUp(arrival, [this, arrival, url](const std::optional<QByteArray> &bytes) {
            if (!bytes) {
                refuse(arrival, unreadableFileText);
                return;
            }
            const QFileInfo file(url.fileName(QUrl::FullyDecoded));
            check(arrival, *bytes, file.fileName(), typeForExtension(file.suffix()));
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

bool ImageIntake::bringImage(const ItemProviders &providers)
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

    const Arrival arrival = begin();
    auto promise = std::make_shared<QPromise<LoadedItem>>();
    whenFinished(promise->future(), this,
                 unlessGivenUp(arrival, [this, arrival, image](const LoadedItem &item) {
                     handleDroppedData(arrival, item, *image->provider, image->typeIdentifier);
                 }));
    promise->start();
    image->provider->loadDataRepresentation(image->typeIdentifier, [promise](LoadedItem item) {
        promise->addResult(std::move(item));
        promise->finish();
    });
    return true;
}

void ImageIntake::handleDroppedData(Arrival arrival, const LoadedItem &item,
                                    const ItemProvider &provider, const QString &typeIdentifier)
{
    if (item.error)
        refuse(arrival, *item.error);
    else if (item.data)
        check(arrival, *item.data, provider.suggestedName().value_or(defaultImageName),
              typeIdentifier);
    else
        refuse(arrival, unreadableDropText);
}

void ImageIntake::acceptImage(const QByteArray &bytes, const QString &name,
                              const std::optional<QString> &typeIdentifier)
{
    check(begin(), bytes, name, typeIdentifier);
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
    if (m_onTheirWay.isEmpty())
        action();
    else
        m_waiting = Waiting{.lastNumber = m_given, .action = std::move(action), .takeLater = {}};
}

void ImageIntake::giveUp()
{
    ++m_generation;
    m_onTheirWay.clear();
    stopWaiting();
}

ImageIntake::Arrival ImageIntake::begin()
{
    m_onTheirWay.insert(++m_given);
    return {.generation = m_generation, .number = m_given};
}

void ImageIntake::check(Arrival arrival, const QByteArray &bytes, const QString &name,
                        const std::optional<QString> &typeIdentifier)
{
    if (bytes.size() > maximumImageBytes) {
        refuse(arrival, tooLargeText);
        return;
    }
    // One decoding serves the check, the chip and the preview kept with the message.
    const auto finish
        = [this, arrival, bytes, name, typeIdentifier](const std::optional<QByteArray> &preview) {
              if (!preview) {
                  refuse(arrival, noImageText);
                  return;
              }
              take(arrival, {.bytes = bytes, .preview = *preview}, name, typeIdentifier);
              end(arrival);
          };
    runThenFinish(
        decodingPool(), this, [bytes] { return makePreviewData(bytes); },
        unlessGivenUp(arrival, finish));
}

void ImageIntake::take(Arrival arrival, const PreparedImage &image, const QString &name,
                       const std::optional<QString> &typeIdentifier)
{
    if (arrival.generation != m_generation || arrival.number < m_lastTaken)
        return;
    if (m_waiting && arrival.number > m_waiting->lastNumber) {
        m_waiting->takeLater.insert(arrival.number, [this, arrival, image, name, typeIdentifier] {
            take(arrival, image, name, typeIdentifier);
        });
        return;
    }
    m_lastTaken = arrival.number;
    setPrepared(image);
    m_contentView->setSelectedImage(image.bytes, name, preferredMimeType(typeIdentifier));
}

void ImageIntake::refuse(Arrival arrival, const QString &reason)
{
    m_contentView->setImageImportError(reason);
    end(arrival);
}

void ImageIntake::end(Arrival arrival)
{
    m_onTheirWay.remove(arrival.number);
    const auto isWaitedFor = [this](int number) { return number <= m_waiting->lastNumber; };
    if (m_waiting && std::ranges::none_of(m_onTheirWay, isWaitedFor))
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
