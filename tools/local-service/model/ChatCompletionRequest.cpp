#include "ChatCompletionRequest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

static QJsonObject message(const QString &role, const QJsonValue &content)
{
    return {{u"role"_s, role}, {u"content"_s, content}};
}

QByteArray ChatCompletionRequest::json() const
{
    QJsonArray messages{message(u"system"_s, systemPrompt)};
    for (const ChatTurn &turn : turns) {
        messages += message(u"user"_s, turn.question);
        messages += message(u"assistant"_s, turn.answer);
    }
    if (jpeg.isEmpty()) {
        messages += message(u"user"_s, question);
    } else {
        const QString address = "data:image/jpeg;base64,"_L1 + QString::fromLatin1(jpeg.toBase64());
        messages
            += message(u"user"_s,
                       QJsonArray{QJsonObject{{u"type"_s, u"text"_s}, {u"text"_s, question}},
                                  QJsonObject{{u"type"_s, u"image_url"_s},
                                              {u"image_url"_s, QJsonObject{{u"url"_s, address}}}}});
    }
    return QJsonDocument(
               QJsonObject{{u"model"_s, modelName}, {u"stream"_s, true}, {u"messages"_s, messages}})
        .toJson(QJsonDocument::Compact);
}
