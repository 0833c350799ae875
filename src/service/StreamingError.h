#pragma once

#include <QString>

#include <optional>

/// A failure of the exchange that the program itself detects.
class StreamingError
{
public:
    /// The service answered with an HTTP status outside 200…299.
    static StreamingError serverError(int statusCode);
    /// What answered does not speak HTTP.
    static StreamingError invalidResponse();

    /// One Spanish sentence for the user.
    QString description() const;

private:
    explicit StreamingError(std::optional<int> statusCode);

    /// Absent for an invalid response.
    std::optional<int> m_statusCode;
};
