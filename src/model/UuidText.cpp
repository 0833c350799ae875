#include "UuidText.h"

QString uuidText(const QUuid &uuid)
{
    return uuid.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> parseUuid(QStringView text)
{
    constexpr qsizetype canonicalLength = 36;
    if (text.size() != canonicalLength)
        return std::nullopt;
    for (qsizetype i = 0; i < canonicalLength; ++i) {
        const char16_t c = text[i].unicode();
        const bool isHyphenPlace = i == 8 || i == 13 || i == 18 || i == 23;
        const bool isHexDigit
            = (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
        if (isHyphenPlace ? c != u'-' : !isHexDigit)
            return std::nullopt;
    }
    return QUuid::fromString(text);
}
