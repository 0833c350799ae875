// Photographs in HEIC, read through libheif where Qt cannot read them by itself.
#pragma once

#include <QImageIOPlugin>

/// Adds the format "aulora-heic" to Qt's readers. With a name of its own it is used even where
/// another HEIC reader is installed, which would not keep to our limits.
class HeifPlugin : public QImageIOPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QImageIOHandlerFactoryInterface_iid FILE "heif.json")

public:
    Capabilities capabilities(QIODevice *device, const QByteArray &format) const override;
    QImageIOHandler *create(QIODevice *device, const QByteArray &format) const override;
};
