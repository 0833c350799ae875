#include "ServiceOptions.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ServiceOptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasDefaults()
    {
        const auto parsed = parseServiceOptions({u"--cert"_s, u"c.pem"_s, u"--key"_s, u"k.pem"_s});
        const auto *options = std::get_if<ServiceOptions>(&parsed);
        QVERIFY(options);
        QCOMPARE(options->host, u"127.0.0.1"_s);
        QCOMPARE(options->port, quint16{8443});
        QCOMPARE(options->linesPerSecond, 20.0);
        QCOMPARE(options->certificateFile, u"c.pem"_s);
        QCOMPARE(options->keyFile, u"k.pem"_s);
    }

    void readsEveryOption()
    {
        const auto parsed
            = parseServiceOptions(u"--port 0 --rate 0.5 --host ::1 --cert c --key k"_s.split(u' '));
        const auto *options = std::get_if<ServiceOptions>(&parsed);
        QVERIFY(options);
        QCOMPARE(options->host, u"::1"_s);
        QCOMPARE(options->port, quint16{0});
        QCOMPARE(options->linesPerSecond, 0.5);
    }

    void refuses_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("part");

        QTest::newRow("nothing") << u"--port 1"_s << u"--cert"_s;
        QTest::newRow("no key") << u"--cert c"_s << u"--key"_s;
        QTest::newRow("no value") << u"--cert c --key"_s << u"Falta el valor de --key."_s;
        QTest::newRow("unknown") << u"--cert c --key k --puerto 1"_s << u"--puerto"_s;
        QTest::newRow("port is text") << u"--cert c --key k --port x"_s << u"--port"_s;
        QTest::newRow("port too high") << u"--cert c --key k --port 65536"_s << u"--port"_s;
        QTest::newRow("port negative") << u"--cert c --key k --port -1"_s << u"--port"_s;
        QTest::newRow("rate is text") << u"--cert c --key k --rate x"_s << u"--rate"_s;
        QTest::newRow("rate negative") << u"--cert c --key k --rate -1"_s << u"--rate"_s;
        QTest::newRow("rate infinite") << u"--cert c --key k --rate inf"_s << u"--rate"_s;
        QTest::newRow("rate not a number") << u"--cert c --key k --rate nan"_s << u"--rate"_s;
    }
    void refuses()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, part);
        const auto parsed = parseServiceOptions(arguments.split(u' '));
        const auto *problem = std::get_if<QString>(&parsed);
        QVERIFY(problem);
        QVERIFY2(problem->contains(part), qPrintable(*problem));
    }
};

QTEST_APPLESS_MAIN(ServiceOptionsTest)
#include "ServiceOptionsTest.moc"
