#pragma once

#include "sync_service.h"

#include <QString>

#include <chrono>
#include <memory>
#include <string>

namespace httplib {
class Server;
}

namespace velino::server {

struct HttpServerOptions {
    std::string host = "127.0.0.1";
    int port = 8443; // 0: any free port
    QString tlsCertFile;
    QString tlsKeyFile;
    bool plainHttp = false;
    // A connection that makes no progress (headers, body or answer) for this long is cut.
    std::chrono::seconds ioTimeout{30};
    // Each open connection holds a thread while it is kept alive.
    int threads = 64;
    std::chrono::seconds keepAliveIdle{5};
};

// The service on a socket: HTTP/1.1 with keep-alive, over TLS 1.2 or 1.3 unless plain HTTP
// is asked for, each connection on a thread of a fixed pool. Bodies over the service's cap
// are refused from their Content-Length, or as soon as a chunked body passes it, without
// reading the rest.
class HttpServer {
public:
    HttpServer(SyncService &service, HttpServerOptions options);
    ~HttpServer();

    // Loads the certificate and binds the address; false with a French sentence in `error`.
    bool bind(QString *error);
    int port() const { return boundPort_; }
    // https://HOST:PORT (http:// for plain HTTP)
    std::string baseUrl() const;

    // Serves until stop(); returns once the requests under way are answered.
    void run();
    // From any thread.
    void stop();

private:
    void install();

    SyncService &service_;
    HttpServerOptions options_;
    std::unique_ptr<httplib::Server> server_;
    int boundPort_ = 0;
};

} // namespace velino::server
