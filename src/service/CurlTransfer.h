#pragma once

#include "AssistantService.h"
#include "ChatRequestBody.h"
#include "CurlLibrary.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QNetworkProxy>
#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <optional>

/// One question posted to the service and its reply received, by libcurl, on the thread that calls
/// run(). It uses one connection of its own and sends the question at most once.
///
/// Silence is measured from the last byte that came or left, whatever it was part of: the
/// handshake, the request, a head, a body. The time that the program itself takes over what it
/// received does not count.
///
/// libcurl does what Qt's QNetworkAccessManager does not, in Qt 6.4.2 and 6.8.2 alike. The
/// latter reports a reply as complete that was cut off or reset where it has neither length nor
/// chunks; takes a head of 200 MB; reports garbage as a broken connection; connects again when a
/// service breaks off early; and always sends headers of its own.
class CurlTransfer
{
public:
    using TakeBody = std::function<void(QByteArrayView)>;

    /// Most bytes of heads and trailers that one reply may have. libcurl itself takes no line
    /// longer than 100 KiB.
    static constexpr size_t maximumHeadSize = size_t(256) * 1024;

    CurlTransfer(AssistantService service, ChatRequestBody body, const QNetworkProxy &proxy);

    /// Blocks until the reply is complete, and returns nothing, or until it has failed, and returns
    /// why in Spanish. `takeBody` gets the body as it comes, at most 16 KiB at a time; while it
    /// blocks, nothing more is read from the network. To be called once.
    std::optional<QString> run(TakeBody takeBody);

    /// Makes run() return without waiting for the network. May be called on any thread.
    void abort();

private:
    using Clock = std::chrono::steady_clock;
    using HeaderList = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

    // What libcurl calls; the last parameter is this object. It gives up when it gets back another
    // size than it gave.
    static size_t giveRequestBody(char *buffer, size_t size, size_t count, void *transfer);
    static size_t takeHeadLine(char *line, size_t size, size_t count, void *transfer);
    static size_t takeReplyBody(char *bytes, size_t size, size_t count, void *transfer);
    static int watchTls(CURL *handle, curl_infotype type, char *bytes, size_t size, void *transfer);

    HeaderList headerList(std::initializer_list<const char *> headers) const;
    bool setUp(curl_slist *headers);
    bool setUpTrust();
    bool setUpProxy(curl_slist *headers);
    template <typename Value>
    bool set(CURLoption option, Value value);
    long info(CURLINFO info) const;

    void setMulti(CURLM *multi);
    /// Transfers until there is a result, and is that.
    CURLcode transfer(CURLM *multi);
    size_t fillRequestBody(char *buffer, size_t capacity);
    // False when the reply is not to be read any further.
    bool readHeadLine(QByteArrayView line);
    bool readEndOfHead();
    bool isReadable() const;
    /// The values of all headers of the reply called `name`, in lower case.
    QList<QByteArray> headerValues(const char *name) const;
    std::optional<QString> failure(CURLcode code) const;

    AssistantService m_service;
    ChatRequestBody m_body;
    QNetworkProxy m_proxy;
    TakeBody m_takeBody;

    const CurlLibrary *m_curl = nullptr;
    CURL *m_handle = nullptr;
    /// What is left of the block of the question that is being sent.
    QByteArray m_block;
    size_t m_headSize = 0;
    bool m_hasHead = false;
    /// Nothing but the end of the connection ends the reply.
    bool m_endsWithConnection = false;
    /// TLS has said that the service ends the connection on purpose.
    bool m_hasCloseNotify = false;
    /// Why this object gave up the transfer.
    std::optional<QString> m_failure;
    Clock::time_point m_lastActivity;

    std::atomic<bool> m_isAborted = false;
    std::mutex m_multiMutex;
    /// Guarded by the mutex: there only while it can be woken up.
    CURLM *m_multi = nullptr;
};
