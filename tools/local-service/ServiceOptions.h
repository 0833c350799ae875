#pragma once

#include <QString>
#include <QStringList>

#include <variant>

/// What the command line asks for.
struct ServiceOptions
{
    /// The address to listen on; loopback unless told otherwise.
    QString host = QStringLiteral("127.0.0.1");
    /// 0 picks a free port.
    quint16 port = 8443;
    /// PEM files.
    QString certificateFile;
    QString keyFile;
    /// 0 sends as fast as possible.
    double linesPerSecond = 20;
};

/// One line for a person who mistyped.
QString serviceUsage();

/// The options that `arguments` (without the program's name) spell, or a Spanish sentence that
/// says what is wrong with them.
std::variant<ServiceOptions, QString> parseServiceOptions(const QStringList &arguments);
