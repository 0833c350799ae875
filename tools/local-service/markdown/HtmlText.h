#pragma once

#include <QString>

/// The few tags that change how a text reads.
enum class HtmlTag {
    LineBreak,
    Subscript,
    Superscript,
    /// The end of either.
    ScriptEnd,
    /// Any other tag, which is left out.
    Other,
    /// No tag at all.
    None,
};

/// What `tag` is, from "<" to ">".
HtmlTag htmlTag(const QString &tag);

/// The character that `entity` stands for, such as "&beta;" or "&#946;"; the entity itself when it
/// is not known.
QString entityText(const QString &entity);
