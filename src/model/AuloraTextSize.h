#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>

/// The size of the reply text. The raw value, which is what is stored, is the case's name.
enum class AuloraTextSize { compact, standard, large };

/// All cases in the order in which they are offered.
inline constexpr std::array allTextSizes{AuloraTextSize::compact, AuloraTextSize::standard,
                                         AuloraTextSize::large};

QString rawValue(AuloraTextSize size);
QString label(AuloraTextSize size);

/// What font sizes of messages are multiplied by: 0.9, 1.0 or 1.15.
double scaleFactor(AuloraTextSize size);

/// The case that `text` names, in exactly that spelling; nothing for any other text.
std::optional<AuloraTextSize> textSizeFromRawValue(QStringView text);

/// The scale factor for a stored raw value; 1.0 for a text that names no case.
double scaleFactorForRawValue(QStringView text);

/// The hash of the raw value.
size_t qHash(AuloraTextSize size, size_t seed = 0);
