#include "postgres_connection_pool.h"

#include <QtGlobal>

#include <libpq-fe.h>

namespace velino::server {

PostgresConnectionPool::Lease::Lease(PostgresConnectionPool *pool, pg_conn *connection,
                                     bool wasIdle)
    : m_pool(pool), m_connection(connection), m_wasIdle(wasIdle) {}

PostgresConnectionPool::Lease::Lease(Lease &&other) noexcept
    : m_pool(other.m_pool), m_connection(other.m_connection), m_wasIdle(other.m_wasIdle) {
    other.m_connection = nullptr;
}

PostgresConnectionPool::Lease::~Lease() {
    if (m_connection) {
        m_pool->giveBack(m_connection);
    }
}

PostgresConnectionPool::PostgresConnectionPool(PostgresConnectionParameters parameters,
                                               int maxConnections,
                                               std::chrono::milliseconds maxWait)
    : m_parameters(std::move(parameters)), m_maxConnections(qMax(1, maxConnections)),
      m_maxWait(maxWait) {}

PostgresConnectionPool::~PostgresConnectionPool() {
    for (pg_conn *connection : m_idle) {
        PQfinish(connection);
    }
}

std::optional<PostgresConnectionPool::Lease> PostgresConnectionPool::acquire() {
    {
        std::unique_lock lock(m_mutex);
        // One connection opened at a time: a burst of requests on an empty pool would
        // otherwise start as many backends at once, and on a busy machine their start-up can
        // outlast the connect timeout.
        const bool available = m_returned.wait_for(lock, m_maxWait, [this] {
            return !m_idle.empty() || (m_open < m_maxConnections && !m_connecting);
        });
        if (!available) {
            lock.unlock();
            noteFailure("toutes les connexions sont occupees depuis " +
                        QByteArray::number(qint64(m_maxWait.count())) + " ms");
            return std::nullopt;
        }
        if (!m_idle.empty()) {
            pg_conn *connection = m_idle.back();
            m_idle.pop_back();
            return Lease(this, connection, true);
        }
        ++m_open;
        m_connecting = true;
    }
    // Connecting takes a round trip or a timeout: not under the lock.
    pg_conn *connection = connect();
    {
        std::lock_guard lock(m_mutex);
        m_connecting = false;
        if (!connection) {
            --m_open;
        }
    }
    m_returned.notify_all();
    if (!connection) {
        return std::nullopt;
    }
    return Lease(this, connection, false);
}

void PostgresConnectionPool::closeIdle() {
    std::vector<pg_conn *> stale;
    {
        std::lock_guard lock(m_mutex);
        stale.swap(m_idle);
        m_open -= static_cast<int>(stale.size());
        m_returned.notify_all();
    }
    for (pg_conn *connection : stale) {
        PQfinish(connection);
    }
}

void PostgresConnectionPool::giveBack(pg_conn *connection) {
    // A broken connection, or one left inside a transaction by a failed call, is not reused.
    const bool reusable =
        PQstatus(connection) == CONNECTION_OK && PQtransactionStatus(connection) == PQTRANS_IDLE;
    if (!reusable) {
        PQfinish(connection);
    }
    std::lock_guard lock(m_mutex);
    if (reusable) {
        m_idle.push_back(connection);
    } else {
        --m_open;
    }
    m_returned.notify_one();
}

pg_conn *PostgresConnectionPool::connect() {
    std::vector<const char *> keywords;
    std::vector<const char *> values;
    for (const auto &[keyword, value] : m_parameters) {
        keywords.push_back(keyword.constData());
        values.push_back(value.constData());
    }
    keywords.push_back(nullptr);
    values.push_back(nullptr);

    pg_conn *connection = PQconnectdbParams(keywords.data(), values.data(), 0);
    if (PQstatus(connection) != CONNECTION_OK) {
        noteFailure(QByteArray(PQerrorMessage(connection)).trimmed());
        PQfinish(connection);
        return nullptr;
    }
    // Notices ("already exists, skipping") are not for the service's log.
    PQsetNoticeProcessor(
        connection, [](void *, const char *) {}, nullptr);
    return connection;
}

void PostgresConnectionPool::noteFailure(const QByteArray &reason) {
    // libpq's messages name the server and the user, never a password.
    if (!m_failing.exchange(true)) {
        qWarning("PostgreSQL indisponible : %s", reason.constData());
    }
}

} // namespace velino::server
