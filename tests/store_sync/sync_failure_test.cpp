#include "store_sync_fixture.h"
#include "sync_transport.h"

#include <QEventLoop>
#include <QPointer>
#include <QTimer>

using namespace velino;
using namespace velino::test;
using namespace std::chrono_literals;

namespace {

const QString kTooLargeText = "Reponse de synchronisation trop volumineuse (plus de 8 Mo).";
const QString kTimedOutText = "Delai de synchronisation depasse : le serveur ne repond pas.";

// A modal alert during which the window closes: the store is deleted before it returns.
class WindowClosingAlerts final : public AlertPresenter {
public:
    void showWarning(const QString &informativeText) override {
        shown.append(informativeText);
        QEventLoop modal;
        QTimer::singleShot(0, store, &QObject::deleteLater);
        QTimer::singleShot(100, &modal, &QEventLoop::quit);
        modal.exec();
        storeGoneBeforeReturn = store.isNull();
        returned = true;
    }
    QPointer<ComposerStore> store;
    QStringList shown;
    bool storeGoneBeforeReturn = false, returned = false;
};

} // namespace

using StoreSyncFailureTest = StoreSyncTest;

TEST_F(StoreSyncFailureTest, RefusedUnreadableOrOversizedAnswersFailAndEightMebibytesAreRead) {
    const auto store = makeSettledStore(syncServices());
    const qint64 limit = SyncTransport::kMaxAnswerBytes;
    const QByteArray snapshot =
        downloadAnswer(phonePayload("relance", defaultWith(u"recipientName", "Lea")));
    const QByteArray over = snapshot + QByteArray(limit + 1 - snapshot.size(), ' ');
    const std::pair<TestHttpAnswer, QString> cases[] = {
        {TestHttpAnswer::json(404, R"({"error":"Code inconnu"})"), "Code inconnu"},
        {{500, "text/html", "<html><body>Erreur interne</body></html>"},
         "Synchronisation impossible."},
        {{200, "text/html", "<html>Bienvenue</html>"}, "JSON invalide a l'octet ..."},
        {{200, "application/json", over, true}, kTooLargeText},
        {{200, "application/json", over, false}, kTooLargeText},
    };
    for (const auto &[answer, shown] : cases) {
        answerWith(answer);
        for (const auto operation : {push, pull})
            EXPECT_TRUE(shownAs(failureOf(*store, operation, shown.toStdString()), shown));
    }
    answerWith(TestHttpAnswer{200, "application/json", over.chopped(1), false, false});
    store->pullFromWeb();
    ASSERT_TRUE(waitForIdle(*store));
    EXPECT_EQ(store->data().recipientName, "Lea");
    EXPECT_EQ(alerts->shown.size(), 2 * std::size(cases));
}

TEST_F(StoreSyncFailureTest, UnreachableUntrustedOrUnusableAddressesFail) {
    QString error;
    const std::optional<TestTlsIdentity> stranger = TestTlsIdentity::generate(&error);
    ASSERT_TRUE(stranger.has_value()) << error.toStdString();
    HttpsTestServer impostor(*stranger);
    ASSERT_TRUE(impostor.listen());
    QUrl closed = server->url("/api/velino-sync");
    closed.setPort(closedLocalPort());
    const std::pair<QUrl, QString> cases[] = {
        {closed, "Le serveur de synchronisation refuse la connexion. (Connection refused)"},
        {impostor.url("/api/velino-sync"),
         "Le certificat du serveur de synchronisation n'est pas reconnu par cet ordinateur. (..."},
        {QUrl(), "Adresse de synchronisation invalide."},
        // An answer, but not an HTTP one.
        {QUrl("data:application/json,%7B%22ok%22%3Atrue%7D"),
         "Reponse de synchronisation invalide."},
    };
    StoreServices services = syncServices();
    for (const auto &[url, shown] : cases) {
        services.syncEndpoint = url;
        const auto store = makeSettledStore(services);
        const bool https = url.scheme() == "https"; // the others are pulled only
        for (const auto operation : https ? QList{push, pull} : QList{pull})
            EXPECT_TRUE(shownAs(failureOf(*store, operation, url.toString().toStdString()), shown));
    }
    EXPECT_TRUE(server->requests().isEmpty() && impostor.requests().isEmpty());
}

// Stores destroyed while their request is held would alert if ever called back.
TEST_F(StoreSyncFailureTest, ASilentServerIsGivenUpAndDestroyedStoresAreNeverCalledBack) {
    answerWith(TestHttpAnswer::never());
    // Short enough to give up quickly, long enough for a handshake on a busy machine.
    transferTimeout = 1500ms;
    for (const auto operation : {push, pull}) {
        auto store = makeSettledStore(syncServices());
        const qsizetype requestsBefore = server->requests().size();
        (store.get()->*operation)();
        ASSERT_TRUE(
            waitUntil([&] { return server->requests().size() > requestsBefore; }, kSyncWait));
    }
    makeSettledStore(syncServices())->pushToWeb();

    const auto witness = makeSettledStore(syncServices());
    for (const auto operation : {push, pull})
        EXPECT_EQ(failureOf(*witness, operation, "silent server"), kTimedOutText);
    EXPECT_EQ(alerts->shown, QStringList(2, kTimedOutText));
}

TEST_F(StoreSyncFailureTest, AStoreDestroyedWhileItsFailureIsShownStaysUntouched) {
    answerWith(TestHttpAnswer::json(404, R"({"error":"Code inconnu"})"));
    const auto closing = std::make_shared<WindowClosingAlerts>();
    StoreServices services = syncServices();
    services.alerts = closing;
    ComposerStore *store = makeSyncStore(services).release();
    closing->store = store;
    store->pullFromWeb();
    ASSERT_TRUE(waitUntil([&] { return closing->returned; }, kSyncWait));
    EXPECT_EQ(closing->shown, QStringList{"Code inconnu"});
    EXPECT_TRUE(closing->storeGoneBeforeReturn);
}
