#include "StreamingError.h"

using namespace Qt::StringLiterals;

StreamingError::StreamingError(std::optional<int> statusCode)
    : m_statusCode(statusCode)
{ }

StreamingError StreamingError::serverError(int statusCode)
{
    return StreamingError(statusCode);
}

StreamingError StreamingError::invalidResponse()
{
    return StreamingError(std::nullopt);
}

QString StreamingError::description() const
{
    return m_statusCode ? u"Error del servidor (%1)."_s.arg(*m_statusCode)
                        : u"La respuesta del servidor no es válida."_s;
}
