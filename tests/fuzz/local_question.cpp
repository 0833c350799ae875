// What somebody asks the local service, from the bytes of the request to the lines of the answer:
// whatever they are, there is an answer of whole lines or a refusal.

#include "AnswerComposer.h"
#include "ChatEndpoint.h"
#include "StudyNotes.h"
#include "UserMemory.h"

#include <cstdint>
#include <cstdlib>
#include <variant>

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    IncomingRequest request;
    request.method = u"POST"_s;
    request.path = u"/api/chat"_s;
    request.contentType = u"application/json"_s;
    request.body = QByteArray(reinterpret_cast<const char *>(data), qsizetype(size));
    static const StudyNotes notes;
    static const AnswerComposer composer(notes);
    // With a memory of its own for each question: what fails then fails again.
    UserMemory memory;
    const auto outcome = ChatEndpoint(notes, composer, memory).respond(request);
    if (const auto *refusal = std::get_if<Refusal>(&outcome)) {
        if (refusal->status != 400)
            std::abort();
        return 0;
    }
    const QStringList &lines = std::get<Answer>(outcome).lines;
    if (lines.isEmpty())
        std::abort();
    for (const QString &line : lines) {
        if (line.contains(u'\n') || line.contains(u'\r'))
            std::abort();
    }
    return 0;
}
