#pragma once

#include "ModelAssistant.h"
#include "ModelService.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

/// Which model answers; all but the file of the key is checked.
struct ModelOptions
{
    ModelService service;
    /// Holds the key of the service and nothing else; empty when it needs none.
    QString keyFile;
    ImageSupport images = ImageSupport::None;
    /// How many questions the model is asked in any minute, by all users together.
    int mostPerMinute = 600;
};

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
    /// Nothing when the notes are to answer.
    std::optional<ModelOptions> model;
    /// Where to remember users; in memory when empty.
    QString memoryFile;
};

/// A few lines for a person who mistyped.
QString serviceUsage();

/// The options that `arguments` (without the program's name) spell, or a Spanish sentence that
/// says what is wrong with them.
std::variant<ServiceOptions, QString> parseServiceOptions(const QStringList &arguments);
