#pragma once

#include <QString>

#include <optional>

/// Where a small letter stands beside the one before it.
enum class Script {
    Below,
    Above,
};

/// `text` in the small letters of `script`; nothing when one of its characters has none.
std::optional<QString> inScript(QStringView text, Script script);

/// `text` in small letters, or with the usual sign before it where they do not exist: "K_eq",
/// "x^(a/b)".
QString scriptText(const QString &text, Script script);
