#include "LineDecoder.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// All lines of `bytes`, given to the decoder `chunkSize` bytes at a time.
QStringList linesOf(const QByteArray &bytes, qsizetype chunkSize)
{
    LineDecoder decoder;
    QStringList lines;
    for (qsizetype i = 0; i < bytes.size(); i += chunkSize)
        lines += decoder.decode(
            QByteArrayView(bytes).sliced(i).first(std::min(chunkSize, bytes.size() - i)));
    if (const auto last = decoder.finish())
        lines += *last;
    return lines;
}

} // namespace

class LineDecoderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("lines");

        QTest::newRow("nothing") << ""_ba << QStringList();
        QTest::newRow("no line end") << "uno"_ba << QStringList{u"uno"_s};
        QTest::newRow("line feed") << "uno\ndos\n"_ba << QStringList{u"uno"_s, u"dos"_s};
        QTest::newRow("carriage return") << "uno\rdos\r"_ba << QStringList{u"uno"_s, u"dos"_s};
        QTest::newRow("both") << "uno\r\ndos\r\n"_ba << QStringList{u"uno"_s, u"dos"_s};
        QTest::newRow("both the other way round")
            << "uno\n\rdos"_ba << QStringList{u"uno"_s, u""_s, u"dos"_s};
        QTest::newRow("next line") << "uno\xC2\x85"
                                      "dos"_ba
                                   << QStringList{u"uno"_s, u"dos"_s};
        QTest::newRow("line separator") << "uno\xE2\x80\xA8"
                                           "dos"_ba
                                        << QStringList{u"uno"_s, u"dos"_s};
        QTest::newRow("paragraph separator") << "uno\xE2\x80\xA9"
                                                "dos"_ba
                                             << QStringList{u"uno"_s, u"dos"_s};
        QTest::newRow("no line ends: vertical tab, form feed, separators of information")
            << "a\vb\fc\x1C"
               "d\x1D"
               "e\x1E"_ba
            << QStringList{u"a\vb\fc\x1C"
                           "d\x1D"
                           "e\x1E"_s};
        QTest::newRow("empty lines")
            << "\n\na\n\r\n\r\rb"_ba
            << QStringList{u""_s, u""_s, u"a"_s, u""_s, u""_s, u""_s, u"b"_s};
        QTest::newRow("only line ends of every kind")
            << "\r\n\xC2\x85\xE2\x80\xA8\xE2\x80\xA9\r\r\n"_ba
            << QStringList{u""_s, u""_s, u""_s, u""_s, u""_s, u""_s};
        QTest::newRow("spaces stay") << "  a \n \n"_ba << QStringList{u"  a "_s, u" "_s};
        QTest::newRow("accents, neighbours of the line ends, other planes")
            << "¿Qué? ¡Ñandú! “cita” — …\n𝄞😀\n"_ba
            << QStringList{u"¿Qué? ¡Ñandú! “cita” — …"_s, u"𝄞😀"_s};
        QTest::newRow("neighbours in code")
            << "\u0084\u0086\u2027\u202A\u00A0\u202C"_ba
            << QStringList{u"\u0084\u0086\u2027\u202A\u00A0\u202C"_s};
        QTest::newRow("control characters and NUL")
            << QByteArray("a\0b\x01\x7F\n\0", 7) << QStringList{u"a\0b\x01\x7F"_s, u"\0"_s};
        QTest::newRow("byte order marks are text") << "\xEF\xBB\xBFuno\n\xEF\xBB\xBF\xEF\xBB\xBF"
                                                      "dos"_ba
                                                   << QStringList{u"\uFEFFuno"_s,
                                                                  u"\uFEFF\uFEFF"
                                                                  "dos"_s};
        QTest::newRow("a byte order mark after a bad byte") << "\xFF\xEF\xBB\xBF"
                                                               "a"_ba
                                                            << QStringList{u"\uFFFD\uFEFF"
                                                                           "a"_s};
        QTest::newRow("a real replacement character")
            << "a\uFFFD\n"_ba << QStringList{u"a\uFFFD"_s};
        QTest::newRow("greatest code point") << "\U0010FFFF"_ba << QStringList{u"\U0010FFFF"_s};
    }
    void decodes()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, lines);
        for (qsizetype chunkSize = 1; chunkSize <= bytes.size() + 1; ++chunkSize)
            QCOMPARE(linesOf(bytes, chunkSize), lines);
    }

    // The rows are those of the Unicode standard's chapter on conformance, and their kin.
    void replacesEachMaximalSubpart_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");

        QTest::newRow("overlong forms") << "\xC0\xAF\xE0\x80\xBF\xF0\x81\x82"
                                           "A"_ba
                                        << QString(8, u'\uFFFD') + u'A';
        QTest::newRow("surrogates") << "\xED\xA0\x80\xED\xBF\xBF\xED\xAF"
                                       "A"_ba
                                    << QString(8, u'\uFFFD') + u'A';
        QTest::newRow("beyond the last code point")
            << "\xF4\x91\x92\x93\xFF"
               "A\x80\xBF"
               "B"_ba
            << QString(5, u'\uFFFD') + u'A' + QString(2, u'\uFFFD') + u'B';
        QTest::newRow("truncated sequences") << "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF"
                                                "A"_ba
                                             << QString(4, u'\uFFFD') + u'A';
        QTest::newRow("cut at the end") << "a\xF0\x9F\x98"_ba << u"a\uFFFD"_s;
        QTest::newRow("cut at the end, two bytes") << "a\xC3"_ba << u"a\uFFFD"_s;
        QTest::newRow("cut in what could be a line end") << "a\xE2\x80"_ba << u"a\uFFFD"_s;
        QTest::newRow("cut in what could be next line") << "a\xC2"_ba << u"a\uFFFD"_s;
        QTest::newRow("bytes never used") << "\xC1\xF5\xFE"_ba << QString(3, u'\uFFFD');
        QTest::newRow("latin 1") << "Histolog\xED"
                                    "a"_ba
                                 << u"Histolog\uFFFD"
                                    "a"_s;
        QTest::newRow("good characters around") << "é\xFFñ\x80😀"_ba << u"é\uFFFDñ\uFFFD😀"_s;
    }
    void replacesEachMaximalSubpart()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        for (qsizetype chunkSize = 1; chunkSize <= bytes.size(); ++chunkSize)
            QCOMPARE(linesOf(bytes, chunkSize), QStringList{text});
    }

    void lineEndsSurviveWhatIsCutBeforeThem_data()
    {
        QTest::addColumn<QByteArray>("lineEnd");
        QTest::newRow("LF") << "\n"_ba;
        QTest::newRow("CR") << "\r"_ba;
        QTest::newRow("CR LF") << "\r\n"_ba;
        QTest::newRow("NEL") << "\xC2\x85"_ba;
        QTest::newRow("LS") << "\xE2\x80\xA8"_ba;
        QTest::newRow("PS") << "\xE2\x80\xA9"_ba;
    }
    void lineEndsSurviveWhatIsCutBeforeThem()
    {
        QFETCH(QByteArray, lineEnd);
        for (const QByteArray &cut : {"\xC2"_ba, "\xE2\x80"_ba, "\xF0\x9F\x98"_ba, "\x80"_ba}) {
            const QByteArray bytes = cut + lineEnd + 'b' + lineEnd;
            for (qsizetype chunkSize = 1; chunkSize <= bytes.size(); ++chunkSize)
                QCOMPARE(linesOf(bytes, chunkSize), (QStringList{u"\uFFFD"_s, u"b"_s}));
        }
    }

    void tellsALineAsSoonAsItEnds()
    {
        LineDecoder decoder;
        QCOMPARE(decoder.decode("uno"), QStringList());
        QCOMPARE(decoder.decode("\r"), QStringList{u"uno"_s});
        QCOMPARE(decoder.decode(""), QStringList());
        QCOMPARE(decoder.decode("\n"), QStringList());
        QCOMPARE(decoder.decode("\n"), QStringList{u""_s});
        QCOMPARE(decoder.decode("dos\xE2\x80"), QStringList());
        QCOMPARE(decoder.decode("\xA8"), QStringList{u"dos"_s});
        QVERIFY(!decoder.finish());
    }

    void finishResetsIt()
    {
        LineDecoder decoder;
        QCOMPARE(decoder.decode("uno\r"), QStringList{u"uno"_s});
        QVERIFY(!decoder.finish());
        QCOMPARE(decoder.decode("\ndos"), QStringList{u""_s});
        QCOMPARE(decoder.finish(), u"dos"_s);
        QVERIFY(!decoder.finish());
    }

    void anyBytesInAnyChunksGiveTheSameLines()
    {
        const QByteArray alphabet = "a\n\r\xC2\x85\xE2\x80\xA8\xA9\xF0\x9F\x98\xED\xEF\xBB\xBF"_ba;
        quint32 random = 1;
        for (int round = 0; round < 300; ++round) {
            QByteArray bytes;
            for (int i = 0; i < 60; ++i) {
                random = random * 1664525 + 1013904223;
                bytes += alphabet.at((random >> 16) % alphabet.size());
            }
            const QStringList whole = linesOf(bytes, bytes.size());
            for (qsizetype chunkSize : {1, 2, 3, 7, 31})
                QCOMPARE(linesOf(bytes, chunkSize), whole);
        }
    }

    void aLongLineInSingleBytesIsNotLookedAtAgain()
    {
        LineDecoder decoder;
        constexpr qsizetype length = 4'000'000;
        for (qsizetype i = 0; i < length; ++i)
            QVERIFY(decoder.decode("a").isEmpty());
        QCOMPARE(decoder.decode("\n").constFirst().size(), length);
    }
};

QTEST_APPLESS_MAIN(LineDecoderTest)
#include "LineDecoderTest.moc"
