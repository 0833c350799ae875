#include "AnswerComposer.h"

#include "StudyNotes.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

// A conversation, as the service keeps it.
class Conversation
{
public:
    explicit Conversation(const AnswerComposer &composer)
        : m_composer(composer)
    { }

    QStringList ask(const QString &message)
    {
        const Answer answer = m_composer.answer({message, u"u"_s, {}}, m_context);
        m_context.turns += ChatTurn{message, answer.lines.join(u'\n')};
        if (!answer.subject.isEmpty()) {
            m_context.subjects.removeAll(answer.subject);
            m_context.subjects.prepend(answer.subject);
        }
        return answer.lines;
    }
    QStringList subjects() const { return m_context.subjects; }

private:
    const AnswerComposer &m_composer;
    UserContext m_context;
};

class AnswerComposerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opensWithItsSubject_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("subject");

        for (const QString &subject : StudyNotes::subjects()) {
            QTest::addRow("%s", qUtf8Printable(subject))
                << u"Quiero estudiar %1. "_s.arg(subject) << "# "_L1 + subject << subject;
        }
        const auto row = [](const char *message, const QString &title, const QString &subject) {
            QTest::newRow(message) << QString::fromUtf8(message) << title << subject;
        };
        row("Explicame paso a paso: la mitosis", u"# Mitosis, paso a paso"_s, u"Mitosis"_s);
        row("Creá preguntas de autoevaluación sobre: EPOC", u"# Preguntas: EPOC"_s, u"EPOC"_s);
        row("Compará estos conceptos: mitosis y meiosis", u"# Comparación: Mitosis y Meiosis"_s,
            u"Mitosis y Meiosis"_s);
        row("Ayudame a razonar clínicamente sobre: anemia", u"# Razonamiento clínico: Anemia"_s,
            u"Anemia"_s);
        row("Quiero trabajar con un caso clínico sobre: neumonía", u"# Caso clínico: Neumonía"_s,
            u"Neumonía"_s);
        row("explicame paso a paso: MITOSIS", u"# Mitosis, paso a paso"_s, u"Mitosis"_s);
        row("Quiero estudiar Genética. El síndrome de Down", u"# Síndrome de Down"_s,
            u"Síndrome de Down"_s);
        row("histología", u"# Histología"_s, u"Histología"_s);
        row("qué temas de genética tenés", u"# Temas de Genética"_s, u"Genética"_s);
        row("¿Qué es la nefrona?", u"# Nefrona"_s, u"Nefrona"_s);
        row("resumen de mitosis", u"# Mitosis: lo esencial"_s, u"Mitosis"_s);
        row("haceme 3 preguntas de genética", u"# Preguntas: Genética"_s, u"Genética"_s);
        row("un caso de medicina interna", u"# Caso clínico: Infarto agudo de miocardio"_s,
            u"Infarto agudo de miocardio"_s);
        row("genotipo y fenotipo, diferencias", u"# Comparación: Genotipo y fenotipo"_s,
            u"Genes y alelos"_s);
    }
    void opensWithItsSubject()
    {
        QFETCH(QString, message);
        QFETCH(QString, title);
        QFETCH(QString, subject);
        const Answer answer = m_composer.answer({message, u"u"_s, {}}, {});
        QCOMPARE(answer.lines.first(), title);
        QCOMPARE(answer.subject, subject);
        checkLines(answer.lines);
    }

    void saysOfASubjectWhatItLacks()
    {
        const QString lacks = u"todavía no tengo una nota"_s;
        QVERIFY(m_composer.answer({u"Quiero estudiar Anatomía. "_s, {}, {}}, {})
                    .lines.filter(lacks)
                    .isEmpty());
        const auto lines
            = m_composer.answer({u"Quiero estudiar Anatomía. El peritoneo"_s, {}, {}}, {}).lines;
        QCOMPARE(lines.filter(u"Sobre **peritoneo** "_s + lacks).size(), 1);
    }

    void isShortWhereNothingIsKnown_data()
    {
        QTest::addColumn<QString>("message");
        for (const char *message : {"Explicame paso a paso: ",
                                    "Creá preguntas de autoevaluación sobre: ",
                                    "Compará estos conceptos: ",
                                    "Ayudame a razonar clínicamente sobre: ",
                                    "Quiero trabajar con un caso clínico sobre: ",
                                    "Quiero estudiar física",
                                    "Explicame paso a paso: ciclo de la urea",
                                    "¿qué es la gota?",
                                    "Creá preguntas de autoevaluación sobre: lupus",
                                    "Compará estos conceptos: lupus y gota",
                                    "Ayudame a razonar clínicamente sobre: lupus",
                                    "Quiero trabajar con un caso clínico sobre: lupus",
                                    "Down the hatch",
                                    "asdfgh",
                                    "¿?",
                                    "quién ganó el mundial",
                                    "contame un chiste",
                                    "hola",
                                    "gracias",
                                    "chau",
                                    "ok"})
            QTest::newRow(message) << QString::fromUtf8(message);
    }
    void isShortWhereNothingIsKnown()
    {
        QFETCH(QString, message);
        const Answer answer = m_composer.answer({message, u"u"_s, {}}, {});
        QVERIFY(answer.lines.size() <= 4);
        QCOMPARE(answer.subject, QString());
        checkLines(answer.lines);
    }

    void saysWhatItDoesNotKnow()
    {
        const auto lines = m_composer.answer({u"¿qué es la gota?"_s, {}, {}}, {}).lines;
        QVERIFY(lines.first().startsWith(u"Sobre **gota** todavía no tengo una nota"_s));
        // Half of what is asked is in its notes: it says where.
        const auto near
            = m_composer.answer({u"¿qué es la ortopnea paroxística?"_s, {}, {}}, {}).lines;
        QCOMPARE(near.filter(u"**Insuficiencia cardíaca**"_s).size(), 1);
    }

    void gathersWhatTheNotesSayOfAWord()
    {
        const Answer answer = m_composer.answer({u"¿qué es la ortopnea?"_s, {}, {}}, {});
        QCOMPARE(answer.lines.first(), u"# Ortopnea"_s);
        QVERIFY(!answer.lines.filter(u"- **Insuficiencia cardíaca:**"_s).isEmpty());
        checkLines(answer.lines);
    }

    void findsTheNoteThatIsMeant_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("subject");
        const auto row = [](const char *message, const QString &first, const QString &subject) {
            QTest::newRow(message) << QString::fromUtf8(message) << first << subject;
        };
        row("q es la unidad funcional del higado, el lobulillo hepatico",
            u"# Lobulillo hepático (Hígado)"_s, u"Hígado"_s);
        row("paciente con mano caída después de fractura de húmero, qué nervio se lesionó?",
            u"# "_s, u"Nervio radial"_s);
        row("tetralogia de fallot", u"# Tetralogía de Fallot (Desarrollo del corazón)"_s,
            u"Desarrollo del corazón"_s);
        row("diferencia entre dbt tipo 1 y tipo 2",
            u"# Comparación: Diabetes tipo 1 y Diabetes tipo 2"_s,
            u"Diabetes tipo 1 y Diabetes tipo 2"_s);
        row("transporte activo vs pasivo", u"# Comparación: Transporte activo"_s,
            u"Membrana plasmática"_s);
        row("trasnporte activo vs pasivo ejemplos", u"# Comparación: Transporte activo"_s,
            u"Membrana plasmática"_s);
        row("diferencia entre transporte activo y transporte pasivo",
            u"# Comparación: Transporte activo"_s, u"Membrana plasmática"_s);
        row("en qué se diferencian arteria y vena histológicamente",
            u"# Comparación: Arteria y vena"_s, u"Vasos sanguíneos"_s);
        row("este parcial me va a matar", u"Cuando un tema aplasta"_s, QString());
        row("este parcial de anatomia me va a matar", u"Cuando un tema aplasta"_s, QString());
        row("me quiero morir, desaprobe anatomia", u"Si detrás de la frase"_s, QString());
    }
    void findsTheNoteThatIsMeant()
    {
        QFETCH(QString, message);
        QFETCH(QString, first);
        QFETCH(QString, subject);
        const Answer answer = m_composer.answer({message, u"u"_s, {}}, {});
        QVERIFY2(answer.lines.first().startsWith(first), qUtf8Printable(answer.lines.first()));
        QCOMPARE(answer.subject, subject);
        QVERIFY(answer.lines.filter(u"no tengo una nota"_s).isEmpty());
    }

    void labelsAnErrorWhereverItStands()
    {
        const auto lines
            = m_composer.answer({u"diferencia entre morula y blastocisto"_s, u"u"_s, {}}, {}).lines;
        const auto errors = lines.filter(u"Decir que se implanta la mórula"_s);
        QVERIFY(!errors.isEmpty());
        for (const QString &error : errors)
            QVERIFY(error.startsWith(u"- **Un error frecuente:** "_s));
    }

    void saysWhatIsOutsideMedicine()
    {
        for (const QString &message :
             {u"quien gano el mundial 2022"_s, u"que pelicula me recomendas para hoy"_s}) {
            const QStringList lines = m_composer.answer({message, u"u"_s, {}}, {}).lines;
            QVERIFY(lines.first().startsWith(u"Eso queda fuera de lo mío"_s));
        }
    }

    void suggestsOnlyWhatIsRelated()
    {
        for (const QString &message :
             {u"origen e insercion del biceps braquial"_s,
              u"explicame paso a paso como leer un ecg"_s, u"maniobra de heimlich"_s}) {
            const QString text = m_composer.answer({message, u"u"_s, {}}, {}).lines.join(u'\n');
            QVERIFY(text.contains(u"todavía no tengo una nota"_s));
            for (const QString &other : {u"Mutaciones"_s, u"Herencia multifactorial"_s,
                                         u"**Pulmones**"_s, u"Pares craneales"_s})
                QVERIFY2(!text.contains(other), qUtf8Printable(text));
        }
    }

    void tellsWholeNotesInTheirOrder_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("title");
        const auto row = [](const char *message, const QString &title) {
            QTest::newRow(message) << QString::fromUtf8(message) << title;
        };
        row("por q la cirrosis lleva a la encefalopatia", u"Cirrosis"_s);
        row("explicame la fecundacion", u"Fecundación"_s);
    }
    void tellsWholeNotesInTheirOrder()
    {
        QFETCH(QString, message);
        QFETCH(QString, title);
        const StudyConcept &known = *m_notes.conceptIn(title);
        const QStringList lines = m_composer.answer({message, u"u"_s, {}}, {}).lines;
        const QString text = lines.join(u'\n');
        QCOMPARE(lines.value(1), known.values[u"qué es"_s].first());
        qsizetype at = 0;
        for (const QString &step : known.values[u"paso"_s]) {
            const qsizetype next = text.indexOf(u". "_s + step, at);
            QVERIFY2(next > at, qUtf8Printable(step));
            at = next;
        }
        for (const QString &key : known.values[u"clave"_s])
            QCOMPARE(text.count(key), 1);
        for (const QString &error : known.values[u"error"_s])
            QVERIFY2(!text.contains(error), qUtf8Printable(error));
        // A resolution follows its case.
        if (const qsizetype end = text.indexOf(known.values[u"resolución"_s].first()); end >= 0)
            QVERIFY(text.first(end).contains(known.values[u"caso"_s].first()));
        QStringList once = lines;
        once.removeAll(QString());
        QCOMPARE(once.removeDuplicates(), 0);
    }

    void answersTheSideThatIsAskedForFirst_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QStringList>("headings");
        QTest::addColumn<QString>("first");
        const auto row = [](const char *message, const QStringList &headings, const char *first) {
            QTest::newRow(message)
                << QString::fromUtf8(message) << headings << QString::fromUtf8(first);
        };
        row("para que sirve la placenta", {u"Función"_s}, "- Intercambia oxígeno");
        row("q hormonas produce la placenta", {u"Función"_s}, "- Produce hormonas");
        row("fases del ciclo celular", {u"Fases"_s}, "- **G1:**");
        row("capas de la piel", {u"Partes"_s}, "- **Epidermis**");
        row("irrigacion del estomago", {u"Irrigación"_s}, "- Curvatura");
        row("tratamiento y causas de la anemia", {u"Tratamiento"_s, u"Causas"_s},
            "- **De la causa:**");
        row("como se forma el tubo neural y en q semana se cierra", {u"Cómo ocurre"_s, u"Cuándo"_s},
            "1. La notocorda");
        // A part of what the note is about.
        row("sintomas de la hemofilia", {u"Síntomas y signos"_s}, "- **Hemofilia:**");
        row("funcion de las plaquetas", {u"Función"_s}, "- **Plaquetas:**");
        row("q hace el nucleolo", {u"Función"_s}, "- **Nucléolo:**");
        row("como se hereda la enfermedad de huntington", {u"Herencia"_s}, "- Huntington");
        // Words of the question that the side's lines do not hold.
        row("cuales son las valvulas del corazon", {u"Partes"_s}, "- **Cuatro válvulas:**");
        row("huesos del craneo, cuales son", {u"Partes"_s}, "- **Neurocráneo");
        // Without a note of its own, but named where another note tells it.
        row("que nervio inerva el deltoides", {u"Inervación"_s}, "- **Musculocutáneo:**");
    }
    void answersTheSideThatIsAskedForFirst()
    {
        QFETCH(QString, message);
        QFETCH(QStringList, headings);
        QFETCH(QString, first);
        const QStringList lines = m_composer.answer({message, u"u"_s, {}}, {}).lines;
        QStringList shown;
        for (const QString &line : lines) {
            if (line.startsWith("## "_L1) && line != "## En contexto"_L1)
                shown += line.sliced(3);
        }
        QCOMPARE(shown, headings);
        QVERIFY2(lines.value(2).startsWith(first), qUtf8Printable(lines.join(u'\n')));
        // What it is comes after, and then what else is known of it.
        const qsizetype context = lines.indexOf(u"## En contexto"_s);
        QVERIFY(context > 2);
        QVERIFY(lines.mid(context).filter(u"También puedo contarte"_s).size() == 1);
        for (const QString &heading : headings)
            QVERIFY(!lines.filter(u"También puedo contarte"_s).first().contains(heading.toLower()));
        QStringList once = lines;
        QCOMPARE(once.removeDuplicates(), 0);
        checkLines(lines);
    }

    void saysOnlyOfThePartWhatIsOfThePart()
    {
        const auto text
            = m_composer.answer({u"sintomas de la hemofilia"_s, {}, {}}, {}).lines.join(u'\n');
        QVERIFY(text.startsWith(u"# Hemofilia (Herencia ligada al X)"_s));
        QVERIFY(!text.contains(u"Duchenne:"_s));
    }

    void neverHelpsWithAnError()
    {
        for (const StudyConcept *known : m_notes.conceptsOf(u"Biología Celular"_s)) {
            Conversation conversation(m_composer);
            conversation.ask(u"explicame paso a paso: "_s + known->title);
            for (qsizetype i = 1; i <= known->values[u"paso"_s].size(); ++i) {
                const QString text
                    = conversation.ask(u"no entendí el punto %1"_s.arg(i)).join(u'\n');
                QVERIFY2(!text.contains(known->values[u"error"_s].first()), qUtf8Printable(text));
            }
        }
    }

    void doesNotTakeACommonNameForTheSubject()
    {
        const Answer answer = m_composer.answer({u"el musculo tibial"_s, {}, {}}, {});
        QVERIFY2(answer.subject != "Tejido muscular"_L1, qUtf8Printable(answer.lines.first()));
    }

    void comparesTheTypesOfAConcept()
    {
        const auto lines
            = m_composer.answer({u"los tipos de músculo, en qué se diferencian"_s, {}, {}}, {})
                  .lines;
        QVERIFY(lines.value(1).startsWith(u"- **Esquelético:**"_s));
        QVERIFY(lines.filter(u"Nombrá otro concepto"_s).isEmpty());
    }

    void answersWhyBeforeTheRest()
    {
        const auto answered
            = m_composer
                  .answer({u"¿por qué aparece la ortopnea en la insuficiencia cardíaca?"_s, {}, {}},
                          {})
                  .lines;
        const qsizetype answer = answered.indexOf(
            QRegularExpression(u"^- .*al acostarse vuelve más sangre al tórax.*"_s));
        QVERIFY(answer > 0 && answer < 4);
    }

    void comparesPointByPoint()
    {
        const auto lines
            = m_composer.answer({u"diferencia entre mitosis y meiosis"_s, {}, {}}, {}).lines;
        for (const QString &heading : {u"### Qué es"_s, u"### Lo que lo distingue"_s,
                                       u"### Cómo va, paso a paso"_s, u"### En la clínica"_s}) {
            const qsizetype at = lines.indexOf(heading);
            QVERIFY2(at > 0, qUtf8Printable(heading));
            QVERIFY(lines[at + 1].startsWith(u"- **Mitosis:** "_s));
            QVERIFY(lines[at + 2].startsWith(u"- **Meiosis:** "_s));
        }
    }

    void comparesWithWhatItDoesNotKnow()
    {
        const auto lines
            = m_composer.answer({u"Compará estos conceptos: neumonía y lupus"_s, {}, {}}, {}).lines;
        QCOMPARE(lines.first(), u"# Comparación: Neumonía"_s);
        QVERIFY(lines[1].startsWith(u"No tengo una nota de **lupus**"_s));
        QVERIFY(lines.filter(m_notes.conceptIn(u"neumonía"_s)->values[u"qué es"_s].first()).size()
                == 1);
        const auto alone
            = m_composer.answer({u"Compará estos conceptos: mitosis"_s, {}, {}}, {}).lines;
        QCOMPARE(alone.filter(u"Nombrá otro concepto"_s).size(), 1);
    }

    void asksAsManyAsWanted_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("isFewer");

        QTest::newRow("three") << u"haceme 3 preguntas de neumonía"_s << 3 << false;
        QTest::newRow("in words") << u"haceme dos preguntas de neumonía"_s << 2 << false;
        QTest::newRow("as many as usual") << u"haceme preguntas de neumonía"_s << 5 << false;
        QTest::newRow("of a subject") << u"haceme 12 preguntas de histología"_s << 12 << false;
        QTest::newRow("more than there are") << u"haceme 15 preguntas de neumonía"_s << 8 << true;
        QTest::newRow("more than is good") << u"haceme 500 preguntas de histología"_s << 20 << true;
    }
    void asksAsManyAsWanted()
    {
        QFETCH(QString, message);
        QFETCH(int, count);
        QFETCH(bool, isFewer);
        const auto lines = m_composer.answer({message, {}, {}}, {}).lines;
        static const QRegularExpression numbered(u"^\\d+\\. "_s);
        const qsizetype answers = lines.indexOf(u"## Respuestas"_s);
        QCOMPARE(lines.first(answers).filter(numbered).size(), count);
        QCOMPARE(lines.mid(answers).filter(numbered).size(), count);
        QCOMPARE(!lines.filter(u"Me pediste"_s).isEmpty(), isFewer);
        checkLines(lines);
    }

    void claimsNoSequenceWhereThereIsNone()
    {
        Conversation talk(m_composer);
        const auto lines = talk.ask(u"que es la anemia"_s);
        const auto point = talk.ask(u"no entendi el 2"_s);
        QVERIFY(point.first().startsWith(u"**El punto 2 decía:**"_s));
        const QString text = point.join(u'\n');
        QVERIFY(!text.contains(u"Antes venía"_s) && !text.contains(u"Después sigue"_s));
        QVERIFY(text.contains(m_notes.conceptIn(u"anemia"_s)->values[u"qué es"_s].first()));
    }

    void goesOnWithAConversation()
    {
        Conversation talk(m_composer);
        const StudyConcept &mitosis = *m_notes.conceptIn(u"mitosis"_s);
        const QStringList steps = mitosis.values[u"paso"_s];
        talk.ask(u"Explicame paso a paso: mitosis"_s);

        const auto point = talk.ask(u"No entendí el punto 3"_s);
        QCOMPARE(point.first(), u"**El punto 3 decía:** "_s + steps[2]);
        QVERIFY(point.contains(u"**Antes venía:** "_s + steps[1]));
        QVERIFY(point.contains(u"**Después sigue:** "_s + steps[3]));
        QCOMPARE(talk.subjects(), QStringList{u"Mitosis"_s});

        const auto brief = talk.ask(u"más corto"_s);
        QCOMPARE(brief.first(), mitosis.values[u"qué es"_s].first());
        QVERIFY(brief.size() <= 3);

        QCOMPARE(talk.ask(u"seguí"_s).first(), u"# Mitosis: un caso"_s);
        QVERIFY(talk.ask(u"seguí"_s).first().startsWith(u"Con eso ya viste toda mi nota"_s));
        QCOMPARE(talk.ask(u"no entendí nada"_s).first(), u"# Mitosis, de otra manera"_s);
        QCOMPARE(talk.ask(u"¿y en qué se diferencia de la meiosis?"_s).first(),
                 u"# Comparación: Mitosis y Meiosis"_s);
        QCOMPARE(talk.subjects().first(), u"Mitosis y Meiosis"_s);
    }

    void asksMoreWithoutRepeating()
    {
        Conversation talk(m_composer);
        QStringList asked;
        static const QRegularExpression numbered(u"^\\d+\\. "_s);
        for (const QString &message :
             {u"haceme 3 preguntas de neumonía"_s, u"2 preguntas más"_s, u"dame más preguntas"_s}) {
            const QStringList lines = talk.ask(message);
            for (QString line : lines.first(lines.indexOf(u"## Respuestas"_s)).filter(numbered))
                asked += line.remove(numbered);
        }
        QCOMPARE(asked.size(), QSet<QString>(asked.begin(), asked.end()).size());
        QCOMPARE(asked.size(), 8);
        QVERIFY(talk.ask(u"más preguntas"_s).first().startsWith(u"Ya te hice todas"_s));
    }

    void givesAnotherCase()
    {
        Conversation talk(m_composer);
        QCOMPARE(talk.ask(u"un caso de neumonía"_s).first(), u"# Caso clínico: Neumonía"_s);
        const auto another = talk.ask(u"otro caso"_s);
        QVERIFY(another.first() != u"# Caso clínico: Neumonía"_s);
        QVERIFY(another[1].startsWith(u"De **Neumonía** tengo un solo caso"_s));
    }

    void goesOnWithTheSideOfATopic()
    {
        Conversation talk(m_composer);
        talk.ask(u"¿qué es la neumonía?"_s);
        const auto lines = talk.ask(u"¿y los síntomas?"_s);
        QCOMPARE(lines.first(), u"# Neumonía"_s);
        QVERIFY(lines.contains(u"## Síntomas y signos"_s));
        QCOMPARE(talk.ask(u"haceme 2 preguntas"_s).first(), u"# Preguntas: Neumonía"_s);
    }

    void saysWhenThereIsNothingToGoOnWith()
    {
        for (const QString &message :
             {u"No entendí el punto 3"_s, u"más corto"_s, u"seguí"_s, u"otro ejemplo"_s,
              u"dame más preguntas"_s, u"¿y los síntomas?"_s, u"las respuestas"_s}) {
            const Answer answer = m_composer.answer({message, u"u"_s, {}}, {});
            QVERIFY2(answer.lines.size() <= 2, qUtf8Printable(message));
            QCOMPARE(answer.subject, QString());
        }
    }

    void mentionsWhatCameBeforeWhenAConversationBegins()
    {
        const UserContext days{{u"Histología"_s, u"Mitosis"_s}, {}};
        const QString mention = u"Venías estudiando **Histología** y **Mitosis**"_s;
        for (const QString &message :
             {u"Quiero estudiar Anatomía."_s, u"¿Qué es la nefrona?"_s, u"hola"_s}) {
            const auto lines = m_composer.answer({message, {}, {}}, days).lines;
            QCOMPARE(lines.filter(mention).size(), 1);
            checkLines(lines);
        }
        QVERIFY(m_composer.answer({u"¿qué es la mitosis?"_s, {}, {}}, {{u"Mitosis"_s}, {}})
                    .lines.filter(u"Venías"_s)
                    .isEmpty());
        const UserContext going{{u"Histología"_s}, {{u"histología"_s, u"# Histología"_s}}};
        QVERIFY(m_composer.answer({u"¿qué es la mitosis?"_s, {}, {}}, going)
                    .lines.filter(u"Venías"_s)
                    .isEmpty());
    }

    void caresForAFigureOfSpeech()
    {
        const Answer topic
            = m_composer.answer({u"me quiero matar, no entiendo la meiosis"_s, {}, {}}, {});
        QVERIFY(topic.lines.first().contains(u"135"_s));
        QCOMPARE(topic.lines[1], u"# Meiosis"_s);
        const Answer none = m_composer.answer({u"me quiero morir con este parcial"_s, {}, {}}, {});
        QVERIFY(none.lines.first().contains(u"135"_s));
        QCOMPARE(none.lines.size(), 2);
    }

    void describesAnImage()
    {
        const QByteArray png = QByteArray::fromBase64(
            "iVBORw0KGgoAAAANSUhEUgAAAAIAAAADCAIAAAA2iEnWAAAAEElEQVR4nGP4z8AARAwQCgAf7gP9i18U1AAA"
            "AABJRU5ErkJggg==");
        const AttachedImage image{png, u"image/png"_s, u"tórax **1**.png"_s};
        const auto lines = m_composer
                               .answer({u"Analizá esta imagen con finalidad educativa médica. "
                                        "Describí los hallazgos relevantes y explicalos de forma "
                                        "didáctica."_s,
                                        {},
                                        image},
                                       {})
                               .lines;
        QVERIFY(lines.contains(u"- **Nombre:** tórax 1.png"_s));
        QVERIFY(lines.contains(u"- **Tipo:** PNG (image/png)"_s));
        QVERIFY(lines.contains(u"- **Tamaño:** 2 × 3 píxeles"_s));
        QVERIFY(lines.contains(u"- **Peso:** %1 bytes"_s.arg(png.size())));
        QVERIFY(lines.filter(u"Declarada"_s).isEmpty());
        QVERIFY(lines.filter(u"## Tu consulta"_s).isEmpty());
        checkLines(lines);
    }

    void saysWhenAnImageIsNotWhatItClaims()
    {
        const auto linesFor = [this](const QByteArray &bytes, const QString &declared) {
            return m_composer
                .answer({u"¿Qué epitelio es?"_s, {}, AttachedImage{bytes, declared, {}}}, {})
                .lines;
        };
        const auto gif = linesFor("GIF89a\x02\x00\x01\x00", u"image/png"_s);
        QCOMPARE(gif.filter(u"**Declarada como:** image/png"_s).size(), 1);
        const auto text = linesFor("hola", u"image/png"_s);
        QCOMPARE(text.filter(u"no es una imagen que sepa reconocer"_s).size(), 1);
        QVERIFY(text.contains(u"- **Peso:** 4 bytes"_s));
        QVERIFY(text.contains(u"- **Nombre:** sin nombre"_s));
        QVERIFY(text.filter(u"píxeles"_s).isEmpty());
        QVERIFY(text.contains(u"## Tu consulta: Qué epitelio es"_s));
    }

    void keepsHostileTextInItsPlace()
    {
        const QString hostile
            = u"{anteriores}\n# Falso\u001b[2J **{tema}** "_s + QString(5000, u'x');
        for (const QString &prompt : {u"Explicame paso a paso: "_s, u""_s,
                                      u"Compará estos conceptos: "_s, u"Quiero estudiar "_s}) {
            const auto lines = m_composer.answer({prompt + hostile, {}, {}}, {}).lines;
            checkLines(lines);
            QVERIFY(lines.filter(QRegularExpression(u"^# Falso"_s)).isEmpty());
            for (const QString &line : lines)
                QVERIFY(line.size() < 2000);
        }
    }

private:
    // What any reader of a reply can count on.
    static void checkLines(const QStringList &lines)
    {
        static const QRegularExpression control(
            u"[\\x{0}-\\x{1f}\\x{7f}-\\x{9f}\\x{2028}\\x{2029}]"_s);
        QVERIFY(!lines.isEmpty());
        for (const QString &line : lines) {
            QVERIFY(!line.trimmed().isEmpty());
            QVERIFY2(!line.contains(control), qUtf8Printable(line));
            QVERIFY2(line.count("**"_L1) % 2 == 0, qUtf8Printable(line));
            QVERIFY2(!line.contains("****"_L1), qUtf8Printable(line));
        }
    }

    StudyNotes m_notes;
    AnswerComposer m_composer{m_notes};
};

QTEST_GUILESS_MAIN(AnswerComposerTest)
#include "AnswerComposerTest.moc"
