#pragma once

/// Part of an item between two heights, in points from its top.
struct VerticalBand
{
    double top = 0;
    double bottom = 0;

    bool isEmpty() const { return top >= bottom; }
    bool operator==(const VerticalBand &) const = default;
};
