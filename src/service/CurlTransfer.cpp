#include "CurlTransfer.h"

#include "StreamingError.h"
#include "TransportError.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <csignal>
#include <memory>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int switchingProtocols = 101;
constexpr int noContent = 204;

/// Blocks SIGPIPE on the calling thread: writing to a socket that the other side has closed would
/// end the program.
void blockBrokenPipeSignal()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

/// Whether the reply is not HTTP, or HTTP that libcurl rejects.
bool isInvalidResponse(CURLcode code)
{
    // CURLE_TOO_LARGE, a line of a head longer than 100 KiB: CURLE_OUT_OF_MEMORY before 8.6.
    constexpr int tooLarge = 100;
    return code == CURLE_UNSUPPORTED_PROTOCOL || code == CURLE_WEIRD_SERVER_REPLY
        || code == CURLE_BAD_CONTENT_ENCODING || code == CURLE_OUT_OF_MEMORY
        || int(code) == tooLarge;
}

} // namespace

CurlTransfer::CurlTransfer(AssistantService service, ChatRequestBody body,
                           const QNetworkProxy &proxy)
    : m_service(std::move(service))
    , m_body(std::move(body))
    , m_proxy(proxy)
{ }

std::optional<QString> CurlTransfer::run(TakeBody takeBody)
{
    m_takeBody = std::move(takeBody);
    m_curl = CurlLibrary::instance();
    if (!m_curl)
        return transportErrorDescription(TransportError::Other);
    blockBrokenPipeSignal();

    // An empty value keeps libcurl from sending a header of its own.
    const HeaderList headers
        = headerList({"Content-Type: application/json", "Connection: close", "Accept:", "Expect:"});
    const HeaderList proxyHeaders = headerList({"Proxy-Connection:"});
    const std::unique_ptr<CURL, decltype(m_curl->easyCleanup)> handle(m_curl->easyInit(),
                                                                      m_curl->easyCleanup);
    const std::unique_ptr<CURLM, decltype(m_curl->multiCleanup)> multi(m_curl->multiInit(),
                                                                       m_curl->multiCleanup);
    m_handle = handle.get();
    if (!multi || !handle || !setUp(headers.get()) || !setUpProxy(proxyHeaders.get()))
        return transportErrorDescription(TransportError::Other);

    m_curl->multiAddHandle(multi.get(), m_handle);
    setMulti(multi.get());
    std::optional<QString> description = failure(transfer(multi.get()));
    setMulti(nullptr);
    m_curl->multiRemoveHandle(multi.get(), m_handle);
    return description;
}

void CurlTransfer::abort()
{
    m_isAborted = true;
    const std::scoped_lock lock(m_multiMutex);
    if (m_multi)
        m_curl->multiWakeup(m_multi);
}

CurlTransfer::HeaderList CurlTransfer::headerList(std::initializer_list<const char *> headers) const
{
    curl_slist *list = nullptr;
    for (const char *header : headers)
        list = m_curl->slistAppend(list, header);
    return {list, m_curl->slistFreeAll};
}

void CurlTransfer::setMulti(CURLM *multi)
{
    const std::scoped_lock lock(m_multiMutex);
    m_multi = multi;
}

CURLcode CurlTransfer::transfer(CURLM *multi)
{
    m_lastActivity = Clock::now();
    int transfersLeft = 1;
    while (m_curl->multiPerform(multi, &transfersLeft) == CURLM_OK && transfersLeft > 0) {
        if (m_isAborted)
            return CURLE_ABORTED_BY_CALLBACK;
        const auto patience = std::chrono::ceil<std::chrono::milliseconds>(
            m_service.idleTimeout - (Clock::now() - m_lastActivity));
        if (patience.count() <= 0)
            return CURLE_OPERATION_TIMEDOUT;
        int activeSockets = 0;
        m_curl->multiPoll(multi, nullptr, 0, int(patience.count()), &activeSockets);
        if (activeSockets > 0)
            m_lastActivity = Clock::now();
    }
    int messagesLeft = 0;
    const CURLMsg *message = m_curl->multiInfoRead(multi, &messagesLeft);
    return message ? message->data.result : CURLE_FAILED_INIT;
}

