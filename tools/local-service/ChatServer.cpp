#include "ChatServer.h"

#include "BodyRoom.h"
#include "ChatEndpoint.h"
#include "EndNotice.h"
#include "RequestLog.h"

#include <QFile>

#include <algorithm>
#include <future>
#include <httplib.h>
#include <poll.h>
#include <set>
#include <string>
#include <utility>

using namespace Qt::StringLiterals;
using Clock = std::chrono::steady_clock;

// 200 students are served at once while as many clients and more say nothing: a connection that
// stays silent holds its thread for `silenceLimit`. A thread that waits costs some ten kilobytes.
static constexpr size_t connectionThreads = 512;
static constexpr auto silenceLimit = std::chrono::seconds(15);
static constexpr int waitingConnections = 512;
// While a model thinks, a line feed tells the client, which drops it, that there will be an answer.
static constexpr auto waitingSignInterval = std::chrono::seconds(15);
// How often it is looked whether the client is still there while the model says nothing.
static constexpr auto presenceInterval = std::chrono::milliseconds(250);
// A refused body is read to its end all the same, so that the refusal is not lost in a reset
// connection; past this it is.
static constexpr qint64 mostDiscarded = 2 * ChatEndpoint::largestBody;
// Six images of the largest size at once. The first `largeBody` bytes of each body do not count:
// whoever asks without an image always finds room. The buffer of a body that still grows may take
// twice its bytes.
static constexpr qint64 bodyRoom = 6 * ChatEndpoint::largestBody;
// For the log: the client left, or the service ends.
static const auto nobodyWaits = QStringLiteral("nadie espera ya la respuesta");
static constexpr auto plainText = "text/plain; charset=utf-8";

// A connection is served by one thread from its first byte to its last, so the request that a
// thread is at can be kept in the thread.
struct Exchange
{
    Clock::time_point begin;
    qint64 bytesSent = 0;
    /// Why the model failed, if it did.
    QString failure;
};
static thread_local std::optional<Exchange> currentExchange;

struct ChatServer::Engine
{
    Engine(ServiceOptions requested, ChatEndpoint &chatEndpoint, RequestLog &requestLog);

    void setUp();
    void respond(const httplib::Request &request, httplib::Response &response,
                 const IncomingRequest &incoming);
    void stream(const Answer &answer, httplib::Response &response);
    void stream(std::unique_ptr<ModelReply> reply, const httplib::Request &request,
                httplib::Response &response);
    std::optional<ModelReply::State>
    waitForModel(ModelReply &reply, const httplib::Request &request, Clock::time_point until);
    bool sendFromModel(ModelReply &reply, const httplib::Request &request, httplib::DataSink &sink);
    void writeLog(const httplib::Request &request, const httplib::Response &response);

    ServiceOptions options;
    ChatEndpoint &endpoint;
    RequestLog &log;
    httplib::SSLServer server;
    int listeningSocket = -1;
    int port = 0;
    BodyRoom room{bodyRoom};
    EndNotice end;
    std::future<bool> serving;
};

