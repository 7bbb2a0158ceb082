#pragma once

#include "postgres_url.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <vector>

struct pg_conn;

namespace velino::server {

// A few libpq connections shared by the request threads: each thread leases one connection
// for one call, so no connection is ever used by two threads at once. Connections are opened
// on demand, one at a time, so a database that was down is reached again by the next call.
class PostgresConnectionPool {
public:
    class Lease {
    public:
        Lease(const Lease &) = delete;
        Lease &operator=(const Lease &) = delete;
        Lease(Lease &&other) noexcept;
        Lease &operator=(Lease &&) = delete;
        ~Lease();

        pg_conn *connection() const { return m_connection; }
        // True when the connection sat idle in the pool: it may have died in the meantime.
        bool wasIdle() const { return m_wasIdle; }

    private:
        friend class PostgresConnectionPool;
        Lease(PostgresConnectionPool *pool, pg_conn *connection, bool wasIdle);

        PostgresConnectionPool *m_pool;
        pg_conn *m_connection;
        bool m_wasIdle;
    };

    PostgresConnectionPool(PostgresConnectionParameters parameters, int maxConnections,
                           std::chrono::milliseconds maxWait);
    PostgresConnectionPool(const PostgresConnectionPool &) = delete;
    PostgresConnectionPool &operator=(const PostgresConnectionPool &) = delete;
    ~PostgresConnectionPool();

    // An idle connection, or a new one when fewer than the maximum are open; waits up to
    // `maxWait` for one to come back. Nothing when none can be had.
    std::optional<Lease> acquire();
    // Closes the idle connections: after one was found dead, the others are stale too
    // (the server restarted).
    void closeIdle();

    // Logs the first failure of an outage (one line, not one per request) and forgets the
    // outage at the next success.
    void noteFailure(const QByteArray &reason);
    void noteSuccess() { m_failing = false; }

private:
    void giveBack(pg_conn *connection);
    pg_conn *connect();

    const PostgresConnectionParameters m_parameters;
    const int m_maxConnections;
    const std::chrono::milliseconds m_maxWait;

    std::mutex m_mutex;
    std::condition_variable m_returned;
    std::vector<pg_conn *> m_idle;
    int m_open = 0;
    bool m_connecting = false;
    std::atomic<bool> m_failing = false;
};

} // namespace velino::server
