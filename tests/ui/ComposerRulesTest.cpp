#include "ComposerRules.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

using namespace Qt::StringLiterals;

class ComposerRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void canSend_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("hasImage");
        QTest::addColumn<bool>("imageAnalysisEnabled");
        QTest::addColumn<bool>("isLoading");
        QTest::addColumn<bool>("expected");

        const QString text = u"¿Qué es la mitosis?"_s;
        QTest::newRow("text") << text << false << true << false << true;
        QTest::newRow("text, analysis off") << text << false << false << false << true;
        QTest::newRow("text while loading") << text << false << true << true << false;
        QTest::newRow("nothing") << QString() << false << true << false << false;
        QTest::newRow("blanks") << u"   "_s << false << true << false << false;
        QTest::newRow("line feeds") << u"\n\r\n\n"_s << false << true << false << false;
        QTest::newRow("tab") << u"\t"_s << false << true << false << false;
        QTest::newRow("no-break space") << u"\u00A0"_s << false << true << false << false;
        QTest::newRow("next line") << u"\u0085"_s << false << true << false << false;
        QTest::newRow("line and paragraph separators")
            << u"\u2028\u2029"_s << false << true << false << false;
        QTest::newRow("ideographic space") << u"\u3000"_s << false << true << false << false;
        QTest::newRow("one letter among blanks") << u" \n a \n"_s << false << true << false << true;
        QTest::newRow("image alone") << QString() << true << true << false << true;
        QTest::newRow("image and blanks") << u" \n"_s << true << true << false << true;
        QTest::newRow("image while loading") << QString() << true << true << true << false;
        QTest::newRow("image, analysis off") << QString() << true << false << false << false;
        QTest::newRow("image and text, analysis off") << text << true << false << false << true;
    }
    void canSend()
    {
        QFETCH(QString, text);
        QFETCH(bool, hasImage);
        QFETCH(bool, imageAnalysisEnabled);
        QFETCH(bool, isLoading);
        QTEST(ComposerRules::canSend(text, hasImage, imageAnalysisEnabled, isLoading), "expected");
    }

    void tellsBulkyTexts_data()
    {
        using enum ComposerRules::TextBulk;
        QTest::addColumn<QString>("text");
        QTest::addColumn<ComposerRules::TextBulk>("expected");

        const QString stretch(4000, u'x');
        QTest::newRow("nothing") << QString() << Ordinary;
        QTest::newRow("a question") << u"¿Qué es la mitosis?"_s << Ordinary;
        QTest::newRow("longest ordinary text") << u"ab cd "_s.repeated(3333) + u"ab"_s << Ordinary;
        QTest::newRow("one more") << u"ab cd "_s.repeated(3333) + u"abc"_s << Long;
        QTest::newRow("longest stretch that wraps at words") << stretch << Ordinary;
        QTest::newRow("one more without a blank") << stretch + u'x' << Unbreakable;
        QTest::newRow("in the middle") << u"a "_s + stretch + u"x b"_s << Unbreakable;
        QTest::newRow("broken by a blank") << stretch + u' ' + stretch << Ordinary;
        QTest::newRow("broken by a line end") << stretch + u'\n' + stretch << Ordinary;
    }
    void tellsBulkyTexts()
    {
        QFETCH(QString, text);
        QTEST(ComposerRules::textBulk(text), "expected");

        QGuiApplication::clipboard()->setText(text);
        QTEST(ComposerRules::clipboardTextBulk(ComposerRules::PasteSource::Clipboard), "expected");
    }
};

QTEST_MAIN(ComposerRulesTest)
#include "ComposerRulesTest.moc"
