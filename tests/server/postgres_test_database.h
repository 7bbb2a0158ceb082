#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

struct pg_conn;

namespace velino::test {

// The test cluster's address given by scripts/with-test-postgres, or empty outside it.
QString testPostgresUrl();
// The same postgresql:// address on another database of the cluster.
QString postgresUrlWithDatabase(const QString &url, const QString &database);

// A direct libpq session, to set a database up and look inside it.
class PostgresSession {
public:
    explicit PostgresSession(const QString &url);
    PostgresSession(const PostgresSession &) = delete;
    PostgresSession &operator=(const PostgresSession &) = delete;
    ~PostgresSession();

    bool isOpen() const;
    QString lastError() const { return m_lastError; }
    // Runs SQL (several statements allowed); the first value of the first row as text, an
    // empty text when there is no row, nothing on failure (see lastError).
    std::optional<QByteArray> run(const QByteArray &sql);

private:
    pg_conn *m_connection = nullptr;
    QString m_lastError;
};

// A new empty database on the cluster, dropped when the object goes.
class ScratchPostgresDatabase {
public:
    explicit ScratchPostgresDatabase(const QString &clusterUrl);
    ScratchPostgresDatabase(const ScratchPostgresDatabase &) = delete;
    ScratchPostgresDatabase &operator=(const ScratchPostgresDatabase &) = delete;
    ~ScratchPostgresDatabase();

    bool created() const { return m_created; }
    QString error() const { return m_error; }
    const QString &name() const { return m_name; }
    const QString &url() const { return m_url; }

private:
    QString m_clusterUrl;
    QString m_name;
    QString m_url;
    QString m_error;
    bool m_created = false;
};

} // namespace velino::test
