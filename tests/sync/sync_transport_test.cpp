#include "https_test_server.h"
#include "sync_client.h"
#include "sync_records.h"
#include "sync_transport.h"
#include "test_records.h"

#include <QElapsedTimer>
#include <QNetworkReply>

#include <gtest/gtest.h>

#include <memory>

using namespace velino;
using namespace std::chrono_literals;

namespace {

constexpr auto kWait = 15s;

class SyncTransportTest : public ::testing::Test {
protected:
    void SetUp() override {
        QString error;
        std::optional<test::TestTlsIdentity> made = test::TestTlsIdentity::generate(&error);
        ASSERT_TRUE(made.has_value()) << error.toStdString();
        identity = std::move(*made);
        server = std::make_unique<test::HttpsTestServer>(identity);
        ASSERT_TRUE(server->listen());
        transport.setExtraCaCertificates({identity.caCertificate});
    }

    // Runs one exchange to its end and returns what the callback got.
    template <typename Start> SyncTransportResult exchange(Start start) {
        std::optional<SyncTransportResult> result;
        int calls = 0;
        start([&](const SyncTransportResult &r) {
            ++calls;
            result = r;
        });
        EXPECT_TRUE(test::waitUntil([&] { return result.has_value(); }, kWait));
        // A late second call would show up here.
        test::waitUntil([] { return false; }, 20ms);
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(transport.pendingCount(), 0);
        return result.value_or(SyncTransportResult{VelinoError{-1, "no answer"}, {}});
    }

    SyncTransportResult put(const QUrl &url, const QByteArray &body) {
        return exchange([&](SyncTransport::Callback cb) { transport.put(url, body, cb); });
    }
    SyncTransportResult get(const QUrl &endpoint, const QString &code) {
        return exchange([&](SyncTransport::Callback cb) { transport.get(endpoint, code, cb); });
    }
    QUrl endpoint() const { return server->url("/api/velino-sync"); }

    test::TestTlsIdentity identity;
    std::unique_ptr<test::HttpsTestServer> server;
    SyncTransport transport;
};

} // namespace

TEST_F(SyncTransportTest, PutSendsTheJsonBodyWithItsHeaders) {
    const QByteArray body = syncUploadBody(
        "AB12-CD34EF56GH78", PresetKind::Pret,
        test::defaultWith(u"mailBody", QString::fromUtf16(u"Pr\u00eat \u00b7 \"ok\"\n")),
        Instant{788918400.0});
    server->setHandler([](const test::TestHttpRequest &) {
        return test::TestHttpAnswer::json(200,
                                          "{\"ok\":true,\"updatedAt\":\"2026-06-05T08:15:00Z\"}");
    });

    const SyncTransportResult result = put(endpoint(), body);

    ASSERT_EQ(server->requests().size(), 1);
    const test::TestHttpRequest &request = server->requests().first();
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.target, "/api/velino-sync");
    EXPECT_EQ(request.header("Content-Type"), "application/json");
    EXPECT_EQ(request.header("Accept"), "application/json");
    EXPECT_EQ(request.body, body);

    ASSERT_FALSE(result.failure.has_value()) << result.failure->description.toStdString();
    EXPECT_TRUE(result.response.isHttp);
    EXPECT_EQ(result.response.statusCode, 200);
    VelinoError error;
    EXPECT_EQ(syncUploadOutcome(result, &error), "2026-06-05T08:15:00Z");
}

TEST_F(SyncTransportTest, GetAsksForTheCodeAndReturnsTheSnapshot) {
    VelinoSyncDownloadResponse answer;
    answer.ok = true;
    answer.snapshot.updatedAt = "2026-06-05T08:15:00Z";
    answer.snapshot.payload = VelinoSyncPayload::forSending(
        PresetKind::Relance, test::defaultWith(u"recipientName", "Lea Martin"), Instant{});
    server->setHandler([&](const test::TestHttpRequest &) {
        return test::TestHttpAnswer::json(200, encodeSyncRecord(answer));
    });

    const SyncTransportResult result = get(endpoint(), "AB12-CD34EF56GH78");

    ASSERT_EQ(server->requests().size(), 1);
    const test::TestHttpRequest &request = server->requests().first();
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.target, "/api/velino-sync?code=AB12-CD34EF56GH78");
    EXPECT_EQ(request.header("Accept"), "application/json");
    EXPECT_EQ(request.body, "");

    VelinoError error;
    const auto download = syncDownloadOutcome(result, &error);
    ASSERT_TRUE(download.has_value()) << error.description.toStdString();
    EXPECT_EQ(download->activePreset, PresetKind::Relance);
    EXPECT_TRUE(download->data == test::defaultWith(u"recipientName", "Lea Martin"));
    EXPECT_EQ(download->updatedAt, "2026-06-05T08:15:00Z");
}

