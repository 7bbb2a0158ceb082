#include "postgres_url.h"

#include <QSet>
#include <QUrlQuery>

#include <algorithm>

namespace velino::server {

namespace {

const QString expectedForm = QStringLiteral("postgresql://UTILISATEUR@HOTE:PORT/BASE");

QString invalidAddress(const QString &why) {
    return QStringLiteral("Adresse PostgreSQL invalide (%1) : attendu %2").arg(why, expectedForm);
}

QString passwordRefused() {
    return QStringLiteral("Le mot de passe PostgreSQL ne se met pas dans l'adresse : donne-le "
                          "par la variable PGPASSWORD ou un fichier .pgpass.");
}

QByteArray decoded(QStringView part) {
    return QByteArray::fromPercentEncoding(part.toUtf8());
}

bool isPort(const QByteArray &text) {
    if (text.isEmpty() || text.size() > 5 ||
        !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        return false;
    }
    const int port = text.toInt();
    return port >= 1 && port <= 65535;
}

std::optional<QString> splitHostPort(QStringView authority, QByteArray &host, QByteArray &port) {
    QStringView rest = authority;
    if (rest.startsWith(u'[')) {
        const qsizetype end = rest.indexOf(u']');
        if (end < 0) {
            return invalidAddress(QStringLiteral("crochet non ferme"));
        }
        host = rest.mid(1, end - 1).toUtf8();
        rest = rest.mid(end + 1);
        if (!rest.isEmpty() && !rest.startsWith(u':')) {
            return invalidAddress(QStringLiteral("texte apres l'adresse IPv6"));
        }
    } else {
        const qsizetype colon = rest.indexOf(u':');
        host = decoded(colon < 0 ? rest : rest.left(colon));
        rest = colon < 0 ? QStringView() : rest.mid(colon);
    }
    if (!rest.isEmpty()) {
        port = decoded(rest.mid(1));
        if (!isPort(port)) {
            return invalidAddress(QStringLiteral("port incorrect"));
        }
    }
    return std::nullopt;
}

} // namespace

qsizetype postgresSchemeLength(QStringView url) {
    for (const auto scheme : {QStringView(u"postgresql://"), QStringView(u"postgres://")}) {
        if (url.startsWith(scheme, Qt::CaseInsensitive))
            return scheme.size();
    }
    return 0;
}

std::optional<PostgresConnectionParameters> parsePostgresUrl(const QString &url, QString *error) {
    const auto fail = [error](const QString &message) {
        if (error) {
            *error = message;
        }
        return std::nullopt;
    };

    const qsizetype schemeLength = postgresSchemeLength(url);
    if (schemeLength == 0) {
        return fail(invalidAddress(QStringLiteral("schema inconnu")));
    }
    QStringView rest = QStringView(url).mid(schemeLength);

    const qsizetype queryStart = rest.indexOf(u'?');
    const QStringView query = queryStart < 0 ? QStringView() : rest.mid(queryStart + 1);
    rest = queryStart < 0 ? rest : rest.left(queryStart);
    const qsizetype pathStart = rest.indexOf(u'/');
    if (pathStart < 0) {
        return fail(invalidAddress(QStringLiteral("nom de base manquant")));
    }
    const QStringView authority = rest.left(pathStart);
    const QByteArray database = decoded(rest.mid(pathStart + 1));

    PostgresConnectionParameters parameters;
    QByteArray host;
    QByteArray port;
    const qsizetype at = authority.lastIndexOf(u'@');
    if (at >= 0) {
        const QStringView userInfo = authority.left(at);
        if (userInfo.contains(u':')) {
            return fail(passwordRefused());
        }
        if (!userInfo.isEmpty()) {
            parameters.emplaceBack("user", decoded(userInfo));
        }
    }
    if (const auto hostError = splitHostPort(authority.mid(at + 1), host, port)) {
        return fail(*hostError);
    }
    if (database.isEmpty() || database.contains('/')) {
        return fail(invalidAddress(QStringLiteral("nom de base manquant")));
    }
    parameters.emplaceBack("dbname", database);

    static const QSet<QString> allowedKeys = {QStringLiteral("host"),
                                              QStringLiteral("port"),
                                              QStringLiteral("sslmode"),
                                              QStringLiteral("sslrootcert"),
                                              QStringLiteral("sslcert"),
                                              QStringLiteral("sslkey"),
                                              QStringLiteral("connect_timeout"),
                                              QStringLiteral("application_name")};
    bool timeoutGiven = false;
    const auto items = QUrlQuery(query.toString()).queryItems(QUrl::FullyDecoded);
    for (const auto &[key, value] : items) {
        if (key == QLatin1String("password") || key == QLatin1String("passfile")) {
            return fail(passwordRefused());
        }
        if (!allowedKeys.contains(key)) {
            return fail(invalidAddress(QStringLiteral("parametre inconnu %1").arg(key)));
        }
        if (key == QLatin1String("host")) {
            host = value.toUtf8();
        } else if (key == QLatin1String("port")) {
            port = value.toUtf8();
            if (!isPort(port)) {
                return fail(invalidAddress(QStringLiteral("port incorrect")));
            }
        } else {
            timeoutGiven = timeoutGiven || key == QLatin1String("connect_timeout");
            parameters.emplaceBack(key.toUtf8(), value.toUtf8());
        }
    }
    if (!host.isEmpty()) {
        parameters.emplaceBack("host", host);
    }
    if (!port.isEmpty()) {
        parameters.emplaceBack("port", port);
    }
    if (!timeoutGiven) {
        parameters.emplaceBack("connect_timeout", "5");
    }
    // Every commit is on disk before the client hears Ok, whatever the database's default;
    // a blocked statement or a silent peer ends in an error instead of a hung request.
    parameters.emplaceBack("options", "-c synchronous_commit=on -c statement_timeout=15000");
    parameters.emplaceBack("keepalives", "1");
    parameters.emplaceBack("keepalives_idle", "30");
    parameters.emplaceBack("keepalives_interval", "10");
    parameters.emplaceBack("keepalives_count", "3");
    parameters.emplaceBack("fallback_application_name", "velino-sync-server");
    return parameters;
}

} // namespace velino::server
