#include "Base64.h"

#include <QtEndian>

#include <array>
#include <cstdint>
#include <string_view>

namespace {

constexpr std::string_view alphabet
    = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The bits that each character adds to its group of three bytes, the first byte in the lowest 8
/// bits; for a character outside the alphabet `invalid`, whose bits no digit uses.
using Contributions = std::array<uint32_t, 256>;
constexpr uint32_t invalid = 0xFF00'0000;

/// The table for the digit at `place` (0 to 3) of a group. With one table for each place a digit is
/// looked up and not shifted.
constexpr Contributions contributionsAt(int place)
{
    Contributions contributions{};
    contributions.fill(invalid);
    for (uint32_t value = 0; value < alphabet.size(); ++value) {
        const uint32_t bits = value << (18 - 6 * place);
        contributions[uint8_t(alphabet[value])]
            = (bits >> 16 & 0xFF) | (bits & 0xFF00) | (bits & 0xFF) << 16;
    }
    return contributions;
}

constexpr std::array places{contributionsAt(0), contributionsAt(1), contributionsAt(2),
                            contributionsAt(3)};

uint32_t contribution(int place, char digit)
{
    return places[place][uint8_t(digit)];
}

uint32_t decodedGroup(const char *digits)
{
    return contribution(0, digits[0]) | contribution(1, digits[1]) | contribution(2, digits[2])
        | contribution(3, digits[3]);
}

} // namespace

std::optional<QByteArray> decodeBase64(QByteArrayView text)
{
    constexpr qsizetype groupDigits = 4;
    constexpr qsizetype groupBytes = 3;
    if (text.size() % groupDigits != 0)
        return std::nullopt;
    if (text.isEmpty())
        return QByteArray("");
    const qsizetype padding = text.endsWith("==") ? 2 : text.endsWith('=') ? 1 : 0;

    QByteArray bytes(text.size() / groupDigits * groupBytes - padding, Qt::Uninitialized);
    const char *in = text.data();
    const char *lastGroup = text.data() + text.size() - groupDigits;
    char *out = bytes.data();
    uint32_t seen = 0;
    // Every group but the last is stored with a byte too many, which the next one overwrites.
    for (; in != lastGroup; in += groupDigits, out += groupBytes) {
        const uint32_t group = decodedGroup(in);
        seen |= group;
        qToLittleEndian(group, out);
    }

    // Padding is decoded as the digit for 0; the bits that it leaves over must be 0.
    const std::array<char, groupDigits> digits{in[0], in[1], padding == 2 ? 'A' : in[2],
                                               padding > 0 ? 'A' : in[3]};
    const uint32_t group = decodedGroup(digits.data());
    seen |= group;
    const qsizetype size = groupBytes - padding;
    for (qsizetype i = 0; i < size; ++i)
        out[i] = char(group >> (8 * i));
    const bool isLeftOver = padding > 0 && (group & 0xFF'FFFF) >> (8 * size) != 0;
    if ((seen & invalid) || isLeftOver)
        return std::nullopt;
    return bytes;
}
