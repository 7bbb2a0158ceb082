#include "store_sync_fixture.h"
#include "sync_transport.h"

#include <QTcpServer>

using namespace velino;
using namespace velino::test;
using namespace std::chrono_literals;

using StoreSyncFailureTest = StoreSyncTest;

TEST_F(StoreSyncFailureTest, RefusedUnreadableOrOversizedAnswersFailAndEightMebibytesAreRead) {
    const auto store = makeSettledStore(syncServices());
    const QByteArray snapshot =
        compact(downloadAnswer(phonePayload("relance", defaultWith(u"recipientName", "Lea"))));
    const QByteArray over =
        snapshot + QByteArray(SyncTransport::kMaxAnswerBytes + 1 - snapshot.size(), ' ');
    const std::pair<TestHttpAnswer, QString> cases[] = {
        {{404, R"({"error":"Code inconnu"})"}, "Code inconnu"},
        {{500, "<html><body>Erreur interne</body></html>"}, "Synchronisation impossible."},
        {{200, "<html>Bienvenue</html>"}, "JSON invalide a l'octet ..."},
        {{200, R"({"updatedAt":"x"})"}, "cle manquante : ok"},
        {{200, over, false}, "Reponse de synchronisation trop volumineuse (plus de 8 Mo)."},
    };
    for (const auto &[answer, shown] : cases) {
        answerWith(answer);
        for (const auto operation : {push, pull})
            expectFailure(*store, operation, shown);
    }
    answerWith(TestHttpAnswer{200, over.chopped(1), false});
    store->pullFromWeb();
    ASSERT_TRUE(waitForIdle(*store));
    EXPECT_EQ(store->data().recipientName, "Lea");
}

TEST_F(StoreSyncFailureTest, UnreachableUntrustedOrUnusableAddressesFail) {
    QString error;
    const std::optional<TestTlsIdentity> stranger = TestTlsIdentity::generate(&error);
    ASSERT_TRUE(stranger.has_value()) << error.toStdString();
    HttpsTestServer impostor(*stranger);
    ASSERT_TRUE(impostor.listen());
    QUrl closed = server->url("/api/velino-sync");
    QTcpServer probe; // a port bound a moment ago, then released
    ASSERT_TRUE(probe.listen(QHostAddress::LocalHost, 0));
    closed.setPort(probe.serverPort());
    probe.close();
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
            expectFailure(*store, operation, shown);
    }
    EXPECT_TRUE(impostor.requests().isEmpty()); // neither code nor draft sent
}

// Stores destroyed while their request is held would alert if ever called back.
TEST_F(StoreSyncFailureTest, ASilentServerIsGivenUpAndDestroyedStoresAreNeverCalledBack) {
    answerWith(TestHttpAnswer{200, {}, true, true});
    StoreServices services = syncServices();
    // Short enough to give up quickly, long enough for a handshake on a busy machine.
    services.syncTransferTimeout = 1500ms;
    for (const auto operation : {push, pull}) {
        auto store = makeSettledStore(services);
        const qsizetype requestsBefore = server->requests().size();
        (store.get()->*operation)();
        ASSERT_TRUE(
            waitUntil([&] { return server->requests().size() > requestsBefore; }, kSyncWait));
    }
    makeSettledStore(services)->pushToWeb();

    const auto witness = makeSettledStore(services);
    const QString timedOut = "Delai de synchronisation depasse : le serveur ne repond pas.";
    for (const auto operation : {push, pull})
        expectFailure(*witness, operation, timedOut);
    EXPECT_EQ(alerts->shown, QStringList(2, timedOut));
}
