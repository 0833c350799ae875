#pragma once

#include <QByteArray>
#include <QString>

#include <variant>

/// A value of the preference store; `std::monostate` stands for no value.
using PreferenceValue = std::variant<std::monostate, QByteArray, QString, bool>;
