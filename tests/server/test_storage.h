#pragma once

#include "slot_store.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QTimeZone>
#include <QUuid>

#include <libpq-fe.h>

#include <optional>
#include <string>

namespace velino::test {

inline QString testPostgresUrl() {
    return qEnvironmentVariable("VELINO_TEST_POSTGRES_URL");
}

#define SKIP_WITHOUT_TEST_CLUSTER(engine)                                                          \
    do {                                                                                           \
        if (std::string(engine) == "postgresql" && velino::test::testPostgresUrl().isEmpty())      \
            GTEST_SKIP() << "VELINO_TEST_POSTGRES_URL not set (scripts/with-test-postgres)";       \
    } while (false)

inline QByteArray keyOf(int n) {
    return QCryptographicHash::hash(QByteArray::number(n), QCryptographicHash::Sha256);
}
inline QDateTime at(qint64 secondsSinceEpoch) {
    return QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, QTimeZone::utc());
}
inline server::StoredSlot slotOf(int n) {
    return {at(1'700'000'000 + n), "{\"n\":" + QByteArray::number(n) + "}"};
}

// The first value of the first row (empty without a row), nothing on failure.
inline std::optional<QByteArray> runSql(const QString &url, const QByteArray &sql,
                                        QString *error = nullptr) {
    pg_conn *connection = PQconnectdb(url.toUtf8().constData());
    PGresult *result = PQexec(connection, sql.constData());
    const ExecStatusType status = PQresultStatus(result);
    std::optional<QByteArray> value;
    if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK || status == PGRES_EMPTY_QUERY)
        value = PQntuples(result) > 0 ? QByteArray(PQgetvalue(result, 0, 0)) : QByteArray();
    else if (error)
        *error = QString::fromUtf8(PQerrorMessage(connection));
    PQclear(result);
    PQfinish(connection);
    return value;
}

// Empty storage of one engine, removed with the object; PostgreSQL in a far time zone.
class ScratchStorage {
public:
    explicit ScratchStorage(const std::string &engine) {
        if (engine == "sqlite") {
            m_url = QStringLiteral("sqlite:") + m_folder.filePath(QStringLiteral("slots/sync.db"));
            return;
        }
        const QString cluster = testPostgresUrl();
        const QByteArray name = "velino_scratch_" + QUuid::createUuid().toByteArray(QUuid::Id128);
        if (!cluster.isEmpty() && runSql(cluster, "CREATE DATABASE " + name, &m_error) &&
            runSql(cluster, "ALTER DATABASE " + name + " SET timezone = 'Pacific/Kiritimati'",
                   &m_error)) {
            m_databaseName = name;
            const qsizetype query = cluster.indexOf(u'?');
            m_url = cluster.left(cluster.lastIndexOf(u'/', query) + 1) + QString::fromLatin1(name) +
                    (query < 0 ? QString() : cluster.mid(query));
        }
    }
    ~ScratchStorage() {
        if (!m_databaseName.isEmpty())
            runSql(testPostgresUrl(), "DROP DATABASE " + m_databaseName + " WITH (FORCE)");
    }

    QString error() const { return m_error; }
    QString url() const { return m_url; }
    std::unique_ptr<server::SlotStore> makeStore() const {
        QString error;
        return server::makeSlotStore(m_url, &error);
    }

private:
    QTemporaryDir m_folder;
    QByteArray m_databaseName;
    QString m_url;
    QString m_error;
};

} // namespace velino::test
