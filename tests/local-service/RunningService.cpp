#include "RunningService.h"

#include <QRegularExpression>

#include <csignal>

using namespace Qt::StringLiterals;

static const auto certificate = QStringLiteral(LOCAL_SERVICE_CERTIFICATE);
// Starting a process on a busy machine.
static constexpr int patience = 60'000;

RunningService::RunningService(const QString &rate, const QStringList &more,
                               const QProcessEnvironment &environment)
{
    m_process.setProcessEnvironment(environment);
    m_process.start(QStringLiteral(LOCAL_SERVICE_PROGRAM),
                    QStringList{u"--port"_s, u"0"_s, u"--rate"_s, rate, u"--cert"_s, certificate,
                                u"--key"_s, QStringLiteral(LOCAL_SERVICE_KEY)}
                        + more);
    if (m_process.waitForReadyRead(patience))
        m_readyLine = QString::fromUtf8(m_process.readLine());
}

RunningService::~RunningService()
{
    m_process.kill();
    m_process.waitForFinished();
}

quint16 RunningService::port() const
{
    static const QRegularExpression portNumber(u":(\\d+)/"_s);
    return portNumber.match(m_readyLine).captured(1).toUShort();
}

std::unique_ptr<HttpsExchange> RunningService::send(const QByteArray &request) const
{
    return std::make_unique<HttpsExchange>(port(), certificate, request);
}

std::unique_ptr<HttpsExchange> RunningService::ask(const QByteArray &message,
                                                   const QByteArray &headers) const
{
    return send(HttpsExchange::post(R"({"message":")" + message + R"(","userId":"aulora-prueba"})",
                                    headers));
}

QString RunningService::log()
{
    m_log += QString::fromUtf8(m_process.readAllStandardError());
    return m_log;
}

void RunningService::signal(int number) const
{
    ::kill(static_cast<pid_t>(m_process.processId()), number);
}

int RunningService::outcome() const
{
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}
