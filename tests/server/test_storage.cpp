#include "test_storage.h"

#include "postgres_url.h"

#include <QUuid>

#include <libpq-fe.h>

namespace velino::test {

QString testPostgresUrl() {
    return qEnvironmentVariable("VELINO_TEST_POSTGRES_URL");
}

ScratchStorage::ScratchStorage(const std::string &engine) : m_clusterUrl(testPostgresUrl()) {
    if (engine == "sqlite") {
        m_url = QStringLiteral("sqlite:") + m_folder.filePath(QStringLiteral("slots/sync.db"));
        return;
    }
    if (m_clusterUrl.isEmpty()) {
        m_error = QStringLiteral("VELINO_TEST_POSTGRES_URL not set (scripts/with-test-postgres)");
        return;
    }
    const QString name =
        QStringLiteral("velino_scratch_") + QUuid::createUuid().toString(QUuid::Id128).left(16);
    const qsizetype queryStart = m_clusterUrl.indexOf(u'?');
    const QString base = m_clusterUrl.left(queryStart);
    m_url = base.left(base.lastIndexOf(u'/') + 1) + name +
            (queryStart < 0 ? QString() : m_clusterUrl.mid(queryStart));
    PostgresSession admin(m_clusterUrl);
    if (admin.run("CREATE DATABASE " + name.toUtf8()) &&
        admin.run("ALTER DATABASE " + name.toUtf8() + " SET timezone = 'Pacific/Kiritimati'")) {
        m_databaseName = name;
    } else {
        m_error = admin.lastError();
    }
}

ScratchStorage::~ScratchStorage() {
    if (!m_databaseName.isEmpty())
        PostgresSession(m_clusterUrl)
            .run("DROP DATABASE IF EXISTS " + m_databaseName.toUtf8() + " WITH (FORCE)");
}

std::unique_ptr<server::SlotStore> ScratchStorage::makeStore() const {
    QString error;
    return server::makeSlotStore(m_url, &error);
}

PostgresSession::PostgresSession(const QString &url) {
    const auto parameters = server::parsePostgresUrl(url, &m_lastError);
    if (!parameters)
        return;
    std::vector<const char *> keywords;
    std::vector<const char *> values;
    for (const auto &[keyword, value] : *parameters) {
        keywords.push_back(keyword.constData());
        values.push_back(value.constData());
    }
    keywords.push_back(nullptr);
    values.push_back(nullptr);
    m_connection = PQconnectdbParams(keywords.data(), values.data(), 0);
    if (PQstatus(m_connection) != CONNECTION_OK)
        m_lastError = QString::fromUtf8(PQerrorMessage(m_connection));
}

PostgresSession::~PostgresSession() {
    PQfinish(m_connection);
}

std::optional<QByteArray> PostgresSession::run(const QByteArray &sql) {
    if (!m_connection || PQstatus(m_connection) != CONNECTION_OK)
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
