#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>

/// What must happen to a hostile file. Damage that some decoders repair and others do not may end
/// either way.
enum class Outcome { Taken, Refused, Either };

struct HostileImage
{
    QByteArray name;
    QByteArray bytes;
    Outcome outcome = Outcome::Either;
};

/// Files made to break their readers: truncated, bloated, mislabelled or nested; and rare kinds of
/// valid pictures, which must be read.
QList<HostileImage> hostileImages();

/// One valid file of every format, small enough to be tested with thousands of changes.
QList<QByteArray> soundImages();

/// A lossless WebP of one colour, whose pixels take no room.
QByteArray flatWebp(QSize size);
