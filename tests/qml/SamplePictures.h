#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QObject>

/// Makes the bytes of pictures.
class SamplePictures : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// A PNG of one colour, its size in pixels.
    Q_INVOKABLE QByteArray png(int width, int height) const
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(QColor(0, 128, 128));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes;
    }

    /// A PNG whose header is whole and whose pixels are missing.
    Q_INVOKABLE QByteArray brokenPng(int width, int height) const
    {
        constexpr int headerLength = 41;
        return png(width, height).first(headerLength);
    }
};
