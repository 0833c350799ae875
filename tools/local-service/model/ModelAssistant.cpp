#include "ModelAssistant.h"

#include "ChatCompletionRequest.h"
#include "ModelImage.h"
#include "StudyNotes.h"
#include "SystemPrompt.h"

using namespace Qt::StringLiterals;

static Answer tooLongAnswer()
{
    return {{u"Tu mensaje es demasiado largo para analizarlo de una vez: pasa los %1 "
             "caracteres."_s.arg(ModelAssistant::longestQuestion),
             u"Mandame la parte que más te interesa, o dividilo en varios mensajes."_s},
            {}};
}

static Answer noImagesAnswer()
{
    return {
        {u"Este modelo no puede ver imágenes, así que no puedo decir nada de lo que muestra la "
         "tuya."_s,
         u"Lo que sí puedo hacer:"_s,
         u"- Si me describís lo que ves (forma, tamaño, color, tinción, dónde está), te ayudo a "
         "interpretarlo con fines de estudio."_s,
         u"- Si tiene un informe o un epígrafe, copiámelo y lo repasamos."_s,
         u"- Si sabés qué tema es, puedo explicarlo o hacerte preguntas para practicar."_s},
        {}};
}

static Answer unreadableImageAnswer()
{
    return {{u"No pude abrir la imagen: está dañada, es demasiado grande o su formato no se "
             "reconoce."_s,
             u"Probá guardarla como JPEG o PNG y mandarla de nuevo."_s},
            {}};
}

ModelAssistant::ModelAssistant(ModelService service, ImageSupport images, int mostPerMinute,
                               const StudyNotes &notes)
    : m_service(std::move(service))
    , m_images(images)
    , m_limit(mostPerMinute)
    , m_notes(notes)
{ }

std::variant<std::unique_ptr<ModelReply>, Answer, Refusal>
ModelAssistant::answer(const ChatQuestion &question, const UserContext &context,
                       const QStringList &firstLines, ModelReply::WhenWhole whenWhole)
{
    if (question.message.size() > longestQuestion)
        return tooLongAnswer();
    if (question.image && m_images == ImageSupport::None)
        return noImagesAnswer();
    if (!m_limit.take(question.userId, std::chrono::steady_clock::now()))
        return Refusal{429,
                       u"Son demasiadas preguntas en un minuto. Esperá un momento y volvé a "
                       "preguntar."_s};

    ChatCompletionRequest request;
    if (question.image) {
        auto jpeg = modelImage(question.image->bytes);
        if (!jpeg)
            return unreadableImageAnswer();
        request.jpeg = *std::move(jpeg);
    }
    request.modelName = m_service.modelName;
    request.systemPrompt = systemPrompt(context, m_notes.conceptIn(question.message));
    request.turns = context.turns;
    request.question = question.message.isEmpty() ? u"Describí la imagen."_s : question.message;
    return std::make_unique<ModelReply>(m_service, request.json(), firstLines,
                                        std::move(whenWhole));
}
