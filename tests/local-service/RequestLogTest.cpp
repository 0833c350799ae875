#include "RequestLog.h"

#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class RequestLogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formats_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("text");

        QTest::newRow("plain") << u"POST"_s << u"/api/chat"_s
                               << QByteArray("POST /api/chat 200 1234 B 56 ms");
        QTest::newRow("unreadable request") << u""_s << u""_s << QByteArray("- - 200 1234 B 56 ms");
        QTest::newRow("control characters")
            << u"GET"_s << u"/a\n\u001b[2J é"_s
            << QByteArray("GET /a%0A%1B%5B2J%20%C3%A9 200 1234 B 56 ms");
        for (const QString &method : {u"\u001b[31mGET"_s, u"Secreto"_s, u"{\"message\":\"a\"}"_s,
                                      u"GET\n"_s, QString(21, u'A'), u"É"_s}) {
            QTest::newRow(qPrintable(u"no method: "_s + method.toHtmlEscaped()))
                << method << u"/"_s << QByteArray("- / 200 1234 B 56 ms");
        }
        QTest::newRow("longest method")
            << QString(20, u'A') << u"/"_s << QByteArray(20, 'A') + " / 200 1234 B 56 ms";
        QTest::newRow("percent") << u"GET"_s << u"/%0A"_s
                                 << QByteArray("GET /%250A 200 1234 B 56 ms");
        QTest::newRow("long") << u"GET"_s << QString(5000, u'a')
                              << "GET " + QByteArray(120, 'a') + " 200 1234 B 56 ms";
    }
    void formats()
    {
        QFETCH(QString, method);
        QFETCH(QString, path);
        QFETCH(QByteArray, text);
        QCOMPARE(requestLogText({method, path, 200, 1234, 56ms, {}}), text);
    }

    void writesOneLineWithTheTime()
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        std::FILE *output = std::fopen(qPrintable(file.fileName()), "w");
        QVERIFY(output);
        RequestLog log(output);
        log.write({u"POST"_s, u"/api/chat"_s, 415, 20, 3ms, {}});
        std::fclose(output);
        static const QRegularExpression line(
            u"^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z POST /api/chat 415 20 B 3 ms\n$"_s);
        const QString written = QString::fromUtf8(file.readAll());
        QVERIFY2(line.match(written).hasMatch(), qPrintable(written));
    }
};

QTEST_APPLESS_MAIN(RequestLogTest)
#include "RequestLogTest.moc"
