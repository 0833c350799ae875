#include "LineDecoder.h"

#include "Utf8Text.h"

#include <array>
#include <cstdint>
#include <utility>

namespace {

/// First bytes of every line end in UTF-8. None of them occurs inside another character, so lines
/// can be cut before they are decoded.
constexpr std::array<bool, 256> startsLineEnd = [] {
    std::array<bool, 256> table{};
    for (const int byte : {0x0A, 0x0D, 0xC2, 0xE2})
        table.at(byte) = true;
    return table;
}();

constexpr qsizetype incomplete = -1;

/// Length in bytes of the line end at the start of `bytes`: 0 when there is none, `incomplete`
/// when only the next chunk can tell.
qsizetype lineEndLength(QByteArrayView bytes)
{
    const auto byteAt = [bytes](qsizetype i) { return uint8_t(bytes[i]); };
    switch (byteAt(0)) {
    case 0x0A:
    case 0x0D:
        return 1;
    case 0xC2: // NEL is C2 85
        if (bytes.size() < 2)
            return incomplete;
        return byteAt(1) == 0x85 ? 2 : 0;
    case 0xE2: // LINE SEPARATOR is E2 80 A8, PARAGRAPH SEPARATOR E2 80 A9
        if (bytes.size() < 2)
            return incomplete;
        if (byteAt(1) != 0x80)
            return 0;
        if (bytes.size() < 3)
            return incomplete;
        return byteAt(2) == 0xA8 || byteAt(2) == 0xA9 ? 3 : 0;
    default:
        return 0;
    }
}

struct Subpart
{
    qsizetype length;
    bool isWellFormed;
};

/// The character at the start of `bytes`, or the longest start of one that the bytes agree with.
Subpart subpartAt(QByteArrayView bytes)
{
    const auto lead = uint8_t(bytes[0]);
    const qsizetype length = lead < 0x80 ? 1
        : lead >= 0xC2 && lead <= 0xDF   ? 2
        : lead >= 0xE0 && lead <= 0xEF   ? 3
        : lead >= 0xF0 && lead <= 0xF4   ? 4
                                         : 0;
    if (length == 0)
        return {1, false};
    // The second byte alone tells overlong forms, surrogates and what lies beyond U+10FFFF.
    const uint8_t secondFrom = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const uint8_t secondTo = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    for (qsizetype i = 1; i < length; ++i) {
        const uint8_t from = i == 1 ? secondFrom : 0x80;
        const uint8_t to = i == 1 ? secondTo : 0xBF;
        if (i == bytes.size() || uint8_t(bytes[i]) < from || uint8_t(bytes[i]) > to)
            return {i, false};
    }
    return {length, true};
}

QString decodeLine(QByteArrayView bytes)
{
    if (bytes.isValidUtf8())
        return textFromUtf8(bytes);
    QString text;
    qsizetype wellFormed = 0;
    while (wellFormed < bytes.size()) {
        const Subpart subpart = subpartAt(bytes.sliced(wellFormed));
        if (subpart.isWellFormed) {
            wellFormed += subpart.length;
            continue;
        }
        text += textFromUtf8(bytes.first(wellFormed));
        text += QChar(QChar::ReplacementCharacter);
        bytes = bytes.sliced(wellFormed + subpart.length);
        wellFormed = 0;
    }
    return text + textFromUtf8(bytes);
}

} // namespace

QStringList LineDecoder::decode(QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return {};
    if (std::exchange(m_mayContinueWithLineFeed, false) && bytes.startsWith('\n'))
        bytes = bytes.sliced(1);

    m_pending.append(bytes);
    const QByteArrayView pending(m_pending);
    QStringList lines;
    qsizetype lineStart = 0;
    qsizetype i = m_scanned;
    while (i < pending.size()) {
        if (!startsLineEnd[uint8_t(pending[i])]) {
            ++i;
            continue;
        }
        const qsizetype length = lineEndLength(pending.sliced(i));
        if (length == incomplete)
            break;
        if (length == 0) {
            ++i;
            continue;
        }
        lines.append(decodeLine(pending.sliced(lineStart, i - lineStart)));
        const bool isCarriageReturn = pending[i] == '\r';
        i += length;
        if (isCarriageReturn && i == pending.size())
            m_mayContinueWithLineFeed = true;
        else if (isCarriageReturn && pending[i] == '\n')
            ++i;
        lineStart = i;
    }
    m_scanned = i - lineStart;
    m_pending.remove(0, lineStart);
    return lines;
}

std::optional<QString> LineDecoder::finish()
{
    const LineDecoder finished = std::exchange(*this, {});
    if (finished.m_pending.isEmpty())
        return std::nullopt;
    return decodeLine(finished.m_pending);
}
