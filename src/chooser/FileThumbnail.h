#pragma once

#include "ContinuousPicture.h"

#include <QUrl>

#include <optional>

/// A small picture of an image file, clipped by continuous corners. It draws nothing until the file
/// is read and decoded, off the main thread, and for what is no image that the program takes; its
/// implicit size is the small picture's, in pixels.
class FileThumbnail : public ContinuousPicture
{
    Q_OBJECT
    QML_ELEMENT
    /// Empty for no picture.
    Q_PROPERTY(QUrl file READ file WRITE setFile NOTIFY fileChanged)
    Q_PROPERTY(bool isDecoded READ isDecoded NOTIFY imageChanged)

public:
    explicit FileThumbnail(QQuickItem *parent = nullptr);
    ~FileThumbnail() override;

    QUrl file() const { return m_file; }
    void setFile(const QUrl &file);
    bool isDecoded() const { return !image().isNull(); }
    /// Shows what its file was decoded to; a null image for nothing.
    void show(const QImage &image);

Q_SIGNALS:
    void fileChanged();

private:
    QUrl m_file;
};