TEST_F(SyncTransportTest, RefusalsAndUnreadableAnswersReachTheCallerAsAnswers) {
    struct Case {
        test::TestHttpAnswer answer;
        int code;
        QString description;
    };
    const Case cases[] = {
        {test::TestHttpAnswer::json(404, "{\"error\":\"Code inconnu\"}"), 404, "Code inconnu"},
        {test::TestHttpAnswer{500, "text/html", "<html><body>Erreur interne</body></html>", true,
                              false},
         500, "Synchronisation impossible."},
        {test::TestHttpAnswer::json(400, "{\"error\":\"\"}"), 400, ""},
    };
    for (const Case &c : cases) {
        server->setHandler([&](const test::TestHttpRequest &) { return c.answer; });
        const SyncTransportResult result = get(endpoint(), "AB12-CD34EF56GH78");
        ASSERT_FALSE(result.failure.has_value()) << result.failure->description.toStdString();
        EXPECT_TRUE(result.response.isHttp);
        EXPECT_EQ(result.response.statusCode, c.answer.status);
        EXPECT_EQ(result.response.body, c.answer.body);
        VelinoError error;
        EXPECT_FALSE(syncDownloadOutcome(result, &error).has_value());
        EXPECT_EQ(error.code, c.code);
        EXPECT_EQ(error.description, c.description);
    }

    // A 2xx answer that is not JSON fails in decoding, with the decoder's description.
    server->setHandler([](const test::TestHttpRequest &) {
        return test::TestHttpAnswer{200, "text/html", "<html>Bienvenue</html>", true, false};
    });
    const SyncTransportResult notJson = put(endpoint(), "{}");
    VelinoError error;
    EXPECT_FALSE(syncUploadOutcome(notJson, &error).has_value());
    EXPECT_EQ(error.code, kSyncErrorUndecodableAnswer);
    EXPECT_TRUE(error.description.startsWith("JSON invalide a l'octet"))
        << error.description.toStdString();
}

TEST_F(SyncTransportTest, AnswersOverEightMebibytesAreRefused) {
    const QByteArray huge = "{\"error\":\"" + QByteArray(9 * 1024 * 1024, 'x') + "\"}";
    for (const bool declared : {true, false}) {
        server->setHandler([&](const test::TestHttpRequest &) {
            return test::TestHttpAnswer{200, "application/json", huge, declared, false};
        });
        const SyncTransportResult result = get(endpoint(), "AB12-CD34EF56GH78");
        ASSERT_TRUE(result.failure.has_value()) << "declared length: " << declared;
        EXPECT_EQ(result.failure->code, kSyncErrorAnswerTooLarge);
        EXPECT_EQ(result.failure->description,
                  "Reponse de synchronisation trop volumineuse (plus de 8 Mo).");
        EXPECT_TRUE(result.response.body.isEmpty());
    }

    // Exactly at the limit is still an answer.
    const QByteArray atLimit = QByteArray(SyncTransport::kMaxAnswerBytes, ' ');
    server->setHandler([&](const test::TestHttpRequest &) {
        return test::TestHttpAnswer{200, "application/json", atLimit, false, false};
    });
    const SyncTransportResult result = get(endpoint(), "AB12-CD34EF56GH78");
    ASSERT_FALSE(result.failure.has_value()) << result.failure->description.toStdString();
    EXPECT_EQ(result.response.body.size(), SyncTransport::kMaxAnswerBytes);
}

