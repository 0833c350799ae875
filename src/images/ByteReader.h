#pragma once

#include <QByteArrayView>
#include <QtEndian>

#include <optional>

/// Numbers read out of a file's bytes at given offsets, never past their end.
class ByteReader
{
public:
    enum Endianness { LittleEndian, BigEndian };

    ByteReader(QByteArrayView bytes, Endianness endianness)
        : m_bytes(bytes)
        , m_endianness(endianness)
    { }

    std::optional<quint16> u16(qsizetype offset) const { return read<quint16>(offset); }
    std::optional<quint32> u32(qsizetype offset) const { return read<quint32>(offset); }

private:
    template <typename Number>
    std::optional<Number> read(qsizetype offset) const
    {
        if (offset < 0 || offset > m_bytes.size() - qsizetype(sizeof(Number)))
            return std::nullopt;
        const char *at = m_bytes.data() + offset;
        return m_endianness == LittleEndian ? qFromLittleEndian<Number>(at)
                                            : qFromBigEndian<Number>(at);
    }

    QByteArrayView m_bytes;
    Endianness m_endianness;
};
