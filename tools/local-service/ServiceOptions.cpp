#include "ServiceOptions.h"

#include <QHash>

#include <optional>

using namespace Qt::StringLiterals;

// A line a microsecond; whoever wants more asks for 0.
static constexpr double highestRate = 1e6;
static constexpr int highestMostPerMinute = 1'000'000;

QString serviceUsage()
{
    return u"Uso: aulora-local-service --port 8443 --cert ARCHIVO --key ARCHIVO "
           "[--rate LÍNEAS_POR_SEGUNDO] [--host DIRECCIÓN] [--memory ARCHIVO]\n"
           "     [--model-url http://127.0.0.1:11434/v1 --model NOMBRE [--model-key-file ARCHIVO] "
           "[--model-images] [--most-per-minute PREGUNTAS]]"_s;
}

// The options as they were written, by their names; a sentence when one lacks its value.
static std::variant<QHash<QString, QString>, QString> pairs(const QStringList &arguments)
{
    QHash<QString, QString> values;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &name = arguments[i];
        if (name == "--model-images"_L1) {
            values.insert(name, {});
            continue;
        }
        if (i + 1 == arguments.size())
            return u"Falta el valor de %1."_s.arg(name);
        values.insert(name, arguments[++i]);
    }
    return values;
}

// What was written for the option `name`, which is then done with.
static std::optional<QString> take(QHash<QString, QString> &values, const QString &name)
{
    const auto found = values.find(name);
    if (found == values.end())
        return std::nullopt;
    QString value = *found;
    values.erase(found);
    return value;
}

static QString notANumber(const QString &name, const QString &value)
{
    return u"El valor de %1 no es un número válido: %2."_s.arg(name, value);
}

// Nothing when the options of the model were understood, else what is wrong.
static std::optional<QString> applyModel(ServiceOptions &options, QHash<QString, QString> &values)
{
    const auto url = take(values, u"--model-url"_s);
    if (!url) {
        for (const auto &name :
             {u"--model"_s, u"--model-key-file"_s, u"--model-images"_s, u"--most-per-minute"_s}) {
            if (values.contains(name))
                return u"La opción %1 necesita --model-url."_s.arg(name);
        }
        return std::nullopt;
    }
    const auto service = modelServiceAt(*url);
    if (!service) {
        return u"El valor de --model-url debe ser una dirección como http://127.0.0.1:11434/v1: %1."_s
            .arg(*url);
    }
    ModelOptions model{*service, take(values, u"--model-key-file"_s).value_or(QString())};
    model.service.modelName = take(values, u"--model"_s).value_or(QString());
    if (model.service.modelName.isEmpty())
        return u"Falta el nombre del modelo (--model)."_s;
    if (take(values, u"--model-images"_s))
        model.images = ImageSupport::Jpeg;
    if (const auto most = take(values, u"--most-per-minute"_s)) {
        bool isNumber = false;
        model.mostPerMinute = most->toInt(&isNumber);
        if (!isNumber || model.mostPerMinute < 1 || model.mostPerMinute > highestMostPerMinute)
            return notANumber(u"--most-per-minute"_s, *most);
    }
    options.model = model;
    return std::nullopt;
}

std::variant<ServiceOptions, QString> parseServiceOptions(const QStringList &arguments)
{
    auto parsed = pairs(arguments);
    if (const auto *problem = std::get_if<QString>(&parsed))
        return *problem;
    auto &values = std::get<QHash<QString, QString>>(parsed);

    ServiceOptions options;
    if (const auto host = take(values, u"--host"_s))
        options.host = *host;
    options.certificateFile = take(values, u"--cert"_s).value_or(QString());
    options.keyFile = take(values, u"--key"_s).value_or(QString());
    options.memoryFile = take(values, u"--memory"_s).value_or(QString());
    bool isNumber = true;
    if (const auto port = take(values, u"--port"_s)) {
        options.port = port->toUShort(&isNumber);
        if (!isNumber)
            return notANumber(u"--port"_s, *port);
    }
    if (const auto rate = take(values, u"--rate"_s)) {
        options.linesPerSecond = rate->toDouble(&isNumber);
        if (!isNumber)
            return notANumber(u"--rate"_s, *rate);
    }
    if (const auto problem = applyModel(options, values))
        return *problem;
    if (!values.isEmpty())
        return u"No conozco la opción %1."_s.arg(values.constBegin().key());
    if (options.certificateFile.isEmpty() || options.keyFile.isEmpty())
        return u"Faltan el certificado (--cert) o su clave (--key): el servicio solo habla TLS."_s;
    if (!(options.linesPerSecond >= 0 && options.linesPerSecond <= highestRate))
        return u"El valor de --rate debe estar entre 0 y %1."_s.arg(highestRate, 0, 'f', 0);
    return options;
}
