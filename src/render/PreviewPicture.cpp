#include "PreviewPicture.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImageReader>
#include <QPointer>
#include <QQuickWindow>
#include <QThreadPool>

#include <algorithm>
#include <array>

namespace {
constexpr std::array rasterFormats{"jpeg", "png", "gif", "webp", "bmp", "tiff", "heic", "heif"};
// More than any camera's, and far more than a preview has.
constexpr qint64 mostPixels = 120'000'000;

// What reads the picture, if it is one.
bool isReadable(QImageReader &reader)
{
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const bool isRaster = std::ranges::any_of(
        rasterFormats, [&](const char *format) { return reader.format() == format; });
    const QSize size = reader.size();
    return isRaster && !size.isEmpty() && qint64(size.width()) * size.height() <= mostPixels;
}

bool liesOnItsSide(const QImageReader &reader)
{
    return reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
}

QSize uprightSize(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    if (!isReadable(reader))
        return {};
    return liesOnItsSide(reader) ? reader.size().transposed() : reader.size();
}

QImage decoded(const QByteArray &bytes, QSize wanted)
{
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    if (!isReadable(reader))
        return {};
    const QSize limit = liesOnItsSide(reader) ? wanted.transposed() : wanted;
    const QSize size = reader.size();
    if (size.width() > limit.width() || size.height() > limit.height())
        reader.setScaledSize(size.scaled(limit, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return reader.read();
}
} // namespace

void PreviewPicture::setBytes(const QByteArray &bytes)
{
    if (m_bytes == bytes)
        return;
    m_bytes = bytes;
    m_pictureSize = uprightSize(bytes);
    m_decodedSize = {};
    setImage({});
    updateSize();
    Q_EMIT bytesChanged();
}

void PreviewPicture::setMaximumSize(QSizeF size)
{
    if (m_maximumSize == size)
        return;
    m_maximumSize = size;
    updateSize();
    Q_EMIT maximumSizeChanged();
}

void PreviewPicture::setWanted(bool wanted)
{
    if (m_isWanted == wanted)
        return;
    m_isWanted = wanted;
    decode();
    Q_EMIT wantedChanged();
}

void PreviewPicture::componentComplete()
{
    ContinuousPicture::componentComplete();
    decode();
}

void PreviewPicture::itemChange(ItemChange change, const ItemChangeData &value)
{
    ContinuousPicture::itemChange(change, value);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        decode();
}

void PreviewPicture::updateSize()
{
    // Whole points, so that what lies below stays on whole ones too.
    const QSize fitted = m_pictureSize.isEmpty() ? QSize(0, 0)
                                                 : QSizeF(m_pictureSize)
                                                       .scaled(m_maximumSize, Qt::KeepAspectRatio)
                                                       .toSize()
                                                       .expandedTo({1, 1});
    setImplicitSize(fitted.width(), fitted.height());
    decode();
}

void PreviewPicture::decode()
{
    if (!m_isWanted || !isComponentComplete() || !window())
        return;
    const double ratio = window()->effectiveDevicePixelRatio();
    const QSize size = (QSizeF(implicitWidth(), implicitHeight()) * ratio).toSize();
    if (size.isEmpty() || size == m_decodedSize)
        return;
    m_decodedSize = size;
    QThreadPool::globalInstance()->start(
        [receiver = QPointer(this), request = ++m_request, bytes = m_bytes, size] {
            const QImage image = decoded(bytes, size);
            QMetaObject::invokeMethod(QCoreApplication::instance(), [=] {
                if (receiver)
                    receiver->finish(request, image);
            });
        });
}

void PreviewPicture::finish(quint64 request, const QImage &image)
{
    if (request != m_request)
        return;
    if (image.isNull()) {
        m_pictureSize = {};
        updateSize();
    }
    setImage(image);
}
