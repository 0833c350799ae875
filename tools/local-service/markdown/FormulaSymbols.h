#pragma once

#include <QString>

/// What a command of LaTeX does to what follows it.
enum class FormulaCommand {
    /// Two arguments, one above the other.
    Fraction,
    Root,
    /// Shows its argument.
    Content,
    /// Shows its argument as a chemical formula.
    Chemistry,
    /// Begins or ends a part, whose name is its argument.
    Environment,
    /// Changes only the look.
    Nothing,
    /// Stands for a symbol or a name.
    Symbol,
    Unknown,
};

/// What the command `name` (without its backslash) does.
FormulaCommand formulaCommand(const QString &name);

/// What a command that is a Symbol stands for.
QString formulaSymbol(const QString &name);

/// "H2O" as "H₂O", "A -> B" as "A → B", "Ca^2+" as "Ca²⁺".
QString readableChemistry(const QString &formula);
