// Readers of PNG, GIF and WebP that shrink a picture while they read it. Qt's own readers hold the
// whole picture, some of them twice; which ones differs between versions.
#pragma once

#include <QImageIOPlugin>

/// Adds the formats "aulora-png", "aulora-gif" and "aulora-webp" to Qt's readers.
class ShrinkingPlugin : public QImageIOPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QImageIOHandlerFactoryInterface_iid FILE "shrinking.json")

public:
    Capabilities capabilities(QIODevice *device, const QByteArray &format) const override;
    QImageIOHandler *create(QIODevice *device, const QByteArray &format) const override;
};
