#include "store_sync_fixture.h"

#include <QEventLoop>
#include <QPointer>
#include <QTimer>

#include <functional>

using namespace velino;
using namespace velino::test;
using namespace std::chrono_literals;

namespace {

const QByteArray kTooLarge = "{\"error\":\"" + QByteArray(9 * 1024 * 1024, 'x') + "\"}";

// What must hold after any failed push or pull.
struct StateBefore {
    PresetKind activePreset;
    MailComposerData data;
    QString lastAction;
    QByteArray saved;
    qsizetype alerts;
};

} // namespace

class StoreSyncFailureTest : public StoreSyncTest {
protected:
    // A store with content of its own, settled: its next save writes the same bytes.
    std::unique_ptr<ComposerStore> makeSettledStore(const StoreServices &services) {
        auto store = std::make_unique<ComposerStore>(services);
        store->setSyncCode(QString::fromLatin1(kSyncCode));
        store->setActivePreset(PresetKind::Rdv);
        store->setDataField("recipientName", "Client du poste");
        wait(ComposerStore::kDebounceMilliseconds + 100);
        return store;
    }

    StateBefore stateOf(const ComposerStore &store) const {
        return {store.activePreset(), store.data(), store.lastAction(), savedBytes(),
                alerts->shown.size()};
    }

    // Runs the operation to its end and returns the text shown, after checking that it
    // is shown alike in the status and the alert and that nothing else moved.
    QString failureOf(ComposerStore &store, const std::function<void()> &operation,
                      const std::string &what) {
        const StateBefore before = stateOf(store);
        operation();
        EXPECT_TRUE(store.isSyncing()) << what;
        EXPECT_TRUE(waitForIdle(store)) << what;
        EXPECT_FALSE(store.isSyncing()) << what;
        EXPECT_EQ(alerts->shown.size(), before.alerts + 1) << what;
        if (alerts->shown.size() != before.alerts + 1)
            return QStringLiteral("(no alert)");
        EXPECT_EQ(store.syncStatus(), alerts->shown.last()) << what;
        EXPECT_EQ(store.lastAction(), before.lastAction) << what;
        EXPECT_EQ(store.activePreset(), before.activePreset) << what;
        EXPECT_TRUE(store.data() == before.data) << what;
        EXPECT_EQ(savedBytes(), before.saved) << what;
        return store.syncStatus();
    }

    std::function<void()> push(ComposerStore &store) {
        return [&store] { store.pushToWeb(); };
    }
    std::function<void()> pull(ComposerStore &store) {
        return [&store] { store.pullFromWeb(); };
    }
};

TEST_F(StoreSyncFailureTest, RefusedAndUnreadableAnswersAreShownAsTheyCame) {
    const auto store = makeSettledStore(syncServices());
    struct Case {
        const char *what;
        TestHttpAnswer answer;
        QString shown;
    };
    const Case cases[] = {
        {"404 with an error record", TestHttpAnswer::json(404, R"({"error":"Code inconnu"})"),
         "Code inconnu"},
        {"400 with an empty message", TestHttpAnswer::json(400, R"({"error":""})"), ""},
        {"500 with an HTML page",
         TestHttpAnswer{500, "text/html", "<html><body>Erreur interne</body></html>", true, false},
         "Synchronisation impossible."},
        {"500 with an error of the wrong type", TestHttpAnswer::json(500, R"({"error":42})"),
         "Synchronisation impossible."},
        {"answer over 8 MiB, length declared",
         TestHttpAnswer{200, "application/json", kTooLarge, true, false},
         "Reponse de synchronisation trop volumineuse (plus de 8 Mo)."},
        {"answer over 8 MiB, length not declared",
         TestHttpAnswer{200, "application/json", kTooLarge, false, false},
         "Reponse de synchronisation trop volumineuse (plus de 8 Mo)."},
    };
    for (const Case &c : cases) {
        answerWith(c.answer);
        EXPECT_EQ(failureOf(*store, push(*store), std::string("push, ") + c.what), c.shown);
        EXPECT_EQ(failureOf(*store, pull(*store), std::string("pull, ") + c.what), c.shown);
    }

    // A 2xx answer that is not JSON fails with the decoder's own description.
    answerWith(TestHttpAnswer{200, "text/html", "<html>Bienvenue</html>", true, false});
    for (const auto &operation : {push(*store), pull(*store)}) {
        const QString shown = failureOf(*store, operation, "2xx not JSON");
        EXPECT_TRUE(shown.startsWith("JSON invalide")) << shown.toStdString();
    }
    EXPECT_EQ(server->requests().size(), 2 * std::size(cases) + 2);
}

TEST_F(StoreSyncFailureTest, AServerThatNeverAnswersIsGivenUp) {
    answerWith(TestHttpAnswer::never());
    // Short enough to give up quickly, long enough for a handshake on a busy machine.
    transferTimeout = 1500ms;
    const auto store = makeSettledStore(syncServices());
    for (const auto &operation : {push(*store), pull(*store)}) {
        QElapsedTimer elapsed;
        elapsed.start();
        EXPECT_EQ(failureOf(*store, operation, "silent server"),
                  "Delai de synchronisation depasse : le serveur ne repond pas.");
        EXPECT_GE(elapsed.elapsed(), 1400);
    }
    EXPECT_EQ(server->requests().size(), 2);
}

