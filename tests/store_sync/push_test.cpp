#include "store_sync_fixture.h"

using namespace velino;
using namespace velino::test;

TEST_F(StoreSyncTest, PushSendsTheStateAsItWasWhenTheButtonWasPressed) {
    const auto store = makeSyncStore(syncServices());
    saveAs(*store, "Devis ecran"); // a library, an active preset and a draft name: none leave
    store->setActivePreset(PresetKind::Pret);
    store->setDataField("subject", "Votre iPhone est pret"); // the push must regenerate first
    store->setDataField("recipientName", "Lea Martin");
    const MailComposerData pressed = store->data();
    clock->advance(0.75); // the fraction of a second is not sent

    server->setHandler([&](const TestHttpRequest &) {
        // The user goes on working while the request runs.
        store->setDataField("subject", "Modifie pendant l'envoi");
        store->setActivePreset(PresetKind::Rdv);
        clock->advance(3600);
        return TestHttpAnswer{200, kUploadAnswer};
    });
    store->pushToWeb();
    EXPECT_EQ(store->generatedSubject() + " | " + savedSubject() + " | " + saved(u"preset"),
              "Votre iPhone est pret | Votre iPhone est pret | pret");

    ASSERT_TRUE(waitForIdle(*store));
    EXPECT_EQ(store->syncStatus() + " | " + store->lastAction(),
              QString::fromUtf16(u"Brouillon envoye vers l'iPhone \u00b7 10:15 | "
                                 u"Synchronisation iPhone terminee."));
    // What was typed during the request stays on the desktop.
    EXPECT_EQ(store->data().subject, "Modifie pendant l'envoi");
    EXPECT_EQ(store->activePreset(), PresetKind::Rdv);

    const TestHttpRequest request = server->requests().value(0);
    EXPECT_EQ(request.method + " " + request.target + " " + request.header("Content-Type") + " " +
                  request.header("Accept"),
              "PUT /api/velino-sync application/json application/json");
    // Stamped when the button was pressed, not when the request left.
    QJsonObject payload = QJsonDocument::fromJson(R"({"schema":"korvel-velino-sync",
        "version":1,"activePreset":"pret","customPresets":[],"customPresetDraftName":"",
        "source":"macos","updatedAt":"2026-03-05T13:07:30Z"})")
                              .object();
    payload.insert("data", pressed.toJson());
    EXPECT_EQ(QJsonDocument::fromJson(request.body).object(),
              QJsonObject({{"code", kSyncCode}, {"payload", payload}}))
        << request.body.toStdString();
}
