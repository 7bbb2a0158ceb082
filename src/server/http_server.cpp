#include "http_server.h"

#include "connection_lookup.h"
#include "sync_texts.h"
#include "web_headers.h"

#include <QFile>

#include <httplib.h>
#include <openssl/ssl.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <csignal>

namespace velino::server {
namespace {

using Clock = std::chrono::steady_clock;

// What the request thread knows about the exchange under way between the routing and the
// library's log call, which comes once the answer is written.
struct ExchangeState {
    Clock::time_point start{};
    bool started = false;
    bool closeAfterAnswer = false;
    // What the library still held of a dropped connection's bytes is parsed once more as a
    // request and answered to nobody; it is left out of the log.
    bool dropped = false;
};
thread_local ExchangeState exchange;

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

HttpRequest toHttpRequest(const httplib::Request &in) {
    HttpRequest out;
    out.method = in.method;
    out.path = in.path;
    out.query.insert(in.params.begin(), in.params.end());
    for (const auto &[name, value] : in.headers) {
        // The library adds these two itself; the peer address is taken from the socket.
        if (name == "REMOTE_ADDR" || name == "REMOTE_PORT")
            continue;
        out.headers.emplace(lowerCase(name), value);
    }
    out.peerAddress = in.remote_addr;
    return out;
}

void writeAnswer(const HttpResponse &answer, httplib::Response &res) {
    res.status = answer.status;
    for (const auto &[name, value] : answer.headers)
        res.set_header(name, value);
    res.set_content(answer.body, answer.contentType.c_str());
}

// The refusals made here, before the service is asked, carry the security headers the
// service gives its own answers.
void writeRefusal(HttpResponse answer, httplib::Response &res) {
    addSecurityHeaders(answer);
    writeAnswer(answer, res);
}

void refuseAndClose(const HttpResponse &answer, httplib::Response &res) {
    writeRefusal(answer, res);
    res.set_header("Connection", "close");
    exchange.closeAfterAnswer = true;
}

// Replaces a connection's socket by one whose peer is gone: the library's next read ends at
// once, so the unread rest of a refused body is never taken for a next request.
void dropSocket(int fd) {
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0) {
        shutdown(fd, SHUT_RDWR);
        return;
    }
    close(pair[1]);
    dup3(pair[0], fd, O_CLOEXEC);
    close(pair[0]);
}

void dropConnection(const httplib::Request &req) {
    int fd = req.ssl ? SSL_get_fd(req.ssl) : -1;
    if (fd < 0)
        fd = socketOfConnection(req.local_port, req.remote_addr, req.remote_port);
    if (fd >= 0)
        dropSocket(fd);
}

// The library keeps a request line or header line in memory until its end, however long.
// Over TLS every record passes through this callback on the connection's thread: a request
// whose line and headers take more than kMaxHeadBytes loses its connection. (With
// --plain-http the reverse proxy in front bounds the headers.)
constexpr size_t kMaxHeadBytes = 64 * 1024;
struct HeadGuard {
    const SSL *ssl = nullptr;
    size_t bytes = 0;
    bool readingBody = false;
};
thread_local HeadGuard headGuard;

void countTlsRecord(int writing, int, int contentType, const void *data, size_t length, SSL *ssl,
                    void *) {
    constexpr size_t kRecordHeaderBytes = 5;
    if (writing || contentType != SSL3_RT_HEADER || length < kRecordHeaderBytes)
        return;
    if (headGuard.ssl != ssl)
        headGuard = HeadGuard{ssl, 0, false};
    const auto *header = static_cast<const unsigned char *>(data);
    headGuard.bytes += size_t(header[3]) << 8 | header[4];
    if (!headGuard.readingBody && headGuard.bytes > kMaxHeadBytes) {
        const int fd = SSL_get_fd(ssl);
        if (fd >= 0)
            dropSocket(fd);
        headGuard = HeadGuard{}; // a later connection may get the same SSL address
    }
}

void startRequestHead() {
    headGuard.bytes = 0;
    headGuard.readingBody = false;
}

bool isChunked(const httplib::Request &req) {
    return lowerCase(req.get_header_value("Transfer-Encoding")).find("chunked") !=
           std::string::npos;
}

std::optional<unsigned long long> declaredLength(const httplib::Request &req) {
    const std::string text = req.get_header_value("Content-Length");
    unsigned long long length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return length;
}

QString tlsFileProblem(const QString &cert, const QString &key) {
    for (const QString &file : {cert, key}) {
        QFile f(file);
        if (!f.open(QIODevice::ReadOnly))
            return QStringLiteral("Fichier TLS illisible : %1 (%2).").arg(file, f.errorString());
    }
    return {};
}

} // namespace

