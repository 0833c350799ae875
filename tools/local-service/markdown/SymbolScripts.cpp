#include "SymbolScripts.h"

#include <QHash>

using namespace Qt::StringLiterals;

static const QHash<QChar, QChar> &letters(Script script)
{
    static const QHash<QChar, QChar> below{
        {u'0', u'₀'}, {u'1', u'₁'}, {u'2', u'₂'}, {u'3', u'₃'}, {u'4', u'₄'}, {u'5', u'₅'},
        {u'6', u'₆'}, {u'7', u'₇'}, {u'8', u'₈'}, {u'9', u'₉'}, {u'+', u'₊'}, {u'-', u'₋'},
        {u'−', u'₋'}, {u'=', u'₌'}, {u'(', u'₍'}, {u')', u'₎'}, {u'a', u'ₐ'}, {u'e', u'ₑ'},
        {u'h', u'ₕ'}, {u'i', u'ᵢ'}, {u'j', u'ⱼ'}, {u'k', u'ₖ'}, {u'l', u'ₗ'}, {u'm', u'ₘ'},
        {u'n', u'ₙ'}, {u'o', u'ₒ'}, {u'p', u'ₚ'}, {u'r', u'ᵣ'}, {u's', u'ₛ'}, {u't', u'ₜ'},
        {u'u', u'ᵤ'}, {u'v', u'ᵥ'}, {u'x', u'ₓ'}};
    static const QHash<QChar, QChar> above{
        {u'0', u'⁰'}, {u'1', u'¹'}, {u'2', u'²'}, {u'3', u'³'}, {u'4', u'⁴'}, {u'5', u'⁵'},
        {u'6', u'⁶'}, {u'7', u'⁷'}, {u'8', u'⁸'}, {u'9', u'⁹'}, {u'+', u'⁺'}, {u'-', u'⁻'},
        {u'−', u'⁻'}, {u'=', u'⁼'}, {u'(', u'⁽'}, {u')', u'⁾'}, {u'n', u'ⁿ'}, {u'i', u'ⁱ'},
        {u'°', u'°'}, {u'a', u'ᵃ'}, {u'b', u'ᵇ'}, {u'c', u'ᶜ'}, {u'd', u'ᵈ'}, {u'e', u'ᵉ'},
        {u'k', u'ᵏ'}, {u'm', u'ᵐ'}, {u'o', u'ᵒ'}, {u'p', u'ᵖ'}, {u't', u'ᵗ'}, {u'x', u'ˣ'}};
    return script == Script::Below ? below : above;
}

std::optional<QString> inScript(QStringView text, Script script)
{
    const auto &small = letters(script);
    QString result;
    for (const QChar c : text) {
        const auto found = small.find(c);
        if (found == small.end())
            return std::nullopt;
        result += *found;
    }
    return result;
}

QString scriptText(const QString &text, Script script)
{
    if (auto result = inScript(text, script))
        return *result;
    if (script == Script::Below)
        return u'_' + text;
    return text.size() == 1 ? u'^' + text : u"^("_s + text + u')';
}
