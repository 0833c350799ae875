#include "HeifRotation.h"

#include "ByteReader.h"

#include <QByteArrayView>
#include <QList>

#include <algorithm>

namespace {

constexpr qsizetype boxHeaderSize = 8;
constexpr qsizetype fullBoxHeaderSize = 12; // With a version and flags

struct Box
{
    QByteArrayView type;
    QByteArrayView content;
};

/// The boxes that lie one after the other in `bytes`, as far as they are whole.
QList<Box> boxes(QByteArrayView bytes)
{
    constexpr qsizetype limit = 1000; // A photograph has dozens.
    QList<Box> found;
    while (bytes.size() >= boxHeaderSize && found.size() < limit) {
        const qsizetype size = ByteReader(bytes, ByteReader::BigEndian).u32(0).value_or(0);
        if (size < boxHeaderSize || size > bytes.size())
            break;
        found.append({.type = bytes.sliced(4, 4),
                      .content = bytes.sliced(boxHeaderSize, size - boxHeaderSize)});
        bytes = bytes.sliced(size);
    }
    return found;
}

/// What is inside the first box of that type; empty when there is none.
QByteArrayView contentOf(const QList<Box> &boxes, const char *type)
{
    const auto box = std::find_if(boxes.begin(), boxes.end(),
                                  [&](const Box &b) { return b.type == QByteArrayView(type); });
    return box == boxes.end() ? QByteArrayView() : box->content;
}

/// The number of an item; 0, which no item has, past the end.
quint32 itemNumber(const ByteReader &reader, qsizetype at, bool isLong)
{
    return isLong ? reader.u32(at).value_or(0) : reader.u16(at).value_or(0);
}

/// The 1-based positions of the properties associated with `item`, in their order; `associations`
/// is what is inside of the box "ipma".
std::optional<QList<int>> propertiesOf(quint32 item, QByteArrayView associations)
{
    const ByteReader reader(associations, ByteReader::BigEndian);
    const quint32 versionAndFlags = reader.u32(0).value_or(0);
    const bool hasLongItems = versionAndFlags >> 24 > 0;
    const bool hasLongPositions = versionAndFlags & 1;
    const qsizetype positionSize = hasLongPositions ? 2 : 1;
    quint32 entries = reader.u32(4).value_or(0);
    qsizetype at = 8;
    for (; entries > 0 && at < associations.size(); --entries) {
        const quint32 id = itemNumber(reader, at, hasLongItems);
        at += hasLongItems ? 4 : 2;
        if (at >= associations.size())
            break;
        const int count = quint8(associations[at++]);
        if (id != item) {
            at += count * positionSize;
            continue;
        }
        QList<int> positions;
        for (int i = 0; i < count && at + positionSize <= associations.size();
             ++i, at += positionSize) {
            positions.append(hasLongPositions ? *reader.u16(at) & 0x7FFF
                                              : quint8(associations[at]) & 0x7F);
        }
        return positions;
    }
    return std::nullopt;
}

} // namespace

std::optional<int> heifRotation(const QByteArray &heic)
{
    const QByteArrayView meta = contentOf(boxes(heic), "meta");
    if (meta.size() < fullBoxHeaderSize)
        return std::nullopt;
    const QList<Box> parts = boxes(meta.sliced(4));
    const QByteArrayView primary = contentOf(parts, "pitm");
    const bool hasLongItems = !primary.isEmpty() && primary[0] > 0;
    const quint32 item = itemNumber(ByteReader(primary, ByteReader::BigEndian), 4, hasLongItems);
    const QList<Box> propertyParts = boxes(contentOf(parts, "iprp"));
    const QList<Box> properties = boxes(contentOf(propertyParts, "ipco"));
    const auto positions = propertiesOf(item, contentOf(propertyParts, "ipma"));
    if (item == 0 || !positions)
        return std::nullopt;

    int rotation = 0;
    for (const int position : *positions) {
        if (position < 1 || position > properties.size())
            return std::nullopt;
        const Box &property = properties[position - 1];
        if (property.type == QByteArrayView("imir") || property.type == QByteArrayView("clap"))
            return std::nullopt;
        if (property.type == QByteArrayView("irot") && !property.content.isEmpty())
            rotation += property.content[0] & 3;
    }
    return rotation % 4;
}
