#pragma once

#include <QString>

/// `markdown` with every formula in it, between "$", "$$", "\(" and "\)" or "\[" and "\]", as
/// readable text that means nothing in Markdown. Code stays as it is, and so does a "$" before a
/// price.
QString withReadableFormulas(const QString &markdown);