HttpServer::HttpServer(SyncService &service, HttpServerOptions options)
    : service_(service), options_(std::move(options)) {
    // OpenSSL writes to sockets with write(): a client gone mid-answer must not end the
    // process.
    std::signal(SIGPIPE, SIG_IGN);
}

HttpServer::~HttpServer() = default;

std::string HttpServer::baseUrl() const {
    const bool ipv6 = options_.host.find(':') != std::string::npos;
    const std::string host = ipv6 ? "[" + options_.host + "]" : options_.host;
    return (options_.plainHttp ? "http://" : "https://") + host + ":" + std::to_string(boundPort_);
}

bool HttpServer::bind(QString *error) {
    if (options_.plainHttp) {
        server_ = std::make_unique<httplib::Server>();
    } else {
        if (const QString problem = tlsFileProblem(options_.tlsCertFile, options_.tlsKeyFile);
            !problem.isEmpty()) {
            *error = problem;
            return false;
        }
        const QByteArray cert = QFile::encodeName(options_.tlsCertFile);
        const QByteArray key = QFile::encodeName(options_.tlsKeyFile);
        auto tls = std::make_unique<httplib::SSLServer>(cert.constData(), key.constData());
        if (tls->is_valid())
            SSL_CTX_set_msg_callback(tls->ssl_context(), countTlsRecord);
        if (!tls->is_valid() ||
            SSL_CTX_set_min_proto_version(tls->ssl_context(), TLS1_2_VERSION) != 1 ||
            SSL_CTX_set_max_proto_version(tls->ssl_context(), TLS1_3_VERSION) != 1) {
            *error = QStringLiteral("Certificat ou cle TLS refuses (PEM attendu, la cle doit "
                                    "correspondre au certificat) : %1, %2.")
                         .arg(options_.tlsCertFile, options_.tlsKeyFile);
            return false;
        }
        server_ = std::move(tls);
    }
    install();
    if (options_.port == 0) {
        boundPort_ = server_->bind_to_any_port(options_.host);
    } else if (server_->bind_to_port(options_.host, options_.port)) {
        boundPort_ = options_.port;
    }
    if (boundPort_ <= 0) {
        *error = QStringLiteral("Impossible d'ecouter sur %1:%2 (adresse occupee ou interdite).")
                     .arg(QString::fromStdString(options_.host))
                     .arg(options_.port);
        return false;
    }
    return true;
}

