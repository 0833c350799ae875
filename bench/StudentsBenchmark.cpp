// Two hundred students ask the local service at once, and a scripted model writes twenty lines a
// second for each of them. Measured: how much later than the model each answer ends and each line
// arrives, and what the service needs for each student. All of it on this machine, over loopback.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int students = 200;
constexpr int linesOfAnAnswer = 200;
constexpr int linesPerSecond = 20;
constexpr int patience = 120'000;

/// When what happened to one student, in milliseconds since the beginning.
struct Record
{
    qint64 modelEnded = 0;
    qint64 answerEnded = 0;
    qint64 worstLineDelay = 0;
    QHash<int, qint64> said;
    bool isWhole = false;
};

/// Writes an answer for each request, a line at a time.
class Model : public QObject
{
public:
    Model(std::vector<Record> &records, const QElapsedTimer &clock)
        : m_records(records)
        , m_clock(clock)
    {
        m_server.setMaxPendingConnections(students);
        m_server.setListenBacklogSize(students);
        m_server.listen(QHostAddress::LocalHost);
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                serve(socket);
        });
    }
    quint16 port() const { return m_server.serverPort(); }

private:
    static QByteArray chunk(const QByteArray &bytes)
    {
        return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
    }
    // A line comes in four pieces, as models write.
    static QByteArray events(int line)
    {
        const QByteArray text = "**Línea** " + QByteArray::number(line)
            + " de una respuesta que explica algo con el largo de un renglón común.\\n\\n";
        QByteArray result;
        const qsizetype size = text.size() / 4 + 1;
        qsizetype begin = 0;
        while (begin < text.size()) {
            qsizetype end = std::min(begin + size, text.size());
            // Neither a character nor an escape is cut.
            while (end < text.size() && ((text[end] & 0xC0) == 0x80 || text[end - 1] == '\\'))
                ++end;
            result += R"(data: {"choices":[{"index":0,"delta":{"content":")"
                + text.mid(begin, end - begin) + "\"}}]}\n\n";
            begin = end;
        }
        return result;
    }
    void serve(QTcpSocket *socket)
    {
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        auto request = std::make_shared<QByteArray>();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket, request] {
            const bool hadBegun = request->endsWith("}");
            *request += socket->readAll();
            static const QRegularExpression asked(u"estudiante (\\d+)\""_s);
            const auto match = asked.match(QString::fromUtf8(*request));
            if (!hadBegun && request->endsWith("}") && match.hasMatch())
                answer(socket, match.captured(1).toInt());
        });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
    void answer(QTcpSocket *socket, int student)
    {
        socket->write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
        auto *timer = new QTimer(socket);
        timer->setTimerType(Qt::PreciseTimer);
        connect(timer, &QTimer::timeout, socket,
                [this, socket, timer, student, line = 0]() mutable {
                    Record &record = m_records[student];
                    if (line == linesOfAnAnswer) {
                        timer->stop();
                        record.modelEnded = m_clock.elapsed();
                        socket->write(chunk("data: [DONE]\n\n") + "0\r\n\r\n");
                        return;
                    }
                    record.said[line] = m_clock.elapsed();
                    socket->write(chunk(events(line)));
                    ++line;
                });
        timer->start(1000 / linesPerSecond);
    }

    QTcpServer m_server;
    std::vector<Record> &m_records;
    const QElapsedTimer &m_clock;
};

/// Asks once and notes when each line came.
class Student : public QObject
{
public:
    Student(int number, quint16 port, Record &record, const QElapsedTimer &clock)
        : m_record(record)
    {
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setCaCertificates(
            QSslCertificate::fromPath(QStringLiteral(LOCAL_SERVICE_CERTIFICATE)));
        m_socket.setSslConfiguration(configuration);
        connect(&m_socket, &QSslSocket::encrypted, this, [this, number] {
            const QByteArray name = "estudiante " + QByteArray::number(number);
            const QByteArray body = R"({"userId":")" + name + R"(","message":")" + name + "\"}";
            m_socket.write("POST /api/chat HTTP/1.1\r\nHost: localhost\r\n"
                           "Content-Type: application/json\r\nContent-Length: "
                           + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        });
        connect(&m_socket, &QSslSocket::readyRead, this, [this, &clock] { read(clock.elapsed()); });
        m_socket.connectToHostEncrypted(u"127.0.0.1"_s, port, u"localhost"_s);
    }
    bool hasEnded() const { return m_socket.state() == QAbstractSocket::UnconnectedState; }

private:
    void read(qint64 now)
    {
        m_received += m_socket.readAll();
        static const QByteArray mark = "**Línea** ";
        qsizetype at = 0;
        while ((at = m_received.indexOf(mark, m_read)) >= 0) {
            const qsizetype end = m_received.indexOf('\n', at);
            if (end < 0)
                break;
            const int line = m_received.mid(at + mark.size(), 4).split(' ').first().toInt();
            m_record.worstLineDelay
                = std::max(m_record.worstLineDelay, now - m_record.said.value(line));
            m_read = end;
            ++m_lines;
        }
        if (m_received.endsWith("\r\n0\r\n\r\n")) {
            m_record.answerEnded = now;
            m_record.isWhole = m_lines == linesOfAnAnswer;
        }
    }

