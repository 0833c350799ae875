#include "MarkdownLines.h"

#include "FormulaSource.h"
#include "HtmlText.h"
#include "StyledLine.h"
#include "SymbolScripts.h"

#include <QByteArray>

#include <algorithm>
#include <md4c.h>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Collects the lines of a block from what the parser reports.
class LineWriter
{
public:
    void enterBlock(MD_BLOCKTYPE type, const void *detail);
    void leaveBlock(MD_BLOCKTYPE type);
    void enterSpan(MD_SPANTYPE type);
    void leaveSpan(MD_SPANTYPE type, const void *detail);
    void addText(MD_TEXTTYPE type, const QString &text);

    const QStringList &lines() const { return m_lines; }

private:
    void addStyled(const QString &text);
    void addHtml(const QString &tag);
    void endLine();
    void endRow();

    QStringList m_lines;
    StyledLine m_line;
    /// What the line begins with: "- ", "2. ", "## ".
    QString m_prefix;
    std::optional<unsigned> m_number;
    int m_bold = 0;
    int m_code = 0;
    std::optional<Script> m_script;
    QString m_linkText;
    QStringList m_headers;
    QStringList m_cells;
    bool m_isInTable = false;
};

QString attributeText(const MD_ATTRIBUTE &attribute)
{
    return QString::fromUtf8(attribute.text, attribute.size);
}

void LineWriter::enterBlock(MD_BLOCKTYPE type, const void *detail)
{
    constexpr unsigned deepestHeading = 3;
    switch (type) {
    case MD_BLOCK_H:
        m_prefix = QString(int(std::min(static_cast<const MD_BLOCK_H_DETAIL *>(detail)->level,
                                        deepestHeading)),
                           u'#')
            + u' ';
        break;
    case MD_BLOCK_UL:
        m_number.reset();
        break;
    case MD_BLOCK_OL:
        m_number = static_cast<const MD_BLOCK_OL_DETAIL *>(detail)->start;
        break;
    case MD_BLOCK_LI:
        endLine();
        m_prefix = m_number ? QString::number(*m_number) + u". "_s : u"- "_s;
        break;
    case MD_BLOCK_TABLE:
        m_isInTable = true;
        break;
    default:
        break;
    }
}

void LineWriter::leaveBlock(MD_BLOCKTYPE type)
{
    switch (type) {
    case MD_BLOCK_H:
    case MD_BLOCK_P:
    case MD_BLOCK_LI:
    case MD_BLOCK_CODE:
        endLine();
        break;
    case MD_BLOCK_TH:
        m_headers += std::exchange(m_line, {}).text();
        break;
    case MD_BLOCK_TD:
        m_cells += std::exchange(m_line, {}).text();
        break;
    case MD_BLOCK_TR:
        endRow();
        break;
    default:
        break;
    }
}

void LineWriter::enterSpan(MD_SPANTYPE type)
{
    if (type == MD_SPAN_STRONG)
        ++m_bold;
    else if (type == MD_SPAN_CODE)
        ++m_code;
    else if (type == MD_SPAN_A)
        m_linkText.clear();
}

void LineWriter::leaveSpan(MD_SPANTYPE type, const void *detail)
{
    if (type == MD_SPAN_STRONG)
        --m_bold;
    else if (type == MD_SPAN_CODE)
        --m_code;
    if (type != MD_SPAN_A)
        return;
    const QString address = attributeText(static_cast<const MD_SPAN_A_DETAIL *>(detail)->href);
    const bool isWeb = address.startsWith("https://"_L1) || address.startsWith("http://"_L1);
    if (isWeb && m_linkText != address) {
        ++m_code;
        addStyled(" ("_L1 + address + u')');
        --m_code;
    }
}

void LineWriter::addText(MD_TEXTTYPE type, const QString &text)
{
    switch (type) {
    case MD_TEXT_BR:
        if (m_isInTable)
            addStyled(u" "_s);
        else
            endLine();
        break;
    case MD_TEXT_SOFTBR:
        addStyled(u" "_s);
        break;
    case MD_TEXT_NULLCHAR:
        break;
    case MD_TEXT_ENTITY:
        addStyled(entityText(text));
        break;
    case MD_TEXT_HTML:
        addHtml(text);
        break;
    default:
        addStyled(text);
        break;
    }
}

void LineWriter::addStyled(const QString &text)
{
    const TextStyle style = m_bold > 0 ? (m_code > 0 ? TextStyle::BoldCode : TextStyle::Bold)
                                       : (m_code > 0 ? TextStyle::Code : TextStyle::Plain);
    m_linkText += text;
    m_line.append(m_script ? scriptText(text, *m_script) : text, style);
}

void LineWriter::addHtml(const QString &tag)
{
    switch (htmlTag(tag)) {
    case HtmlTag::LineBreak:
        if (m_isInTable)
            addStyled(u", "_s);
        else
            endLine();
        break;
    case HtmlTag::Subscript:
        m_script = Script::Below;
        break;
    case HtmlTag::Superscript:
        m_script = Script::Above;
        break;
    case HtmlTag::ScriptEnd:
        m_script.reset();
        break;
    case HtmlTag::Other:
        break;
    case HtmlTag::None:
        addStyled(tag);
        break;
    }
}

void LineWriter::endLine()
{
    const QString text = std::exchange(m_line, {}).text();
    if (text.isEmpty())
        return;
    m_lines += std::exchange(m_prefix, {}) + text;
}

void LineWriter::endRow()
{
    QStringList values;
    for (qsizetype i = 0; i < m_cells.size(); ++i) {
        if (m_cells[i].isEmpty())
            continue;
        const QString header = m_headers.value(i);
        values += header.isEmpty() ? m_cells[i] : header + ": "_L1 + m_cells[i];
    }
    if (!values.isEmpty())
        m_lines += "- "_L1 + values.join("; "_L1);
    m_cells.clear();
}

} // namespace

QStringList markdownLines(const QString &block)
{
    MD_PARSER parser{};
    parser.flags = MD_FLAG_NOINDENTEDCODEBLOCKS | MD_FLAG_NOHTMLBLOCKS | MD_FLAG_TABLES;
    parser.enter_block = [](MD_BLOCKTYPE type, void *detail, void *writer) {
        static_cast<LineWriter *>(writer)->enterBlock(type, detail);
        return 0;
    };
    parser.leave_block = [](MD_BLOCKTYPE type, void *, void *writer) {
        static_cast<LineWriter *>(writer)->leaveBlock(type);
        return 0;
    };
    parser.enter_span = [](MD_SPANTYPE type, void *, void *writer) {
        static_cast<LineWriter *>(writer)->enterSpan(type);
        return 0;
    };
    parser.leave_span = [](MD_SPANTYPE type, void *detail, void *writer) {
        static_cast<LineWriter *>(writer)->leaveSpan(type, detail);
        return 0;
    };
    parser.text = [](MD_TEXTTYPE type, const MD_CHAR *text, MD_SIZE size, void *writer) {
        static_cast<LineWriter *>(writer)->addText(type, QString::fromUtf8(text, size));
        return 0;
    };

    LineWriter writer;
    const QByteArray source = withReadableFormulas(block).toUtf8();
    md_parse(source.constData(), static_cast<MD_SIZE>(source.size()), &parser, &writer);
    return writer.lines();
}
