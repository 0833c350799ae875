#include "Utf8Text.h"

QString textFromUtf8(QByteArrayView utf8)
{
    constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
    const QString text = QString::fromUtf8(utf8);
    return utf8.startsWith(byteOrderMark) ? QChar(QChar::ByteOrderMark) + text : text;
}