    Record &m_record;
    QSslSocket m_socket;
    QByteArray m_received;
    qsizetype m_read = 0;
    int m_lines = 0;
};

// A value of /proc/<process>/status, in KiB.
qint64 memory(qint64 process, const QByteArray &name)
{
    QFile file(u"/proc/%1/status"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(name + ':'))
            return line.mid(name.size() + 1).simplified().split(' ').first().toLongLong();
    }
    return 0;
}

// Processor time of a process so far, in milliseconds.
qint64 processorTime(qint64 process)
{
    constexpr int userTime = 11; // Behind the name, which is in parentheses
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = file.readAll();
    const auto fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    return (fields.value(userTime).toLongLong() + fields.value(userTime + 1).toLongLong()) * 1000
        / sysconf(_SC_CLK_TCK);
}

template <typename Condition>
bool waitUntil(Condition condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < patience)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 100);
    return condition();
}

void print(const char *name, qint64 value, const char *unit, qint64 budget)
{
    std::printf("figure: %d students, %s = %lld %s (budget <= %lld %s) %s\n", students, name,
                static_cast<long long>(value), unit, static_cast<long long>(budget), unit,
                value <= budget ? "ok" : "MISSED");
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    std::vector<Record> records(students + 1);
    QElapsedTimer clock;
    clock.start();
    const Model model(records, clock);
    const QTemporaryDir folder;

    QProcess service;
    service.setStandardErrorFile(folder.filePath(u"log"_s));
    service.start(QStringLiteral(LOCAL_SERVICE_PROGRAM),
                  {u"--port"_s, u"0"_s, u"--cert"_s, QStringLiteral(LOCAL_SERVICE_CERTIFICATE),
                   u"--key"_s, QStringLiteral(LOCAL_SERVICE_KEY), u"--model-url"_s,
                   u"http://127.0.0.1:%1/v1"_s.arg(model.port()), u"--model"_s, u"m"_s,
                   u"--memory"_s, folder.filePath(u"memory"_s)});
    static const QRegularExpression portNumber(u":(\\d+)/"_s);
    if (!service.waitForReadyRead(patience))
        return EXIT_FAILURE;
    const auto port = portNumber.match(QString::fromUtf8(service.readAll())).captured(1).toUShort();

    // What the first question brings in, such as the tables of the memory, is no student's.
    {
        const Student first(students, port, records[students], clock);
        waitUntil([&] { return first.hasEnded(); });
    }
    const qint64 memoryBefore = memory(service.processId(), "VmRSS");
    const qint64 timeBefore = processorTime(service.processId());
    const qint64 begin = clock.elapsed();
    std::vector<std::unique_ptr<Student>> asking;
    for (int i = 0; i < students; ++i)
        asking.push_back(std::make_unique<Student>(i, port, records[i], clock));
    waitUntil([&] {
        return std::all_of(asking.begin(), asking.end(),
                           [](const auto &student) { return student->hasEnded(); });
    });

    qint64 worstEnd = 0;
    qint64 worstLine = 0;
    int unfinished = 0;
    for (int i = 0; i < students; ++i) {
        worstEnd = std::max(worstEnd, records[i].answerEnded - records[i].modelEnded);
        worstLine = std::max(worstLine, records[i].worstLineDelay);
        unfinished += records[i].isWhole ? 0 : 1;
    }
    std::printf("%d answers of %d lines in %.1f s; the service took %.1f s of processor time\n",
                students - unfinished, linesOfAnAnswer, double(clock.elapsed() - begin) / 1000,
                double(processorTime(service.processId()) - timeBefore) / 1000);
    const qint64 memoryEach = (memory(service.processId(), "VmHWM") - memoryBefore) / students;
    QFile log(folder.filePath(u"log"_s));
    if (unfinished > 0 && log.open(QIODevice::ReadOnly))
        std::fputs(log.readAll().constData(), stderr);
    print("answers that are not whole", unfinished, "", 0);
    print("the latest end after the model's", worstEnd, "ms", 1000);
    print("the latest line after the model's", worstLine, "ms", 1000);
    print("memory for each", memoryEach, "KiB", 1024);
    service.terminate();
    service.waitForFinished();
    return EXIT_SUCCESS;
}
