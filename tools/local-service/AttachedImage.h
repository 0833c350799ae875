#pragma once

#include <QByteArray>
#include <QString>

/// An image that came with a question. Only the bytes are to be believed.
struct AttachedImage
{
    /// Never empty.
    QByteArray bytes;
    /// What the sender says the type is; empty when it did not say.
    QString declaredType;
    /// The file's name as the sender gives it; empty when it did not.
    QString name;
};
