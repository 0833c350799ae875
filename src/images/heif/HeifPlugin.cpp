#include "HeifPlugin.h"

#include "HeifHandler.h"

QImageIOPlugin::Capabilities HeifPlugin::capabilities(QIODevice *, const QByteArray &format) const
{
    return format == "aulora-heic" ? CanRead : Capabilities();
}

QImageIOHandler *HeifPlugin::create(QIODevice *device, const QByteArray &format) const
{
    auto *handler = new HeifHandler;
    handler->setDevice(device);
    handler->setFormat(format);
    return handler;
}
