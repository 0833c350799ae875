#pragma once

#include "AssistantService.h"
#include "ChatRequestBody.h"
#include "CurlTransfer.h"

#include <QFutureWatcher>
#include <QNetworkProxy>
#include <QObject>
#include <QSemaphore>
#include <QStringList>
#include <QTimer>

#include <memory>
#include <optional>
#include <thread>

/// One question sent to the assistant and its reply, however long, read line by line. Ends with
/// exactly one of `finished` and `failed`.
///
/// The transfer has a thread of its own. It waits until the thread of this object has handled the
/// lines received so far, which in each turn of the event loop come from at most 16 KiB.
class AssistantExchange : public QObject
{
    Q_OBJECT

public:
    AssistantExchange(AssistantService service, ChatRequestBody body, QObject *parent = nullptr);
    ~AssistantExchange() override;

    /// Looks up the system's proxy, then sends the question.
    void start();

Q_SIGNALS:
    /// The next lines of the reply, without their line ends, empty ones included.
    void linesReceived(const QStringList &lines);
    /// The reply is complete and all its lines have been told.
    void finished();
    /// The exchange failed for the reason told in `description`, in Spanish. Lines received whole
    /// before have been told; a line that was cut off is not told.
    void failed(const QString &description);

private:
    void startTransfer(const QNetworkProxy &proxy);
    // On the thread of the transfer.
    void receiveReply();
    void tell(const QStringList &lines);

    AssistantService m_service;
    ChatRequestBody m_body;
    QFutureWatcher<QNetworkProxy> m_proxyLookup;
    QTimer m_proxyTimer;
    std::unique_ptr<CurlTransfer> m_transfer;
    /// Available while no lines wait to be handled.
    QSemaphore m_mayTell{1};
    QTimer m_nextTurn;
    std::thread m_thread;
};
