#include "ConversationCoding.h"

#include "Base64.h"
#include "JsonReader.h"
#include "Utf8Text.h"
#include "UuidText.h"

#include <QStringEncoder>
#include <QUtf8StringView>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<QByteArrayView, 5> messageKeys{"id", "text", "isUser", "attachmentName",
                                                    "imagePreviewData"};

/// Writes the compact form of the records, keys in the order of their declaration.
class ConversationEncoder
{
public:
    QByteArray encode(const QList<Conversation> &conversations)
    {
        m_document.reserve(expectedSize(conversations));
        appendArray(conversations);
        return std::move(m_document);
    }

private:
    /// Enough for all but texts with many escapes or characters of several bytes.
    static qsizetype expectedSize(const QList<Conversation> &conversations)
    {
        constexpr qsizetype keysAndIdentifier = 120;
        qsizetype size = 2;
        for (const Conversation &conversation : conversations) {
            size += keysAndIdentifier + conversation.title.size();
            for (const ChatMessage &message : conversation.messages) {
                size += keysAndIdentifier + message.text.size() + message.text.size() / 8;
                if (message.attachmentName)
                    size += message.attachmentName->size();
                if (message.imagePreviewData)
                    size += message.imagePreviewData->size() / 3 * 4 + 4;
            }
        }
        return size;
    }

    template <typename Record>
    void appendArray(const QList<Record> &records)
    {
        m_document.append('[');
        for (qsizetype i = 0; i < records.size(); ++i) {
            if (i > 0)
                m_document.append(',');
            append(records[i]);
        }
        m_document.append(']');
    }

    void append(const Conversation &conversation)
    {
        m_document.append(R"({"id":)");
        append(uuidText(conversation.id));
        m_document.append(R"(,"title":)");
        append(conversation.title);
        m_document.append(R"(,"messages":)");
        appendArray(conversation.messages);
        m_document.append('}');
    }

    void append(const ChatMessage &message)
    {
        m_document.append(R"({"id":)");
        append(uuidText(message.id));
        m_document.append(R"(,"text":)");
        append(message.text);
        m_document.append(R"(,"isUser":)");
        m_document.append(message.isUser ? "true" : "false");
        if (message.attachmentName) {
            m_document.append(R"(,"attachmentName":)");
            append(*message.attachmentName);
        }
        if (message.imagePreviewData) {
            m_document.append(R"(,"imagePreviewData":")");
            m_document.append(message.imagePreviewData->toBase64());
            m_document.append('"');
        }
        m_document.append('}');
    }

    void append(const QString &text)
    {
        // Unlike toUtf8(), this writes U+FFFD for a surrogate without its partner.
        const QByteArray bytes = m_toUtf8(text);
        m_document.append('"');
        qsizetype written = 0;
        for (qsizetype i = 0; i < bytes.size(); ++i) {
            const auto c = static_cast<unsigned char>(bytes[i]);
            if (c >= 0x20 && c != '"' && c != '\\')
                continue;
            m_document.append(bytes.sliced(written, i - written));
            appendEscape(c);
            written = i + 1;
        }
        m_document.append(QByteArrayView(bytes).sliced(written));
        m_document.append('"');
    }

    void appendEscape(unsigned char c)
    {
        switch (c) {
        case '"':
            m_document.append(R"(\")");
            return;
        case '\\':
            m_document.append(R"(\\)");
            return;
        case '\n':
            m_document.append(R"(\n)");
            return;
        case '\r':
            m_document.append(R"(\r)");
            return;
        case '\t':
            m_document.append(R"(\t)");
            return;
        default:
            constexpr QByteArrayView digits = "0123456789abcdef";
            m_document.append(R"(\u00)").append(digits[c >> 4]).append(digits[c & 0x0F]);
        }
    }

    QByteArray m_document;
    QStringEncoder m_toUtf8{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
};

/// Reads the records. A function that fails returns nothing, after noting the reason and the path
/// within what it read; each caller puts its own step in front of that path.
class ConversationDecoder
{
public:
    explicit ConversationDecoder(QByteArrayView document)
        : m_document(document)
    { }

    std::variant<QList<Conversation>, DecodingError> decode()
    {
        if (!QUtf8StringView(m_document.data(), m_document.size()).isValidUtf8())
            return DecodingError{u"el documento no es UTF-8 válido"_s};
        JsonReader reader(m_document);
        auto conversations
            = readArray<Conversation>(reader, &ConversationDecoder::readConversation);
        if (conversations && reader.atEnd())
            return std::move(*conversations);
        if (conversations || reader.hasFailed())
            return DecodingError{u"JSON no válido en el byte %1"_s.arg(reader.offset())};
        return DecodingError{m_path.isEmpty() ? m_complaint : m_path + u": "_s + m_complaint};
    }

private:
    template <typename Record>
    using ReadRecord = std::optional<Record> (ConversationDecoder::*)(JsonReader &reader);

    template <typename Record>
    std::optional<QList<Record>> readArray(JsonReader &reader, ReadRecord<Record> readRecord)
    {
        if (!reader.enterArray())
            return complain(u"se esperaba una lista"_s);
        QList<Record> records;
        while (reader.nextElement()) {
            auto record = (this->*readRecord)(reader);
            if (!record) {
                m_path.prepend(u"[%1]"_s.arg(records.size()));
                return std::nullopt;
            }
            records.append(std::move(*record));
        }
        if (reader.hasFailed())
            return std::nullopt;
        return records;
    }