TEST_F(StoreSyncFailureTest, ARefusedConnectionShowsThePlatformDescription) {
    StoreServices services = syncServices();
    services.syncEndpoint.setPort(closedLocalPort());
    const auto store = makeSettledStore(services);
    for (const auto &operation : {push(*store), pull(*store)}) {
        const QString shown = failureOf(*store, operation, "refused connection");
        EXPECT_FALSE(shown.isEmpty());
        EXPECT_FALSE(shown.startsWith("Envoi") || shown.startsWith("Recuperation"))
            << shown.toStdString();
    }
}

TEST_F(StoreSyncFailureTest, AnUntrustedCertificateIsRefusedAndNothingIsApplied) {
    QString error;
    const std::optional<TestTlsIdentity> stranger = TestTlsIdentity::generate(&error);
    ASSERT_TRUE(stranger.has_value()) << error.toStdString();
    HttpsTestServer impostor(*stranger);
    ASSERT_TRUE(impostor.listen());
    const QByteArray snapshot =
        downloadBody(true, "2026-06-05T08:15:00Z",
                     phonePayload("relance", defaultWith(u"recipientName", "Intrus")));
    impostor.setHandler([&](const TestHttpRequest &request) {
        return TestHttpAnswer::json(
            200, request.method == "PUT" ? uploadBody("2026-06-05T08:15:00Z") : snapshot);
    });

    StoreServices services = syncServices();
    services.syncEndpoint = impostor.url("/api/velino-sync");
    const auto store = makeSettledStore(services);
    for (const auto &operation : {push(*store), pull(*store)}) {
        const QString shown = failureOf(*store, operation, "untrusted certificate");
        EXPECT_FALSE(shown.isEmpty());
    }
    EXPECT_TRUE(impostor.requests().isEmpty());
    EXPECT_EQ(store->data().recipientName, "Client du poste");

    // The same server is reached once its authority is trusted.
    services.extraSyncCaCertificates.append(stranger->caCertificate);
    services.syncTransferTimeout = kSyncWait;
    const auto trusting = std::make_unique<ComposerStore>(services);
    trusting->setSyncCode(QString::fromLatin1(kSyncCode));
    trusting->pullFromWeb();
    ASSERT_TRUE(waitForIdle(*trusting));
    EXPECT_EQ(trusting->data().recipientName, "Intrus");
    EXPECT_EQ(impostor.requests().size(), 1);
}

TEST_F(StoreSyncFailureTest, AStoreDestroyedDuringARequestIsNeverCalledBack) {
    server->setHandler([](const TestHttpRequest &) { return TestHttpAnswer::never(); });
    // Each request would time out within the wait below if it were still alive.
    transferTimeout = 1s;
    for (const bool pushing : {true, false}) {
        auto store = makeSettledStore(syncServices());
        const qsizetype requestsBefore = server->requests().size();
        pushing ? store->pushToWeb() : store->pullFromWeb();
        ASSERT_TRUE(
            waitUntil([&] { return server->requests().size() > requestsBefore; }, kSyncWait));
        const QByteArray saved = savedBytes();
        store.reset();
        wait(1500);
        EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
        EXPECT_EQ(savedBytes(), saved);
    }

    // Destroyed before the request has even left.
    server->setHandler([](const TestHttpRequest &) {
        return TestHttpAnswer::json(200, uploadBody("2026-06-05T08:15:00Z"));
    });
    auto store = makeSettledStore(syncServices());
    store->pushToWeb();
    store.reset();
    wait(300);
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
}

namespace {

// A modal alert during which the window closes: the store is deleted from the nested
// event loop, before the alert returns.
class WindowClosingAlerts final : public AlertPresenter {
public:
    void showWarning(const QString &informativeText) override {
        shown.append(informativeText);
        QEventLoop modal;
        QTimer::singleShot(0, &modal, [this] {
            if (store)
                store->deleteLater();
        });
        QTimer::singleShot(100, &modal, &QEventLoop::quit);
        modal.exec();
        storeGoneBeforeReturn = store.isNull();
    }
    QPointer<ComposerStore> store;
    QStringList shown;
    bool storeGoneBeforeReturn = false;
};

} // namespace

TEST_F(StoreSyncFailureTest, AStoreDestroyedWhileItsFailureIsShownStaysUntouched) {
    answerWith(TestHttpAnswer::json(404, R"({"error":"Code inconnu"})"));
    const auto closing = std::make_shared<WindowClosingAlerts>();
    StoreServices services = syncServices();
    services.alerts = closing;
    auto *store = new ComposerStore(services);
    closing->store = store;
    store->setSyncCode(QString::fromLatin1(kSyncCode));
    store->pullFromWeb();
    ASSERT_TRUE(waitUntil([&] { return closing->store.isNull(); }, kSyncWait));
    wait(100);
    EXPECT_EQ(closing->shown, QStringList{"Code inconnu"});
    EXPECT_TRUE(closing->storeGoneBeforeReturn);
}
