#include "FormulaSymbols.h"

#include "SymbolScripts.h"

#include <QHash>
#include <QSet>

using namespace Qt::StringLiterals;

static const QHash<QString, QString> &symbols()
{
    static const QHash<QString, QString> table{{u"times"_s, u"×"_s},
                                               {u"cdot"_s, u"·"_s},
                                               {u"div"_s, u"÷"_s},
                                               {u"pm"_s, u"±"_s},
                                               {u"mp"_s, u"∓"_s},
                                               {u"ast"_s, u"∗"_s},
                                               {u"leq"_s, u"≤"_s},
                                               {u"le"_s, u"≤"_s},
                                               {u"geq"_s, u"≥"_s},
                                               {u"ge"_s, u"≥"_s},
                                               {u"neq"_s, u"≠"_s},
                                               {u"ne"_s, u"≠"_s},
                                               {u"lt"_s, u"<"_s},
                                               {u"gt"_s, u">"_s},
                                               {u"ll"_s, u"≪"_s},
                                               {u"gg"_s, u"≫"_s},
                                               {u"approx"_s, u"≈"_s},
                                               {u"sim"_s, u"~"_s},
                                               {u"simeq"_s, u"≃"_s},
                                               {u"cong"_s, u"≅"_s},
                                               {u"equiv"_s, u"≡"_s},
                                               {u"propto"_s, u"∝"_s},
                                               {u"infty"_s, u"∞"_s},
                                               {u"rightarrow"_s, u"→"_s},
                                               {u"to"_s, u"→"_s},
                                               {u"longrightarrow"_s, u"→"_s},
                                               {u"xrightarrow"_s, u"→"_s},
                                               {u"mapsto"_s, u"→"_s},
                                               {u"leftarrow"_s, u"←"_s},
                                               {u"gets"_s, u"←"_s},
                                               {u"longleftarrow"_s, u"←"_s},
                                               {u"leftrightarrow"_s, u"↔"_s},
                                               {u"Rightarrow"_s, u"⇒"_s},
                                               {u"implies"_s, u"⇒"_s},
                                               {u"Leftarrow"_s, u"⇐"_s},
                                               {u"Leftrightarrow"_s, u"⇔"_s},
                                               {u"iff"_s, u"⇔"_s},
                                               {u"rightleftharpoons"_s, u"⇌"_s},
                                               {u"leftrightharpoons"_s, u"⇌"_s},
                                               {u"uparrow"_s, u"↑"_s},
                                               {u"downarrow"_s, u"↓"_s},
                                               {u"updownarrow"_s, u"↕"_s},
                                               {u"circ"_s, u"°"_s},
                                               {u"degree"_s, u"°"_s},
                                               {u"celsius"_s, u"°C"_s},
                                               {u"prime"_s, u"′"_s},
                                               {u"ldots"_s, u"…"_s},
                                               {u"dots"_s, u"…"_s},
                                               {u"cdots"_s, u"…"_s},
                                               {u"sum"_s, u"∑"_s},
                                               {u"prod"_s, u"∏"_s},
                                               {u"int"_s, u"∫"_s},
                                               {u"partial"_s, u"∂"_s},
                                               {u"nabla"_s, u"∇"_s},
                                               {u"in"_s, u"∈"_s},
                                               {u"notin"_s, u"∉"_s},
                                               {u"subset"_s, u"⊂"_s},
                                               {u"cup"_s, u"∪"_s},
                                               {u"cap"_s, u"∩"_s},
                                               {u"emptyset"_s, u"∅"_s},
                                               {u"forall"_s, u"∀"_s},
                                               {u"exists"_s, u"∃"_s},
                                               {u"neg"_s, u"¬"_s},
                                               {u"land"_s, u"∧"_s},
                                               {u"lor"_s, u"∨"_s},
                                               {u"therefore"_s, u"∴"_s},
                                               {u"because"_s, u"∵"_s},
                                               {u"perp"_s, u"⊥"_s},
                                               {u"parallel"_s, u"∥"_s},
                                               {u"angle"_s, u"∠"_s},
                                               {u"bullet"_s, u"•"_s},
                                               {u"checkmark"_s, u"✓"_s},
                                               {u"ell"_s, u"ℓ"_s},
                                               {u"hbar"_s, u"ħ"_s},
                                               {u"Re"_s, u"Re"_s},
                                               {u"quad"_s, u" "_s},
                                               {u"qquad"_s, u" "_s},
                                               {u"alpha"_s, u"α"_s},
                                               {u"beta"_s, u"β"_s},
                                               {u"gamma"_s, u"γ"_s},
                                               {u"delta"_s, u"δ"_s},
                                               {u"epsilon"_s, u"ε"_s},
                                               {u"varepsilon"_s, u"ε"_s},
                                               {u"zeta"_s, u"ζ"_s},
                                               {u"eta"_s, u"η"_s},
                                               {u"theta"_s, u"θ"_s},
                                               {u"vartheta"_s, u"ϑ"_s},
                                               {u"iota"_s, u"ι"_s},
                                               {u"kappa"_s, u"κ"_s},
                                               {u"lambda"_s, u"λ"_s},
                                               {u"mu"_s, u"μ"_s},
                                               {u"nu"_s, u"ν"_s},
                                               {u"xi"_s, u"ξ"_s},
                                               {u"pi"_s, u"π"_s},
                                               {u"rho"_s, u"ρ"_s},
                                               {u"sigma"_s, u"σ"_s},
                                               {u"tau"_s, u"τ"_s},
                                               {u"upsilon"_s, u"υ"_s},
                                               {u"phi"_s, u"φ"_s},
                                               {u"varphi"_s, u"φ"_s},
                                               {u"chi"_s, u"χ"_s},
                                               {u"psi"_s, u"ψ"_s},
                                               {u"omega"_s, u"ω"_s},
                                               {u"Gamma"_s, u"Γ"_s},
                                               {u"Delta"_s, u"Δ"_s},
                                               {u"Theta"_s, u"Θ"_s},
                                               {u"Lambda"_s, u"Λ"_s},
                                               {u"Xi"_s, u"Ξ"_s},
                                               {u"Pi"_s, u"Π"_s},
                                               {u"Sigma"_s, u"Σ"_s},
                                               {u"Phi"_s, u"Φ"_s},
                                               {u"Psi"_s, u"Ψ"_s},
                                               {u"Omega"_s, u"Ω"_s},
                                               {u"log"_s, u"log"_s},
                                               {u"ln"_s, u"ln"_s},
                                               {u"exp"_s, u"exp"_s},
                                               {u"sin"_s, u"sin"_s},
                                               {u"cos"_s, u"cos"_s},
                                               {u"tan"_s, u"tan"_s},
                                               {u"max"_s, u"max"_s},
                                               {u"min"_s, u"min"_s},
                                               {u"lim"_s, u"lim"_s}};
    return table;
}

