#include "postgres_test_database.h"

#include "postgres_url.h"

#include <QUuid>

#include <libpq-fe.h>

#include <vector>

namespace velino::test {

QString testPostgresUrl() {
    return qEnvironmentVariable("VELINO_TEST_POSTGRES_URL");
}

QString postgresUrlWithDatabase(const QString &url, const QString &database) {
    const qsizetype queryStart = url.indexOf(u'?');
    const QString base = queryStart < 0 ? url : url.left(queryStart);
    const QString query = queryStart < 0 ? QString() : url.mid(queryStart);
    return base.left(base.lastIndexOf(u'/') + 1) + database + query;
}

PostgresSession::PostgresSession(const QString &url) {
    QString error;
    const auto parameters = server::parsePostgresUrl(url, &error);
    if (!parameters) {
        m_lastError = error;
        return;
    }
    std::vector<const char *> keywords;
    std::vector<const char *> values;
    for (const auto &[keyword, value] : *parameters) {
        keywords.push_back(keyword.constData());
        values.push_back(value.constData());
    }
    keywords.push_back(nullptr);
    values.push_back(nullptr);
    m_connection = PQconnectdbParams(keywords.data(), values.data(), 0);
    if (PQstatus(m_connection) != CONNECTION_OK) {
        m_lastError = QString::fromUtf8(PQerrorMessage(m_connection));
    }
}

PostgresSession::~PostgresSession() {
    PQfinish(m_connection);
}

bool PostgresSession::isOpen() const {
    return m_connection && PQstatus(m_connection) == CONNECTION_OK;
}

std::optional<QByteArray> PostgresSession::run(const QByteArray &sql) {
    if (!isOpen()) {
        return std::nullopt;
    }
    PGresult *result = PQexec(m_connection, sql.constData());
    const ExecStatusType status = PQresultStatus(result);
    std::optional<QByteArray> value;
    if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK || status == PGRES_EMPTY_QUERY) {
        value = PQntuples(result) > 0 && PQnfields(result) > 0
                    ? QByteArray(PQgetvalue(result, 0, 0))
                    : QByteArray();
    } else {
        m_lastError = QString::fromUtf8(PQresultErrorMessage(result));
    }
    PQclear(result);
    return value;
}

ScratchPostgresDatabase::ScratchPostgresDatabase(const QString &clusterUrl)
    : m_clusterUrl(clusterUrl), m_name(QStringLiteral("velino_scratch_") +
                                       QUuid::createUuid().toString(QUuid::Id128).left(16)) {
    m_url = postgresUrlWithDatabase(clusterUrl, m_name);
    PostgresSession admin(clusterUrl);
    m_created = admin.run("CREATE DATABASE " + m_name.toUtf8()).has_value();
    m_error = admin.lastError();
}

ScratchPostgresDatabase::~ScratchPostgresDatabase() {
    if (m_created) {
        PostgresSession(m_clusterUrl)
            .run("DROP DATABASE IF EXISTS " + m_name.toUtf8() + " WITH (FORCE)");
    }
}

} // namespace velino::test
