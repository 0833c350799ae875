#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <cstddef>
#include <optional>

/// The size of the reply text. The raw value, which is what is stored, is the case's name. Another
/// case needs nothing but its details, which the compiler asks for.
enum class AuloraTextSize { compact, standard, large };

/// All cases in the order in which they are offered.
QList<AuloraTextSize> allTextSizes();

QString rawValue(AuloraTextSize size);
QString label(AuloraTextSize size);

/// What font sizes of messages are multiplied by.
double scaleFactor(AuloraTextSize size);

/// The case that `text` names, in exactly that spelling; nothing for any other text.
std::optional<AuloraTextSize> textSizeFromRawValue(QStringView text);

/// The scale factor for a stored raw value; that of `standard` for a text that names no case.
double scaleFactorForRawValue(QStringView text);

/// The hash of the raw value.
size_t qHash(AuloraTextSize size, size_t seed = 0);