FormulaCommand formulaCommand(const QString &name)
{
    static const QHash<QString, FormulaCommand> commands = [] {
        QHash<QString, FormulaCommand> table;
        for (const auto &fraction : {u"frac"_s, u"dfrac"_s, u"tfrac"_s, u"cfrac"_s})
            table.insert(fraction, FormulaCommand::Fraction);
        for (const auto &content :
             {u"text"_s,         u"textbf"_s, u"textit"_s, u"textrm"_s,  u"mathrm"_s,
              u"mathbf"_s,       u"mathit"_s, u"mathsf"_s, u"mathcal"_s, u"mathbb"_s,
              u"operatorname"_s, u"mbox"_s,   u"hbox"_s,   u"bar"_s,     u"overline"_s,
              u"underline"_s,    u"hat"_s,    u"vec"_s,    u"dot"_s,     u"boxed"_s,
              u"tilde"_s})
            table.insert(content, FormulaCommand::Content);
        for (const auto &look :
             {u"left"_s, u"right"_s, u"big"_s, u"Big"_s, u"bigl"_s, u"bigr"_s, u"displaystyle"_s,
              u"textstyle"_s, u"limits"_s, u"nolimits"_s, u"hline"_s, u"nonumber"_s})
            table.insert(look, FormulaCommand::Nothing);
        table.insert(u"sqrt"_s, FormulaCommand::Root);
        table.insert(u"ce"_s, FormulaCommand::Chemistry);
        table.insert(u"begin"_s, FormulaCommand::Environment);
        table.insert(u"end"_s, FormulaCommand::Environment);
        return table;
    }();
    if (symbols().contains(name))
        return FormulaCommand::Symbol;
    return commands.value(name, FormulaCommand::Unknown);
}

QString formulaSymbol(const QString &name)
{
    return symbols().value(name);
}

QString readableChemistry(const QString &formula)
{
    QString text = formula;
    text.replace("<=>"_L1, u"⇌"_s);
    text.replace("->"_L1, u"→"_s);
    QString result;
    for (const QChar c : text) {
        const QChar before = result.isEmpty() ? QChar() : result.back();
        const bool isCount = c.isDigit()
            && (before.isLetter() || before == u')' || before == u']'
                || (before >= u'₀' && before <= u'₉'));
        result += isCount ? inScript(QStringView(&c, 1), Script::Below).value_or(QString(c))
                          : QString(c);
    }
    return result;
}
