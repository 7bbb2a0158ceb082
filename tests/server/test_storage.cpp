#include "test_storage.h"

#include <QUuid>

#include <libpq-fe.h>

namespace velino::test {

QString testPostgresUrl() {
    return qEnvironmentVariable("VELINO_TEST_POSTGRES_URL");
}

ScratchStorage::ScratchStorage(const std::string &engine) {
    if (engine == "sqlite") {
        m_url = QStringLiteral("sqlite:") + m_folder.filePath(QStringLiteral("slots/sync.db"));
        return;
    }
    if (testPostgresUrl().isEmpty())
        return;
    const QString name =
        QStringLiteral("velino_scratch_") + QUuid::createUuid().toString(QUuid::Id128).left(16);
    PostgresSession admin(testPostgresUrl());
    if (admin.run("CREATE DATABASE " + name.toUtf8()) &&
        admin.run("ALTER DATABASE " + name.toUtf8() + " SET timezone = 'Pacific/Kiritimati'")) {
        m_databaseName = name;
        // The cluster's address with this database instead of its own.
        const QString cluster = testPostgresUrl();
        const qsizetype query = cluster.indexOf(u'?');
        m_url = cluster.left(cluster.lastIndexOf(u'/', query) + 1) + name +
                (query < 0 ? QString() : cluster.mid(query));
    } else {
        m_error = admin.lastError();
    }
}

ScratchStorage::~ScratchStorage() {
    if (!m_databaseName.isEmpty())
        PostgresSession(testPostgresUrl())
            .run("DROP DATABASE IF EXISTS " + m_databaseName.toUtf8() + " WITH (FORCE)");
}

std::unique_ptr<server::SlotStore> ScratchStorage::makeStore() const {
    QString error;
    return server::makeSlotStore(m_url, &error);
}

PostgresSession::PostgresSession(const QString &url)
    : m_connection(PQconnectdb(url.toUtf8().constData())) {
    if (PQstatus(m_connection) != CONNECTION_OK)
        m_lastError = QString::fromUtf8(PQerrorMessage(m_connection));
}

PostgresSession::~PostgresSession() {
    PQfinish(m_connection);
}

std::optional<QByteArray> PostgresSession::run(const QByteArray &sql) {
    if (PQstatus(m_connection) != CONNECTION_OK)
        return std::nullopt;
    PGresult *result = PQexec(m_connection, sql.constData());
    const ExecStatusType status = PQresultStatus(result);
    std::optional<QByteArray> value;
    if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK || status == PGRES_EMPTY_QUERY)
        value = PQntuples(result) > 0 ? QByteArray(PQgetvalue(result, 0, 0)) : QByteArray();
    else
        m_lastError = QString::fromUtf8(PQresultErrorMessage(result));
    PQclear(result);
    return value;
}

} // namespace velino::test
