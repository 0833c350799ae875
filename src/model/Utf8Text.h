#pragma once

#include <QByteArrayView>
#include <QString>

/// The text that `utf8` holds, to the character: QString::fromUtf8 drops a byte order mark at the
/// start, which is part of what was written.
QString textFromUtf8(QByteArrayView utf8);
