#pragma once

#include "TextRow.h"

#include <algorithm>
#include <compare>
#include <utility>

/// A place between two characters of a message: the row, and UTF-16 units into its text.
struct TextPosition
{
    qsizetype row = 0;
    qsizetype offset = 0;

    // The linter takes the comparison's 0 for a pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    auto operator<=>(const TextPosition &) const = default;
};

/// A stretch of a message, from `start` up to `end`.
struct TextSpan
{
    TextPosition start;
    TextPosition end;

    bool isEmpty() const { return start == end; }
    /// The smallest span that holds both.
    TextSpan united(const TextSpan &other) const
    {
        return {std::min(start, other.start), std::max(end, other.end)};
    }
    /// What of it lies in row `row` whose text has `length` units.
    TextRange inRow(qsizetype row, qsizetype length) const
    {
        if (row < start.row || row > end.row)
            return {};
        return {row == start.row ? start.offset : 0, row == end.row ? end.offset : length};
    }

    bool operator==(const TextSpan &) const = default;
};
