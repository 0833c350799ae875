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
/// Why not QNetworkAccessManager: in Qt 6.4.2 and 6.8.2 it reports a reply without length or chunks
/// as complete when it was cut off or reset; accepts a head of 200 MB; reports garbage as a broken
/// connection; connects again when a service breaks off early; and always sends headers of its own.
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

    // libcurl's callbacks; the last parameter is this object. Returning another size than was given
    // ends the transfer.
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
    /// Runs the transfer to its end and returns the result.
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
    /// The reply has neither length nor chunks: the end of the connection is its end.
    bool m_endsWithConnection = false;
    /// The service has sent TLS's close_notify: it ends the connection on purpose.
    bool m_hasCloseNotify = false;
    /// Why this object gave up the transfer.
    std::optional<QString> m_failure;
    Clock::time_point m_lastActivity;

    std::atomic<bool> m_isAborted = false;
    std::mutex m_multiMutex;
    /// Guarded by the mutex; null while there is nothing to wake up.
    CURLM *m_multi = nullptr;
};
