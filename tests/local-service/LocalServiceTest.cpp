#include "HttpsExchange.h"
#include "RunningService.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <csignal>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

static const auto certificate = QStringLiteral(LOCAL_SERVICE_CERTIFICATE);
// Starting a process and a TLS handshake on a busy machine.
static constexpr int patience = 60'000;

// `text` with its apostrophes as quotes, so that JSON stays readable here.
static QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

static QByteArray chunked(const QByteArray &body)
{
    return "POST /api/chat HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n"
           "Transfer-Encoding: chunked\r\n\r\n"
        + QByteArray::number(body.size(), 16) + "\r\n" + body + "\r\n0\r\n\r\n";
}

static QByteArray plain(const QByteArray &requestLine, const QByteArray &headers = {})
{
    return requestLine + " HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n";
}

// A good question in a body of exactly `size` bytes.
static QByteArray questionOfSize(qsizetype size)
{
    const QByteArray question = json("{'message':'hola','userId':'u'}");
    return question + QByteArray(size - question.size(), ' ');
}

class LocalServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhereItListens()
    {
        const RunningService service(u"0"_s);
        static const QRegularExpression ready(
            u"^Escuchando en https://localhost:\\d+/api/chat\n$"_s);
        QVERIFY2(ready.match(service.readyLine()).hasMatch(), qPrintable(service.readyLine()));
        QVERIFY(service.port() > 0);
    }

    void answersWithTheRightStatus_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("text");

        constexpr qsizetype limit = qsizetype{20} * 1024 * 1024;
        const QByteArray good = questionOfSize(200);
        const QByteArray postText = "POST /api/chat HTTP/1.1\r\nHost: localhost\r\n"
                                    "Content-Type: text/plain\r\nContent-Length: 2\r\n\r\n{}";
        QTest::newRow("good") << HttpsExchange::post(good) << 200 << QByteArray("Aulora");
        QTest::newRow("good, in chunks") << chunked(good) << 200 << QByteArray("Aulora");
        QTest::newRow("with a query")
            << HttpsExchange::post(good).replace("/api/chat", "/api/chat?a=b") << 200
            << QByteArray("Aulora");
        QTest::newRow("with a range")
            << HttpsExchange::post(good, "Range: bytes=0-1\r\n") << 200 << QByteArray("Aulora");
        QTest::newRow("empty body") << HttpsExchange::post({}) << 400 << QByteArray("JSON");
        QTest::newRow("bad JSON") << HttpsExchange::post("{\"message\"") << 400
                                  << QByteArray("JSON");
        QTest::newRow("too deep") << HttpsExchange::post(QByteArray(100'000, '[')) << 400
                                  << QByteArray("niveles");
        QTest::newRow("missing key")
            << HttpsExchange::post(json("{'message':'m'}")) << 400 << QByteArray("userId");
        QTest::newRow("wrong type") << HttpsExchange::post(json("{'message':1,'userId':'u'}"))
                                    << 400 << QByteArray("message");
        QTest::newRow("bad Base64")
            << HttpsExchange::post(json("{'message':'m','userId':'u','imageBase64':'a'}")) << 400
            << QByteArray("Base64");
        QTest::newRow("not HTTP") << QByteArray("hola\r\n\r\n") << 400 << QByteArray("HTTP");
        QTest::newRow("wrong path") << plain("GET /") << 404 << QByteArray("/api/chat");
        QTest::newRow("wrong path, posted")
            << HttpsExchange::post(good).replace("/api/chat", "/api/otra") << 404
            << QByteArray("/api/chat");
        QTest::newRow("line end in the path")
            << plain("GET /a%0Ab") << 404 << QByteArray("/api/chat");
        for (const QByteArray method :
             {"GET", "PUT", "PATCH", "DELETE", "OPTIONS", "TRACE", "PROPFIND", "HOLA"}) {
            QTest::newRow(method + " instead of POST")
                << plain(method + " /api/chat", "Content-Length: 0\r\n") << 405
                << QByteArray("POST");
        }
        QTest::newRow("not said to be JSON") << postText << 415 << QByteArray("application/json");
        QTest::newRow("multipart")
            << QByteArray(postText).replace("text/plain", "multipart/form-data; boundary=x") << 415
            << QByteArray("application/json");
        QTest::newRow("compressed") << HttpsExchange::post("{}", "Content-Encoding: gzip\r\n")
                                    << 415 << QByteArray("comprimidos");
        QTest::newRow("as large as can be")
            << HttpsExchange::post(questionOfSize(limit)) << 200 << QByteArray("Aulora");
        QTest::newRow("too large")
            << HttpsExchange::post(questionOfSize(limit + 1)) << 413 << QByteArray("20 MiB");
        QTest::newRow("too large, in chunks")
            << chunked(questionOfSize(limit + 1)) << 413 << QByteArray("20 MiB");
        QTest::newRow("too large to wait for")
            << plain("POST /api/chat",
                     "Content-Type: application/json\r\nExpect: 100-continue\r\n"
                     "Content-Length: 30000000\r\n")
            << 413 << QByteArray("20 MiB");
        const QByteArray json = "Content-Type: application/json\r\n";
        QTest::newRow("too large to be told a reason in full")
            << plain("POST /api/chat", json + "Content-Length: 1000000000000\r\n") << 413
            << QByteArray("20 MiB");
        QTest::newRow("a length beyond measure")
            << plain("POST /api/chat", json + "Content-Length: 18446744073709551615\r\n") << 413
            << QByteArray("20 MiB");
        QTest::newRow("no length")
            << plain("POST /api/chat", json) + good << 400 << QByteArray("JSON");
        QTest::newRow("a negative length")
            << plain("POST /api/chat", json + "Content-Length: -1\r\n") + good << 400
            << QByteArray("mal formado");
        QTest::newRow("a length that is no number")
            << plain("POST /api/chat", json + "Content-Length: abc\r\n") + good << 400
            << QByteArray("mal formado");
        QTest::newRow("two lengths")
            << plain("POST /api/chat", json + "Content-Length: 2\r\nContent-Length: 200\r\n") + good
            << 400 << QByteArray("mal formado");
        QTest::newRow("compressed in transfer")
            << plain("POST /api/chat", json + "Transfer-Encoding: gzip, chunked\r\n") << 400
            << QByteArray("mal formado");
        QTest::newRow("a chunk size that is no number")
            << plain("POST /api/chat", json + "Transfer-Encoding: chunked\r\n") + "xyz\r\n"
            << 400 << QByteArray("mal formado");
        QTest::newRow("HTTP 2") << QByteArray("POST /api/chat HTTP/2\r\n\r\n") << 400
                                << QByteArray("HTTP");
        QTest::newRow("too long an address")
            << plain("GET /" + QByteArray(9000, 'a')) << 414 << QByteArray("larga");
    }
    void answersWithTheRightStatus()
    {
        QFETCH(QByteArray, request);
        QFETCH(int, status);
        QFETCH(QByteArray, text);
        if (!m_shared)
            m_shared = std::make_unique<RunningService>(u"0"_s);
        const auto exchange = m_shared->send(request);
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
        QCOMPARE(exchange->status(), status);
        QVERIFY2(exchange->body().contains(text), exchange->body().constData());
        QVERIFY(QString::fromUtf8(exchange->body()).toUtf8() == exchange->body());
        QCOMPARE(exchange->header("Content-Type"), QByteArray("text/plain; charset=utf-8"));
        QCOMPARE(exchange->header("Allow"), status == 405 ? QByteArray("POST") : QByteArray());
        if (status == 200) {
            QCOMPARE(exchange->header("Transfer-Encoding"), QByteArray("chunked"));
            QVERIFY(exchange->isWhole());
        }
    }

    void speaksTlsOnly()
    {
        const RunningService service(u"0"_s);
        QTcpSocket socket;
        socket.connectToHost(u"127.0.0.1"_s, service.port());
        socket.write(plain("GET /api/chat"));
        QByteArray received;
        connect(&socket, &QTcpSocket::readyRead, this, [&] { received += socket.readAll(); });
        QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::UnconnectedState, patience);
        QVERIFY(!received.startsWith("HTTP/"));
    }

    void streamsLineByLine()
    {
        constexpr int linesPerSecond = 20;
        const RunningService service(QString::number(linesPerSecond));
        // Compressed lines would wait for each other.
        const auto exchange
            = service.ask("Quiero estudiar Genética.", "Accept-Encoding: gzip, deflate, br\r\n");
        QTRY_VERIFY_WITH_TIMEOUT(!exchange->body().isEmpty(), patience);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!exchange->isWhole());
        QCOMPARE(exchange->header("Content-Encoding"), QByteArray());
        QVERIFY(exchange->body().startsWith("# Genética"));
        const auto linesAtFirst = exchange->body().count('\n');

        QTRY_VERIFY_WITH_TIMEOUT(exchange->body().count('\n') > linesAtFirst, patience);
        QVERIFY(!exchange->isWhole());
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isWhole(), patience);
        const auto linesLater = exchange->body().count('\n') - linesAtFirst;
        QVERIFY(linesLater > 5);
        QVERIFY(timer.elapsed() >= (linesLater - 1) * 1000 / linesPerSecond);
        QVERIFY(exchange->body().endsWith('\n'));
        QVERIFY(!exchange->body().contains("\n\n"));
    }

    void remembersBetweenConnections()
    {
        const RunningService service(u"0"_s);
        // The second question says nothing of what it is about.
        for (const char *message : {"¿Qué es la nefrona?", "más corto"}) {
            const auto exchange = service.ask(message);
            QTRY_VERIFY_WITH_TIMEOUT(exchange->isWhole(), patience);
            QVERIFY(exchange->body().contains("**nefrona**"));
        }
    }

    void serves64AtOnceAndEndsWhileStreaming()
    {
        // A line every two seconds: no answer is whole before the last client is served.
        RunningService service(u"0.5"_s);
        constexpr int clients = 64;
        std::vector<std::unique_ptr<HttpsExchange>> exchanges;
        exchanges.reserve(clients);
        for (int i = 0; i < clients; ++i)
            exchanges.push_back(service.ask("Quiero estudiar Genética."));
        for (const auto &exchange : exchanges)
            QTRY_VERIFY_WITH_TIMEOUT(exchange->body().startsWith("# Genética\n"), patience);
        for (const auto &exchange : exchanges)
            QVERIFY(!exchange->isClosed());

        QElapsedTimer timer;
        timer.start();
        service.signal(SIGTERM);
        QTRY_VERIFY_WITH_TIMEOUT(service.hasEnded(), patience);
        QVERIFY2(timer.elapsed() < 5000, "the end waited for the answers");
        QCOMPARE(service.outcome(), 0);
        for (const auto &exchange : exchanges) {
            QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
            QVERIFY2(!exchange->isWhole(), "a cut answer must not look whole");
        }
    }

    void endsWhileClientsSayNothing_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGTERM") << SIGTERM;
    }
    void endsWhileClientsSayNothing()
    {
        QFETCH(int, signal);
        RunningService service(u"0"_s);
        QTcpSocket silent;
        silent.connectToHost(u"127.0.0.1"_s, service.port());
        const auto stalled = service.send("POST /api/chat HTTP/1.1\r\n");
        QTRY_VERIFY_WITH_TIMEOUT(stalled->isEncrypted(), patience);
        QElapsedTimer timer;
        timer.start();
        service.signal(signal);
        QTRY_VERIFY_WITH_TIMEOUT(service.hasEnded(), patience);
        QVERIFY2(timer.elapsed() < 4000, "the end waited for silent clients");
        QCOMPARE(service.outcome(), 0);
    }

    void silentClientsDoNotHoldUpOthers()
    {
        const RunningService service(u"0"_s);
        const QByteArray withoutItsBody
            = plain("POST /api/chat", "Content-Type: application/json\r\nContent-Length: 100\r\n");
        std::vector<std::unique_ptr<QTcpSocket>> silent;
        std::vector<std::unique_ptr<HttpsExchange>> stalled;
        for (int i = 0; i < 80; ++i) {
            silent.push_back(std::make_unique<QTcpSocket>());
            silent.back()->connectToHost(u"127.0.0.1"_s, service.port());
            stalled.push_back(service.send(withoutItsBody));
        }
        for (const auto &socket : silent)
            QTRY_COMPARE_WITH_TIMEOUT(socket->state(), QAbstractSocket::ConnectedState, patience);

        const auto exchange = service.ask("hola");
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isWhole(), patience);
        QVERIFY2(silent.front()->state() == QAbstractSocket::ConnectedState,
                 "the answer waited for the silent clients");

        for (const auto &socket : silent) {
            QTRY_COMPARE_WITH_TIMEOUT(socket->state(), QAbstractSocket::UnconnectedState, patience);
        }
        for (const auto &ended : stalled)
            QTRY_VERIFY_WITH_TIMEOUT(ended->isClosed(), patience);
    }

    void holdsOnlySoManyLargeBodiesAtOnce()
    {
        const RunningService service(u"0"_s);
        const QByteArray whole = HttpsExchange::post(questionOfSize(qsizetype{20} * 1024 * 1024));
        // They lack their last byte, so that all of them are held until they are given up.
        std::vector<std::unique_ptr<HttpsExchange>> held;
        for (int i = 0; i < 7; ++i)
            held.push_back(service.send(whole.chopped(1)));
        // Whoever asks without an image finds room all the same.
        const auto small = service.ask("hola");
        QTRY_VERIFY_WITH_TIMEOUT(small->isWhole(), patience);
        qsizetype refused = 0;
        for (const auto &exchange : held) {
            QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
            QVERIFY(exchange->status() == 503 || exchange->status() == 400);
            refused += exchange->status() == 503 ? 1 : 0;
            QCOMPARE(exchange->body().contains("demasiadas"), exchange->status() == 503);
        }
        QVERIFY(refused > 0);
        QVERIFY(refused < qsizetype(held.size()));
        const auto later = service.send(whole);
        QTRY_VERIFY_WITH_TIMEOUT(later->isClosed(), patience);
        QCOMPARE(later->status(), 200);
    }

    void endsTheAnswerOfWhoLeaves()
    {
        RunningService service(u"5"_s);
        const auto exchange = service.ask("Quiero estudiar Genética.");
        QTRY_VERIFY_WITH_TIMEOUT(!exchange->body().isEmpty(), patience);
        exchange->abort();
        QTRY_VERIFY_WITH_TIMEOUT(service.log().contains(u"POST /api/chat 200 "_s), patience);
        static const QRegularExpression sent(u"200 (\\d+) B (\\d+) ms"_s);
        const auto match = sent.match(service.log());
        // The whole page has more than 3,000 bytes and takes some eight seconds.
        QVERIFY2(match.captured(1).toInt() < 2000, qPrintable(service.log()));
        QVERIFY2(match.captured(2).toInt() < 4000, qPrintable(service.log()));
    }

    void logsOneLineARequestWithoutItsText()
    {
        RunningService service(u"0"_s);
        const std::vector<QByteArray> requests{
            HttpsExchange::post(json("{'message':'Secreto uno','userId':'Secreto dos'}")),
            HttpsExchange::post(json("{'message':'Secreto")),
            plain("GET /nada%0Ahay%1B[2J?Secreto=1"),
            plain("GET /api/chat", "X-Secreto: 1\r\n"),
            "Secreto de uno HTTP/1.1\r\n\r\n",
            "\x1b[31mSecreto /Secreto HTTP/1.1\r\n\r\n",
        };
        for (const QByteArray &request : requests) {
            const auto exchange = service.send(request);
            QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
        }
        QTRY_COMPARE_WITH_TIMEOUT(service.log().count(u'\n'), qsizetype(requests.size()), patience);
        static const QRegularExpression line(
            u"^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z (POST|GET|-) (/\\S*|-) \\d{3} \\d+ B \\d+ ms$"_s);
        const QStringList lines = service.log().split(u'\n', Qt::SkipEmptyParts);
        const QStringList statuses{u" 200 "_s, u" 400 "_s, u" 404 "_s,
                                   u" 405 "_s, u" 400 "_s, u" 400 "_s};
        for (qsizetype i = 0; i < lines.size(); ++i) {
            QVERIFY2(line.match(lines[i]).hasMatch(), qPrintable(lines[i]));
            QVERIFY2(lines[i].contains(statuses[i]), qPrintable(lines[i]));
            QVERIFY(!lines[i].contains(u"Secreto"_s));
        }
    }

    void saysWhyItCannotStart_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("text");

        const auto key = QStringLiteral(LOCAL_SERVICE_KEY);
        QTest::newRow("no certificate") << QStringList{} << u"Uso: aulora-local-service"_s;
        QTest::newRow("no such certificate")
            << QStringList{u"--cert"_s, u"/nada.pem"_s, u"--key"_s, key} << u"certificado"_s;
        QTest::newRow("the key is no key")
            << QStringList{u"--cert"_s, certificate, u"--key"_s, certificate} << u"certificado"_s;
        QTest::newRow("no such address")
            << QStringList{u"--cert"_s, certificate, u"--key"_s, key, u"--host"_s, u"192.0.2.1"_s}
            << u"192.0.2.1"_s;
    }
    void saysWhyItCannotStart()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, text);
        QProcess process;
        process.start(QStringLiteral(LOCAL_SERVICE_PROGRAM), arguments);
        QVERIFY(process.waitForFinished(patience));
        QCOMPARE(process.exitCode(), 1);
        const QString said = QString::fromUtf8(process.readAllStandardError());
        QVERIFY2(said.contains(text), qPrintable(said));
    }

    void doesNotShareItsPort()
    {
        const RunningService service(u"0"_s);
        QProcess second;
        second.start(QStringLiteral(LOCAL_SERVICE_PROGRAM),
                     {u"--port"_s, QString::number(service.port()), u"--cert"_s, certificate,
                      u"--key"_s, QStringLiteral(LOCAL_SERVICE_KEY)});
        QVERIFY(second.waitForFinished(patience));
        QCOMPARE(second.exitCode(), 1);
    }

    void cleanupTestCase() { m_shared.reset(); }

private:
    std::unique_ptr<RunningService> m_shared;
};

QTEST_GUILESS_MAIN(LocalServiceTest)
#include "LocalServiceTest.moc"
