#include "RasterFormat.h"

#include <algorithm>
#include <array>

bool isRasterFormat(const QByteArray &format)
{
    static constexpr std::array formats{"jpeg", "png",  "gif",  "webp",
                                        "bmp",  "tiff", "heic", "heif"};
    return std::find(formats.begin(), formats.end(), format) != formats.end();
}
