#pragma once

#include <QByteArray>
#include <QImageIOHandler>
#include <QSize>

#include <libheif/heif.h>
#include <memory>
#include <optional>

/// Reads the primary picture of a HEIC file, at full size or scaled down while its planes are
/// combined: the planes of a large photograph fit in memory, a second copy of them does not. For
/// the same reason a picture that is only rotated is returned unrotated, for the caller to rotate
/// when it is small. One that is mirrored or cropped as well is transformed by libheif.
class HeifHandler : public QImageIOHandler
{
public:
    bool canRead() const override;
    bool read(QImage *image) override;
    bool supportsOption(ImageOption option) const override;
    QVariant option(ImageOption option) const override;
    void setOption(ImageOption option, const QVariant &value) override;

private:
    template <auto release>
    struct Release
    {
        template <typename Thing>
        void operator()(Thing *thing) const
        {
            release(thing);
        }
    };
    using Context = std::unique_ptr<heif_context, Release<heif_context_free>>;
    using Handle = std::unique_ptr<heif_image_handle, Release<heif_image_handle_release>>;
    using Picture = std::unique_ptr<heif_image, Release<heif_image_release>>;

    bool open();
    /// Of the picture as decode() gives it.
    QSize size() const;
    /// An upper bound of the memory for the planes.
    qint64 decodingBytes() const;
    Picture decode() const;

    /// The context reads from these bytes as it goes.
    QByteArray m_bytes;
    Context m_context;
    Handle m_handle;
    /// As heifRotation() gives it: what is left to the caller.
    std::optional<int> m_rotation;
    QSize m_scaledSize;
};
