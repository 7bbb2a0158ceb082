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
    if (runSql(testPostgresUrl(), "CREATE DATABASE " + name.toUtf8(), &m_error) &&
        runSql(testPostgresUrl(),
               "ALTER DATABASE " + name.toUtf8() + " SET timezone = 'Pacific/Kiritimati'",
               &m_error)) {
        m_databaseName = name;
        // The cluster's address with this database instead of its own.
        const QString cluster = testPostgresUrl();
        const qsizetype query = cluster.indexOf(u'?');
        m_url = cluster.left(cluster.lastIndexOf(u'/', query) + 1) + name +
                (query < 0 ? QString() : cluster.mid(query));
    }
}

ScratchStorage::~ScratchStorage() {
    if (!m_databaseName.isEmpty())
        runSql(testPostgresUrl(), "DROP DATABASE " + m_databaseName.toUtf8() + " WITH (FORCE)");
}

std::unique_ptr<server::SlotStore> ScratchStorage::makeStore() const {
    QString error;
    return server::makeSlotStore(m_url, &error);
}

std::optional<QByteArray> runSql(const QString &url, const QByteArray &sql, QString *error) {
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

} // namespace velino::test
