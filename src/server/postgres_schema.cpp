#include "postgres_schema.h"

#include "postgres_query.h"

#include <libpq-fe.h>

#include <array>

namespace velino::server {

namespace {

// Step i brings the schema from version i to version i + 1. Slots are keyed by the SHA-256
// of the code; the payload is kept as the exact bytes a GET answers.
constexpr std::array upgradeSteps = {
    R"sql(
CREATE TABLE velino_sync_slots (
    key bytea PRIMARY KEY CHECK (octet_length(key) = 32),
    updated_at timestamptz NOT NULL,
    payload bytea NOT NULL
);
CREATE INDEX velino_sync_slots_updated_at ON velino_sync_slots (updated_at);
)sql",
};

// Any constant shared by every process: the lock serialises concurrent upgrades.
constexpr const char *lockSchema = "SELECT pg_advisory_xact_lock(7364215511)";

} // namespace

int postgresSchemaVersion() {
    return static_cast<int>(upgradeSteps.size());
}

bool upgradePostgresSchema(pg_conn *connection, QByteArray *failure) {
    const auto run =
        [&](const char *sql,
            std::initializer_list<PostgresParameter> parameters = {}) -> PostgresResult {
        PostgresResult result = runPostgresQuery(connection, sql, parameters);
        if (!postgresQuerySucceeded(result)) {
            *failure = postgresFailure(connection, result);
            return nullptr;
        }
        return result;
    };

    // A failed statement leaves the transaction open; the caller drops the connection, which
    // rolls it back.
    if (!run("BEGIN") || !run(lockSchema) ||
        !run("CREATE TABLE IF NOT EXISTS velino_sync_schema (version integer NOT NULL)")) {
        return false;
    }
    const PostgresResult current = run("SELECT coalesce(max(version), 0) FROM velino_sync_schema");
    if (!current) {
        return false;
    }
    const int version = QByteArray(PQgetvalue(current.get(), 0, 0)).toInt();
    if (version > postgresSchemaVersion()) {
        *failure = "la base est au schema " + QByteArray::number(version) +
                   ", plus recent que celui de ce serveur (" +
                   QByteArray::number(postgresSchemaVersion()) + ")";
        run("ROLLBACK");
        return false;
    }
    for (int step = version; step < postgresSchemaVersion(); ++step) {
        if (!run(upgradeSteps[static_cast<size_t>(step)])) {
            return false;
        }
    }
    const QByteArray latest = QByteArray::number(postgresSchemaVersion());
    return run("DELETE FROM velino_sync_schema") &&
           run("INSERT INTO velino_sync_schema (version) VALUES ($1::integer)", {{latest}}) &&
           run("COMMIT");
}

} // namespace velino::server
