#pragma once

#include <QString>
#include <QStringView>
#include <QUuid>

#include <optional>

/// The canonical 36-character text of `uuid`: upper-case hexadecimal, grouped 8-4-4-4-12.
QString uuidText(const QUuid &uuid);

/// The UUID that `text` spells in its 36-character form, in either case; nothing for any other
/// form. QUuid's own parser also takes braces and ignores what follows the last digit.
std::optional<QUuid> parseUuid(QStringView text);
