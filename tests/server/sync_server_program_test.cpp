#include "../store_sync/tls_store_fixture.h"
#include "raw_http_client.h"
#include "server_fixtures.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QSslSocket>
#include <QTemporaryFile>

#include <atomic>
#include <mutex>
#include <thread>

using namespace velino;
using namespace velino::test;
using namespace std::chrono_literals;

namespace {

// The program on a free port (a later --listen wins), its log in a file, not a stalling pipe.
struct SyncServerProcess : QProcess {
    ~SyncServerProcess() override {
        kill();
        waitForFinished(10000);
    }
    // Nothing once the program is ready, else what went wrong.
    QString start(const QStringList &arguments) {
        log.open();
        setStandardErrorFile(log.fileName());
        QProcess::start(VELINO_SYNC_SERVER_BINARY,
                        QStringList{"--listen", "127.0.0.1:0"} + arguments);
        while (!canReadLine() && waitForReadyRead(15000)) {
        }
        const QByteArray ready = "velino-sync-server: pret sur ", line = readLine().trimmed();
        baseUrl = QString::fromUtf8(line.mid(ready.size()));
        return line.startsWith(ready)
                   ? QString()
                   : QString::fromUtf8("no ready line (" + line + "): " + errorOutput());
    }
    int port() const { return QUrl(baseUrl).port(); }
    int waitForExit(int timeoutMs = 10000) {
        const bool exited = state() == NotRunning || waitForFinished(timeoutMs);
        return exited && exitStatus() == NormalExit ? exitCode() : -1;
    }
    QByteArray errorOutput() { return log.reset() ? log.readAll() : QByteArray(); }

    QTemporaryFile log;
    QString baseUrl;
};

class HttpsProgramTest : public TlsStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(TlsStoreTest::SetUp());
        const QString cert = dir.filePath("server.crt"), key = dir.filePath("server.key");
        ASSERT_NO_FATAL_FAILURE(putFile(cert, identity_->serverCertificate.toPem()));
        ASSERT_NO_FATAL_FAILURE(putFile(key, identity_->serverKey.toPem()));
        ASSERT_EQ(server.start({"--database", "sqlite:" + dir.filePath("server/sync.db"),
                                "--tls-cert", cert, "--tls-key", key}),
                  QString());
    }

    // A desktop with a state of its own, on kCode.
    std::unique_ptr<ComposerStore> desktop(const QString &name) {
        StoreServices s = services();
        s.storage = std::make_shared<QtStateStorage>(
            StateFiles::inFolders(dir.filePath(name + "/config"), dir.filePath(name + "/data")));
        s.syncEndpoint = QUrl(server.baseUrl + QStringLiteral("/api/velino-sync"));
        s.extraSyncCaCertificates = {identity_->caCertificate};
        auto store = std::make_unique<ComposerStore>(s);
        store->setSyncCode(QString::fromLatin1(kCode));
        return store;
    }

    SyncServerProcess server;
};

TEST_F(HttpsProgramTest, PushedRecordIsPulledByAnotherDesktop) {
    const auto sender = desktop("sender"), receiver = desktop("receiver");
    sender->setActivePreset(PresetKind::Pret);
    sender->setDataField("recipientName", QStringLiteral("Lea Martin"));
    sender->pushToWeb();
    EXPECT_TRUE(waitUntil([&] { return !sender->isSyncing(); }, std::chrono::seconds(20)));
    receiver->pullFromWeb();
    EXPECT_TRUE(waitUntil([&] { return !receiver->isSyncing(); }, std::chrono::seconds(20)));
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
    EXPECT_TRUE(receiver->data() == sender->data() && receiver->activePreset() == PresetKind::Pret);

    const QByteArray log = server.errorOutput();
    EXPECT_TRUE(log.contains("GET /api/velino-sync 200 ") && !log.contains(kCode) &&
                !log.contains("Lea Martin"))
        << log.toStdString();
}

// A header line without end loses its connection (the library would keep it all in memory);
// the next connection, with a long but bounded header, is served.
TEST_F(HttpsProgramTest, SpeaksTls12And13AndCutsEndlessHeaders) {
    const auto connect = [&](QSslSocket &socket, QSsl::SslProtocol protocol) {
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates({identity_->caCertificate});
        tls.setProtocol(protocol);
        socket.setSslConfiguration(tls);
        socket.connectToHostEncrypted("127.0.0.1", quint16(server.port()));
        EXPECT_TRUE(socket.waitForEncrypted(5000)) << socket.errorString().toStdString();
    };
    QSslSocket endless, socket;
    connect(endless, QSsl::TlsV1_2);
    endless.write("GET /healthz HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Long: ");
    for (int sent = 0; endless.state() == QAbstractSocket::ConnectedState; ++sent) {
        ASSERT_LT(sent, 1024) << "64 MiB of one header line taken in";
        endless.write(QByteArray(64 * 1024, 'a'));
        endless.waitForBytesWritten(2000);
    }
    connect(socket, QSsl::TlsV1_3);
    socket.write("GET /healthz HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Pad: " + QByteArray(6000, 'b') +
                 "\r\n\r\n");
    QByteArray answer;
    while (!answer.contains("\r\n\r\nok") && socket.waitForReadyRead(5000))
        answer += socket.readAll();
    EXPECT_TRUE(answer.startsWith("HTTP/1.1 200 OK")) << answer.toStdString();
}

