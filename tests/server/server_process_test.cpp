#include "raw_http_client.h"
#include "service_fixture.h"
#include "sync_code.h"
#include "sync_server_process.h"
#include "test_storage.h"

#include <QRandomGenerator>

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

// "updatedAt payload" as a PUT answered 200 would read back, or nothing.
std::optional<QString> put(RawHttpConnection &connection, const VelinoSyncUpload &upload) {
    const auto answer =
        connection.exchange("PUT", "/api/velino-sync", encodeSyncRecord(upload).toStdString());
    QString error;
    const auto record = answer && answer->status == 200
                            ? decodeSyncRecord<VelinoSyncUploadResponse>(
                                  QByteArray::fromStdString(answer->body), &error)
                            : std::nullopt;
    return record ? std::optional(record->updatedAt + u' ' + encodeSyncRecord(upload.payload))
                  : std::nullopt;
}

// "updatedAt payload" of a GET answered 200, or the status.
QString readBack(int port, const QString &code) {
    const auto answer =
        RawHttpConnection(port).exchange("GET", "/api/velino-sync?code=" + code.toStdString());
    QString error;
    const auto record = answer ? decodeSyncRecord<VelinoSyncDownloadResponse>(
                                     QByteArray::fromStdString(answer->body), &error)
                               : std::nullopt;
    return record ? record->snapshot.updatedAt + u' ' + encodeSyncRecord(record->snapshot.payload)
                  : QString::number(answer ? answer->status : 0);
}

class ServerProcessTest : public ::testing::TestWithParam<std::string> {};

// Clients stream PUTs while the program is killed with SIGKILL at a random moment, twice; a
// new program on the same storage then reads back every PUT that had been answered 200. A
// SIGTERM while a PUT is half sent lets it finish: answered, stored, exit 0.
TEST_P(ServerProcessTest, AnsweredPutsSurviveKillNineAndSigterm) {
    SKIP_WITHOUT_TEST_CLUSTER(GetParam());
    const quint32 seed = QRandomGenerator::global()->generate();
    SCOPED_TRACE(testing::Message() << "kill delays drawn with seed " << seed);
    QRandomGenerator random(seed);
    ScratchStorage storage(GetParam());
    ASSERT_TRUE(storage.error().isEmpty()) << storage.error().toStdString();
    std::map<int, QString> answered; // upload number -> as it reads back
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
                    const auto written = put(connection, numberedUpload(number));
                    if (!written)
                        return;
                    std::lock_guard lock(answeredMutex);
                    answered[number] = *written;
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
    for (const auto &[number, written] : answered) {
        const QString back = readBack(restarted.port(), numberedUpload(number).code);
        if (back != written && ++lost <= 3)
            ADD_FAILURE() << "upload " << number << " answered 200, reads " << back.toStdString();
    }
    EXPECT_EQ(lost, 0) << "of " << answered.size() << " answered PUTs";

    const std::string body = uploadBody();
    RawHttpConnection connection(restarted.port());
    ASSERT_TRUE(connection.send("PUT /api/velino-sync HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                                "Content-Length: " +
                                std::to_string(body.size()) + "\r\n\r\n" + body.substr(0, 100)));
    std::this_thread::sleep_for(300ms); // the server is reading the body now
    restarted.sendTerminate();
    EXPECT_EQ(restarted.waitForExit(300), -1) << "exited with a request under way";
    ASSERT_TRUE(connection.send(body.substr(100)));
    const auto answer = connection.readAnswer(10s);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200) << answer->body;
    EXPECT_EQ(restarted.waitForExit(), 0);
    const auto store = storage.makeStore();
    server::StoredSlot slot;
    ASSERT_TRUE(store->open());
    EXPECT_EQ(store->get(server::slotKeyOf(QString::fromLatin1(kCode)), slot),
              server::SlotStore::Status::Ok);
}

INSTANTIATE_TEST_SUITE_P(Engines, ServerProcessTest, ::testing::Values("sqlite", "postgresql"),
                         [](const auto &info) { return info.param; });

} // namespace
