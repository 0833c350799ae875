#pragma once

#include <QImageIOHandler>
#include <QSize>

/// What a file says about its picture before that is decoded.
struct ImageHeader
{
    QSize size;
    /// Makes the picture upright.
    QImageIOHandler::Transformations transformation;
};
