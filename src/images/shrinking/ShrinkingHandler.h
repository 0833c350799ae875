#pragma once

#include "ImageHeader.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QImageIOHandler>

#include <optional>

/// What reads one format.
struct ShrinkingReader
{
    const char *name;
    std::optional<ImageHeader> (*header)(QByteArrayView bytes);
    /// The picture as it is stored, at `size`, which is not larger than it is.
    QImage (*decoded)(QByteArrayView bytes, QSize size);
};

/// Lets Qt read a picture by one of the readers, at the requested size.
class ShrinkingHandler : public QImageIOHandler
{
public:
    explicit ShrinkingHandler(const ShrinkingReader *reader);

    bool canRead() const override;
    bool read(QImage *image) override;
    bool supportsOption(ImageOption option) const override;
    QVariant option(ImageOption option) const override;
    void setOption(ImageOption option, const QVariant &value) override;

private:
    bool open();

    const ShrinkingReader *m_reader;
    QByteArray m_bytes;
    std::optional<ImageHeader> m_header;
    QSize m_scaledSize;
};
