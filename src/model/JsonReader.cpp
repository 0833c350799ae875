#include "JsonReader.h"

#include <QChar>
#include <QVarLengthArray>

#include <algorithm>
#include <utility>

namespace {

/// Not a bool, so that compilers combine the results of many characters in vector registers.
unsigned char endsPlainText(char character)
{
    const auto c = static_cast<unsigned char>(character);
    return static_cast<unsigned char>(c == '"') | static_cast<unsigned char>(c == '\\')
        | static_cast<unsigned char>(c < 0x20);
}

/// The first byte from `position` on that is not plain text of a JSON string. Checked block by
/// block, which takes a tenth of the time: nearly all of a history is the base64 of previews.
const char *skipPlainText(const char *position, const char *end)
{
    constexpr qsizetype blockSize = 64;
    while (end - position >= blockSize) {
        unsigned char found = 0;
        for (qsizetype i = 0; i < blockSize; ++i)
            found |= endsPlainText(position[i]);
        if (found)
            break;
        position += blockSize;
    }
    return std::find_if(position, end, endsPlainText);
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::optional<char16_t> hexadecimal(QByteArrayView digits)
{
    char16_t value = 0;
    for (const char c : digits) {
        const int lowerCase = c | 0x20;
        if (isDigit(c))
            value = char16_t(value << 4 | (c - '0'));
        else if (lowerCase >= 'a' && lowerCase <= 'f')
            value = char16_t(value << 4 | (lowerCase - 'a' + 10));
        else
            return std::nullopt;
    }
    return value;
}

void appendUtf8(QByteArray &bytes, char32_t character)
{
    const auto continuation
        = [&](int shift) { bytes.append(char(0x80 | ((character >> shift) & 0x3F))); };
    if (character < 0x80) {
        bytes.append(char(character));
    } else if (character < 0x800) {
        bytes.append(char(0xC0 | (character >> 6)));
        continuation(0);
    } else if (character < 0x10000) {
        bytes.append(char(0xE0 | (character >> 12)));
        continuation(6);
        continuation(0);
    } else {
        bytes.append(char(0xF0 | (character >> 18)));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

char unescapedCharacter(char escape)
{
    switch (escape) {
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return escape;
    }
}

/// The UTF-16 unit of the `\uXXXX` at `offset`, if there is one.
std::optional<char16_t> unicodeEscape(QByteArrayView content, qsizetype offset)
{
    if (content.size() - offset < 6 || content[offset] != '\\' || content[offset + 1] != 'u')
        return std::nullopt;
    return hexadecimal(content.sliced(offset + 2, 4));
}

} // namespace

JsonReader::JsonReader(QByteArrayView text)
    : m_begin(text.begin())
    , m_position(text.begin())
    , m_end(text.end())
{ }

bool JsonReader::enterArray()
{
    return enter('[');
}

bool JsonReader::enterObject()
{
    return enter('{');
}

bool JsonReader::enter(char opener)
{
    skipWhitespace();
    m_atContainerStart = take(opener);
    return m_atContainerStart;
}

bool JsonReader::nextElement()
{
    return next(']');
}

std::optional<QByteArrayView> JsonReader::nextKey()
{
    if (!next('}'))
        return std::nullopt;
    const QByteArrayView key = readKey();
    return m_failed ? std::nullopt : std::optional(key);
}

bool JsonReader::next(char closer)
{
    skipWhitespace();
    const bool isFirst = std::exchange(m_atContainerStart, false);
    if (m_failed || take(closer))
        return false;
    if (isFirst || take(','))
        return true;
    fail();
    return false;
}

QByteArrayView JsonReader::readKey()
{
    skipWhitespace();
    const char *start = m_position;
    if (!skipString())
        return fail();
    const QByteArrayView key(start, m_position);
    skipWhitespace();
    return take(':') ? key : fail();
}

QByteArrayView JsonReader::readValue()
{
    skipWhitespace();
    const char *start = m_position;
    QVarLengthArray<char, maximumDepth> closers;
    for (;;) {
        skipWhitespace();
        const bool isObject = take('{');
        if (isObject || take('[')) {
            if (closers.size() == maximumDepth)
                return fail();
            closers.append(isObject ? '}' : ']');
            skipWhitespace();
            if (m_position == m_end || *m_position != closers.back()) {
                if (isObject && readKey().isEmpty())
                    return {};
                continue;
            }
        } else if (!skipScalar()) {
            return fail();
        }

        for (skipWhitespace(); !closers.isEmpty() && take(closers.back()); skipWhitespace())
            closers.removeLast();
        if (closers.isEmpty())
            break;
        if (!take(','))
            return fail();
        if (closers.back() == '}' && readKey().isEmpty())
            return {};
    }
    return QByteArrayView(start, m_position).trimmed();
}

bool JsonReader::atEnd()
{
    skipWhitespace();
    return !m_failed && m_position == m_end;
}

void JsonReader::skipWhitespace()
{
    while (m_position != m_end
           && (*m_position == ' ' || *m_position == '\n' || *m_position == '\r'
               || *m_position == '\t'))
        ++m_position;
}

bool JsonReader::take(char c)
{
    if (m_failed || m_position == m_end || *m_position != c)
        return false;
    ++m_position;
    return true;
}

bool JsonReader::skipString()
{
    if (!take('"'))
        return false;
    for (;;) {
        m_position = skipPlainText(m_position, m_end);
        if (take('"'))
            return true;
        if (!take('\\') || m_position == m_end)
            return false;
        const char escape = *m_position++;
        if (escape == 'u') {
            if (m_end - m_position < 4 || !hexadecimal({m_position, 4}))
                return false;
            m_position += 4;
        } else if (!QByteArrayView("\"\\/bfnrt").contains(escape)) {
            return false;
        }
    }
}

bool JsonReader::skipDigits()
{
    const char *start = m_position;
    m_position = std::find_if_not(m_position, m_end, isDigit);
    return m_position != start;
}

bool JsonReader::skipNumber()
{
    take('-');
    if (!take('0') && !skipDigits())
        return false;
    if (take('.') && !skipDigits())
        return false;
    if (!take('e') && !take('E'))
        return true;
    if (!take('+'))
        take('-');
    return skipDigits();
}

bool JsonReader::skipLiteral(QByteArrayView literal)
{
    if (!QByteArrayView(m_position, m_end).startsWith(literal))
        return false;
    m_position += literal.size();
    return true;
}

bool JsonReader::skipScalar()
{
    if (m_failed || m_position == m_end)
        return false;
    switch (*m_position) {
    case '"':
        return skipString();
    case 't':
        return skipLiteral("true");
    case 'f':
        return skipLiteral("false");
    case 'n':
        return skipLiteral("null");
    default:
        return skipNumber();
    }
}

QByteArrayView JsonReader::fail()
{
    m_failed = true;
    return {};
}

QByteArray unescapedJsonString(QByteArrayView string)
{
    const QByteArrayView content = string.sliced(1, string.size() - 2);
    qsizetype escape = content.indexOf('\\');
    if (escape < 0)
        return QByteArray::fromRawData(content.data(), content.size());

    QByteArray text;
    text.reserve(content.size());
    qsizetype position = 0;
    while (escape >= 0) {
        text.append(content.sliced(position, escape - position));
        if (const auto unit = unicodeEscape(content, escape)) {
            position = escape + 6;
            const auto low = unicodeEscape(content, position);
            if (!QChar::isSurrogate(*unit)) {
                appendUtf8(text, *unit);
            } else if (QChar::isHighSurrogate(*unit) && low && QChar::isLowSurrogate(*low)) {
                appendUtf8(text, QChar::surrogateToUcs4(*unit, *low));
                position += 6;
            } else {
                appendUtf8(text, QChar::ReplacementCharacter);
            }
        } else {
            text.append(unescapedCharacter(content[escape + 1]));
            position = escape + 2;
        }
        escape = content.indexOf('\\', position);
    }
    text.append(content.sliced(position));
    return text;
}
