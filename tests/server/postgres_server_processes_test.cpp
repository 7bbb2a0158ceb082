#include "postgres_test_database.h"
#include "raw_http_client.h"
#include "server_test_records.h"
#include "sync_server_process.h"

#include <QRandomGenerator>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

using namespace velino;
using namespace velino::test;

namespace {

VelinoSyncUpload numberedUpload(int number) {
    VelinoSyncUpload upload =
        defaultUpload(QStringLiteral("PG-SYNC-TEST-%1").arg(number, 6, 10, QLatin1Char('0')));
    upload.payload.data.subject = QStringLiteral("Envoi %1").arg(number);
    return upload;
}

// The updatedAt of a PUT answered 200, or nothing.
std::optional<QString> put(int port, const VelinoSyncUpload &upload) {
    const auto answer =
        rawRequest(port, "PUT", "/api/velino-sync", encodeSyncRecord(upload).toStdString());
    if (!answer || answer->status != 200) {
        return std::nullopt;
    }
    QString error;
    const auto record =
        decodeSyncRecord<VelinoSyncUploadResponse>(QByteArray::fromStdString(answer->body), &error);
    return record ? std::optional(record->updatedAt) : std::nullopt;
}

// The stored snapshot of a GET answered 200; the status in `status`.
std::optional<VelinoSyncSnapshot> get(int port, const QString &code, int *status) {
    const auto answer = rawRequest(port, "GET", "/api/velino-sync?code=" + code.toStdString());
    *status = answer ? answer->status : 0;
    if (!answer || answer->status != 200) {
        return std::nullopt;
    }
    QString error;
    const auto record = decodeSyncRecord<VelinoSyncDownloadResponse>(
        QByteArray::fromStdString(answer->body), &error);
    return record ? std::optional(record->snapshot) : std::nullopt;
}

class PostgresServerProcessTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (testPostgresUrl().isEmpty()) {
            GTEST_SKIP() << "VELINO_TEST_POSTGRES_URL not set (scripts/with-test-postgres)";
        }
        database = std::make_unique<ScratchPostgresDatabase>(testPostgresUrl());
        ASSERT_TRUE(database->created()) << database->error().toStdString();
    }

    // A server on the test database; the password reaches it through PGPASSFILE only.
    void startServer(SyncServerProcess &server) {
        QString error;
        ASSERT_TRUE(server.start({QStringLiteral("--plain-http"), QStringLiteral("--database"),
                                  database->url(), QStringLiteral("--max-requests-per-minute"),
                                  QStringLiteral("0")},
                                 &error))
            << error.toStdString();
    }

    std::unique_ptr<ScratchPostgresDatabase> database;
};

} // namespace

TEST_F(PostgresServerProcessTest, TwoServersOnOneDatabaseAnswerAsOneService) {
    SyncServerProcess first;
    SyncServerProcess second;
    ASSERT_NO_FATAL_FAILURE(startServer(first));
    ASSERT_NO_FATAL_FAILURE(startServer(second));

    const VelinoSyncUpload upload = numberedUpload(1);
    const auto writtenAt = put(first.port(), upload);
    ASSERT_TRUE(writtenAt);
    int status = 0;
    auto snapshot = get(second.port(), upload.code, &status);
    ASSERT_TRUE(snapshot) << "status " << status;
    EXPECT_EQ(snapshot->updatedAt, *writtenAt);
    EXPECT_EQ(encodeSyncRecord(snapshot->payload), encodeSyncRecord(upload.payload));

    // The last writer wins, whichever process it went through.
    VelinoSyncUpload newer = upload;
    newer.payload.data.subject = QStringLiteral("Envoi 1, corrige");
    ASSERT_TRUE(put(second.port(), newer));
    snapshot = get(first.port(), upload.code, &status);
    ASSERT_TRUE(snapshot) << "status " << status;
    EXPECT_EQ(encodeSyncRecord(snapshot->payload), encodeSyncRecord(newer.payload));

    EXPECT_FALSE(get(second.port(), numberedUpload(2).code, &status));
    EXPECT_EQ(status, 404);
    for (SyncServerProcess *server : {&first, &second}) {
        const auto health = rawRequest(server->port(), "GET", "/healthz");
        ASSERT_TRUE(health);
        EXPECT_EQ(health->status, 200);
    }
}

// Clients stream PUTs while the server is killed with SIGKILL at a random moment; a new
// server on the same database then reads back every PUT that had been answered 200.
TEST_F(PostgresServerProcessTest, EveryAcknowledgedPutSurvivesAKillOfTheServer) {
    constexpr int clients = 4;
    constexpr int rounds = 2;
    std::map<int, QString> acknowledged; // upload number -> updatedAt answered
    std::atomic<int> nextNumber = 0;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        SyncServerProcess server;
        ASSERT_NO_FATAL_FAILURE(startServer(server));
        std::mutex mutex;
        std::atomic<bool> killed = false;
        std::vector<std::thread> threads;
        for (int client = 0; client < clients; ++client) {
            threads.emplace_back([&] {
                while (!killed) {
                    const int number = nextNumber++;
                    if (const auto writtenAt = put(server.port(), numberedUpload(number))) {
                        std::lock_guard lock(mutex);
                        acknowledged[number] = *writtenAt;
                    }
                }
            });
        }
        QThread::msleep(QRandomGenerator::global()->bounded(300, 900));
        server.killHard();
        killed = true;
        for (auto &thread : threads) {
            thread.join();
        }
    }
    ASSERT_GT(acknowledged.size(), 20u) << "too few PUTs answered to test anything";

    SyncServerProcess restarted;
    ASSERT_NO_FATAL_FAILURE(startServer(restarted));
    int lost = 0;
    for (const auto &[number, writtenAt] : acknowledged) {
        const VelinoSyncUpload upload = numberedUpload(number);
        int status = 0;
        const auto snapshot = get(restarted.port(), upload.code, &status);
        if (!snapshot || snapshot->updatedAt != writtenAt ||
            encodeSyncRecord(snapshot->payload) != encodeSyncRecord(upload.payload)) {
            ++lost;
            ADD_FAILURE() << "upload " << number << " answered 200 but reads back with status "
                          << status;
        }
    }
    EXPECT_EQ(lost, 0) << "of " << acknowledged.size();
}
