#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>

/// The appearance the user chose. The raw value, which is what is stored, is the case's name.
enum class AuloraAppearance { system, light, dark };

/// All cases in the order in which they are offered.
inline constexpr std::array allAppearances{AuloraAppearance::system, AuloraAppearance::light,
                                           AuloraAppearance::dark};

QString rawValue(AuloraAppearance appearance);
QString label(AuloraAppearance appearance);
QString symbolName(AuloraAppearance appearance);

/// The case that `text` names, in exactly that spelling; nothing for any other text.
std::optional<AuloraAppearance> appearanceFromRawValue(QStringView text);

/// The hash of the raw value.
size_t qHash(AuloraAppearance appearance, size_t seed = 0);
