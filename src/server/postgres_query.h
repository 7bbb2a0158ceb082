#pragma once

#include <QByteArray>

#include <initializer_list>
#include <memory>

struct pg_conn;
struct pg_result;

namespace velino::server {

struct PostgresResultDeleter {
    void operator()(pg_result *result) const;
};
using PostgresResult = std::unique_ptr<pg_result, PostgresResultDeleter>;

// One statement parameter: raw bytes sent as binary (bytea), or text PostgreSQL casts.
struct PostgresParameter {
    QByteArray value;
    bool binary = false;
};

// Runs one statement with its parameters (never spliced into the SQL) and returns its
// result, with the rows in binary form when `binaryRows` is true.
PostgresResult runPostgresQuery(pg_conn *connection, const char *sql,
                                std::initializer_list<PostgresParameter> parameters = {},
                                bool binaryRows = false);
// True when the statement ran (with or without rows).
bool postgresQuerySucceeded(const PostgresResult &result);
// A big-endian int8 of a binary row.
qint64 postgresBinaryInt64(const pg_result *result, int row, int column);
// The failure's one-line message (no DETAIL, which can quote stored values), for the log.
QByteArray postgresFailure(pg_conn *connection, const PostgresResult &result);

} // namespace velino::server
