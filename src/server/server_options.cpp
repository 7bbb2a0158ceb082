#include "server_options.h"

#include <QStandardPaths>

namespace velino::server {
namespace {

std::optional<qint64> positiveNumber(const QString &text, qint64 max) {
    bool ok = false;
    const qint64 value = text.toLongLong(&ok);
    if (!ok || value < 1 || value > max)
        return std::nullopt;
    return value;
}

// HOST:PORT, or [IPV6]:PORT.
bool parseListen(const QString &text, ServerOptions &options) {
    const qsizetype colon = text.lastIndexOf(u':');
    if (colon <= 0)
        return false;
    QString host = text.left(colon);
    if (host.startsWith(u'[') && host.endsWith(u']'))
        host = host.mid(1, host.size() - 2);
    bool ok = false;
    const int port = text.mid(colon + 1).toInt(&ok); // 0: any free port
    if (host.isEmpty() || !ok || port < 0 || port > 65535 || host.contains(u' '))
        return false;
    options.host = host;
    options.port = port;
    return true;
}

} // namespace

QString defaultDatabaseUrl() {
    const QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QStringLiteral("sqlite:") + dataHome + QStringLiteral("/Korvel/velino-sync/sync.db");
}

QString serverUsage() {
    return QStringLiteral(
        "usage: velino-sync-server [--listen HOST:PORT] [--database URL]\n"
        "                          [--tls-cert FILE --tls-key FILE | --plain-http]\n"
        "                          [--trust-proxy] [--retention-days N] [--max-body BYTES]\n"
        "                          [--logo FILE] [--max-requests-per-minute N] [--threads N]\n");
}

std::optional<ServerOptions> parseServerOptions(const QStringList &arguments, QString *error) {
    ServerOptions options;
    const QStringList withValue =
        QStringLiteral("--listen --database --tls-cert --tls-key --retention-days --max-body "
                       "--logo --max-requests-per-minute --threads")
            .split(u' ');
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString name = arguments[i];
        if (name == u"--help" || name == u"-h") {
            options.help = true;
            return options;
        }
        if (name == u"--plain-http") {
            options.plainHttp = true;
            continue;
        }
        if (name == u"--trust-proxy") {
            options.trustProxy = true;
            continue;
        }
        if (!withValue.contains(name)) {
            *error = QStringLiteral("Option inconnue : %1.").arg(name);
            return std::nullopt;
        }
        if (i + 1 >= arguments.size()) {
            *error = QStringLiteral("L'option %1 attend une valeur.").arg(name);
            return std::nullopt;
        }
        const QString value = arguments[++i];
        const auto invalid = [&] {
            *error = QStringLiteral("Valeur invalide pour %1 : %2.").arg(name, value);
            return std::nullopt;
        };
        if (name == u"--listen") {
            if (!parseListen(value, options))
                return invalid();
        } else if (name == u"--database") {
            options.databaseUrl = value;
        } else if (name == u"--tls-cert") {
            options.tlsCertFile = value;
        } else if (name == u"--tls-key") {
            options.tlsKeyFile = value;
        } else if (name == u"--logo") {
            options.logoFile = value;
        } else if (name == u"--retention-days") {
            const auto days = positiveNumber(value, 36500);
            if (!days)
                return invalid();
            options.retentionDays = int(*days);
        } else if (name == u"--max-body") {
            const auto bytes = positiveNumber(value, qint64(1) << 31);
            if (!bytes)
                return invalid();
            options.maxBodyBytes = *bytes;
        } else if (name == u"--max-requests-per-minute") {
            bool ok = false;
            const int perMinute = value.toInt(&ok);
            if (!ok || perMinute < 0)
                return invalid();
            options.requestsPerMinute = perMinute;
        } else if (name == u"--threads") {
            const auto threads = positiveNumber(value, 4096);
            if (!threads)
                return invalid();
            options.threads = int(*threads);
        }
    }
    const bool anyTls = !options.tlsCertFile.isEmpty() || !options.tlsKeyFile.isEmpty();
    const bool fullTls = !options.tlsCertFile.isEmpty() && !options.tlsKeyFile.isEmpty();
    if (options.plainHttp && anyTls) {
        *error = QStringLiteral("--plain-http exclut --tls-cert et --tls-key : choisis HTTPS ou "
                                "HTTP derriere un proxy TLS.");
        return std::nullopt;
    }
    if (anyTls && !fullTls) {
        *error = QStringLiteral("HTTPS demande --tls-cert et --tls-key ensemble (fichiers PEM).");
        return std::nullopt;
    }
    if (!options.plainHttp && !fullTls) {
        *error = QStringLiteral(
            "Refus de demarrer sans TLS : donne --tls-cert et --tls-key (PEM) pour servir en "
            "HTTPS, ou --plain-http derriere un proxy TLS.");
        return std::nullopt;
    }
    if (options.databaseUrl.isEmpty())
        options.databaseUrl = defaultDatabaseUrl();
    return options;
}

} // namespace velino::server
