#include "DroppedItems.h"

#include "BackgroundWork.h"
#include "ContentType.h"
#include "ImageLimits.h"
#include "LocalFile.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QMimeData>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

/// One file, wherever its address points.
class FileItem : public ItemProvider
{
public:
    explicit FileItem(QUrl url)
        : m_url(std::move(url))
    { }

    QStringList registeredTypeIdentifiers() const override
    {
        const auto type = typeForExtension(QFileInfo(name()).suffix());
        return type ? QStringList{*type} : QStringList();
    }

    std::optional<QString> suggestedName() const override { return name(); }

    void loadDataRepresentation(const QString &, Completion completion) override
    {
        loadingPool()->start([url = m_url, completion = std::move(completion)] {
            completion({.error = {}, .data = readLocalFile(url, maximumImageBytes + 1)});
        });
    }

private:
    QString name() const { return m_url.fileName(QUrl::FullyDecoded); }

    QUrl m_url;
};

/// Image data that another program holds, in all the types it offers.
class ImageDataItem : public ItemProvider
{
public:
    explicit ImageDataItem(const QMimeData *mimeData)
        : m_mimeData(mimeData)
    { }

    QStringList registeredTypeIdentifiers() const override
    {
        QStringList types = m_mimeData->formats();
        types.removeIf([](const QString &type) { return !conformsToImage(type); });
        // Some desktops offer a decoded picture and no format at all.
        if (types.isEmpty() && m_mimeData->hasImage())
            types.append(pngType);
        return types;
    }

    std::optional<QString> suggestedName() const override { return std::nullopt; }

    void loadDataRepresentation(const QString &typeIdentifier, Completion completion) override
    {
        // Qt gives data on this thread only, and only during the event.
        if (m_mimeData->hasFormat(typeIdentifier)) {
            completion({.error = {}, .data = m_mimeData->data(typeIdentifier)});
            return;
        }
        const auto image = m_mimeData->imageData().value<QImage>();
        loadingPool()->start([image, completion = std::move(completion)] {
            QBuffer buffer;
            buffer.open(QIODevice::WriteOnly);
            const bool isWritten = image.save(&buffer, "png");
            completion(
                {.error = {}, .data = isWritten ? std::optional(buffer.data()) : std::nullopt});
        });
    }

private:
    inline static const QString pngType = u"image/png"_s;

    const QMimeData *m_mimeData;
};

enum class Place { Here, Elsewhere };

ItemProviders fileItems(const QMimeData *mimeData, Place place)
{
    ItemProviders items;
    for (const QUrl &url : mimeData->urls()) {
        if (localPath(url).has_value() == (place == Place::Here))
            items.append(std::make_shared<FileItem>(url));
    }
    return items;
}

ItemProviders imageDataItems(const QMimeData *mimeData)
{
    auto item = std::make_shared<ImageDataItem>(mimeData);
    return item->registeredTypeIdentifiers().isEmpty() ? ItemProviders()
                                                       : ItemProviders{std::move(item)};
}

} // namespace

ItemProviders draggedItems(const QMimeData *mimeData)
{
    return fileItems(mimeData, Place::Here) + imageDataItems(mimeData)
        + fileItems(mimeData, Place::Elsewhere);
}

ItemProviders pastedItems(const QMimeData *mimeData)
{
    const ItemProviders files = fileItems(mimeData, Place::Here);
    return mimeData->hasFormat(u"text/plain"_s) ? files : files + imageDataItems(mimeData);
}
