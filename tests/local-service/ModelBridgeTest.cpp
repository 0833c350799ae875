#include "RunningService.h"
#include "ScriptedModel.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

static constexpr int patience = 60'000;
static const QByteArray done = "data: [DONE]\n\n";

static QStringList optionsFor(quint16 port)
{
    return {u"--model-url"_s, u"http://127.0.0.1:%1/v1"_s.arg(port), u"--model"_s, u"prueba"_s};
}

static ModelScript answering(const QByteArray &text)
{
    return ModelScript::whole(ModelScript::event(text) + done);
}

static ModelScript staying(const QByteArray &bytes)
{
    ModelScript script;
    script.steps = {{bytes, {}}};
    script.end = ModelScript::End::Stay;
    return script;
}

// The body of a question with `image`.
static QByteArray questionWith(const QByteArray &image)
{
    return QJsonDocument(QJsonObject{{u"message"_s, u"¿Qué es?"_s},
                                     {u"userId"_s, u"u"_s},
                                     {u"imageBase64"_s, QString::fromLatin1(image.toBase64())}})
        .toJson();
}

// The messages of request `index`.
static QJsonArray messages(const ScriptedModel &model, qsizetype index)
{
    const QByteArray request = model.requests().value(index);
    const QByteArray body = request.sliced(qMax<qsizetype>(0, request.indexOf("\r\n\r\n")));
    return QJsonDocument::fromJson(body)["messages"_L1].toArray();
}

static QString content(const QJsonValue &message)
{
    return message["content"_L1].toString();
}

Q_DECLARE_METATYPE(ModelScript)

class ModelBridgeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesTheFirstLineBeforeTheModelsLast()
    {
        const ScriptedModel model(
            staying(ModelScript::head() + ModelScript::event("# Uno\\n\\n* d\\n* t")));
        RunningService service(u"20"_s, optionsFor(model.port()));
        const auto exchange = service.ask("la mitosis", "Accept-Encoding: gzip\r\n");
        QTRY_COMPARE_WITH_TIMEOUT(exchange->body(), QByteArray("# Uno\n- d\n"), patience);
        QCOMPARE(exchange->status(), 200);
        QCOMPARE(exchange->header("Content-Type"), QByteArray("text/plain; charset=utf-8"));
        QVERIFY(!exchange->isClosed());
    }

    void tellsTheModelWhatItNeedsToKnow()
    {
        const ScriptedModel model(answering("Es **así**.\\n\\n[[repasar: la profase]]"));
        RunningService service(u"0"_s, optionsFor(model.port()));
        for (const char *message : {"¿Qué es la mitosis?", "¿y después?"}) {
            const auto exchange = service.ask(message);
            QTRY_VERIFY_WITH_TIMEOUT(exchange->isWhole(), patience);
            QCOMPARE(exchange->body(), QByteArray("Es **así**.\n"));
        }
        const QJsonArray first = messages(model, 0);
        QCOMPARE(first.size(), 2);
        const QString instructions = content(first[0]);
        QVERIFY(instructions.contains(u"español rioplatense"_s));
        QVERIFY(instructions.contains(u"Apunte de referencia «Mitosis»"_s));
        QVERIFY(!instructions.contains(u"Estudió antes"_s));
        QCOMPARE(content(first[1]), u"¿Qué es la mitosis?"_s);

        const QJsonArray second = messages(model, 1);
        QCOMPARE(second.size(), 4);
        QVERIFY(content(second[0]).contains(u"Estudió antes: Mitosis"_s));
        QVERIFY(content(second[0]).contains(u"Le costó en la práctica: la profase"_s));
        QVERIFY(!content(second[0]).contains(u"Apunte de referencia"_s));
        QCOMPARE(content(second[1]), u"¿Qué es la mitosis?"_s);
        QCOMPARE(content(second[2]), u"Es **así**."_s);
        QCOMPARE(content(second[3]), u"¿y después?"_s);
        QVERIFY(!model.requests().first().contains("aulora-prueba"));
    }

    void saysWhyThereIsNoAnswer_data()
    {
        QTest::addColumn<ModelScript>("script");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("logged");

        const auto row = [](const char *name, const QByteArray &bytes, int status,
                            const QString &reason, const QString &logged) {
            ModelScript script;
            script.steps = {{bytes, {}}};
            QTest::newRow(name) << script << status << reason << logged;
        };
        const QByteArray secret = "Content-Length: 7\r\n";
        row("401", ModelScript::head(401, secret) + "Secreto", 502, u"clave"_s, u"401"_s);
        row("404", ModelScript::head(404, secret) + "Secreto", 502, u"no existe"_s, u"404"_s);
        row("429", ModelScript::head(429, secret) + "Secreto", 502, u"demasiadas"_s, u"429"_s);
        row("500", ModelScript::head(500, secret) + "Secreto", 502, u"falló"_s,
            u"otro estado que 200"_s);
        row("504", ModelScript::head(504, secret) + "Secreto", 504, u"tardó"_s, u"callado"_s);
        row("an error with status 200", ModelScript::head() + "{\"error\":\"Secreto\"}", 502,
            u"falló"_s, u"informó un error"_s);
        row("closed without a word", {}, 502, u"falló"_s, u"cortó la conexión"_s);
        row("nothing said", ModelScript::head() + done, 502, u"falló"_s, u"no respondió nada"_s);
    }
    void saysWhyThereIsNoAnswer()
    {
        QFETCH(ModelScript, script);
        QFETCH(int, status);
        QFETCH(QString, reason);
        QFETCH(QString, logged);
        const ScriptedModel model(script);
        RunningService service(u"0"_s, optionsFor(model.port()));
        const auto exchange = service.ask("Secreto");
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
        QCOMPARE(exchange->status(), status);
        QVERIFY2(exchange->body().contains(reason.toUtf8()), exchange->body().constData());
        QTRY_VERIFY_WITH_TIMEOUT(service.log().contains(logged), patience);
        QVERIFY(!service.log().contains(u"Secreto"_s));
        QVERIFY(!service.log().contains(u"aulora-prueba"_s));
    }

    void saysThatNobodyListens()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const quint16 port = server.serverPort();
        server.close();
        RunningService service(u"0"_s, optionsFor(port));
        const auto exchange = service.ask("hola");
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
        QCOMPARE(exchange->status(), 502);
        QTRY_VERIFY_WITH_TIMEOUT(service.log().contains(u"no acepta conexiones"_s), patience);
    }

    void endsAnAnswerThatBreaksOffWithoutItsLastChunk()
    {
        ModelScript script;
        script.steps = {{ModelScript::head() + ModelScript::event("uno\\n\\ndos"), {}}};
        const ScriptedModel model(script);
        RunningService service(u"0"_s, optionsFor(model.port()));
        const auto exchange = service.ask("hola");
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
        QCOMPARE(exchange->status(), 200);
        QCOMPARE(exchange->body(), QByteArray("uno\n"));
        QVERIFY(!exchange->isWhole());
        QTRY_VERIFY_WITH_TIMEOUT(service.log().contains(u"cortó la conexión"_s), patience);
    }

    void showsThatItWaitsWhileTheModelThinks()
    {
        ModelScript script;
        script.steps = {{ModelScript::head() + ModelScript::event("<think>"), 33s}};
        const ScriptedModel model(script);
        RunningService service(u"0"_s, optionsFor(model.port()));
        QElapsedTimer timer;
        timer.start();
        const auto exchange = service.ask("hola");
        QTRY_COMPARE_WITH_TIMEOUT(exchange->body(), QByteArray("\n"), patience);
        QVERIFY2(timer.elapsed() > 14'000 && timer.elapsed() < 18'000,
                 qPrintable(QString::number(timer.elapsed())));
        QTRY_COMPARE_WITH_TIMEOUT(exchange->body(), QByteArray("\n\n"), patience);
        QVERIFY2(timer.elapsed() > 29'000, qPrintable(QString::number(timer.elapsed())));
        // Something was sent: from now on a fault is told by the missing end alone.
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
        QCOMPARE(exchange->status(), 200);
        QVERIFY(!exchange->isWhole());
    }

    void endsTheModelsWorkWhenTheClientLeaves_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("before the head") << QByteArray();
        QTest::newRow("while it thinks") << ModelScript::head() + ModelScript::event("<think>");
        QTest::newRow("in the middle") << ModelScript::head() + ModelScript::event("uno\\n\\ndos");
    }
    void endsTheModelsWorkWhenTheClientLeaves()
    {
        QFETCH(QByteArray, bytes);
        const ScriptedModel model(staying(bytes));
        RunningService service(u"0"_s, optionsFor(model.port()));
        const auto exchange = service.ask("hola");
        QTRY_COMPARE_WITH_TIMEOUT(model.requests().size(), 1, patience);
        if (bytes.contains("uno"))
            QTRY_COMPARE_WITH_TIMEOUT(exchange->body(), QByteArray("uno\n"), patience);
        QCOMPARE(model.leavings(), 0);
        QElapsedTimer timer;
        timer.start();
        exchange->abort();
        QTRY_COMPARE_WITH_TIMEOUT(model.leavings(), 1, patience);
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
        QTRY_VERIFY_WITH_TIMEOUT(service.log().contains(u"nadie espera"_s), patience);
    }

    void endsTheModelsWorkWhenTheServiceEnds()
    {
        const ScriptedModel model(staying(ModelScript::head()));
        RunningService service(u"0"_s, optionsFor(model.port()));
        const auto exchange = service.ask("hola");
        QTRY_COMPARE_WITH_TIMEOUT(model.requests().size(), 1, patience);
        service.signal(SIGTERM);
        QTRY_VERIFY_WITH_TIMEOUT(service.hasEnded(), patience);
        QCOMPARE(service.outcome(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(model.leavings(), 1, patience);
    }

    void asksForAShorterQuestion()
    {
        const ScriptedModel model(answering("uno"));
        const RunningService service(u"0"_s, optionsFor(model.port()));
        const auto exchange = service.ask(QByteArray(100'000, 'x'));
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isWhole(), patience);
        QVERIFY(exchange->body().contains("demasiado largo"));
        QVERIFY(model.requests().isEmpty());
    }

    void caresBeforeTheModelSaysAnything()
    {
        const QByteArray message = "me quiero morir con este parcial, explicame la mitosis";
        const ScriptedModel silent(staying({}));
        RunningService waiting(u"0"_s, optionsFor(silent.port()));
        const auto early = waiting.ask(message);
        QTRY_VERIFY_WITH_TIMEOUT(early->body().contains("135"), patience);
        QVERIFY(!early->isClosed());

        const ScriptedModel model(answering("Respira."));
        RunningService service(
            u"0"_s, optionsFor(model.port()) + QStringList{u"--most-per-minute"_s, u"1"_s});
        const auto exchange = service.ask(message);
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isWhole(), patience);
        QCOMPARE(exchange->body().count('\n'), 2);
        QVERIFY(exchange->body().endsWith("\nRespira.\n"));
        // Nor does it need the model.
        const auto beyond = service.ask(message);
        QTRY_VERIFY_WITH_TIMEOUT(beyond->isWhole(), patience);
        QVERIFY(beyond->body().contains("135"));
        QVERIFY(beyond->body().contains("demasiadas preguntas"));
        QCOMPARE(model.requests().size(), 1);
    }

    void limitsWhatTheModelIsAsked()
    {
        const ScriptedModel model(answering("uno"));
        RunningService service(
            u"0"_s, optionsFor(model.port()) + QStringList{u"--most-per-minute"_s, u"2"_s});
        for (const int status : {200, 200, 429}) {
            const auto exchange = service.ask("hola");
            QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
            QCOMPARE(exchange->status(), status);
        }
        QCOMPARE(model.requests().size(), 2);
        // What needs no model has no limit.
        const auto exchange = service.ask("olvidá lo que sabés de mí");
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isWhole(), patience);
    }

    void remembersWhatItAcknowledgedThoughItIsKilled()
    {
        const QTemporaryDir folder;
        const QStringList memory{u"--memory"_s, folder.filePath(u"memoria"_s)};
        const ScriptedModel model(answering("uno"));
        {
            RunningService service(u"0"_s, optionsFor(model.port()) + memory);
            const auto exchange = service.ask("la nefrona");
            QTRY_VERIFY_WITH_TIMEOUT(exchange->isWhole(), patience);
            service.signal(SIGKILL);
            QTRY_VERIFY_WITH_TIMEOUT(service.hasEnded(), patience);
        }
        RunningService service(u"0"_s, optionsFor(model.port()) + memory);
        const auto second = service.ask("hola");
        QTRY_VERIFY_WITH_TIMEOUT(second->isWhole(), patience);
        QVERIFY(content(messages(model, 1)[0]).contains(u"Estudió antes: Nefrona"_s));
        QCOMPARE(messages(model, 1).size(), 4);

        const auto recalling = service.ask("¿Qué sabés de mí?");
        QTRY_VERIFY_WITH_TIMEOUT(recalling->isWhole(), patience);
        QVERIFY(recalling->body().contains("Nefrona"));
        const auto forgetting = service.ask("Olvidá lo que sabés de mí");
        QTRY_VERIFY_WITH_TIMEOUT(forgetting->isWhole(), patience);
        QVERIFY(forgetting->body().contains("borré"));
        const auto third = service.ask("hola");
        QTRY_VERIFY_WITH_TIMEOUT(third->isWhole(), patience);
        QCOMPARE(model.requests().size(), 3);
        QCOMPARE(messages(model, 2).size(), 2);
        QVERIFY(!content(messages(model, 2)[0]).contains(u"Nefrona"_s));
        QVERIFY(!service.log().contains(u"aulora-prueba"_s));
    }

    void showsImagesToAModelThatSeesThem()
    {
        QImage image(1600, 20, QImage::Format_RGB32);
        image.fill(Qt::red);
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        const QByteArray request = HttpsExchange::post(questionWith(png));

        const ScriptedModel model(answering("Un rectángulo rojo."));
        const RunningService blind(u"0"_s, optionsFor(model.port()));
        const auto without = blind.send(request);
        QTRY_VERIFY_WITH_TIMEOUT(without->isWhole(), patience);
        QVERIFY(without->body().contains("no puede ver imágenes"));
        QVERIFY(without->body().contains("Lo que sí puedo hacer"));
        QVERIFY(model.requests().isEmpty());

        const RunningService seeing(u"0"_s,
                                    optionsFor(model.port()) + QStringList{u"--model-images"_s});
        const auto with = seeing.send(request);
        QTRY_VERIFY_WITH_TIMEOUT(with->isWhole(), patience);
        QCOMPARE(with->body(), QByteArray("Un rectángulo rojo.\n"));
        const QJsonArray parts = messages(model, 0)[1]["content"_L1].toArray();
        QCOMPARE(parts[0]["text"_L1].toString(), u"¿Qué es?"_s);
        const QByteArray address = parts[1]["image_url"_L1]["url"_L1].toString().toLatin1();
        const QByteArray prefix = "data:image/jpeg;base64,";
        QVERIFY(address.startsWith(prefix));
        const auto jpeg = QByteArray::fromBase64(address.sliced(prefix.size()));
        QCOMPARE(QImage::fromData(jpeg, "JPEG").size(), QSize(1280, 16));

        const auto broken = seeing.send(HttpsExchange::post(questionWith("hola")));
        QTRY_VERIFY_WITH_TIMEOUT(broken->isWhole(), patience);
        QVERIFY(broken->body().contains("No pude abrir la imagen"));
    }

    // The model here is the program itself, which knows no such path.
    void trustsOnlyCertificatesThatTheSystemTrusts()
    {
        const RunningService model(u"0"_s);
        const QStringList options{u"--model-url"_s, u"https://localhost:%1/v1"_s.arg(model.port()),
                                  u"--model"_s, u"prueba"_s};
        QProcessEnvironment trusting = QProcessEnvironment::systemEnvironment();
        trusting.insert(u"SSL_CERT_FILE"_s, QStringLiteral(LOCAL_SERVICE_CERTIFICATE));
        RunningService wary(u"0"_s, options);
        RunningService trustful(u"0"_s, options, trusting);
        for (RunningService *service : {&wary, &trustful}) {
            const auto exchange = service->ask("hola");
            QTRY_VERIFY_WITH_TIMEOUT(exchange->isClosed(), patience);
            QCOMPARE(exchange->status(), 502);
            const QString logged
                = service == &wary ? u"no es de confianza"_s : u"no existe en esa dirección"_s;
            QTRY_VERIFY_WITH_TIMEOUT(service->log().contains(logged), patience);
        }
    }

    void sendsTheKeyAndLogsNothingOfIt()
    {
        const QTemporaryDir folder;
        const QString keyFile = folder.filePath(u"clave"_s);
        QFile file(keyFile);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("Secreto-123\n");
        file.close();
        const ScriptedModel model(answering("uno"));
        RunningService service(
            u"0"_s, optionsFor(model.port()) + QStringList{u"--model-key-file"_s, keyFile});
        const auto exchange = service.ask("hola");
        QTRY_VERIFY_WITH_TIMEOUT(exchange->isWhole(), patience);
        QVERIFY(model.requests().first().contains("Authorization: Bearer Secreto-123\r\n"));
        QVERIFY(!service.log().contains(u"Secreto"_s));
    }
};

QTEST_GUILESS_MAIN(ModelBridgeTest)
#include "ModelBridgeTest.moc"