TEST_F(SyncTransportTest, ConnectionFailuresCarryThePlatformDescription) {
    // A server that takes the request and never answers.
    server->setHandler([](const test::TestHttpRequest &) { return test::TestHttpAnswer::never(); });
    transport.setTransferTimeout(300ms);
    QElapsedTimer clock;
    clock.start();
    const SyncTransportResult silent = put(endpoint(), "{}");
    EXPECT_LT(clock.elapsed(), 5000);
    ASSERT_TRUE(silent.failure.has_value());
    EXPECT_EQ(silent.failure->code, QNetworkReply::TimeoutError);
    EXPECT_EQ(silent.failure->description,
              "Delai de synchronisation depasse : le serveur ne repond pas.");
    EXPECT_EQ(server->requests().size(), 1);

    // Nothing listens on the port.
    QUrl closed = endpoint();
    closed.setPort(test::closedLocalPort());
    const SyncTransportResult refused = get(closed, "AB12-CD34EF56GH78");
    ASSERT_TRUE(refused.failure.has_value());
    EXPECT_EQ(refused.failure->code, QNetworkReply::ConnectionRefusedError);
    EXPECT_FALSE(refused.failure->description.isEmpty());
}

TEST_F(SyncTransportTest, CertificatesOfAnUnknownAuthorityAreRefused) {
    QString error;
    const auto stranger = test::TestTlsIdentity::generate(&error);
    ASSERT_TRUE(stranger.has_value()) << error.toStdString();
    test::HttpsTestServer impostor(*stranger);
    ASSERT_TRUE(impostor.listen());
    impostor.setHandler([](const test::TestHttpRequest &) {
        return test::TestHttpAnswer::json(200, "{\"ok\":true,\"updatedAt\":\"x\"}");
    });

    const SyncTransportResult result = put(impostor.url("/api/velino-sync"), "{}");
    ASSERT_TRUE(result.failure.has_value());
    EXPECT_EQ(result.failure->code, QNetworkReply::SslHandshakeFailedError);
    EXPECT_FALSE(result.failure->description.isEmpty());
    EXPECT_TRUE(impostor.requests().isEmpty());

    // Trusted once its authority is given.
    transport.setExtraCaCertificates({identity.caCertificate, stranger->caCertificate});
    const SyncTransportResult trusted = put(impostor.url("/api/velino-sync"), "{}");
    ASSERT_FALSE(trusted.failure.has_value()) << trusted.failure->description.toStdString();
    EXPECT_EQ(impostor.requests().size(), 1);
}

TEST_F(SyncTransportTest, AddressesThatAreNotUsableFailWithoutARequest) {
    // The callback comes later, from the event loop, never from inside get().
    bool returned = false;
    bool calledAtOnce = false;
    const SyncTransportResult invalid = exchange([&](SyncTransport::Callback cb) {
        transport.get(QUrl(), "AB12-CD34EF56GH78", [&, cb](const SyncTransportResult &r) {
            calledAtOnce = !returned;
            cb(r);
        });
        returned = true;
    });
    EXPECT_TRUE(returned);
    EXPECT_FALSE(calledAtOnce);
    ASSERT_TRUE(invalid.failure.has_value());
    EXPECT_EQ(invalid.failure->code, 20);
    EXPECT_EQ(invalid.failure->description, "Adresse de synchronisation invalide.");
    EXPECT_TRUE(server->requests().isEmpty());

    // A data: address gives an answer, but not an HTTP one.
    const SyncTransportResult local =
        get(QUrl("data:application/json,%7B%22ok%22%3Atrue%7D"), "AB12-CD34EF56GH78");
    ASSERT_FALSE(local.failure.has_value()) << local.failure->description.toStdString();
    EXPECT_FALSE(local.response.isHttp);
    EXPECT_TRUE(local.response.body.startsWith("{\"ok\":true}"))
        << local.response.body.toStdString();
    VelinoError error;
    EXPECT_FALSE(syncUploadOutcome(local, &error).has_value());
    EXPECT_EQ(error.code, 21);
    EXPECT_EQ(error.description, "Reponse de synchronisation invalide.");
}

TEST_F(SyncTransportTest, DestroyingTheTransportDropsPendingCallbacks) {
    server->setHandler([](const test::TestHttpRequest &) { return test::TestHttpAnswer::never(); });
    bool called = false;
    {
        SyncTransport shortLived;
        shortLived.setExtraCaCertificates({identity.caCertificate});
        shortLived.put(endpoint(), "{}", [&](const SyncTransportResult &) { called = true; });
        ASSERT_TRUE(test::waitUntil([&] { return !server->requests().isEmpty(); }, kWait));
        EXPECT_EQ(shortLived.pendingCount(), 1);
        // Its failure would only be reported from the event loop.
        shortLived.get(QUrl(), "X", [&](const SyncTransportResult &) { called = true; });
    }
    test::waitUntil([] { return false; }, 50ms);
    EXPECT_FALSE(called);
}
