#include "raw_http_client.h"
#include "server_test_records.h"
#include "sync_server_process.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>

using namespace velino;
using namespace velino::test;
using namespace std::chrono_literals;

namespace {

constexpr int kWriters = 4;
constexpr auto kWriteFor = 1500ms;

// Every PUT answered 200 before a kill -9 of the program reads back intact after a restart.
TEST(SyncServerKillTest, AnsweredPutsSurviveKillNine) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QStringList arguments{QStringLiteral("--plain-http"), QStringLiteral("--database"),
                                QStringLiteral("sqlite:") +
                                    folder.filePath(QStringLiteral("sync.db")),
                                QStringLiteral("--max-requests-per-minute"), QStringLiteral("0")};
    auto server = std::make_unique<SyncServerProcess>();
    QString error;
    ASSERT_TRUE(server->start(arguments, &error)) << error.toStdString();
    const int port = server->port();

    std::mutex answeredMutex;
    std::map<std::string, std::string> answered; // code -> payload as sent
    std::atomic<bool> stop = false;
    std::vector<std::thread> writers;
    for (int w = 0; w < kWriters; ++w) {
        writers.emplace_back([&, w] {
            RawHttpConnection connection(port);
            for (int n = 0; !stop; ++n) {
                const QString code =
                    QStringLiteral("KILL-TEST-%1-%2").arg(w).arg(n, 6, 10, QLatin1Char('0'));
                VelinoSyncUpload upload = defaultUpload(code);
                upload.payload.data.recipientName = code;
                const std::string body = encodeSyncRecord(upload).toStdString();
                const std::string request = "PUT /api/velino-sync HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                                            "Content-Length: " +
                                            std::to_string(body.size()) + "\r\n\r\n" + body;
                if (!connection.send(request))
                    return;
                const auto answer = connection.readAnswer(10s);
                if (!answer)
                    return; // killed under way: this PUT was never acknowledged
                if (answer->status == 200) {
                    std::lock_guard lock(answeredMutex);
                    answered[code.toStdString()] = encodeSyncRecord(upload.payload).toStdString();
                }
            }
        });
    }
    std::this_thread::sleep_for(kWriteFor);
    server->killHard();
    stop = true;
    for (std::thread &writer : writers)
        writer.join();
    ASSERT_GT(answered.size(), 50u) << "too few PUTs answered to tell anything";

    server = std::make_unique<SyncServerProcess>();
    ASSERT_TRUE(server->start(arguments, &error)) << error.toStdString();
    RawHttpConnection reader(server->port());
    int lost = 0;
    for (const auto &[code, payload] : answered) {
        ASSERT_TRUE(reader.send("GET /api/velino-sync?code=" + code +
                                " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n"));
        const auto answer = reader.readAnswer(10s);
        ASSERT_TRUE(answer) << code;
        if (answer->status != 200 ||
            answer->body.find(R"(,"payload":)" + payload + "}}") == std::string::npos)
            ++lost;
    }
    EXPECT_EQ(lost, 0) << "of " << answered.size() << " answered PUTs";
    EXPECT_EQ(server->terminate(), 0);
}

} // namespace

namespace {

// SIGTERM while a PUT is half sent: the PUT is still answered and stored, then the program
// exits 0.
TEST(SyncServerStopTest, SigtermFinishesTheRequestUnderWay) {
    QTemporaryDir folder;
    const QStringList arguments{QStringLiteral("--plain-http"), QStringLiteral("--database"),
                                QStringLiteral("sqlite:") +
                                    folder.filePath(QStringLiteral("sync.db"))};
    SyncServerProcess server;
    QString error;
    ASSERT_TRUE(server.start(arguments, &error)) << error.toStdString();
    const std::string body = encodeSyncRecord(defaultUpload()).toStdString();
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
    ASSERT_TRUE(restarted.start(arguments, &error)) << error.toStdString();
    const auto stored =
        rawRequest(restarted.port(), "GET", "/api/velino-sync?code=" + std::string(kCode));
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->status, 200);
    EXPECT_EQ(restarted.terminate(), 0);
}

} // namespace
