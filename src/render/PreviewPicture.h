#pragma once

#include "ContinuousPicture.h"

#include <QByteArray>
#include <QSizeF>

/// The picture in a message's preview bytes, fitted into a size with its proportions kept.
///
/// Its implicit size is known at once, from the header alone, and empty when the bytes are no
/// picture. The pixels are decoded on another thread once they are wanted, and no more of them than
/// are shown. Raster formats only, recognised by their content: vector formats may name other
/// files, and those are never opened.
class PreviewPicture : public ContinuousPicture
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QByteArray bytes READ bytes WRITE setBytes NOTIFY bytesChanged)
    Q_PROPERTY(QSizeF maximumSize READ maximumSize WRITE setMaximumSize NOTIFY maximumSizeChanged)
    Q_PROPERTY(bool wanted READ isWanted WRITE setWanted NOTIFY wantedChanged)

public:
    using ContinuousPicture::ContinuousPicture;

    QByteArray bytes() const { return m_bytes; }
    void setBytes(const QByteArray &bytes);
    /// In points.
    QSizeF maximumSize() const { return m_maximumSize; }
    void setMaximumSize(QSizeF size);
    /// Whether it is about to be seen.
    bool isWanted() const { return m_isWanted; }
    void setWanted(bool wanted);

Q_SIGNALS:
    void bytesChanged();
    void maximumSizeChanged();
    void wantedChanged();

protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    void updateSize();
    void decode();
    void finish(quint64 request, const QImage &image);

    QByteArray m_bytes;
    QSizeF m_maximumSize;
    bool m_isWanted = false;
    /// Upright, in pixels; empty when there is no picture.
    QSize m_pictureSize;
    /// The size in pixels that was asked for last.
    QSize m_decodedSize;
    /// Counts requests, so that an answer to an older one is told from the current one.
    quint64 m_request = 0;
};
