#include "raw_http_client.h"
#include "server_test_records.h"
#include "sync_server_process.h"
#include "test_storage.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <mutex>
#include <thread>

using namespace velino;
using namespace velino::test;
using namespace std::chrono_literals;

namespace {

VelinoSyncUpload numberedUpload(int number) {
    VelinoSyncUpload upload =
        defaultUpload(QStringLiteral("KILL-TEST-CODE-%1").arg(number, 6, 10, QLatin1Char('0')));
    upload.payload.data.subject = QStringLiteral("Envoi %1").arg(number);
    return upload;
}

// The updatedAt answered to a PUT with 200, or nothing.
std::optional<QString> put(RawHttpConnection &connection, const VelinoSyncUpload &upload) {
    const auto answer =
        connection.exchange("PUT", "/api/velino-sync", encodeSyncRecord(upload).toStdString());
    QString error;
    const auto record = answer && answer->status == 200
                            ? decodeSyncRecord<VelinoSyncUploadResponse>(
                                  QByteArray::fromStdString(answer->body), &error)
                            : std::nullopt;
    return record ? std::optional(record->updatedAt) : std::nullopt;
}

// "STATUS UPDATEDAT PAYLOAD" of a GET, to compare with what a PUT was answered.
std::string readBack(int port, const QString &code) {
    const auto answer = rawRequest(port, "GET", "/api/velino-sync?code=" + code.toStdString());
    if (!answer)
        return "no answer";
    QString error;
    const auto record = decodeSyncRecord<VelinoSyncDownloadResponse>(
        QByteArray::fromStdString(answer->body), &error);
    return std::to_string(answer->status) + " " +
           (record
                ? (record->snapshot.updatedAt + u' ' + encodeSyncRecord(record->snapshot.payload))
                      .toStdString()
                : std::string());
}

std::string expectedBack(const QString &updatedAt, const VelinoSyncUpload &upload) {
    return "200 " + (updatedAt + u' ' + encodeSyncRecord(upload.payload)).toStdString();
}

class ServerKillTest : public ::testing::TestWithParam<std::string> {};

// Clients stream PUTs while the program is killed with SIGKILL at a random moment, twice; a
// new program on the same storage then reads back every PUT that had been answered 200.
TEST_P(ServerKillTest, AnsweredPutsSurviveKillNine) {
    SKIP_WITHOUT_TEST_CLUSTER(GetParam());
    const quint32 seed = QRandomGenerator::global()->generate();
    SCOPED_TRACE(testing::Message() << "kill delays drawn with seed " << seed);
    QRandomGenerator random(seed);
    ScratchStorage storage(GetParam());
    ASSERT_TRUE(storage.error().isEmpty()) << storage.error().toStdString();
    std::map<int, QString> answered; // upload number -> updatedAt answered
    std::mutex answeredMutex;
    std::atomic<int> nextNumber = 0;
    QString error;
    for (int round = 0; round < 2; ++round) {
        SyncServerProcess server;
        ASSERT_TRUE(server.start(plainHttpOn(storage.url()), &error)) << error.toStdString();
        std::vector<std::thread> writers;
        for (int w = 0; w < 4; ++w) {
            writers.emplace_back([&] {
                RawHttpConnection connection(server.port());
                // Ends with the connection: a PUT cut by the kill was never acknowledged.
                for (int number = nextNumber++;; number = nextNumber++) {
                    const auto writtenAt = put(connection, numberedUpload(number));
                    if (!writtenAt)
                        return;
                    std::lock_guard lock(answeredMutex);
                    answered[number] = *writtenAt;
                }
            });
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(random.bounded(300, 1500)));
        server.killHard();
        for (std::thread &writer : writers)
            writer.join();
    }
    ASSERT_GT(answered.size(), 50u) << "too few PUTs answered to tell anything";

    SyncServerProcess restarted;
    ASSERT_TRUE(restarted.start(plainHttpOn(storage.url()), &error)) << error.toStdString();
    int lost = 0;
    for (const auto &[number, writtenAt] : answered) {
        const VelinoSyncUpload upload = numberedUpload(number);
        const std::string back = readBack(restarted.port(), upload.code);
        if (back != expectedBack(writtenAt, upload) && ++lost <= 3)
            ADD_FAILURE() << "upload " << number << " answered 200, reads back " << back;
    }
    EXPECT_EQ(lost, 0) << "of " << answered.size() << " answered PUTs";
    EXPECT_EQ(restarted.terminate(), 0);
}

INSTANTIATE_TEST_SUITE_P(Engines, ServerKillTest, ::testing::Values("sqlite", "postgresql"),
                         [](const auto &info) { return info.param; });

TEST(PostgresServerProcessTest, TwoServersOnOneDatabaseAnswerAsOneService) {
    SKIP_WITHOUT_TEST_CLUSTER("postgresql");
    ScratchStorage storage("postgresql");
    SyncServerProcess servers[2];
    QString error;
    for (SyncServerProcess &server : servers)
        ASSERT_TRUE(server.start(plainHttpOn(storage.url()), &error)) << error.toStdString();
    RawHttpConnection first(servers[0].port());
    RawHttpConnection second(servers[1].port());
    VelinoSyncUpload upload = numberedUpload(1);
    auto writtenAt = put(first, upload);
    ASSERT_TRUE(writtenAt);
    EXPECT_EQ(readBack(servers[1].port(), upload.code), expectedBack(*writtenAt, upload));
    // The last writer wins, whichever process it went through.
    upload.payload.data.subject = QStringLiteral("Envoi 1, corrige");
    writtenAt = put(second, upload);
    ASSERT_TRUE(writtenAt);
    EXPECT_EQ(readBack(servers[0].port(), upload.code), expectedBack(*writtenAt, upload));
    EXPECT_EQ(readBack(servers[1].port(), numberedUpload(2).code), "404 ");
    for (SyncServerProcess &server : servers)
        EXPECT_EQ(rawRequest(server.port(), "GET", "/healthz").value_or(RawHttpAnswer{}).status,
                  200);
}

// SIGTERM while a PUT is half sent: the PUT is still answered and stored, then the program
// exits 0.
TEST(SyncServerStopTest, SigtermFinishesTheRequestUnderWay) {
    ScratchStorage storage("sqlite");
    SyncServerProcess server;
    QString error;
    ASSERT_TRUE(server.start(plainHttpOn(storage.url()), &error)) << error.toStdString();
    const std::string body = uploadBody();
    RawHttpConnection connection(server.port());
    ASSERT_TRUE(connection.send("PUT /api/velino-sync HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                                "Content-Length: " +
                                std::to_string(body.size()) + "\r\n\r\n" + body.substr(0, 100)));
    std::this_thread::sleep_for(300ms); // the server is reading the body now

    server.sendTerminate();
    EXPECT_EQ(server.waitForExit(300), -1) << "exited with a request under way";
    ASSERT_TRUE(connection.send(body.substr(100)));
    const auto answer = connection.readAnswer(10s);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200) << answer->body;
    EXPECT_EQ(server.waitForExit(), 0);

    SyncServerProcess restarted;
    ASSERT_TRUE(restarted.start(plainHttpOn(storage.url()), &error)) << error.toStdString();
    EXPECT_EQ(readBack(restarted.port(), QString::fromLatin1(kCode)).substr(0, 4), "200 ");
    EXPECT_EQ(restarted.terminate(), 0);
}

} // namespace
