#include "ChatRequestBody.h"

#include "ChatMessage.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <utility>

namespace {

/// Image bytes encoded at a time: a multiple of three, so that only the last piece is padded.
constexpr qsizetype imageBlockSize = qsizetype(48) * 1024;

QString withoutLoneSurrogates(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text.at(i).isSurrogate())
            continue;
        const bool isPair = text.at(i).isHighSurrogate() && i + 1 < text.size()
            && text.at(i + 1).isLowSurrogate();
        if (isPair)
            ++i;
        else
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

/// `text` as a JSON string with its quotation marks.
QByteArray jsonString(const QString &text)
{
    const QJsonDocument document(QJsonArray{withoutLoneSurrogates(text)});
    return document.toJson(QJsonDocument::Compact).chopped(1).sliced(1);
}

qsizetype base64Length(qsizetype size)
{
    return (size + 2) / 3 * 4;
}

} // namespace

std::optional<ChatRequestBody> ChatRequestBody::serialise(const ChatRequest &request)
{
    const ChatRequestImage image = request.image.value_or(ChatRequestImage());
    const QString mimeType = image.mimeType.value_or(defaultImageMimeType);
    const QString name = image.name.value_or(defaultImageName);
    for (const QString &text : {request.message, request.userId, mimeType, name}) {
        if (text.size() > maximumTextLength)
            return std::nullopt;
    }

    QByteArray head = R"({"message":)" + jsonString(request.message) + R"(,"userId":)"
        + jsonString(request.userId);
    QByteArray tail = "}";
    if (request.image) {
        head += R"(,"imageBase64":")";
        tail = R"(","imageMimeType":)" + jsonString(mimeType) + R"(,"imageName":)"
            + jsonString(name) + '}';
    }
    return ChatRequestBody(head, image.data, tail);
}

ChatRequestBody::ChatRequestBody(const QByteArray &head, const QByteArray &image,
                                 const QByteArray &tail)
    : m_contentLength(head.size() + base64Length(image.size()) + tail.size())
    , m_head(head)
    , m_image(image)
    , m_tail(tail)
{ }

QByteArray ChatRequestBody::takeNextBlock()
{
    if (!m_head.isEmpty())
        return std::exchange(m_head, {});
    if (m_imageOffset == m_image.size())
        return std::exchange(m_tail, {});
    const qsizetype size = std::min(imageBlockSize, m_image.size() - m_imageOffset);
    QByteArray block
        = QByteArray::fromRawData(m_image.constData() + m_imageOffset, size).toBase64();
    m_imageOffset += size;
    return block;
}
