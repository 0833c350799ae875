#include "SystemPrompt.h"

#include "StudyConcept.h"

#include <QFile>

#include <array>

using namespace Qt::StringLiterals;

static QString instructions()
{
    static const QString text = [] {
        QFile file(u":/model/instrucciones.md"_s);
        if (!file.open(QIODevice::ReadOnly))
            qFatal("Missing instructions for the model");
        return QString::fromUtf8(file.readAll()).trimmed();
    }();
    return text;
}

// What is in a note, without the questions and the case that the student is to solve.
static QString noteText(const StudyConcept &note)
{
    static const std::array keys{u"qué es"_s,  u"paso"_s,  u"clave"_s,
                                 u"clínica"_s, u"error"_s, u"distingue"_s};
    QStringList lines;
    for (const QString &key : keys) {
        for (const QString &value : note.values.value(key))
            lines += u"- %1: %2"_s.arg(key, value);
    }
    return lines.join(u'\n');
}

QString systemPrompt(const UserContext &context, const StudyConcept *note)
{
    QString prompt = instructions();
    if (!context.subjects.isEmpty() || !context.toReview.isEmpty()) {
        prompt += u"\n\nLo que recordás de este estudiante (usalo solo si viene al caso)"_s;
        if (!context.subjects.isEmpty())
            prompt += u"\n- Estudió antes: "_s + context.subjects.join("; "_L1);
        if (!context.toReview.isEmpty())
            prompt += u"\n- Le costó en la práctica: "_s + context.toReview.join("; "_L1);
    }
    if (note) {
        prompt
            += u"\n\nApunte de referencia «%1» (todavía sin revisión de un profesional)\n%2\n"
               "Usalo solo si corresponde a la pregunta. Si te apoyás en él, terminá con un "
               "renglón que diga: Me apoyé en el apunte «%1»."_s.arg(note->title, noteText(*note));
    }
    return prompt;
}
