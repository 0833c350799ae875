#include "ShrinkingPlugin.h"

#include "GifReading.h"
#include "PngReading.h"
#include "ShrinkingHandler.h"
#include "WebpReading.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array readers{
    ShrinkingReader{.name = "aulora-png", .header = pngHeader, .decoded = decodedPng},
    ShrinkingReader{.name = "aulora-gif", .header = gifHeader, .decoded = decodedGif},
    ShrinkingReader{.name = "aulora-webp", .header = webpHeader, .decoded = decodedWebp},
};

const ShrinkingReader *readerFor(const QByteArray &format)
{
    const auto *reader = std::find_if(readers.begin(), readers.end(),
                                      [&](const auto &r) { return format == r.name; });
    return reader == readers.end() ? nullptr : &*reader;
}

} // namespace

QImageIOPlugin::Capabilities ShrinkingPlugin::capabilities(QIODevice *,
                                                           const QByteArray &format) const
{
    return readerFor(format) ? CanRead : Capabilities();
}

QImageIOHandler *ShrinkingPlugin::create(QIODevice *device, const QByteArray &format) const
{
    const ShrinkingReader *reader = readerFor(format);
    if (!reader)
        return nullptr;
    auto *handler = new ShrinkingHandler(reader);
    handler->setDevice(device);
    handler->setFormat(format);
    return handler;
}
