#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace velino::server {

// The command line of velino-sync-server.
struct ServerOptions {
    QString host = QStringLiteral("127.0.0.1");
    int port = 8443;
    QString databaseUrl; // sqlite: in the user's data folder when not given
    QString tlsCertFile;
    QString tlsKeyFile;
    bool plainHttp = false;
    bool trustProxy = false;
    int retentionDays = 90;
    qint64 maxBodyBytes = 8 * 1024 * 1024;
    QString logoFile;
    int requestsPerMinute = 1200;
    int threads = 64;
    bool help = false;
};

// The options of `arguments` (without the program name); nothing, with one French sentence
// in `error`, when they are wrong or incomplete.
std::optional<ServerOptions> parseServerOptions(const QStringList &arguments, QString *error);

// sqlite: followed by ~/.local/share/Korvel/velino-sync/sync.db
QString defaultDatabaseUrl();

QString serverUsage();

} // namespace velino::server
