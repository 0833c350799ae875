#include "HtmlText.h"

#include <QHash>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

HtmlTag htmlTag(const QString &tag)
{
    static const QRegularExpression form(u"^<(/?)([a-zA-Z][a-zA-Z0-9]*)[^>]*>$"_s);
    const auto match = form.match(tag);
    if (!match.hasMatch())
        return tag.startsWith("<!--"_L1) ? HtmlTag::Other : HtmlTag::None;
    const QString name = match.captured(2).toLower();
    if (name == "br"_L1)
        return HtmlTag::LineBreak;
    const bool isScript = name == "sub"_L1 || name == "sup"_L1;
    if (!isScript)
        return HtmlTag::Other;
    if (!match.captured(1).isEmpty())
        return HtmlTag::ScriptEnd;
    return name == "sub"_L1 ? HtmlTag::Subscript : HtmlTag::Superscript;
}

QString entityText(const QString &entity)
{
    // What models write in Spanish texts on medicine; the rest stays as it came.
    static const QHash<QString, QString> known{
        {u"&amp;"_s, u"&"_s},    {u"&lt;"_s, u"<"_s},     {u"&gt;"_s, u">"_s},
        {u"&quot;"_s, u"\""_s},  {u"&apos;"_s, u"'"_s},   {u"&nbsp;"_s, u" "_s},
        {u"&deg;"_s, u"°"_s},    {u"&plusmn;"_s, u"±"_s}, {u"&times;"_s, u"×"_s},
        {u"&micro;"_s, u"µ"_s},  {u"&le;"_s, u"≤"_s},     {u"&ge;"_s, u"≥"_s},
        {u"&ne;"_s, u"≠"_s},     {u"&rarr;"_s, u"→"_s},   {u"&larr;"_s, u"←"_s},
        {u"&uarr;"_s, u"↑"_s},   {u"&darr;"_s, u"↓"_s},   {u"&alpha;"_s, u"α"_s},
        {u"&beta;"_s, u"β"_s},   {u"&gamma;"_s, u"γ"_s},  {u"&delta;"_s, u"δ"_s},
        {u"&mu;"_s, u"μ"_s},     {u"&Delta;"_s, u"Δ"_s},  {u"&hellip;"_s, u"…"_s},
        {u"&ndash;"_s, u"–"_s},  {u"&mdash;"_s, u"—"_s},  {u"&iquest;"_s, u"¿"_s},
        {u"&aacute;"_s, u"á"_s}, {u"&eacute;"_s, u"é"_s}, {u"&iacute;"_s, u"í"_s},
        {u"&oacute;"_s, u"ó"_s}, {u"&uacute;"_s, u"ú"_s}, {u"&ntilde;"_s, u"ñ"_s}};
    if (const auto found = known.find(entity); found != known.end())
        return *found;
    if (!entity.startsWith("&#"_L1))
        return entity;
    constexpr int decimal = 10;
    constexpr int hexadecimal = 16;
    const QString digits = entity.sliced(2).chopped(1);
    const bool isHexadecimal = digits.startsWith(u'x', Qt::CaseInsensitive);
    bool isNumber = false;
    const char32_t code = (isHexadecimal ? digits.sliced(1) : digits)
                              .toUInt(&isNumber, isHexadecimal ? hexadecimal : decimal);
    const bool isShown = isNumber && code <= QChar::LastValidCodePoint && QChar::isPrint(code)
        && !QChar::isSurrogate(code);
    return isShown ? QString::fromUcs4(&code, 1) : QString(QChar::ReplacementCharacter);
}
