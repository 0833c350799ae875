// The check of an image: whatever the bytes, it ends within its limits, and what it accepts has a
// preview that is an image itself.

#include "ImageDecoder.h"
#include "ImageLimits.h"
#include "ImagePreview.h"

#include <QGuiApplication>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "*=false");
    // Lives as long as the process: the readers of some formats are plug-ins beside it.
    new QGuiApplication(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto preview
        = makePreviewData(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!preview)
        return 0;
    const auto picture = decodeImage(*preview, maximumPreviewSide);
    if (!picture || std::max(picture->width(), picture->height()) > maximumPreviewSide)
        std::abort();
    return 0;
}