template <typename Value>
bool CurlTransfer::set(CURLoption option, Value value)
{
    return m_curl->easySetopt(m_handle, option, value) == CURLE_OK;
}

long CurlTransfer::info(CURLINFO info) const
{
    long value = 0;
    m_curl->easyGetinfo(m_handle, info, &value);
    return value;
}

bool CurlTransfer::setUp(curl_slist *headers)
{
    const QByteArray url = m_service.apiURL.toEncoded();
    return set(CURLOPT_URL, url.constData()) && set(CURLOPT_PROTOCOLS_STR, "https")
        && set(CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1))
        && set(CURLOPT_HTTPHEADER, headers) && set(CURLOPT_POST, 1L)
        && set(CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(m_body.contentLength()))
        // Without a function to seek by, libcurl cannot send the question again.
        && set(CURLOPT_READFUNCTION, giveRequestBody) && set(CURLOPT_READDATA, this)
        && set(CURLOPT_HEADERFUNCTION, takeHeadLine) && set(CURLOPT_HEADERDATA, this)
        && set(CURLOPT_WRITEFUNCTION, takeReplyBody) && set(CURLOPT_WRITEDATA, this)
        && set(CURLOPT_DEBUGFUNCTION, watchTls) && set(CURLOPT_DEBUGDATA, this)
        && set(CURLOPT_VERBOSE, 1L)
        // libcurl uses no signals, and does not wait for a name lookup that hangs.
        && set(CURLOPT_NOSIGNAL, 1L) && set(CURLOPT_QUICK_EXIT, 1L) && setUpTrust();
}

bool CurlTransfer::setUpTrust()
{
    if (!set(CURLOPT_SSLVERSION, long(CURL_SSLVERSION_TLSv1_2)))
        return false;
    if (m_service.extraTrustAnchors.isEmpty())
        return true;
    // Certificates given in memory take the place of the system's file.
    const char *systemRoots = nullptr;
    m_curl->easyGetinfo(m_handle, CURLINFO_CAINFO, &systemRoots);
    QByteArray anchors = trustAnchors(m_service, QFile::decodeName(systemRoots));
    curl_blob blob{.data = anchors.data(), .len = size_t(anchors.size()), .flags = CURL_BLOB_COPY};
    return set(CURLOPT_CAINFO_BLOB, &blob);
}

/// Also keeps libcurl from taking a proxy from the environment by itself.
bool CurlTransfer::setUpProxy(curl_slist *headers)
{
    if (m_proxy.type() == QNetworkProxy::NoProxy)
        return set(CURLOPT_PROXY, "");
    QUrl url;
    url.setScheme(m_proxy.type() == QNetworkProxy::Socks5Proxy ? u"socks5h"_s : u"http"_s);
    url.setHost(m_proxy.hostName());
    url.setPort(m_proxy.port());
    const bool isSet = set(CURLOPT_PROXY, url.toEncoded().constData()) && set(CURLOPT_NOPROXY, "")
        && set(CURLOPT_HEADEROPT, long(CURLHEADER_SEPARATE)) && set(CURLOPT_PROXYHEADER, headers)
        && set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    if (m_proxy.user().isEmpty())
        return isSet;
    return isSet && set(CURLOPT_PROXYUSERNAME, m_proxy.user().toUtf8().constData())
        && set(CURLOPT_PROXYPASSWORD, m_proxy.password().toUtf8().constData());
}

size_t CurlTransfer::giveRequestBody(char *buffer, size_t size, size_t count, void *transfer)
{
    return static_cast<CurlTransfer *>(transfer)->fillRequestBody(buffer, size * count);
}

size_t CurlTransfer::takeHeadLine(char *line, size_t size, size_t count, void *transfer)
{
    const QByteArrayView view(line, qsizetype(size * count));
    return static_cast<CurlTransfer *>(transfer)->readHeadLine(view) ? size * count : 0;
}

