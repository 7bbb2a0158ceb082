// The desktop's store for the phone page's browser tests: "push|pull ENDPOINT CA CODE STATE_DIR"
// sends the default record or prints what it pulls; failures exit 1 with the text.

#include "composer_store.h"
#include "https_test_server.h"
#include "qt_services.h"
#include "qt_state_storage.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

using namespace velino;

int main(int argc, char **argv) {
    const auto fail = [](const QString &message) {
        std::fprintf(stderr, "%s\n", message.toUtf8().constData());
        return 1;
    };
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() != 5 || (args[0] != u"push" && args[0] != u"pull"))
        return fail("usage : velino_desktop_sync_helper push|pull ADRESSE CA CODE DOSSIER");
    const bool push = args[0] == u"push";
    StoreServices services = StoreServices::qtDefaults();
    services.storage = std::make_shared<QtStateStorage>(
        StateFiles::inFolders(args[4] + "/config", args[4] + "/data"));
    services.files = std::make_shared<QtFileSystem>(args[4] + "/apercus");
    services.syncEndpoint = QUrl(args[1]);
    services.extraSyncCaCertificates = QSslCertificate::fromPath(args[2]);
    ComposerStore store(services);
    store.setSyncCode(args[3]);
    push ? store.pushToWeb() : store.pullFromWeb(); // a new state folder holds the default record
    test::waitUntil([&] { return !store.isSyncing(); }, std::chrono::seconds(30)); // or fails below
    if (!store.syncStatus().startsWith(push ? "Brouillon envoye vers l'iPhone"
                                            : "Brouillon recupere"))
        return fail(store.syncStatus());
    if (!push)
        std::puts(QJsonDocument(QJsonObject{{"activePreset", presetId(store.activePreset())},
                                            {"record", store.data().toJson()},
                                            {"html", store.generatedHTML()}})
                      .toJson(QJsonDocument::Compact)
                      .constData());
    return 0;
}
