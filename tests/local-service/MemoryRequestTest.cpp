#include "MemoryRequest.h"

#include <QTest>

using namespace Qt::StringLiterals;

class MemoryRequestTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recognizesRequestsToForget_data()
    {
        QTest::addColumn<QString>("message");
        for (const auto &message :
             {u"Olvidá lo que sabés de mí"_s, u"olvida lo que sabes de mi"_s,
              u"Olvidá todo lo que sabés sobre mí, por favor."_s, u"Olvidate de mí"_s,
              u"¡Borrá mis datos!"_s, u"Por favor borrá todo lo que recordás de mí"_s,
              u"podés olvidar lo que sabes de mi?"_s, u"Quiero que olvides lo que sabés de mí"_s,
              u"Quiero que borres mis datos"_s, u"Eliminá todo lo que tenés guardado de mí"_s,
              u"Aulora, olvidate de todo lo que sabés de mí"_s, u"Borrá tu memoria sobre mí"_s,
              u"Olvidá lo que te conté de mí"_s, u"olvidá todo lo que te acordás de mí"_s})
            QTest::newRow(qUtf8Printable(message)) << message;
    }
    void recognizesRequestsToForget()
    {
        QFETCH(QString, message);
        QCOMPARE(memoryRequest(message), std::optional(MemoryRequest::Forget));
    }

    void recognizesRequestsToRecall_data()
    {
        QTest::addColumn<QString>("message");
        for (const auto &message :
             {u"¿Qué sabés de mí?"_s, u"que recordas de mi"_s, u"Decime qué sabés sobre mí"_s,
              u"¿Qué tenés guardado de mí?"_s})
            QTest::newRow(qUtf8Printable(message)) << message;
    }
    void recognizesRequestsToRecall()
    {
        QFETCH(QString, message);
        QCOMPARE(memoryRequest(message), std::optional(MemoryRequest::Recall));
    }

    void leavesEverythingElse_data()
    {
        QTest::addColumn<QString>("message");
        for (const auto &message :
             {u"Olvidá lo que dije de la mitosis"_s, u"¿Por qué olvidamos lo que sabemos?"_s,
              u"La memoria"_s, u"¿Qué es la memoria inmunológica?"_s, u"Borrá el punto 3"_s,
              u"¿Qué sabés de la mitosis?"_s, u"No olvides lo que sabés de mí"_s, u"olvidá"_s,
              u"¿Qué sabés de mielina?"_s, u"Explicame la amnesia: olvidá lo que sabés de mí"_s,
              QString(100'000, u'a')})
            QTest::newRow(qUtf8Printable(message.left(60))) << message;
    }
    void leavesEverythingElse()
    {
        QFETCH(QString, message);
        QCOMPARE(memoryRequest(message), std::nullopt);
    }

    void tellsWhatIsRemembered()
    {
        QCOMPARE(recalledAnswer({}), QStringList{u"No recuerdo nada de vos."_s});
        UserContext context;
        context.subjects = {u"Nefrona"_s, u"Mitosis"_s};
        context.toReview = {u"asa de Henle"_s};
        const QStringList lines = recalledAnswer(context);
        QVERIFY(lines.contains(u"- Estudiaste: Nefrona, Mitosis."_s));
        QVERIFY(lines.contains(u"- Te costó en la práctica: asa de Henle."_s));
    }
};

QTEST_APPLESS_MAIN(MemoryRequestTest)
#include "MemoryRequestTest.moc"
