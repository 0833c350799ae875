#include "PreviewPicture.h"

#include "BackgroundWork.h"
#include "ImageDecoder.h"
#include "ImageLimits.h"
#include "JpegLayout.h"

#include <QQuickWindow>

#include <algorithm>
#include <cmath>

namespace {

/// The size that the header announces, as far as a preview can have it: room is given to nothing
/// larger before it is decoded. Screens of double density may have made it twice as large.
QSize announcedSize(const QByteArray &bytes)
{
    constexpr int largestSide = 2 * maximumPreviewSide;
    const QSize size = plainJpegSize(bytes).value_or(QSize());
    return std::max(size.width(), size.height()) <= largestSide ? size : QSize();
}

} // namespace

void PreviewPicture::setBytes(const QByteArray &bytes)
{
    if (m_bytes == bytes)
        return;
    m_bytes = bytes;
    m_pictureSize = announcedSize(bytes);
    dropPixels();
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
    if (wanted)
        decode();
    else
        dropPixels();
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
    if (!m_isWanted || !isComponentComplete() || !window() || m_bytes.isEmpty())
        return;
    const QSizeF shown
        = m_pictureSize.isEmpty() ? m_maximumSize : QSizeF(implicitWidth(), implicitHeight());
    const double ratio = window()->effectiveDevicePixelRatio();
    const int side = int(std::ceil(std::max(shown.width(), shown.height()) * ratio));
    if (side <= m_requestedSide)
        return;
    m_requestedSide = side;
    runThenFinish(
        decodingPool(), this, [bytes = m_bytes, side] { return decodeImage(bytes, side); },
        [this, request = ++m_request](const std::optional<QImage> &image) {
            if (request == m_request)
                show(image.value_or(QImage()));
        });
}

void PreviewPicture::dropPixels()
{
    m_requestedSide = 0;
    ++m_request;
    setImage({});
}

void PreviewPicture::show(const QImage &image)
{
    if (m_pictureSize.isEmpty() || image.isNull()) {
        m_pictureSize = image.size();
        updateSize();
    }
    setImage(image);
}
