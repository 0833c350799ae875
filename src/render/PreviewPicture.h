#pragma once

#include "ContinuousPicture.h"

#include <QByteArray>
#include <QSizeF>

/// The picture in a message's preview bytes, fitted into a size with its proportions kept.
///
/// The previews that this program keeps are plain JPEGs, whose size is in their header: the
/// implicit size of one is known at once, without a decoder. Any other picture that decodeImage()
/// takes gets its size when it is decoded, and what is no picture never has one. The pixels are
/// decoded on another thread while they are wanted, and no more of them than are shown.
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
    /// Drops the pixels and keeps the size.
    void dropPixels();
    void show(const QImage &image);

    QByteArray m_bytes;
    QSizeF m_maximumSize;
    bool m_isWanted = false;
    /// Upright, in pixels; empty when there is no picture, or none yet.
    QSize m_pictureSize;
    /// The longest side in pixels that was asked for last; 0 for none.
    int m_requestedSide = 0;
    /// Counts requests, so that an answer to an older one is told from the current one.
    quint64 m_request = 0;
};
