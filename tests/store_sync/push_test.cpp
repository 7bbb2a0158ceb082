#include "store_sync_fixture.h"

using namespace velino;
using namespace velino::test;

TEST_F(StoreSyncTest, PushSendsTheStateAsItWasWhenTheButtonWasPressed) {
    const auto store = makeSyncStore();
    // A library, an active saved preset and a draft name, none of which may leave.
    saveAs(*store, "Devis ecran");
    ASSERT_TRUE(store->activeCustomPresetID().has_value());
    store->setActivePreset(PresetKind::Pret);
    // Not regenerated yet: the push has to do it before sending.
    store->setDataField("subject", "Votre iPhone est pret");
    store->setDataField("recipientName", "Lea Martin");
    const MailComposerData pressed = store->data();
    const QString lastAction = store->lastAction();
    clock->advance(0.75); // the fraction of a second is not sent

    std::optional<bool> syncingDuringRequest;
    server->setHandler([&](const TestHttpRequest &) {
        syncingDuringRequest = store->isSyncing();
        // The user goes on working while the request runs.
        store->setDataField("subject", "Modifie pendant l'envoi");
        store->setActivePreset(PresetKind::Rdv);
        clock->advance(3600);
        return TestHttpAnswer::json(200, uploadBody(kAnswerTime));
    });
    QList<bool> syncing;
    QObject::connect(store.get(), &ComposerStore::isSyncingChanged,
                     [&] { syncing.append(store->isSyncing()); });

    store->pushToWeb();

    EXPECT_TRUE(store->isSyncing());
    EXPECT_EQ(QStringList({store->syncStatus(), store->lastAction(), store->generatedSubject(),
                           savedSubject(), saved(u"preset")}),
              QStringList({"Envoi du brouillon vers l'iPhone...", lastAction,
                           "Votre iPhone est pret", "Votre iPhone est pret", "pret"}));

    ASSERT_TRUE(waitForIdle(*store));
    EXPECT_EQ(syncingDuringRequest, true);
    EXPECT_EQ(syncing, QList<bool>({true, false}));
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
    EXPECT_EQ(store->syncStatus(),
              QString::fromUtf16(u"Brouillon envoye vers l'iPhone \u00b7 10:15"));
    EXPECT_EQ(store->lastAction(), "Synchronisation iPhone terminee.");
    // What was typed during the request stays on the desktop.
    EXPECT_EQ(store->data().subject, "Modifie pendant l'envoi");
    EXPECT_EQ(store->activePreset(), PresetKind::Rdv);

    ASSERT_EQ(server->requests().size(), 1);
    const TestHttpRequest &request = server->requests().first();
    EXPECT_EQ(request.method + " " + request.target + " " + request.header("Content-Type") + " " +
                  request.header("Accept"),
              "PUT /api/velino-sync application/json application/json");
    const std::string body = request.body.toStdString();
    EXPECT_FALSE(request.body.contains('\n') || request.body.contains("\": ")) << body;
    EXPECT_TRUE(request.body.contains("\"version\":1,") || request.body.contains("\"version\":1}"))
        << body;

    // Stamped when the button was pressed, not when the request left.
    const QJsonObject payload{{"schema", "korvel-velino-sync"},
                              {"version", 1},
                              {"activePreset", "pret"},
                              {"data", pressed.toJson()},
                              {"customPresets", QJsonArray()},
                              {"customPresetDraftName", ""},
                              {"source", "macos"},
                              {"updatedAt", "2026-03-05T13:07:30Z"}};
    EXPECT_EQ(bodyObject(request), QJsonObject({{"code", kSyncCode}, {"payload", payload}}))
        << body;
}

// Other times and texts are shown as SyncTimeLabel's own test expects.
TEST_F(StoreSyncTest, PushShowsTheAnswerTimeInTheUsersZoneOrTheTextAsItCame) {
    const auto store = makeSyncStore();
    const QString prefix = QString::fromUtf16(u"Brouillon envoye vers l'iPhone \u00b7 ");
    struct Case {
        QByteArray answer;
        QString shown;
    };
    const Case cases[] = {
        {uploadBody(kAnswerTime), "10:15"},
        {uploadBody(""), ""},
        // The flag is required but not consulted; unknown keys are ignored.
        {R"({"ok":false,"updatedAt":"2026-06-05T08:15:00Z"})", "10:15"},
        {R"({"extra":[1,2],"updatedAt":"2026-06-05T18:05:00Z","ok":true})", "20:05"},
    };
    for (const Case &c : cases) {
        answerJson(c.answer);
        store->pushToWeb();
        ASSERT_TRUE(waitForIdle(*store)) << c.answer.toStdString();
        EXPECT_EQ(store->syncStatus(), prefix + c.shown) << c.answer.toStdString();
        EXPECT_EQ(store->lastAction(), "Synchronisation iPhone terminee.");
    }
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
    EXPECT_EQ(server->requests().size(), std::size(cases));
}
