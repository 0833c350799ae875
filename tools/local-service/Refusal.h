#pragma once

#include <QString>

/// Why a request gets no answer.
struct Refusal
{
    /// HTTP status, 400 to 599.
    int status = 0;
    /// One Spanish sentence for a person; never quotes the request.
    QString reason;

    bool operator==(const Refusal &) const = default;
};
