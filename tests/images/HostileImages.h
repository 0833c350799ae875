#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>

/// What has to become of a hostile file. Damage that decoders mend or not, as they see fit, may end
/// either way.
enum class Outcome { Taken, Refused, Either };

struct HostileImage
{
    QByteArray name;
    QByteArray bytes;
    Outcome outcome = Outcome::Either;
};

/// Files made to break whoever reads them: cut short, bloated, mislabelled, nested, and pictures of
/// rare kinds that must be read all the same.
QList<HostileImage> hostileImages();

/// One sound file of every kind that is taken, small enough to be damaged by the thousand.
QList<QByteArray> soundImages();

/// A lossless WebP of one colour, whose pixels take no room.
QByteArray flatWebp(QSize size);
