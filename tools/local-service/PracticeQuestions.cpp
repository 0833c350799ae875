#include "PracticeQuestions.h"

#include "PlainSpanish.h"

using namespace Qt::StringLiterals;

QList<PracticeQuestion> practiceQuestions(const StudyConcept &known)
{
    const auto valuesOf = [&](const QString &key) { return known.values.value(key); };
    const auto firstOf = [&](const QString &key) { return valuesOf(key).value(0); };
    const QString title = "**"_L1 + known.title + "**"_L1;

    QList<PracticeQuestion> questions;
    for (qsizetype i = 0; i < valuesOf(u"pregunta"_s).size(); ++i) {
        questions
            += PracticeQuestion{valuesOf(u"pregunta"_s)[i], valuesOf(u"respuesta"_s).value(i)};
    }
    questions += PracticeQuestion{title + u": ¿cómo lo definirías en una oración?"_s,
                                  firstOf(u"qué es"_s)};
    questions += PracticeQuestion{title + u": ¿qué lo distingue de lo que se le parece?"_s,
                                  capitalized(firstOf(u"distingue"_s))};
    // The note gives an error as what people say, a colon and what is right.
    const QString error = firstOf(u"error"_s);
    if (const qsizetype colon = error.indexOf(u": "_s); colon > 0) {
        questions += PracticeQuestion{u"¿Por qué es un error? "_s + error.first(colon) + u'.',
                                      capitalized(error.sliced(colon + 2))};
    }
    questions += PracticeQuestion{firstOf(u"caso"_s) + u" ¿Qué pensás y qué harías?"_s,
                                  firstOf(u"resolución"_s)};
    const QStringList steps = valuesOf(u"paso"_s);
    questions += PracticeQuestion{title + u": contá la secuencia en orden, sin mirar."_s,
                                  steps.join(u' ')};
    return questions;
}
