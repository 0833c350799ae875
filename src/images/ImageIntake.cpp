#include "ImageIntake.h"

#include "BackgroundWork.h"
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

using namespace Qt::StringLiterals;

namespace {

const QString unreadableFileText = u"No pude leer la imagen seleccionada."_s;
const QString unreadableDropText = u"No pude leer la imagen arrastrada."_s;
const QString tooLargeText
    = u"La imagen es demasiado grande. Elegí una imagen de menos de 12 MB."_s;
const QString noImageText = u"El archivo no parece ser una imagen válida."_s;
const QString defaultName = u"imagen"_s;

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
    const auto abandonWork = [this] { ++m_generation; };
    connect(contentView, &ContentView::imageAnalysisEnabledChanged, this, abandonWork);
    // A pending image goes when another conversation is shown; so does one about to be pending.
    connect(contentView->conversations(), &ConversationListModel::selectedIDChanged, this,
            abandonWork);
    connect(contentView, &ContentView::selectedImageChanged, this, [this] {
        if (m_contentView->selectedImageData() != m_prepared.bytes)
            setPrepared({});
    });
}

ImageIntake::~ImageIntake()
{
    // Decoders must not outlive the application they run in.
    decodingPool()->clear();
    decodingPool()->waitForDone();
}

template <typename Finish>
auto ImageIntake::unlessAbandoned(Finish finish)
{
    return [this, finish, generation = m_generation](const auto &result) {
        if (generation == m_generation)
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
    runThenFinish(
        QThreadPool::globalInstance(), this,
        [url] { return readLocalFile(url, maximumImageBytes + 1); },
        unlessAbandoned([this, url](const std::optional<QByteArray> &bytes) {
            if (!bytes) {
                m_contentView->setImageImportError(unreadableFileText);
                return;
            }
            const QFileInfo file(url.fileName(QUrl::FullyDecoded));
            acceptImage(*bytes, file.fileName(), typeForExtension(file.suffix()));
        }));
}

void ImageIntake::handleImportedFile(const ImportError &error)
{
    if (m_contentView->imageAnalysisEnabled())
        m_contentView->setImageImportError(error.localizedDescription);
}

bool ImageIntake::wouldTake(const ItemProviders &providers) const
{
    return m_contentView->imageAnalysisEnabled() && !m_contentView->isLoading()
        && firstImage(providers).has_value();
}

bool ImageIntake::handleDrop(const ItemProviders &providers)
{
    if (!m_contentView->imageAnalysisEnabled() || m_contentView->isLoading())
        return false;
    const auto image = firstImage(providers);
    if (!image)
        return false;

    auto promise = std::make_shared<QPromise<LoadedItem>>();
    whenFinished(promise->future(), this, unlessAbandoned([this, image](const LoadedItem &item) {
                     handleDroppedData(item, *image->provider, image->typeIdentifier);
                 }));
    promise->start();
    image->provider->loadDataRepresentation(image->typeIdentifier, [promise](LoadedItem item) {
        promise->addResult(std::move(item));
        promise->finish();
    });
    return true;
}

void ImageIntake::handleDroppedData(const LoadedItem &item, const ItemProvider &provider,
                                    const QString &typeIdentifier)
{
    if (item.error)
        m_contentView->setImageImportError(*item.error);
    else if (item.data)
        acceptImage(*item.data, provider.suggestedName().value_or(defaultName), typeIdentifier);
    else
        m_contentView->setImageImportError(unreadableDropText);
}

void ImageIntake::acceptImage(const QByteArray &bytes, const QString &name,
                              const std::optional<QString> &typeIdentifier)
{
    if (bytes.size() > maximumImageBytes) {
        m_contentView->setImageImportError(tooLargeText);
        return;
    }
    // One decoding serves the check, the chip and the preview kept with the message.
    runThenFinish(
        decodingPool(), this, [bytes] { return makePreviewData(bytes); },
        unlessAbandoned(
            [this, bytes, name, typeIdentifier](const std::optional<QByteArray> &preview) {
                if (!preview) {
                    m_contentView->setImageImportError(noImageText);
                    return;
                }
                setPrepared({.bytes = bytes, .preview = *preview});
                m_contentView->setSelectedImage(bytes, name, preferredMimeType(typeIdentifier));
            }));
}

bool ImageIntake::pasteImage()
{
    const QMimeData *mimeData = QGuiApplication::clipboard()->mimeData();
    return mimeData && handleDrop(pastedItems(mimeData));
}

void ImageIntake::setPrepared(PreparedImage image)
{
    m_prepared = std::move(image);
    Q_EMIT pendingPreviewChanged();
}