size_t CurlTransfer::takeReplyBody(char *bytes, size_t size, size_t count, void *transfer)
{
    auto *self = static_cast<CurlTransfer *>(transfer);
    self->m_takeBody(QByteArrayView(bytes, qsizetype(size * count)));
    self->m_lastActivity = Clock::now();
    return self->m_isAborted ? 0 : size * count;
}

int CurlTransfer::watchTls(CURL *, curl_infotype type, char *bytes, size_t size, void *transfer)
{
    // Of all TLS messages only alerts have two bytes. These are a warning and close_notify.
    constexpr std::string_view closeNotify("\x01\x00", 2);
    if (type == CURLINFO_SSL_DATA_IN && std::string_view(bytes, size) == closeNotify)
        static_cast<CurlTransfer *>(transfer)->m_hasCloseNotify = true;
    return 0;
}

size_t CurlTransfer::fillRequestBody(char *buffer, size_t capacity)
{
    if (m_block.isEmpty())
        m_block = m_body.takeNextBlock();
    const qsizetype size = std::min(m_block.size(), qsizetype(capacity));
    std::copy_n(m_block.constData(), size, buffer);
    m_block.remove(0, size);
    return size_t(size);
}

bool CurlTransfer::readHeadLine(QByteArrayView line)
{
    m_headSize += size_t(line.size());
    if (m_headSize > maximumHeadSize) {
        m_failure = StreamingError::invalidResponse().description();
        return false;
    }
    const bool isEmpty = line == "\r\n" || line == "\n";
    return !isEmpty || m_hasHead || readEndOfHead();
}

bool CurlTransfer::readEndOfHead()
{
    const int statusCode = int(info(CURLINFO_RESPONSE_CODE));
    const bool isInterim = statusCode < 200 && statusCode != switchingProtocols;
    if (isInterim)
        return true;
    m_hasHead = true;
    if (statusCode < 200 || statusCode > 299)
        m_failure = StreamingError::serverError(statusCode).description();
    else if (!isReadable())
        m_failure = StreamingError::invalidResponse().description();
    m_endsWithConnection = statusCode != noContent && headerValues("Content-Length").isEmpty()
        && !headerValues("Transfer-Encoding").contains("chunked");
    return !m_failure;
}

/// Whether the reply is HTTP/1, of one length at most, and not compressed, which nobody asked for.
bool CurlTransfer::isReadable() const
{
    const QList<QByteArray> encodings = headerValues("Content-Encoding");
    return info(CURLINFO_HTTP_VERSION) <= CURL_HTTP_VERSION_1_1
        && headerValues("Content-Length").size() <= 1
        && (encodings.isEmpty() || encodings == QList<QByteArray>{"identity"});
}

QList<QByteArray> CurlTransfer::headerValues(const char *name) const
{
    constexpr int lastRequest = -1;
    QList<QByteArray> values;
    curl_header *header = nullptr;
    while (m_curl->easyHeader(m_handle, name, size_t(values.size()), CURLH_HEADER, lastRequest,
                              &header)
           == CURLHE_OK)
        values += QByteArray(header->value).toLower();
    return values;
}

std::optional<QString> CurlTransfer::failure(CURLcode code) const
{
    if (m_failure)
        return m_failure;
    const bool isComplete = m_hasHead && (m_hasCloseNotify || !m_endsWithConnection);
    if (code == CURLE_OK && isComplete)
        return std::nullopt;
    if (code == CURLE_OK)
        return transportErrorDescription(TransportError::ConnectionLost);

    CurlFailure failure{.code = code, .systemError = int(info(CURLINFO_OS_ERRNO))};
    curl_off_t handshakeTime = 0;
    m_curl->easyGetinfo(m_handle, CURLINFO_APPCONNECT_TIME_T, &handshakeTime);
    const int proxyStatus = int(info(CURLINFO_HTTP_CONNECTCODE));
    const bool isAtService = handshakeTime > 0 || (proxyStatus >= 200 && proxyStatus <= 299);
    if (m_proxy.type() != QNetworkProxy::NoProxy && !isAtService)
        failure.proxyStatus = proxyStatus;
    else if (isInvalidResponse(code))
        return StreamingError::invalidResponse().description();
    return transportErrorDescription(transportErrorFrom(failure, currentNetworkPresence()));
}
