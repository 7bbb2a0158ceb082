#include "postgres_slot_store.h"

#include "postgres_connection_pool.h"
#include "postgres_query.h"
#include "postgres_schema.h"
#include "postgres_url.h"

#include <libpq-fe.h>

namespace velino::server {

namespace {

using namespace std::chrono_literals;

// Durable writes wait for the disk: more connections let PostgreSQL flush many commits at
// once (32 load connections: 16 gave 1.2 to 1.7 times the PUT rate of 8). Two processes stay
// well under PostgreSQL's default 100 connections. A caller waits at most `maxWaitForConnection`
// for a free one before its request is answered "unavailable".
constexpr int maxConnections = 16;
constexpr auto maxWaitForConnection = 10s;

QByteArray millisecondsText(const QDateTime &time) {
    return QByteArray::number(time.toMSecsSinceEpoch());
}

class PostgresSlotStore final : public SlotStore {
public:
    explicit PostgresSlotStore(PostgresConnectionParameters parameters)
        : m_pool(std::move(parameters), maxConnections, maxWaitForConnection) {}

    bool open() override {
        return withConnection([](pg_conn *connection, QByteArray *failure) {
            return upgradePostgresSchema(connection, failure);
        });
    }

    Status put(const QByteArray &key, const StoredSlot &slot) override {
        // One statement in autocommit with synchronous_commit on: durable once it returns.
        // Concurrent writers on the same key queue on its row; the last commit wins.
        const bool done = withConnection([&](pg_conn *connection, QByteArray *failure) {
            const PostgresResult result = runPostgresQuery(
                connection,
                "INSERT INTO velino_sync_slots (key, updated_at, payload) "
                "VALUES ($1, 'epoch'::timestamptz + $2::bigint * interval '1 millisecond', $3) "
                "ON CONFLICT (key) DO UPDATE "
                "SET updated_at = EXCLUDED.updated_at, payload = EXCLUDED.payload",
                {{key, true}, {millisecondsText(slot.updatedAt)}, {slot.payloadJson, true}});
            return succeeded(connection, result, failure);
        });
        return done ? Status::Ok : Status::Unavailable;
    }

    Status get(const QByteArray &key, StoredSlot &slot) override {
        bool found = false;
        const bool done = withConnection([&](pg_conn *connection, QByteArray *failure) {
            const PostgresResult result =
                runPostgresQuery(connection,
                                 "SELECT payload, (extract(epoch FROM updated_at) * 1000)::bigint "
                                 "FROM velino_sync_slots WHERE key = $1",
                                 {{key, true}}, true);
            if (!succeeded(connection, result, failure)) {
                return false;
            }
            found = PQntuples(result.get()) == 1;
            if (found) {
                slot.payloadJson =
                    QByteArray(PQgetvalue(result.get(), 0, 0), PQgetlength(result.get(), 0, 0));
                slot.updatedAt = QDateTime::fromMSecsSinceEpoch(
                    postgresBinaryInt64(result.get(), 0, 1), Qt::UTC);
            }
            return true;
        });
        if (!done) {
            return Status::Unavailable;
        }
        return found ? Status::Ok : Status::NotFound;
    }

    std::optional<qint64> deleteWrittenBefore(const QDateTime &cutoff) override {
        qint64 deleted = 0;
        const bool done = withConnection([&](pg_conn *connection, QByteArray *failure) {
            const PostgresResult result =
                runPostgresQuery(connection,
                                 "DELETE FROM velino_sync_slots WHERE updated_at < "
                                 "'epoch'::timestamptz + $1::bigint * interval '1 millisecond'",
                                 {{millisecondsText(cutoff)}});
            if (!succeeded(connection, result, failure)) {
                return false;
            }
            deleted = QByteArray(PQcmdTuples(result.get())).toLongLong();
            return true;
        });
        return done ? std::optional(deleted) : std::nullopt;
    }

    std::optional<qint64> count() override {
        qint64 total = 0;
        const bool done = withConnection([&](pg_conn *connection, QByteArray *failure) {
            const PostgresResult result =
                runPostgresQuery(connection, "SELECT count(*) FROM velino_sync_slots", {}, true);
            if (!succeeded(connection, result, failure)) {
                return false;
            }
            total = postgresBinaryInt64(result.get(), 0, 0);
            return true;
        });
        return done ? std::optional(total) : std::nullopt;
    }

    bool isHealthy() override {
        return withConnection([](pg_conn *connection, QByteArray *failure) {
            return succeeded(connection, runPostgresQuery(connection, "SELECT 1"), failure);
        });
    }

private:
    static bool succeeded(pg_conn *connection, const PostgresResult &result, QByteArray *failure) {
        if (postgresQuerySucceeded(result)) {
            return true;
        }
        *failure = postgresFailure(connection, result);
        return false;
    }

    // Runs `call` on a leased connection. A connection that had sat idle may have died with
    // a restart of the database: then the idle ones are closed and the call is made once more
    // on a new connection (every call here may safely run twice). Otherwise a failure is
    // final for this call, and the next call connects again.
    template <typename Call> bool withConnection(Call call) {
        for (int attempt = 0; attempt < 2; ++attempt) {
            std::optional<PostgresConnectionPool::Lease> lease = m_pool.acquire();
            if (!lease) {
                return false;
            }
            QByteArray failure;
            if (call(lease->connection(), &failure)) {
                m_pool.noteSuccess();
                return true;
            }
            const bool connectionLost = PQstatus(lease->connection()) != CONNECTION_OK;
            if (!connectionLost || !lease->wasIdle() || attempt > 0) {
                m_pool.noteFailure(failure);
                return false;
            }
            m_pool.closeIdle();
        }
        return false;
    }

    PostgresConnectionPool m_pool;
};

} // namespace

std::unique_ptr<SlotStore> makePostgresSlotStore(const QString &url, QString *error) {
    std::optional<PostgresConnectionParameters> parameters = parsePostgresUrl(url, error);
    if (!parameters) {
        return nullptr;
    }
    return std::make_unique<PostgresSlotStore>(std::move(*parameters));
}

} // namespace velino::server