    /// The values of `keys` as they stand in the document; empty where a key is missing. The last
    /// of a repeated key is only known at the object's end, so nothing is interpreted before.
    template <std::size_t count>
    std::optional<std::array<QByteArrayView, count>>
    readFields(JsonReader &reader, const std::array<QByteArrayView, count> &keys)
    {
        if (!reader.enterObject())
            return complain(u"se esperaba un objeto"_s);
        std::array<QByteArrayView, count> values;
        while (const auto key = reader.nextKey()) {
            const QByteArrayView value = reader.readValue();
            const auto known = std::find(keys.begin(), keys.end(), unescapedJsonString(*key));
            if (known != keys.end())
                values[known - keys.begin()] = value;
        }
        if (reader.hasFailed())
            return std::nullopt;
        return values;
    }

    std::optional<Conversation> readConversation(JsonReader &reader)
    {
        if (!reader.enterObject())
            return complain(u"se esperaba un objeto"_s);
        QByteArrayView idField;
        QByteArrayView titleField;
        bool hasMessages = false;
        std::optional<QList<ChatMessage>> messages;
        while (const auto key = reader.nextKey()) {
            const QByteArray name = unescapedJsonString(*key);
            // Messages are nearly all of a history, so they are decoded here, in the first pass.
            // Wrong ones are skipped: a later value of the same key may be right.
            if (name == "messages") {
                hasMessages = true;
                const JsonReader before = reader;
                messages = readArray<ChatMessage>(reader, &ConversationDecoder::readMessage);
                if (messages || reader.hasFailed())
                    continue;
                reader = before;
            }
            const QByteArrayView value = reader.readValue();
            if (name == "id")
                idField = value;
            else if (name == "title")
                titleField = value;
        }
        if (reader.hasFailed())
            return std::nullopt;
        const auto id = readUuid(u".id"_s, idField);
        if (!id)
            return std::nullopt;
        auto title = readText(u".title"_s, titleField);
        if (!title)
            return std::nullopt;
        if (!hasMessages)
            return complain(u"falta el campo"_s, u".messages"_s);
        if (!messages) {
            m_path.prepend(u".messages"_s);
            return std::nullopt;
        }
        return Conversation{*id, std::move(*title), std::move(*messages)};
    }

    std::optional<ChatMessage> readMessage(JsonReader &reader)
    {
        const auto fields = readFields(reader, messageKeys);
        if (!fields)
            return std::nullopt;
        const auto [idField, textField, isUserField, nameField, previewField] = *fields;
        const auto id = readUuid(u".id"_s, idField);
        if (!id)
            return std::nullopt;
        auto text = readText(u".text"_s, textField);
        if (!text)
            return std::nullopt;
        const auto isUser = readBoolean(u".isUser"_s, isUserField);
        if (!isUser)
            return std::nullopt;

        ChatMessage message{*id, std::move(*text), *isUser, std::nullopt, std::nullopt};
        if (isPresent(nameField)) {
            message.attachmentName = readText(u".attachmentName"_s, nameField);
            if (!message.attachmentName)
                return std::nullopt;
        }
        if (isPresent(previewField)) {
            message.imagePreviewData = readBytes(u".imagePreviewData"_s, previewField);
            if (!message.imagePreviewData)
                return std::nullopt;
        }
        return message;
    }

    static bool isPresent(QByteArrayView field) { return !field.isEmpty() && field != "null"; }

    /// The UTF-8 of a required string.
    std::optional<QByteArray> readString(const QString &step, QByteArrayView field)
    {
        if (field.isEmpty())
            return complain(u"falta el campo"_s, step);
        if (!field.startsWith('"'))
            return complain(u"se esperaba un texto"_s, step);
        return unescapedJsonString(field);
    }

    std::optional<QString> readText(const QString &step, QByteArrayView field)
    {
        const auto text = readString(step, field);
        return text ? std::optional(textFromUtf8(*text)) : std::nullopt;
    }

    std::optional<QUuid> readUuid(const QString &step, QByteArrayView field)
    {
        const auto text = readString(step, field);
        if (!text)
            return std::nullopt;
        const auto uuid = parseUuid(textFromUtf8(*text));
        return uuid ? uuid : complain(u"el UUID no es válido"_s, step);
    }

    std::optional<bool> readBoolean(const QString &step, QByteArrayView field)
    {
        if (field.isEmpty())
            return complain(u"falta el campo"_s, step);
        if (field != "true" && field != "false")
            return complain(u"se esperaba un valor lógico"_s, step);
        return field == "true";
    }

    std::optional<QByteArray> readBytes(const QString &step, QByteArrayView field)
    {
        const auto text = readString(step, field);
        if (!text)
            return std::nullopt;
        auto bytes = decodeBase64(*text);
        return bytes ? std::move(bytes) : complain(u"el base64 no es válido"_s, step);
    }

    std::nullopt_t complain(const QString &complaint, const QString &step = {})
    {
        m_complaint = complaint;
        m_path = step;
        return std::nullopt;
    }

    QByteArrayView m_document;
    QString m_complaint;
    QString m_path;
};

} // namespace

QByteArray encodeConversations(const QList<Conversation> &conversations)
{
    return ConversationEncoder().encode(conversations);
}

std::variant<QList<Conversation>, DecodingError> decodeConversations(QByteArrayView document)
{
    return ConversationDecoder(document).decode();
}
