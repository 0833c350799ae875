#include "ScriptedModel.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <memory>

// How long it takes at most to notice the end of a test.
static constexpr int attention = 20;

QByteArray ModelScript::head(int status, const QByteArray &headers)
{
    return "HTTP/1.1 " + QByteArray::number(status) + " Status\r\n" + headers
        + "Connection: close\r\n\r\n";
}

QByteArray ModelScript::event(const QByteArray &text)
{
    return R"(data: {"choices":[{"index":0,"delta":{"content":")" + text + "\"}}]}\n\n";
}

QByteArray ModelScript::chunk(const QByteArray &bytes)
{
    return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
}

ModelScript ModelScript::whole(const QByteArray &events)
{
    ModelScript script;
    script.steps
        = {{head(200, "Transfer-Encoding: chunked\r\n") + chunk(events) + "0\r\n\r\n", {}}};
    return script;
}

ScriptedModel::ScriptedModel(ModelScript script)
    : m_script(std::move(script))
{
    std::promise<quint16> port;
    m_thread = std::thread([this, &port] { serve(port); });
    m_port = port.get_future().get();
}

ScriptedModel::~ScriptedModel()
{
    m_ends = true;
    m_thread.join();
}

QByteArrayList ScriptedModel::requests() const
{
    const std::scoped_lock lock(m_mutex);
    return m_requests;
}

void ScriptedModel::serve(std::promise<quint16> &port)
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    port.set_value(server.serverPort());
    while (!m_ends) {
        server.waitForNewConnection(attention);
        const std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
        if (socket)
            play(*socket);
    }
}

static bool isWhole(const QByteArray &request)
{
    const qsizetype headEnd = request.indexOf("\r\n\r\n");
    const QByteArray name = "content-length:";
    const qsizetype length = request.toLower().indexOf(name);
    return headEnd >= 0 && length >= 0
        && request.size() >= headEnd + 4
            + request
                  .mid(length + name.size(), request.indexOf("\r\n", length) - length - name.size())
                  .trimmed()
                  .toLongLong();
}

// False when the client left meanwhile, or the test ends.
bool ScriptedModel::pause(QTcpSocket &socket, std::chrono::milliseconds duration) const
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < duration.count()) {
        if (m_ends || socket.state() != QAbstractSocket::ConnectedState)
            return false;
        socket.waitForReadyRead(
            static_cast<int>(std::min<qint64>(attention, duration.count() - timer.elapsed())));
    }
    return socket.state() == QAbstractSocket::ConnectedState;
}

void ScriptedModel::play(QTcpSocket &socket)
{
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    QByteArray request;
    while (!isWhole(request) && !m_ends && socket.state() == QAbstractSocket::ConnectedState) {
        socket.waitForReadyRead(attention);
        request += socket.readAll();
    }
    {
        const std::scoped_lock lock(m_mutex);
        m_requests += request;
    }
    for (const auto &[bytes, pauseAfter] : m_script.steps) {
        const qsizetype size = m_script.pieceSize > 0 ? m_script.pieceSize : bytes.size();
        for (qsizetype at = 0; at < bytes.size(); at += size) {
            socket.write(bytes.mid(at, size));
            socket.waitForBytesWritten();
        }
        if (!pause(socket, pauseAfter)) {
            ++m_leavings;
            return;
        }
    }
    if (m_script.end == ModelScript::End::Stay) {
        pause(socket, std::chrono::hours(1));
        ++m_leavings;
        return;
    }
    socket.disconnectFromHost();
    if (socket.state() != QAbstractSocket::UnconnectedState)
        socket.waitForDisconnected();
}
