#include "ChatCompletionParser.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

// Bytes that are no UTF-8 become replacement characters: one broken letter is no reason to lose an
// answer.
static std::optional<QJsonObject> jsonObject(QByteArrayView json)
{
    const QByteArray valid = QString::fromUtf8(json).toUtf8();
    const QJsonDocument document = QJsonDocument::fromJson(valid);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

// What a line of an event says after its name; nothing when it is no line with that name.
static std::optional<QByteArrayView> field(QByteArrayView line, QByteArrayView name)
{
    if (!line.startsWith(name))
        return std::nullopt;
    QByteArrayView value = line.sliced(name.size());
    if (!value.startsWith(':'))
        return value.isEmpty() ? std::optional(value) : std::nullopt;
    value = value.sliced(1);
    return value.startsWith(' ') ? value.sliced(1) : value;
}

// Some services send the text in parts, of which only those with text are for a reader.
static QString contentText(const QJsonValue &content)
{
    if (!content.isArray())
        return content.toString();
    QString text;
    for (const QJsonValue part : content.toArray())
        text += part["text"_L1].toString();
    return text;
}

void ChatCompletionParser::fail(ModelFailure failure)
{
    m_state = State::Failed;
    m_failure = failure;
}

QString ChatCompletionParser::feed(QByteArrayView bytes)
{
    QString text;
    while (!bytes.isEmpty() && m_state == State::Reading) {
        if (m_isAfterCarriageReturn && bytes.startsWith('\n'))
            bytes = bytes.sliced(1);
        m_isAfterCarriageReturn = false;

        const auto end = std::find_if(bytes.begin(), bytes.end(),
                                      [](char c) { return c == '\n' || c == '\r'; });
        const qsizetype length = end - bytes.begin();
        if (m_line.size() + length > longestEvent) {
            fail(ModelFailure::NotUnderstood);
            break;
        }
        m_line.append(bytes.first(length));
        if (end == bytes.end())
            break;
        m_isAfterCarriageReturn = *end == '\r';
        bytes = bytes.sliced(length + 1);
        const QByteArray line = std::exchange(m_line, {});
        text += takeLine(line);
    }
    return text;
}

QString ChatCompletionParser::finish()
{
    QString text;
    if (m_state == State::Reading && !m_line.isEmpty())
        text += takeLine(std::exchange(m_line, {}));
    if (m_state == State::Reading && !m_document.isEmpty()) {
        const auto object = jsonObject(m_document);
        if (object)
            text += takeObject(*object);
        else
            fail(ModelFailure::NotUnderstood);
    }
    if (m_state == State::Reading && !m_data.isEmpty())
        fail(ModelFailure::NotUnderstood);
    return text;
}

QString ChatCompletionParser::takeLine(QByteArrayView line)
{
    constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF", 3);
    if (std::exchange(m_isAtStart, false) && line.startsWith(byteOrderMark))
        line = line.sliced(byteOrderMark.size());

    if (line.isEmpty()) {
        // The end of an event: what is no JSON by now never will be.
        if (!m_data.isEmpty())
            fail(m_isErrorEvent ? ModelFailure::ReportedError : ModelFailure::NotUnderstood);
        m_isErrorEvent = false;
        return {};
    }
    if (line.startsWith(':'))
        return {};
    if (const auto data = field(line, "data"))
        return takeData(*data);
    if (const auto name = field(line, "event")) {
        m_isErrorEvent = *name == "error";
        return {};
    }
    if (field(line, "error")) {
        fail(ModelFailure::ReportedError);
        return {};
    }
    if (field(line, "id") || field(line, "retry"))
        return {};
    return takeBareLine(line);
}

QString ChatCompletionParser::takeData(QByteArrayView data)
{
    if (m_data.isEmpty() && data.trimmed() == "[DONE]") {
        m_state = State::Whole;
        return {};
    }
    if (m_data.size() + data.size() > longestEvent) {
        fail(ModelFailure::NotUnderstood);
        return {};
    }
    // An event is taken as soon as it is whole: its blank line may never come.
    if (!m_data.isEmpty())
        m_data += '\n';
    m_data.append(data);
    const auto object = jsonObject(m_data);
    if (!object)
        return {};
    m_data.clear();
    return takeObject(*object);
}

QString ChatCompletionParser::takeBareLine(QByteArrayView line)
{
    if (m_document.isEmpty()) {
        if (const auto object = jsonObject(line))
            return takeObject(*object);
    }
    if (m_document.size() + line.size() > longestEvent) {
        fail(ModelFailure::NotUnderstood);
        return {};
    }
    m_document.append(line);
    m_document += '\n';
    return {};
}

QString ChatCompletionParser::takeObject(const QJsonObject &object)
{
    const QJsonValue error = object.value("error"_L1);
    if (m_isErrorEvent || !(error.isUndefined() || error.isNull())) {
        fail(ModelFailure::ReportedError);
        return {};
    }
    const QJsonArray choices = object.value("choices"_L1).toArray();
    if (choices.isEmpty())
        return {};
    const QJsonObject choice = choices.first().toObject();
    const bool isStreamed = choice.contains("delta"_L1);
    const QJsonValue said = choice.value(isStreamed ? "delta"_L1 : "message"_L1);
    QString text = contentText(said["content"_L1]);

    const QString reason = choice.value("finish_reason"_L1).toString();
    if (reason == "length"_L1)
        m_state = State::TooLong;
    else if (reason == "content_filter"_L1)
        m_state = State::Withheld;
    else if (reason == "error"_L1)
        fail(ModelFailure::ReportedError);
    else if (!reason.isEmpty() || !isStreamed)
        m_state = State::Whole;
    return text;
}
