#include "NoteForm.h"

#include <QTest>

using namespace Qt::StringLiterals;

class NoteFormTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fills_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("lines");

        QTest::newRow("no names") << u"Hola"_s << QStringList{u"Hola"_s};
        QTest::newRow("one value") << u"a {uno} b"_s << QStringList{u"a 1 b"_s};
        QTest::newRow("empty value") << u"{vacío}a"_s << QStringList{u"a"_s};
        QTest::newRow("no value") << u"a {nadie} b"_s << QStringList{};
        QTest::newRow("one of two has no value") << u"{uno} {nadie}"_s << QStringList{};
        QTest::newRow("several values")
            << u"- {tres}"_s << QStringList{u"- x"_s, u"- y"_s, u"- z"_s};
        QTest::newRow("counted") << u"{n}. {tres}"_s
                                 << QStringList{u"1. x"_s, u"2. y"_s, u"3. z"_s};
        QTest::newRow("one value repeated")
            << u"{uno}{tres}"_s << QStringList{u"1x"_s, u"1y"_s, u"1z"_s};
        QTest::newRow("same name twice") << u"{uno}{uno}"_s << QStringList{u"11"_s};
        QTest::newRow("a value is not a form") << u"{llaves}"_s << QStringList{u"{uno} {n}"_s};
        QTest::newRow("no closing brace") << u"{uno} {abc"_s << QStringList{u"1 {abc"_s};
        QTest::newRow("no opening brace") << u"a} {uno}"_s << QStringList{u"a} 1"_s};
    }
    void fills()
    {
        QFETCH(QString, line);
        QFETCH(QStringList, lines);
        const NoteValues values{{u"uno"_s, {u"1"_s}},
                                {u"tres"_s, {u"x"_s, u"y"_s, u"z"_s}},
                                {u"vacío"_s, {u""_s}},
                                {u"llaves"_s, {u"{uno} {n}"_s}}};
        QCOMPARE(fillForm({line}, values), lines);
    }

    void leavesOutBareHeadings()
    {
        const NoteValues values{{u"uno"_s, {u"1"_s}}};
        QCOMPARE(fillForm({u"# Título"_s, u"## A"_s, u"{nadie}"_s, u"## B"_s, u"{uno}"_s, u"## C"_s,
                           u"### D"_s, u"{uno}"_s, u"## E"_s},
                          values),
                 (QStringList{u"# Título"_s, u"## B"_s, u"1"_s, u"## C"_s, u"### D"_s, u"1"_s}));
        QCOMPARE(fillForm({u"# Título"_s, u"{nadie}"_s}, values), QStringList{u"# Título"_s});
    }

    void leavesOutAnIntroductionToNothing()
    {
        const QStringList form{u"Ayuda saber:"_s, u"- {uno}"_s, u"Palabras:"_s, u"- {nadie}"_s};
        QCOMPARE(fillForm(form, {{u"uno"_s, {u"1"_s}}}),
                 (QStringList{u"Ayuda saber:"_s, u"- 1"_s}));
    }

    void listsNames()
    {
        QCOMPARE(formNames({u"{n}. {a}"_s, u"{b c} {a}"_s, u"nada"_s}),
                 (QStringList{u"a"_s, u"b c"_s}));
    }
};

QTEST_APPLESS_MAIN(NoteFormTest)
#include "NoteFormTest.moc"
