#include "ServiceOptions.h"

#include <optional>

using namespace Qt::StringLiterals;

// A line a microsecond; whoever wants more asks for 0.
static constexpr double highestRate = 1e6;

QString serviceUsage()
{
    return u"Uso: aulora-local-service --port 8443 --cert ARCHIVO --key ARCHIVO "
           "[--rate LÍNEAS_POR_SEGUNDO] [--host DIRECCIÓN]"_s;
}

// Nothing when the option was understood, else what is wrong.
static std::optional<QString> applyOption(ServiceOptions &options, const QString &name,
                                          const QString &value)
{
    bool isNumber = true;
    if (name == "--host"_L1)
        options.host = value;
    else if (name == "--cert"_L1)
        options.certificateFile = value;
    else if (name == "--key"_L1)
        options.keyFile = value;
    else if (name == "--port"_L1)
        options.port = value.toUShort(&isNumber);
    else if (name == "--rate"_L1)
        options.linesPerSecond = value.toDouble(&isNumber);
    else
        return u"No conozco la opción %1."_s.arg(name);
    if (!isNumber)
        return u"El valor de %1 no es un número válido: %2."_s.arg(name, value);
    return std::nullopt;
}

std::variant<ServiceOptions, QString> parseServiceOptions(const QStringList &arguments)
{
    ServiceOptions options;
    for (qsizetype i = 0; i < arguments.size(); i += 2) {
        if (i + 1 == arguments.size())
            return u"Falta el valor de %1."_s.arg(arguments[i]);
        if (const auto problem = applyOption(options, arguments[i], arguments[i + 1]))
            return *problem;
    }
    if (options.certificateFile.isEmpty() || options.keyFile.isEmpty())
        return u"Faltan el certificado (--cert) o su clave (--key): el servicio solo habla TLS."_s;
    if (!(options.linesPerSecond >= 0 && options.linesPerSecond <= highestRate))
        return u"El valor de --rate debe estar entre 0 y %1."_s.arg(highestRate, 0, 'f', 0);
    return options;
}