void HttpServer::install() {
    httplib::Server &s = *server_;
    const int threads = options_.threads;
    s.new_task_queue = [threads] { return new httplib::ThreadPool(size_t(threads)); };
    s.set_read_timeout(options_.ioTimeout);
    s.set_write_timeout(options_.ioTimeout);
    s.set_keep_alive_timeout(options_.keepAliveIdle.count());
    s.set_keep_alive_max_count(100000);
    s.set_tcp_nodelay(true);
    // Not the library's SO_REUSEPORT: a second server on the same port must fail to start,
    // not silently share the requests with the first.
    s.set_socket_options([](int fd) {
        const int on = 1;
        setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });

    s.set_pre_routing_handler([](const httplib::Request &, httplib::Response &) {
        exchange = ExchangeState{Clock::now(), true, false, false};
        return httplib::Server::HandlerResponse::Unhandled;
    });

    // A client that asks before sending its body learns at once that it is too large.
    s.set_expect_100_continue_handler([this](const httplib::Request &req, httplib::Response &res) {
        const std::optional<unsigned long long> length = declaredLength(req);
        if (length && *length > static_cast<unsigned long long>(service_.maxBodyBytes())) {
            exchange = ExchangeState{Clock::now(), true, false, false};
            refuseAndClose(service_.bodyTooLarge(), res);
            // Written by the library without its usual length header on this path.
            res.set_header("Content-Length", std::to_string(res.body.size()));
            return 413;
        }
        return 100;
    });

    auto serve = [this](const httplib::Request &req, httplib::Response &res) {
        writeAnswer(service_.handle(toHttpRequest(req)), res);
    };
    auto serveWithBody = [this](const httplib::Request &req, httplib::Response &res,
                                const httplib::ContentReader &reader) {
        HttpRequest request = toHttpRequest(req);
        const auto cap = static_cast<unsigned long long>(service_.maxBodyBytes());
        const bool chunked = isChunked(req);
        const bool hasLength = req.has_header("Content-Length");
        if (!chunked && hasLength) {
            const std::optional<unsigned long long> length = declaredLength(req);
            if (!length) {
                refuseAndClose(
                    SyncService::errorResponse(400, QString::fromUtf8(texts::kMalformedRequest)),
                    res);
                return;
            }
            if (*length > cap) {
                refuseAndClose(service_.bodyTooLarge(), res);
                return;
            }
        }
        if (chunked || hasLength) {
            headGuard.readingBody = true; // bounded by the cap below
            bool tooLarge = false;
            const bool complete = reader([&](const char *data, size_t size) {
                if (request.body.size() + size > cap) {
                    tooLarge = true;
                    return false;
                }
                request.body.append(data, size);
                return true;
            });
            if (tooLarge) {
                refuseAndClose(service_.bodyTooLarge(), res);
                return;
            }
            if (!complete) {
                refuseAndClose(
                    SyncService::errorResponse(400, QString::fromUtf8(texts::kIncompleteBody)),
                    res);
                return;
            }
        }
        writeAnswer(service_.handle(request), res);
    };
    const std::string any = ".*";
    s.Get(any, serve);
    s.Options(any, serve);
    s.Put(any, serveWithBody);
    s.Post(any, serveWithBody);
    s.Patch(any, serveWithBody);
    s.Delete(any, serveWithBody);

    // Answers the library gives by itself (malformed request line or headers, too long a
    // target, unknown method): the same JSON refusals as the service's.
    s.set_error_handler(
        httplib::Server::HandlerWithResponse([](const httplib::Request &, httplib::Response &res) {
            if (!res.body.empty())
                return httplib::Server::HandlerResponse::Unhandled;
            const QString message = QString::fromUtf8(res.status == 404 ? texts::kUnknownAddress
                                                                        : texts::kMalformedRequest);
            writeRefusal(SyncService::errorResponse(res.status, message), res);
            return httplib::Server::HandlerResponse::Handled;
        }));
    s.set_exception_handler([](const httplib::Request &, httplib::Response &res,
                               std::exception_ptr) {
        refuseAndClose(SyncService::errorResponse(500, QString::fromUtf8(texts::kInternalError)),
                       res);
    });

    // Called once the answer is written.
    s.set_logger([this](const httplib::Request &req, const httplib::Response &res) {
        if (!exchange.started && exchange.dropped) {
            exchange = ExchangeState{};
            return;
        }
        const Clock::duration duration =
            exchange.started ? Clock::now() - exchange.start : Clock::duration::zero();
        service_.recordExchange(toHttpRequest(req), res.status, duration);
        const bool drop = exchange.closeAfterAnswer;
        exchange = ExchangeState{};
        startRequestHead();
        if (drop) {
            dropConnection(req);
            exchange.dropped = true;
        }
    });
}

void HttpServer::run() {
    if (server_)
        server_->listen_after_bind();
}

void HttpServer::stop() {
    if (server_)
        server_->stop();
}

} // namespace velino::server
