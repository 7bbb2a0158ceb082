#include "postgres_query.h"

#include <QtEndian>

#include <libpq-fe.h>

#include <vector>

namespace velino::server {

void PostgresResultDeleter::operator()(pg_result *result) const {
    PQclear(result);
}

PostgresResult runPostgresQuery(pg_conn *connection, const char *sql,
                                std::initializer_list<PostgresParameter> parameters,
                                bool binaryRows) {
    if (parameters.size() == 0 && !binaryRows) {
        // The simple protocol: the only one that takes several statements at once.
        return PostgresResult(PQexec(connection, sql));
    }
    std::vector<const char *> values;
    std::vector<int> lengths;
    std::vector<int> formats;
    for (const PostgresParameter &parameter : parameters) {
        values.push_back(parameter.value.constData());
        lengths.push_back(static_cast<int>(parameter.value.size()));
        formats.push_back(parameter.binary ? 1 : 0);
    }
    return PostgresResult(PQexecParams(connection, sql, static_cast<int>(values.size()), nullptr,
                                       values.data(), lengths.data(), formats.data(),
                                       binaryRows ? 1 : 0));
}

bool postgresQuerySucceeded(const PostgresResult &result) {
    const ExecStatusType status = PQresultStatus(result.get());
    return status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
}

qint64 postgresBinaryInt64(const pg_result *result, int row, int column) {
    if (PQgetlength(result, row, column) != 8) {
        return 0;
    }
    return qFromBigEndian<qint64>(PQgetvalue(result, row, column));
}

QByteArray postgresFailure(pg_conn *connection, const PostgresResult &result) {
    if (result) {
        const char *primary = PQresultErrorField(result.get(), PG_DIAG_MESSAGE_PRIMARY);
        const char *state = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
        if (primary) {
            return QByteArray(primary) + " (" + QByteArray(state ? state : "?") + ')';
        }
    }
    return QByteArray(PQerrorMessage(connection)).trimmed();
}

} // namespace velino::server
