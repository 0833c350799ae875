#pragma once

#include <QString>

/// A formula in LaTeX as a person would write it on one line: "\frac{a}{b}" as "a/b", "H_2O" as
/// "H₂O", "\rightarrow" as "→". A command that is not known leaves its name.
QString readableFormula(const QString &latex);

/// Ordinary text with the commands and the sub- and superscripts that models write outside of
/// formulas made readable; anything that only resembles one stays.
QString withReadableSymbols(const QString &text);
