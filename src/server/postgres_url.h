#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>

#include <optional>
#include <utility>

namespace velino::server {

// libpq connection keywords and their values, in the order they are given to
// PQconnectdbParams.
using PostgresConnectionParameters = QList<std::pair<QByteArray, QByteArray>>;

// The length of the "postgresql://" or "postgres://" the address starts with, in any case as
// every URL scheme; 0 when it starts with neither.
qsizetype postgresSchemeLength(QStringView url);

// Reads "postgresql://USER@HOST:PORT/DB" (also "postgresql://USER@/DB?host=/socket/folder",
// with the query keys host, port, sslmode, sslrootcert, sslcert, sslkey, connect_timeout and
// application_name). A password in the address is refused: it would show in the process list
// and the shell history; libpq takes it from PGPASSWORD or a .pgpass file instead. The result
// also sets what every connection of the service needs: durable commits, a connect timeout,
// a statement timeout and TCP keepalives. Nothing, with a French sentence in `error`, for an
// address it cannot use.
std::optional<PostgresConnectionParameters> parsePostgresUrl(const QString &url, QString *error);

} // namespace velino::server
