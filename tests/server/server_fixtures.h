#pragma once

#include "postgres_query.h"
#include "slot_store.h"
#include "sqlite_slot_store.h"
#include "sync_code.h"
#include "sync_records.h"
#include "sync_service.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTimeZone>
#include <QUuid>

#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <optional>
#include <string>

namespace velino::test {

inline const QString kTestPostgresUrl = qEnvironmentVariable("VELINO_TEST_POSTGRES_URL");

#define SKIP_WITHOUT_TEST_CLUSTER(engine)                                                          \
    do {                                                                                           \
        if (std::string(engine) == "postgresql" && velino::test::kTestPostgresUrl.isEmpty())       \
            GTEST_SKIP() << "VELINO_TEST_POSTGRES_URL not set (scripts/with-test-postgres)";       \
    } while (false)

inline QByteArray keyOf(int n) {
    return server::slotKeyOf(QString::number(n));
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
    const server::PostgresResult result = server::runPostgresQuery(connection, sql.constData());
    std::optional<QByteArray> value;
    if (server::postgresQuerySucceeded(result))
        value = QByteArray(PQntuples(result.get()) > 0 ? PQgetvalue(result.get(), 0, 0) : "");
    else if (error)
        *error = QString::fromUtf8(server::postgresFailure(connection, result));
    PQfinish(connection);
    return value;
}

// Empty storage of one engine, removed with the object; PostgreSQL in a far time zone.
struct ScratchStorage {
    explicit ScratchStorage(const std::string &engine) {
        if (engine == "sqlite") {
            url = QStringLiteral("sqlite:") + folder.filePath(QStringLiteral("slots/sync.db"));
            return;
        }
        const QString cluster = kTestPostgresUrl;
        const QByteArray name = "velino_scratch_" + QUuid::createUuid().toByteArray(QUuid::Id128);
        if (!cluster.isEmpty() && runSql(cluster, "CREATE DATABASE " + name, &error) &&
            runSql(cluster, "ALTER DATABASE " + name + " SET timezone = 'Pacific/Kiritimati'",
                   &error)) {
            databaseName = name;
            const qsizetype query = cluster.indexOf(u'?');
            url = cluster.left(cluster.lastIndexOf(u'/', query) + 1) + QString::fromLatin1(name) +
                  (query < 0 ? QString() : cluster.mid(query));
        }
    }
    ~ScratchStorage() {
        if (!databaseName.isEmpty())
            runSql(kTestPostgresUrl, "DROP DATABASE " + databaseName + " WITH (FORCE)");
    }
    std::unique_ptr<server::SlotStore> makeStore() { return server::makeSlotStore(url, &error); }

    QTemporaryDir folder;
    QByteArray databaseName;
    QString url, error;
};

inline constexpr auto kCode = "AB12-CD34EF56GH78";

inline VelinoSyncUpload defaultUpload(const QString &code = QString::fromLatin1(kCode)) {
    return VelinoSyncUpload{code, VelinoSyncPayload::forSending(PresetKind::Devis,
                                                                MailComposerData::defaultRecord(),
                                                                Instant{788918400})};
}
inline std::string uploadBody(const QString &code = QString::fromLatin1(kCode)) {
    return encodeSyncRecord(defaultUpload(code)).toStdString();
}
inline std::string compactJson(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

inline server::HttpRequest request(const std::string &method, const std::string &path,
                                   const std::string &body = {},
                                   const std::string &peer = "192.0.2.10") {
    return {method, path, {}, {}, body, peer};
}
inline server::HttpRequest putRequest(const std::string &body) {
    return request("PUT", "/api/velino-sync", body);
}
inline server::HttpRequest getRequest(const std::string &code,
                                      const std::string &peer = "192.0.2.10",
                                      const std::string &forwardedFor = {}) {
    return {"GET", "/api/velino-sync", {{"code", code}}, {{"x-forwarded-for", forwardedFor}}, {},
            peer};
}

inline QString errorText(const std::string &body) {
    QString error;
    const auto record =
        decodeSyncRecord<VelinoSyncErrorResponse>(QByteArray::fromStdString(body), &error);
    return record ? record->error : QStringLiteral("(not an error record)");
}

// A service on SQLite with its clock and log in the test's hands.
class ServiceFixture : public ::testing::Test {
protected:
    void SetUp() override {
        store = std::make_unique<server::SqliteSlotStore>(folder.filePath("sync.db"));
        ASSERT_TRUE(store->open());
        config.now = [this] { return now; };
        config.log = [this](const std::string &line) { logLines.push_back(line); };
        config.logoPng = "\x89PNG\r\n\x1a\nlogo";
        remake();
    }
    void remake() { service = std::make_unique<server::SyncService>(*store, config); }

    QTemporaryDir folder;
    std::unique_ptr<server::SqliteSlotStore> store;
    server::SyncServiceConfig config;
    std::unique_ptr<server::SyncService> service;
    QDateTime now = QDateTime(QDate(2026, 6, 5), QTime(8, 15, 0, 734), QTimeZone::utc());
    std::vector<std::string> logLines;
};

} // namespace velino::test
