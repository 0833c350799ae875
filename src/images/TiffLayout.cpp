#include "TiffLayout.h"

#include "ByteReader.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

enum Tag : quint16 {
    ImageWidth = 256,
    ImageLength = 257,
    BitsPerSample = 258,
    SamplesPerPixel = 277,
    RowsPerStrip = 278,
    TileWidth = 322,
    TileLength = 323,
};

/// One directory entry is its tag, its type, its count, and its value or where that stands.
constexpr qsizetype entrySize = 12;

class Directory
{
public:
    Directory(const ByteReader &reader, qsizetype offset)
        : m_reader(reader)
        , m_entries(offset + 2)
        , m_count(reader.u16(offset).value_or(0))
    { }

    /// The first number of the entry, or nothing when there is no such entry.
    std::optional<quint32> value(Tag tag) const
    {
        constexpr quint16 shortType = 3;
        constexpr quint32 shortsInPlace = 2;
        for (int i = 0; i < m_count; ++i) {
            const qsizetype entry = m_entries + i * entrySize;
            if (m_reader.u16(entry) != tag)
                continue;
            if (m_reader.u16(entry + 2) != shortType)
                return m_reader.u32(entry + 8);
            if (m_reader.u32(entry + 4).value_or(0) <= shortsInPlace)
                return m_reader.u16(entry + 8);
            return m_reader.u16(m_reader.u32(entry + 8).value_or(0));
        }
        return std::nullopt;
    }

private:
    ByteReader m_reader;
    qsizetype m_entries;
    int m_count;
};

/// a × b, or the largest number when that is too large: four 32-bit numbers from a hostile file
/// would overflow.
qint64 saturatedProduct(qint64 a, qint64 b)
{
    qint64 product = 0;
    return qMulOverflow(a, b, &product) ? std::numeric_limits<qint64>::max() : product;
}

} // namespace

std::optional<TiffLayout> tiffLayout(const QByteArray &tiff)
{
    const ByteReader reader(
        tiff, tiff.startsWith("II") ? ByteReader::LittleEndian : ByteReader::BigEndian);
    const Directory directory(reader, reader.u32(4).value_or(0));
    const auto width = directory.value(ImageWidth);
    const auto length = directory.value(ImageLength);
    if (!width || !length)
        return std::nullopt;

    const auto bitsPerSample = qint64(directory.value(BitsPerSample).value_or(1));
    const auto samplesPerPixel = qint64(directory.value(SamplesPerPixel).value_or(1));
    const auto tileWidth = directory.value(TileWidth);
    const auto tileLength = directory.value(TileLength);
    const bool isTiled = tileWidth && tileLength;
    const qint64 pieceWidth = isTiled ? *tileWidth : *width;
    const qint64 pieceLength = isTiled
        ? *tileLength
        : std::min(*length, directory.value(RowsPerStrip).value_or(*length));
    const qint64 pieceSamples
        = saturatedProduct(saturatedProduct(pieceWidth, pieceLength), samplesPerPixel);
    return TiffLayout{.pieceBytes = saturatedProduct(pieceSamples, bitsPerSample) / 8,
                      .bitsPerSample = int(bitsPerSample)};
}
