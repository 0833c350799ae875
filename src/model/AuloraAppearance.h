#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <cstddef>
#include <optional>

/// The appearance the user chose. The raw value, which is what is stored, is the case's name.
/// Another case needs nothing but its details, which the compiler asks for.
enum class AuloraAppearance { system, light, dark };

/// All cases in the order in which they are offered.
QList<AuloraAppearance> allAppearances();

QString rawValue(AuloraAppearance appearance);
QString label(AuloraAppearance appearance);
QString symbolName(AuloraAppearance appearance);

/// The case that `text` names, in exactly that spelling; nothing for any other text.
std::optional<AuloraAppearance> appearanceFromRawValue(QStringView text);

/// The hash of the raw value.
size_t qHash(AuloraAppearance appearance, size_t seed = 0);
