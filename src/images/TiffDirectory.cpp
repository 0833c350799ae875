#include "TiffDirectory.h"

TiffDirectory::TiffDirectory(QByteArrayView tiff)
    : m_reader(tiff, tiff.startsWith("II") ? ByteReader::LittleEndian : ByteReader::BigEndian)
{
    const qsizetype offset = m_reader.u32(4).value_or(0);
    m_entries = offset + 2;
    m_count = m_reader.u16(offset).value_or(0);
}

std::optional<quint32> TiffDirectory::value(Tag tag) const
{
    // One directory entry is its tag, its type, its count, and its value or where that stands.
    constexpr qsizetype entrySize = 12;
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
