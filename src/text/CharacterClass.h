#pragma once

#include <QStringView>

/// A code point and how many UTF-16 units it takes. A lone surrogate stands for itself.
struct CodePoint
{
    char32_t value = 0;
    qsizetype length = 1;
};

/// The code point that begins at `position`, which must lie within `text`.
CodePoint codePointAt(QStringView text, qsizetype position);

/// Whether `c` is a blank: a tab or a space of any width. Line ends are not.
bool isBlank(QChar c);

/// Whether the code point has a numeric value in Unicode: a digit of any script, a fraction, a
/// letter number or an ideograph that stands for a number.
bool isNumeric(char32_t codePoint);

/// Whether a user-perceived character ends and another begins at `position`. Exact next to ASCII
/// characters, where two code points of context decide.
bool isCharacterBoundary(QStringView text, qsizetype position);