static std::string localPath(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

static IncomingRequest envelope(const httplib::Request &request)
{
    IncomingRequest incoming;
    incoming.method = QString::fromStdString(request.method);
    incoming.path = QString::fromStdString(request.path);
    incoming.contentType = QString::fromStdString(request.get_header_value("Content-Type"));
    incoming.contentEncoding = QString::fromStdString(request.get_header_value("Content-Encoding"));
    return incoming;
}

// What the head alone tells of a body; nothing when it is to be read. A body without a length is
// empty: the library would wait for one until the connection falls silent.
static std::optional<BodyState> stateByHead(const httplib::Request &request)
{
    const auto value = [&request](const char *name) {
        return QByteArray::fromStdString(request.get_header_value(name)).trimmed();
    };
    if (const size_t encodings = request.get_header_value_count("Transfer-Encoding")) {
        const bool isChunked = encodings == 1 && value("Transfer-Encoding").toLower() == "chunked";
        return isChunked ? std::nullopt : std::optional(BodyState::Broken);
    }
    const size_t lengths = request.get_header_value_count("Content-Length");
    if (lengths == 0)
        return BodyState::Complete;
    const QByteArray length = value("Content-Length");
    const bool isNumber = !length.isEmpty()
        && std::all_of(length.begin(), length.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (lengths > 1 || !isNumber)
        return BodyState::Broken;
    bool fits = false;
    const qint64 size = length.toLongLong(&fits);
    return fits && size <= mostDiscarded ? std::nullopt : std::optional(BodyState::TooLarge);
}

// `share` grows with the body.
static IncomingRequest withBody(const httplib::Request &request,
                                const httplib::ContentReader &reader, BodyRoom::Share &share)
{
    IncomingRequest incoming = envelope(request);
    if (const auto state = stateByHead(request)) {
        incoming.bodyState = *state;
        return incoming;
    }
    qint64 length = 0;
    bool hasRoom = true;
    const auto receive = [&](const char *data, size_t count) {
        length += static_cast<qint64>(count);
        hasRoom = hasRoom && share.growTo(length - ChatEndpoint::largeBody);
        if (hasRoom && length <= ChatEndpoint::largestBody)
            incoming.body.append(data, static_cast<qsizetype>(count));
        else
            incoming.body = {};
        return length <= mostDiscarded;
    };
    const bool isWhole = request.is_multipart_form_data()
        ? reader([](const httplib::MultipartFormData &) { return true; }, receive)
        : reader(receive);
    if (length > ChatEndpoint::largestBody)
        incoming.bodyState = BodyState::TooLarge;
    else if (!hasRoom)
        incoming.bodyState = BodyState::NoRoom;
    else if (!isWhole)
        incoming.bodyState = BodyState::Broken;
    return incoming;
}

static void refuse(const Refusal &refusal, httplib::Response &response)
{
    response.status = refusal.status;
    if (refusal.status == 405)
        response.set_header("Allow", "POST");
    response.set_content(refusal.reason.toStdString() + '\n', plainText);
}

// The library takes a request with a method it does not know for no HTTP at all.
static bool hasUnknownMethod(const httplib::Request &request)
{
    static const std::set<std::string> known{"CONNECT", "DELETE", "GET", "HEAD", "OPTIONS",
                                             "PATCH",   "POST",   "PRI", "PUT",  "TRACE"};
    const bool isMethod = !request.method.empty()
        && std::all_of(request.method.begin(), request.method.end(),
                       [](char c) { return c >= 'A' && c <= 'Z'; });
    return isMethod && request.version.rfind("HTTP/1.", 0) == 0
        && known.find(request.method) == known.end();
}

// For what the library turns down before any handler sees it.
static QString libraryReason(int status)
{
    switch (status) {
    case 404:
        return u"Esa dirección no existe."_s;
    case 414:
        return u"La dirección es demasiado larga."_s;
    case 416:
        return u"No se admiten pedidos parciales."_s;
    case 500:
        return u"Algo falló al responder."_s;
    default:
        return u"El pedido no es HTTP válido."_s;
    }
}

ChatServer::Engine::Engine(ServiceOptions requested, ChatEndpoint &chatEndpoint,
                           RequestLog &requestLog)
    : options(std::move(requested))
    , endpoint(chatEndpoint)
    , log(requestLog)
    , server(localPath(options.certificateFile).c_str(), localPath(options.keyFile).c_str())
{ }

void ChatServer::Engine::setUp()
{
    SSL_CTX_set_min_proto_version(server.ssl_context(), TLS1_2_VERSION);
    server.new_task_queue = [] { return new httplib::ThreadPool(connectionThreads); };
    // One request a connection: an idle one would hold its thread and delay the end.
    server.set_keep_alive_max_count(1);
    server.set_read_timeout(silenceLimit);
    server.set_write_timeout(silenceLimit);
    server.set_tcp_nodelay(true);
    // The library would share the port with a second instance.
    server.set_socket_options([this](int socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        listeningSocket = socket;
    });

    const auto bare = [this](const auto &request, auto &response) {
        respond(request, response, envelope(request));
    };
    const auto reading = [this](const auto &request, auto &response, const auto &reader) {
        BodyRoom::Share share(room);
        respond(request, response, withBody(request, reader, share));
    };
    server.set_pre_routing_handler([bare](const auto &request, auto &response) {
        currentExchange = {Clock::now(), 0, {}};
        const bool isRouted
            = request.method != "CONNECT" && request.method != "TRACE" && request.method != "PRI";
        if (!isRouted)
            bare(request, response);
        return isRouted ? httplib::Server::HandlerResponse::Unhandled
                        : httplib::Server::HandlerResponse::Handled;
    });
    server.set_expect_100_continue_handler([](const auto &request, auto &response) {
        constexpr int goOn = 100;
        const QByteArray length
            = QByteArray::fromStdString(request.get_header_value("Content-Length"));
        if (length.toLongLong() <= ChatEndpoint::largestBody)
            return goOn;
        refuse(ChatEndpoint::tooLarge(), response);
        return response.status;
    });
    const std::string anyPath = "[^]*";
    server.Get(anyPath, bare);
    server.Options(anyPath, bare);
    server.Post(anyPath, reading);
    server.Put(anyPath, reading);
    server.Patch(anyPath, reading);
    server.Delete(anyPath, reading);
    server.set_error_handler([](const auto &request, auto &response) {
        if (!response.body.empty())
            return;
        if (response.status == 400 && hasUnknownMethod(request))
            refuse(ChatEndpoint::wrongMethod(), response);
        else
            refuse({response.status, libraryReason(response.status)}, response);
    });
    server.set_logger(
        [this](const auto &request, const auto &response) { writeLog(request, response); });
}

void ChatServer::Engine::respond(const httplib::Request &request, httplib::Response &response,
                                 const IncomingRequest &incoming)
{
    auto outcome = endpoint.respond(incoming);
    if (const auto *refusal = std::get_if<Refusal>(&outcome)) {
        refuse(*refusal, response);
        return;
    }
    auto &changeable = const_cast<httplib::Request &>(request);
    // The library would compress the answer, and hold back lines until a block is full.
    changeable.headers.erase("Accept-Encoding");
    // An answer is never a part of one; newer versions of the library refuse what has no length.
    changeable.ranges.clear();
    if (auto *reply = std::get_if<std::unique_ptr<ModelReply>>(&outcome))
        stream(std::move(*reply), request, response);
    else
        stream(std::get<Answer>(outcome), response);
}

static bool send(httplib::DataSink &sink, const QByteArray &bytes)
{
    currentExchange->bytesSent += bytes.size();
    return sink.write(bytes.constData(), static_cast<size_t>(bytes.size()));
}

void ChatServer::Engine::stream(const Answer &answer, httplib::Response &response)
{
    const auto interval = std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(options.linesPerSecond > 0 ? 1 / options.linesPerSecond : 0));
    response.status = 200;
    response.set_chunked_content_provider(
        plainText,
        [this, interval, lines = answer.lines, next = qsizetype{0},
         due = Clock::now()](size_t, httplib::DataSink &sink) mutable {
            if (next == lines.size()) {
                sink.done();
                return true;
            }
            if (!end.sleepUntil(due))
                return false;
            due += interval;
            return send(sink, lines[next++].toUtf8() + '\n');
        });
}

// Whether the client closed its side of the connection. It has nothing more to say after its one
// request, so whatever there is to read is the end of it.
static bool hasLeft(const httplib::Request &request)
{
    auto *ssl = const_cast<SSL *>(request.ssl);
    pollfd socket{SSL_get_fd(ssl), POLLIN, 0};
    if (::poll(&socket, 1, 0) <= 0)
        return false;
    if ((socket.revents & (POLLERR | POLLNVAL)) != 0)
        return true;
    // What an earlier call left there would be taken for the outcome of this one.
    ERR_clear_error();
    char byte = 0;
    const int result = SSL_peek(ssl, &byte, 1);
    return result <= 0 && SSL_get_error(ssl, result) != SSL_ERROR_WANT_READ;
}

// As `ModelReply::wait`; nothing as soon as nobody waits for the answer any more.
std::optional<ModelReply::State> ChatServer::Engine::waitForModel(ModelReply &reply,
                                                                  const httplib::Request &request,
                                                                  Clock::time_point until)
{
    for (;;) {
        const auto state = reply.wait(std::min(until, Clock::now() + presenceInterval));
        if (end.isAnnounced())
            return std::nullopt;
        if (state != ModelReply::State::Waiting)
            return state;
        if (hasLeft(request))
            return std::nullopt;
        if (Clock::now() >= until)
            return state;
    }
}

void ChatServer::Engine::stream(std::unique_ptr<ModelReply> reply, const httplib::Request &request,
                                httplib::Response &response)
{
    // The status is the first thing sent: it waits for the first line, or for the time to say that
    // one will come.
    const auto state = waitForModel(*reply, request, Clock::now() + waitingSignInterval);
    if (!state) {
        currentExchange->failure = nobodyWaits;
        refuse({503, u"El servicio se está cerrando."_s}, response);
        return;
    }
    if (state == ModelReply::State::Failed) {
        currentExchange->failure = logReason(reply->failure());
        refuse(refusal(reply->failure()), response);
        return;
    }
    response.status = 200;
    response.set_chunked_content_provider(
        plainText,
        [this, &request, state, shared = std::shared_ptr(std::move(reply)),
         isFirst = true](size_t, httplib::DataSink &sink) mutable {
            const bool sendsWaitingSign
                = std::exchange(isFirst, false) && state == ModelReply::State::Waiting;
            return sendsWaitingSign ? send(sink, "\n") : sendFromModel(*shared, request, sink);
        });
}

// Sends what the model says next. False ends the body before its end.
bool ChatServer::Engine::sendFromModel(ModelReply &reply, const httplib::Request &request,
                                       httplib::DataSink &sink)
{
    const auto state = waitForModel(reply, request, Clock::now() + waitingSignInterval);
    if (!state) {
        currentExchange->failure = nobodyWaits;
        return false;
    }
    switch (*state) {
    case ModelReply::State::Waiting:
        return send(sink, "\n");
    case ModelReply::State::Line:
        return send(sink, reply.takeLine().toUtf8() + '\n');
    case ModelReply::State::Whole:
        sink.done();
        return true;
    case ModelReply::State::Failed:
        currentExchange->failure = logReason(reply.failure());
        return false;
    }
    Q_UNREACHABLE();
}

void ChatServer::Engine::writeLog(const httplib::Request &request,
                                  const httplib::Response &response)
{
    const Exchange ended = currentExchange.value_or(Exchange{Clock::now(), 0, {}});
    currentExchange.reset();
    const bool hasBody = request.method != "HEAD";
    log.write({QString::fromStdString(request.method), QString::fromStdString(request.path),
               response.status,
               ended.bytesSent + (hasBody ? static_cast<qint64>(response.body.size()) : 0),
               std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - ended.begin),
               ended.failure});
}

