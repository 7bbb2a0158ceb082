#pragma once

#include <QByteArray>

struct pg_conn;

namespace velino::server {

// The schema version this build writes; a database at a higher version is left alone.
int postgresSchemaVersion();

// Brings the database's schema to postgresSchemaVersion() in one transaction, each step once,
// serialised across every server process on the database. False, with the reason for the log
// in `failure`, when it cannot.
bool upgradePostgresSchema(pg_conn *connection, QByteArray *failure);

} // namespace velino::server
