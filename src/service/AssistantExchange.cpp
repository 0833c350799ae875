#include "AssistantExchange.h"

#include "LineDecoder.h"
#include "SystemProxy.h"
#include "TransportError.h"

#include <utility>

AssistantExchange::AssistantExchange(AssistantService service, ChatRequestBody body,
                                     QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
    , m_body(std::move(body))
{
    connect(&m_proxyLookup, &QFutureWatcherBase::finished, this,
            [this] { startTransfer(m_proxyLookup.result()); });
    // Lines posted at once would be handled in the same turn of the event loop, and a service that
    // talks without end would keep the window from being painted.
    m_nextTurn.setSingleShot(true);
    m_nextTurn.setInterval(0);
    connect(&m_nextTurn, &QTimer::timeout, this, [this] { m_mayTell.release(); });
    m_proxyTimer.setSingleShot(true);
    m_proxyTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_proxyTimer, &QTimer::timeout, this, [this] {
        m_proxyLookup.disconnect(this);
        Q_EMIT failed(transportErrorDescription(TransportError::ProxyTimedOut));
    });
}

AssistantExchange::~AssistantExchange()
{
    if (!m_thread.joinable())
        return;
    m_transfer->abort();
    m_mayTell.release();
    m_thread.join();
}

void AssistantExchange::start()
{
    m_proxyTimer.start(m_service.idleTimeout);
    m_proxyLookup.setFuture(lookUpSystemProxy(m_service.apiURL));
}

void AssistantExchange::startTransfer(const QNetworkProxy &proxy)
{
    m_proxyTimer.stop();
    m_transfer = std::make_unique<CurlTransfer>(m_service, std::move(m_body), proxy);
    m_thread = std::thread(&AssistantExchange::receiveReply, this);
}

void AssistantExchange::receiveReply()
{
    LineDecoder lines;
    const std::optional<QString> failure
        = m_transfer->run([&](QByteArrayView bytes) { tell(lines.decode(bytes)); });
    if (!failure) {
        if (const auto lastLine = lines.finish())
            tell({*lastLine});
    }
    const auto end = [this, failure] {
        if (failure)
            Q_EMIT failed(*failure);
        else
            Q_EMIT finished();
    };
    QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
}

void AssistantExchange::tell(const QStringList &lines)
{
    if (lines.isEmpty())
        return;
    m_mayTell.acquire();
    const auto emitLines = [this, lines] {
        Q_EMIT linesReceived(lines);
        m_nextTurn.start();
    };
    QMetaObject::invokeMethod(this, emitLines, Qt::QueuedConnection);
}