TEST_F(HttpsProgramTest, RefusesToStartWithoutAWayToProtectConnectionsOrAPort) {
    const QString missing = QStringLiteral("/nonexistent/velino/server.crt");
    const QString neverMade = dir.filePath(QStringLiteral("never-made"));
    const QString taken = QStringLiteral("127.0.0.1:%1").arg(server.port());
    const QStringList unreadableTls{"--tls-cert", missing,      "--tls-key",
                                    missing,      "--database", "sqlite:" + neverMade + "/x"};
    const QStringList portTaken{"--plain-http", "--listen", taken, "--database",
                                "sqlite:" + dir.filePath("b.db")};
    const std::tuple<QStringList, int, QString> cases[] = {
        {{}, 2, "Refus de demarrer sans TLS"},
        {{"--plain-http", "--retention-days", "0"}, 2, "Valeur invalide pour --retention-days"},
        {{"--plain-http", "--database", "mysql://x"}, 2, "Base de donnees invalide"},
        {{"--plain-http", "--database", "SQLite:"}, 2, "il manque le chemin du fichier"},
        {unreadableTls, 1, "Fichier TLS illisible : " + missing},
        {portTaken, 1, "Impossible d'ecouter sur 127.0.0.1:"},
    };
    for (const auto &[arguments, exitCode, sentence] : cases) {
        SCOPED_TRACE(arguments.join(u' ').toStdString());
        SyncServerProcess refused;
        EXPECT_NE(refused.start(arguments), QString());
        EXPECT_EQ(refused.waitForExit(), exitCode);
        EXPECT_TRUE(QString::fromUtf8(refused.errorOutput()).contains(sentence))
            << refused.errorOutput().toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(neverMade));
}

VelinoSyncUpload numberedUpload(int number) {
    VelinoSyncUpload upload =
        defaultUpload(QStringLiteral("KILL-TEST-CODE-%1").arg(number, 6, 10, QLatin1Char('0')));
    upload.payload.data.subject = QStringLiteral("Envoi %1").arg(number);
    return upload;
}

bool putAnswered200(RawHttpConnection &connection, const VelinoSyncUpload &upload) {
    const std::string body = encodeSyncRecord(upload).toStdString();
    return connection.send(putHead(contentLength(body.size())) + body) &&
           connection.readAnswer(10s).value_or(RawHttpAnswer{}).status == 200;
}

class ServerProcessTest : public ::testing::TestWithParam<std::string> {};

TEST_P(ServerProcessTest, AnsweredPutsSurviveKillNineAndSigterm) {
    SKIP_WITHOUT_TEST_CLUSTER(GetParam());
    const quint32 seed = QRandomGenerator::global()->generate();
    SCOPED_TRACE(testing::Message() << "kill delays drawn with seed " << seed);
    QRandomGenerator random(seed);
    ScratchStorage storage(GetParam());
    ASSERT_TRUE(storage.error.isEmpty()) << storage.error.toStdString();
    std::vector<int> answered; // upload numbers
    std::mutex answeredMutex;
    std::atomic<int> nextNumber = 0;
    const QStringList plainHttp{"--plain-http", "--database", storage.url,
                                "--max-requests-per-minute", "0"};
    for (int round = 0; round < 2; ++round) {
        SyncServerProcess server;
        ASSERT_EQ(server.start(plainHttp), QString());
        std::vector<std::jthread> writers; // joined at the end of the round, after the kill
        for (int w = 0; w < 4; ++w) {
            writers.emplace_back([&] {
                RawHttpConnection connection(server.port());
                // Ends with the connection: a PUT cut by the kill was never acknowledged.
                for (int number = nextNumber++; putAnswered200(connection, numberedUpload(number));
                     number = nextNumber++) {
                    std::lock_guard lock(answeredMutex);
                    answered.push_back(number);
                }
            });
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(random.bounded(300, 1500)));
        server.kill();
    }
    ASSERT_GT(answered.size(), 50u) << "too few PUTs answered to tell anything";

    const auto store = storage.makeStore();
    ASSERT_TRUE(store->open());
    int lost = 0;
    for (const int number : answered) {
        const VelinoSyncUpload upload = numberedUpload(number);
        server::StoredSlot back;
        store->get(server::slotKeyOf(upload.code), back);
        if (back.payloadJson != encodeSyncRecord(upload.payload) && ++lost <= 3)
            ADD_FAILURE() << "upload " << number << " answered 200, reads "
                          << back.payloadJson.toStdString();
    }
    EXPECT_EQ(lost, 0) << "of " << answered.size() << " answered PUTs";
    const qint64 countBefore = store->count().value_or(-2);

    SyncServerProcess restarted;
    ASSERT_EQ(restarted.start(plainHttp), QString());
    const std::string bytes = putHead(contentLength(uploadBody().size())) + uploadBody();
    const size_t cut = bytes.size() - 100; // inside the body
    RawHttpConnection connection(restarted.port());
    ASSERT_TRUE(connection.send(bytes.substr(0, cut)));
    std::this_thread::sleep_for(300ms); // the server is reading the body now
    restarted.terminate();
    EXPECT_EQ(restarted.waitForExit(300), -1) << "exited with a request under way";
    ASSERT_TRUE(connection.send(bytes.substr(cut)));
    EXPECT_EQ(connection.readAnswer(10s).value_or(RawHttpAnswer{}).status, 200);
    EXPECT_EQ(restarted.waitForExit(), 0);
    EXPECT_EQ(store->count(), countBefore + 1); // the PUT under way when asked to stop
}

INSTANTIATE_TEST_SUITE_P(Engines, ServerProcessTest, ::testing::Values("sqlite", "postgresql"),
                         [](const auto &info) { return info.param; });

} // namespace
