#pragma once

#include "ContinuousPicture.h"
#include "DecodedImage.h"

#include <QByteArray>

/// The picture in some bytes, clipped by continuous corners. It draws nothing until it is decoded,
/// and for bytes that are no image; its implicit size is the picture's in pixels.
class BytesPicture : public ContinuousPicture
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QByteArray bytes READ bytes WRITE setBytes NOTIFY bytesChanged)
    Q_PROPERTY(bool isDecoded READ isDecoded NOTIFY imageChanged)

public:
    explicit BytesPicture(QQuickItem *parent = nullptr);

    QByteArray bytes() const { return m_decoded.bytes(); }
    void setBytes(const QByteArray &bytes);
    bool isDecoded() const { return !image().isNull(); }

Q_SIGNALS:
    void bytesChanged();

private:
    DecodedImage m_decoded;
};
