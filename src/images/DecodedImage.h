#pragma once

#include <QByteArray>
#include <QImage>
#include <QObject>

/// The picture in some bytes, decoded off the main thread: null until that is done, and for bytes
/// that are no image.
class DecodedImage : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    QByteArray bytes() const { return m_bytes; }
    void setBytes(const QByteArray &bytes);
    /// Upright, its longest side at most as long as a preview's.
    QImage image() const { return m_image; }

Q_SIGNALS:
    void imageChanged();

private:
    void setImage(const QImage &image);

    QByteArray m_bytes;
    QImage m_image;
};
