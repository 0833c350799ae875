#pragma once

#include <QByteArray>
#include <QString>

/// How much of a request's body arrived.
enum class BodyState {
    Complete,
    TooLarge,
    /// The bodies of other requests leave no room for it.
    NoRoom,
    Broken,
};

/// What an HTTP request says, free of the library that read it.
struct IncomingRequest
{
    QString method;
    /// Without query, percent-decoded.
    QString path;
    QString contentType;
    QString contentEncoding;
    /// Whole when `bodyState` is Complete, else empty.
    QByteArray body;
    BodyState bodyState = BodyState::Complete;
};
