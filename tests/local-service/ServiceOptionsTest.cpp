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
        QCOMPARE(options->memoryFile, QString());
        QVERIFY(!options->model);
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

    void readsTheOptionsOfAModel()
    {
        const auto parsed = parseServiceOptions(
            u"--cert c --key k --memory m --model-images --model-url https://[::1]:9/a/v1/ "
            "--model b:7b --model-key-file f --most-per-minute 30"_s.split(u' '));
        const auto *options = std::get_if<ServiceOptions>(&parsed);
        QVERIFY(options && options->model);
        QCOMPARE(options->memoryFile, u"m"_s);
        QCOMPARE(options->model->keyFile, u"f"_s);
        QCOMPARE(options->model->images, ImageSupport::Jpeg);
        QCOMPARE(options->model->mostPerMinute, 30);
        const ModelService &service = options->model->service;
        QVERIFY(service.usesTls);
        QCOMPARE(service.host, u"::1"_s);
        QCOMPARE(service.port, 9);
        QCOMPARE(service.basePath, u"/a/v1"_s);
        QCOMPARE(service.modelName, u"b:7b"_s);
    }

    void hasDefaultsForAModel()
    {
        const auto parsed
            = parseServiceOptions(u"--cert c --key k --model-url http://h --model m"_s.split(u' '));
        const auto *options = std::get_if<ServiceOptions>(&parsed);
        QVERIFY(options && options->model);
        QCOMPARE(options->model->images, ImageSupport::None);
        QCOMPARE(options->model->mostPerMinute, 600);
        QVERIFY(!options->model->service.usesTls);
        QCOMPARE(options->model->service.port, 80);
        QCOMPARE(options->model->service.basePath, QString());
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
        const auto model = [](const char *name, const QString &options, const QString &part) {
            QTest::newRow(name) << u"--cert c --key k "_s + options << part;
        };
        model("no model", u"--model-url http://h"_s, u"--model"_s);
        model("no address", u"--model m"_s, u"--model-url"_s);
        model("images without an address", u"--model-images"_s, u"--model-url"_s);
        model("no HTTP", u"--model-url ftp://h --model m"_s, u"--model-url"_s);
        model("no host", u"--model-url http:///v1 --model m"_s, u"--model-url"_s);
        model("a password", u"--model-url http://a:b@h --model m"_s, u"--model-url"_s);
        model("a query", u"--model-url http://h?a=b --model m"_s, u"--model-url"_s);
        model("no questions", u"--model-url http://h --model m --most-per-minute 0"_s,
              u"--most-per-minute"_s);
        model("no number of questions", u"--model-url http://h --model m --most-per-minute x"_s,
              u"--most-per-minute"_s);
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
