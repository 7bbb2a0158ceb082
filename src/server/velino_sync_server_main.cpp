// velino-sync-server: the other end of the desktop's phone sync.
#include "http_server.h"
#include "retention_sweeper.h"
#include "server_options.h"
#include "slot_store.h"
#include "sync_service.h"

#include <QCoreApplication>
#include <QFile>

#include <pthread.h>
#include <signal.h>

#include <cstdio>
#include <thread>

using namespace velino::server;

namespace {

constexpr std::chrono::hours kSweepInterval{1};

void say(const QString &line) {
    std::fprintf(stderr, "velino-sync-server: %s\n", line.toLocal8Bit().constData());
}

std::optional<QByteArray> loadLogo(const QString &file, QString *error) {
    QFile f(file.isEmpty() ? QStringLiteral(":/velino-sync-server/VelinoLogo.png") : file);
    if (!f.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("Logo illisible : %1 (%2).").arg(file, f.errorString());
        return std::nullopt;
    }
    const QByteArray png = f.readAll();
    if (!png.startsWith("\x89PNG\r\n\x1a\n")) {
        *error = QStringLiteral("Le logo %1 n'est pas une image PNG.").arg(file);
        return std::nullopt;
    }
    return png;
}

} // namespace

int main(int argc, char **argv) {
    // SIGTERM and SIGINT are taken by one thread (below) and by no other: the mask is
    // inherited by every thread started from here.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGTERM);
    sigaddset(&stopSignals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    QCoreApplication app(argc, argv);
    QString error;
    const std::optional<ServerOptions> options = parseServerOptions(app.arguments().mid(1), &error);
    if (!options) {
        say(error);
        std::fputs(serverUsage().toLocal8Bit().constData(), stderr);
        return 2;
    }
    if (options->help) {
        std::fputs(serverUsage().toLocal8Bit().constData(), stdout);
        return 0;
    }
    const std::optional<QByteArray> logo = loadLogo(options->logoFile, &error);
    if (!logo) {
        say(error);
        return 2;
    }
    std::unique_ptr<SlotStore> store = makeSlotStore(options->databaseUrl, &error);
    if (!store) {
        say(error);
        return 2;
    }
    SyncServiceConfig config;
    config.maxBodyBytes = options->maxBodyBytes;
    config.trustProxy = options->trustProxy;
    config.requestsPerMinute = options->requestsPerMinute;
    config.logoPng = *logo;
    SyncService service(*store, config);

    HttpServerOptions httpOptions;
    httpOptions.host = options->host.toStdString();
    httpOptions.port = options->port;
    httpOptions.tlsCertFile = options->tlsCertFile;
    httpOptions.tlsKeyFile = options->tlsKeyFile;
    httpOptions.plainHttp = options->plainHttp;
    httpOptions.threads = options->threads;
    HttpServer server(service, httpOptions);
    // The certificate and the address first: a wrong one leaves no database behind.
    if (!server.bind(&error)) {
        say(error);
        return 1;
    }
    if (!store->open()) {
        say(QStringLiteral("Base de donnees inaccessible : %1.").arg(options->databaseUrl));
        return 1;
    }
    RetentionSweeper sweeper(*store, options->retentionDays, kSweepInterval,
                             [](const std::string &line) { say(QString::fromStdString(line)); });

    std::thread signalWaiter([&] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        server.stop();
    });
    std::printf("velino-sync-server: pret sur %s\n", server.baseUrl().c_str());
    std::fflush(stdout);
    server.run();
    // run() also returns when the listening socket fails: the waiter must not stay behind.
    pthread_kill(signalWaiter.native_handle(), SIGTERM);
    signalWaiter.join();
    say(QStringLiteral("arrete."));
    return 0;
}