ChatServer::ChatServer(ServiceOptions options, ChatEndpoint &endpoint, RequestLog &log)
    : m_engine(std::make_unique<Engine>(std::move(options), endpoint, log))
{ }

ChatServer::~ChatServer()
{
    stop(std::chrono::hours(1));
}

std::optional<QString> ChatServer::start()
{
    Engine &engine = *m_engine;
    if (!engine.server.is_valid())
        return u"No pude usar el certificado o su clave."_s;
    engine.setUp();

    const std::string host = engine.options.host.toStdString();
    const int port = engine.options.port;
    engine.port = port == 0                      ? engine.server.bind_to_any_port(host)
        : engine.server.bind_to_port(host, port) ? port
                                                 : -1;
    if (engine.port < 0) {
        return u"No pude escuchar en %1, puerto %2. ¿Está en uso?"_s.arg(engine.options.host)
            .arg(port);
    }
    // The library asks for a queue of 5, too short for 64 clients that arrive together.
    ::listen(engine.listeningSocket, waitingConnections);

    engine.serving
        = std::async(std::launch::async, [&engine] { return engine.server.listen_after_bind(); });
    // A stop before the first accept would go unheard.
    while (!engine.server.is_running()
           && engine.serving.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
    }
    return std::nullopt;
}

QString ChatServer::url() const
{
    const QString &host = m_engine->options.host;
    const bool isLoopback = host == "127.0.0.1"_L1 || host == "::1"_L1 || host == "localhost"_L1;
    const QString name = isLoopback ? u"localhost"_s
        : host.contains(u':')       ? u'[' + host + u']'
                                    : host;
    return u"https://%1:%2/api/chat"_s.arg(name).arg(m_engine->port);
}

bool ChatServer::stop(std::chrono::milliseconds grace)
{
    if (!m_engine->serving.valid())
        return true;
    m_engine->end.announce();
    m_engine->server.stop();
    return m_engine->serving.wait_for(grace) == std::future_status::ready;
}
