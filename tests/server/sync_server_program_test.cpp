#include "../store_sync/tls_store_fixture.h"
#include "raw_http_client.h"
#include "server_fixtures.h"
#include "sync_code.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSslSocket>
#include <QTemporaryFile>

#include <atomic>
#include <map>
#include <mutex>
#include <thread>

using namespace velino;
using namespace velino::test;
using namespace std::chrono_literals;

namespace {

// The program on a free port unless told --listen; its log goes to a file, not a stalling pipe.
struct SyncServerProcess : QProcess {
    ~SyncServerProcess() override { killHard(); }
    bool start(const QStringList &arguments, QString *error) {
        log.open();
        setStandardErrorFile(log.fileName());
        QProcess::start(VELINO_SYNC_SERVER_BINARY,
                        arguments.contains("--listen")
                            ? arguments
                            : arguments + QStringList{"--listen", "127.0.0.1:0"});
        while (!canReadLine() && waitForReadyRead(15000)) {
        }
        const QByteArray ready = "velino-sync-server: pret sur ", line = readLine().trimmed();
        baseUrl = QString::fromUtf8(line.mid(ready.size()));
        *error = QString::fromUtf8("no ready line (" + line + "): " + errorOutput());
        return line.startsWith(ready);
    }
    int port() const { return QUrl(baseUrl).port(); }
    void killHard() {
        kill();
        waitForFinished(10000);
    }
    int waitForExit(int timeoutMs = 10000) {
        const bool exited = state() == NotRunning || waitForFinished(timeoutMs);
        return exited && exitStatus() == NormalExit ? exitCode() : -1;
    }
    QByteArray errorOutput() {
        QFile file(log.fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

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
        QString error;
        ASSERT_TRUE(server.start({"--database", "sqlite:" + dir.filePath("server/sync.db"),
                                  "--tls-cert", cert, "--tls-key", key},
                                 &error))
            << error.toStdString();
        ASSERT_TRUE(server.baseUrl.startsWith(QStringLiteral("https://127.0.0.1:")));
    }

    // A desktop of its own that has just pushed (or pulled) `code`; its status reads `prefix`.
    std::unique_ptr<ComposerStore> sync(const QString &name, const QString &code, bool push,
                                        const char16_t *prefix = u"",
                                        const std::function<void(ComposerStore &)> &edit = {}) {
        StoreServices s = services();
        s.storage = std::make_shared<QtStateStorage>(
            StateFiles::inFolders(dir.filePath(name + "/config"), dir.filePath(name + "/data")));
        s.syncEndpoint = QUrl(server.baseUrl + QStringLiteral("/api/velino-sync"));
        s.extraSyncCaCertificates = {identity_->caCertificate};
        auto store = std::make_unique<ComposerStore>(s);
        store->setSyncCode(code);
        if (edit)
            edit(*store);
        const auto stamped = [&] {
            return QString::fromUtf16(prefix) + QDateTime::currentDateTime().toString("HH:mm");
        };
        const QString before = stamped();
        push ? store->pushToWeb() : store->pullFromWeb();
        EXPECT_TRUE(waitUntil([&] { return !store->isSyncing(); }, std::chrono::seconds(20)));
        const QString status = store->syncStatus();
        EXPECT_TRUE(!*prefix || status == before || status == stamped()) << status.toStdString();
        return store;
    }

    SyncServerProcess server;
};

TEST_F(HttpsProgramTest, PushedRecordIsPulledByAnotherDesktop) {
    const QString code = QString::fromLatin1(kCode);
    auto sender = sync(
        "sender", code, true, u"Brouillon envoye vers l'iPhone \u00b7 ", [](ComposerStore &store) {
            store.setActivePreset(PresetKind::Pret);
            store.setDataField("recipientName", QStringLiteral("Lea Martin"));
            store.setDataField("mainMessage", "Votre iPhone 13 est pret.\nA bientot !");
        });
    auto receiver = sync("receiver", code, false, u"Brouillon recupere \u00b7 ");
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
    EXPECT_TRUE(receiver->data() == sender->data() && receiver->activePreset() == PresetKind::Pret);

    sync("stranger", "ZZZZ-9999-ZZZZ-9999", false);
    EXPECT_EQ(alerts->shown, QStringList{"Code inconnu"});

    const QByteArray log = server.errorOutput();
    EXPECT_TRUE(log.contains("PUT /api/velino-sync 200 ") &&
                log.contains("GET /api/velino-sync 404 "))
        << log.toStdString();
    for (const char *secret : {kCode, "ZZZZ-9999", "Lea Martin"})
        EXPECT_FALSE(log.contains(secret)) << secret;
}

// A header line without end loses its connection (the library would keep it all in memory).
TEST_F(HttpsProgramTest, SpeaksTls12And13AndCutsEndlessHeaders) {
    const auto connect = [&](QSslSocket &socket, QSsl::SslProtocol protocol) {
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates({identity_->caCertificate});
        tls.setProtocol(protocol);
        socket.setSslConfiguration(tls);
        socket.connectToHostEncrypted("127.0.0.1", quint16(server.port()));
        EXPECT_TRUE(socket.waitForEncrypted(5000)) << socket.errorString().toStdString();
        EXPECT_EQ(socket.sessionProtocol(), protocol);
    };
    QSslSocket endless, socket;
    connect(endless, QSsl::TlsV1_2);
    endless.write("GET /healthz HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Long: ");
    int sent = 0;
    for (; sent < 1024 && endless.state() == QAbstractSocket::ConnectedState; ++sent) {
        endless.write(QByteArray(64 * 1024, 'a'));
        endless.waitForBytesWritten(2000);
    }
    EXPECT_LT(sent, 1024);
    connect(socket, QSsl::TlsV1_3);
    for (const QByteArray &padding : {QByteArray(), QByteArray(6000, 'b')}) {
        socket.write("GET /healthz HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Pad: " + padding + "\r\n\r\n");
        QByteArray answer;
        while (!answer.contains("\r\n\r\nok") && socket.waitForReadyRead(5000))
            answer += socket.readAll();
        EXPECT_TRUE(answer.startsWith("HTTP/1.1 200 OK")) << answer.toStdString();
    }
}

TEST_F(HttpsProgramTest, RefusesToStartWithoutAWayToProtectConnectionsOrAPort) {
    const QString missing = QStringLiteral("/nonexistent/velino/server.crt");
    const QString neverMade = dir.filePath(QStringLiteral("never-made"));
    const QString taken = QStringLiteral("127.0.0.1:%1").arg(server.port());
    const QStringList unreadableTls{"--tls-cert", missing,      "--tls-key",
                                    missing,      "--database", "sqlite:" + neverMade + "/x"};
    const QStringList portTaken{"--plain-http", "--listen", taken, "--database",
                                "sqlite:" + dir.filePath("b.db")};
    QString error;
    const std::tuple<QStringList, int, QString> cases[] = {
        {{}, 2, "Refus de demarrer sans TLS"},
        {{"--tls-cert", missing}, 2, "HTTPS demande --tls-cert et --tls-key"},
        {{"--plain-http", "--tls-cert", missing}, 2, "--plain-http exclut --tls-cert"},
        {{"--plain-http", "--retention-days", "0"}, 2, "Valeur invalide pour --retention-days"},
        {{"--plain-http", "--database", "mysql://x"}, 2, "Base de donnees invalide"},
        {{"--plain-http", "--database", "sqlite:"}, 2, "Base de donnees invalide"},
        {unreadableTls, 1, "Fichier TLS illisible : " + missing},
        {portTaken, 1, "Impossible d'ecouter sur 127.0.0.1:"},
    };
    for (const auto &[arguments, exitCode, sentence] : cases) {
        SCOPED_TRACE(arguments.join(u' ').toStdString());
        SyncServerProcess refused;
        EXPECT_FALSE(refused.start(arguments, &error));
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

// "updatedAt payload" as a PUT answered 200 would read back, or nothing.
std::optional<QString> put(RawHttpConnection &connection, const VelinoSyncUpload &upload) {
    const auto answer =
        connection.exchange("PUT", "/api/velino-sync", encodeSyncRecord(upload).toStdString());
    if (!answer || answer->status != 200)
        return std::nullopt;
    return QJsonDocument::fromJson(QByteArray::fromStdString(answer->body))[u"updatedAt"]
               .toString() +
           u' ' + encodeSyncRecord(upload.payload);
}

// "updatedAt payload" of a GET answered 200, or why not.
QString readBack(int port, const QString &code) {
    const auto answer =
        RawHttpConnection(port).exchange("GET", "/api/velino-sync?code=" + code.toStdString());
    QString error;
    const auto record = decodeSyncRecord<VelinoSyncDownloadResponse>(
        QByteArray::fromStdString(answer.value_or(RawHttpAnswer{}).body), &error);
    return record ? record->snapshot.updatedAt + u' ' + encodeSyncRecord(record->snapshot.payload)
                  : error;
}

class ServerProcessTest : public ::testing::TestWithParam<std::string> {};

TEST_P(ServerProcessTest, AnsweredPutsSurviveKillNineAndSigterm) {
    SKIP_WITHOUT_TEST_CLUSTER(GetParam());
    const quint32 seed = QRandomGenerator::global()->generate();
    SCOPED_TRACE(testing::Message() << "kill delays drawn with seed " << seed);
    QRandomGenerator random(seed);
    ScratchStorage storage(GetParam());
    ASSERT_TRUE(storage.error.isEmpty()) << storage.error.toStdString();
    std::map<int, QString> answered; // upload number -> as it reads back
    std::mutex answeredMutex;
    std::atomic<int> nextNumber = 0;
    QString error;
    const QStringList plainHttp{"--plain-http", "--database", storage.url,
                                "--max-requests-per-minute", "0"};
    for (int round = 0; round < 2; ++round) {
        SyncServerProcess server;
        ASSERT_TRUE(server.start(plainHttp, &error)) << error.toStdString();
        std::vector<std::thread> writers;
        for (int w = 0; w < 4; ++w) {
            writers.emplace_back([&] {
                RawHttpConnection connection(server.port());
                // Ends with the connection: a PUT cut by the kill was never acknowledged.
                for (int number = nextNumber++;
                     const auto written = put(connection, numberedUpload(number));
                     number = nextNumber++) {
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
    ASSERT_TRUE(restarted.start(plainHttp, &error)) << error.toStdString();
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
    restarted.terminate();
    EXPECT_EQ(restarted.waitForExit(300), -1) << "exited with a request under way";
    ASSERT_TRUE(connection.send(body.substr(100)));
    EXPECT_EQ(connection.readAnswer(10s).value_or(RawHttpAnswer{}).status, 200);
    EXPECT_EQ(restarted.waitForExit(), 0);
    const auto store = storage.makeStore();
    server::StoredSlot slot;
    EXPECT_TRUE(store->open() && store->get(server::slotKeyOf(QString::fromLatin1(kCode)), slot) ==
                                     server::SlotStore::Status::Ok);
}

INSTANTIATE_TEST_SUITE_P(Engines, ServerProcessTest, ::testing::Values("sqlite", "postgresql"),
                         [](const auto &info) { return info.param; });

} // namespace
