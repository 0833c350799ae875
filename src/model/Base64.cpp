#include "Base64.h"

#include <array>
#include <cstdint>

namespace {

constexpr uint8_t invalid = 0x80;

constexpr std::array<uint8_t, 256> makeDigitValues()
{
    std::array<uint8_t, 256> values{};
    values.fill(invalid);
    uint8_t value = 0;
    for (int c = 'A'; c <= 'Z'; ++c)
        values[c] = value++;
    for (int c = 'a'; c <= 'z'; ++c)
        values[c] = value++;
    for (int c = '0'; c <= '9'; ++c)
        values[c] = value++;
    values['+'] = value++;
    values['/'] = value++;
    return values;
}

constexpr std::array<uint8_t, 256> digitValues = makeDigitValues();

uint8_t digitValue(char c)
{
    return digitValues[static_cast<uint8_t>(c)];
}

} // namespace

std::optional<QByteArray> decodeBase64(QByteArrayView text)
{
    if (text.size() % 4 != 0)
        return std::nullopt;
    const qsizetype padding = text.endsWith("==") ? 2 : text.endsWith('=') ? 1 : 0;
    const qsizetype wholeGroups = (text.size() - padding) / 4;

    QByteArray bytes(text.size() / 4 * 3 - padding, Qt::Uninitialized);
    const char *in = text.data();
    char *out = bytes.data();
    uint32_t seen = 0;
    for (qsizetype group = 0; group < wholeGroups; ++group, in += 4, out += 3) {
        const uint32_t a = digitValue(in[0]);
        const uint32_t b = digitValue(in[1]);
        const uint32_t c = digitValue(in[2]);
        const uint32_t d = digitValue(in[3]);
        seen |= a | b | c | d;
        const uint32_t bits = a << 18 | b << 12 | c << 6 | d;
        out[0] = char(bits >> 16);
        out[1] = char(bits >> 8);
        out[2] = char(bits);
    }

    if (padding > 0) {
        const uint32_t a = digitValue(in[0]);
        const uint32_t b = digitValue(in[1]);
        const uint32_t c = padding == 1 ? digitValue(in[2]) : 0;
        const uint32_t leftOver = padding == 1 ? c & 0x03 : b & 0x0F;
        seen |= a | b | c;
        if (leftOver != 0)
            return std::nullopt;
        out[0] = char(a << 2 | b >> 4);
        if (padding == 1)
            out[1] = char(b << 4 | c >> 2);
    }
    if (seen & invalid)
        return std::nullopt;
    return bytes;
}
