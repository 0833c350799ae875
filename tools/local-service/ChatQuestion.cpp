#include "ChatQuestion.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

using namespace Qt::StringLiterals;

// Far beyond any identifier of an installation; keeps the memory of users bounded.
static constexpr qsizetype longestUserId = 256;

static Refusal badRequest(const QString &reason)
{
    return {400, reason};
}

// Qt's parser takes control characters in a string, and any character after a backslash.
static bool hasBadString(const QByteArray &json)
{
    bool isInString = false;
    for (qsizetype i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (c == '"')
            isInString = !isInString;
        if (!isInString)
            continue;
        if (static_cast<unsigned char>(c) < 0x20)
            return true;
        if (c != '\\')
            continue;
        ++i;
        if (i == json.size() || !QByteArrayView("\"\\/bfnrtu").contains(json[i]))
            return true;
    }
    return false;
}

static std::optional<QByteArray> decodeBase64(const QString &text)
{
    const QByteArray encoded = text.toLatin1();
    auto result = QByteArray::fromBase64Encoding(encoded, QByteArray::AbortOnBase64DecodingErrors);
    // Qt's decoder takes missing padding and stray tail bits; only the canonical text comes back
    // the same.
    if (!result || result.decoded.toBase64() != encoded)
        return std::nullopt;
    return std::move(result.decoded);
}

static std::optional<Refusal> checkTypes(const QJsonObject &object)
{
    for (const auto key : {"message"_L1, "userId"_L1}) {
        if (!object.contains(key))
            return badRequest(u"Falta el campo \"%1\"."_s.arg(key));
    }
    for (const auto key :
         {"message"_L1, "userId"_L1, "imageBase64"_L1, "imageMimeType"_L1, "imageName"_L1}) {
        const QJsonValue value = object.value(key);
        if (!value.isString() && !value.isUndefined())
            return badRequest(u"El campo \"%1\" debe ser un texto."_s.arg(key));
    }
    return std::nullopt;
}

std::variant<ChatQuestion, Refusal> parseChatQuestion(const QByteArray &body)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error == QJsonParseError::DeepNesting)
        return badRequest(u"El JSON tiene demasiados niveles anidados."_s);
    if (!document.isObject() || hasBadString(body))
        return badRequest(u"El cuerpo no es un objeto JSON válido."_s);

    const QJsonObject object = document.object();
    if (auto refusal = checkTypes(object))
        return *refusal;

    ChatQuestion question{object.value("message"_L1).toString().trimmed(),
                          object.value("userId"_L1).toString(), std::nullopt};
    if (question.userId.size() > longestUserId)
        return badRequest(u"El campo \"userId\" es demasiado largo."_s);

    if (object.contains("imageBase64"_L1)) {
        auto bytes = decodeBase64(object.value("imageBase64"_L1).toString());
        if (!bytes)
            return badRequest(u"El campo \"imageBase64\" no es Base64 válido."_s);
        if (bytes->isEmpty())
            return badRequest(u"La imagen está vacía."_s);
        question.image
            = AttachedImage{*std::move(bytes), object.value("imageMimeType"_L1).toString(),
                            object.value("imageName"_L1).toString()};
    }
    if (question.message.isEmpty() && !question.image)
        return badRequest(u"La pregunta está vacía."_s);
    return question;
}
