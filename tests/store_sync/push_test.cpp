#include "store_sync_fixture.h"

using namespace velino;
using namespace velino::test;

TEST_F(StoreSyncTest, PushSendsTheStateAsItWasWhenTheButtonWasPressed) {
    const auto store = makeSyncStore();
    // A library, an active saved preset and a draft name, none of which may leave.
    store->setCustomPresetDraftName("Devis ecran");
    store->saveAsNewCustomPreset();
    ASSERT_EQ(store->customPresets().size(), 1);
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
    EXPECT_EQ(store->syncStatus(), "Envoi du brouillon vers l'iPhone...");
    EXPECT_EQ(store->lastAction(), lastAction);
    EXPECT_EQ(store->generatedSubject(), "Votre iPhone est pret");
    EXPECT_EQ(savedSubject(), "Votre iPhone est pret");
    EXPECT_EQ(savedDocument()[u"preset"].toString(), "pret");

    ASSERT_TRUE(waitForIdle(*store));
    ASSERT_TRUE(syncingDuringRequest.has_value());
    EXPECT_TRUE(*syncingDuringRequest);
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
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.target, "/api/velino-sync");
    EXPECT_EQ(request.header("Content-Type"), "application/json");
    EXPECT_EQ(request.header("Accept"), "application/json");
    EXPECT_FALSE(request.body.contains('\n') || request.body.contains("\": "))
        << request.body.toStdString();

    const QJsonObject upload = bodyObject(request);
    EXPECT_EQ(upload.keys(), QStringList({"code", "payload"})) << request.body.toStdString();
    EXPECT_EQ(upload[u"code"].toString(), kSyncCode);
    const QJsonObject payload = upload[u"payload"].toObject();
    EXPECT_EQ(payload.keys(), QStringList({"activePreset", "customPresetDraftName", "customPresets",
                                           "data", "schema", "source", "updatedAt", "version"}));
    EXPECT_EQ(payload[u"schema"].toString(), "korvel-velino-sync");
    EXPECT_TRUE(request.body.contains("\"version\":1,") || request.body.contains("\"version\":1}"))
        << request.body.toStdString();
    EXPECT_EQ(payload[u"activePreset"].toString(), "pret");
    EXPECT_TRUE(payload[u"customPresets"].isArray());
    EXPECT_TRUE(payload[u"customPresets"].toArray().isEmpty());
    EXPECT_TRUE(payload[u"customPresetDraftName"].isString());
    EXPECT_EQ(payload[u"customPresetDraftName"].toString(), "");
    EXPECT_EQ(payload[u"source"].toString(), "macos");
    // Stamped when the button was pressed, not when the request left.
    EXPECT_EQ(payload[u"updatedAt"].toString(), "2026-03-05T13:07:30Z");
    QString error;
    const std::optional<MailComposerData> sent =
        MailComposerData::fromJson(payload[u"data"].toObject(), QString(), &error);
    ASSERT_TRUE(sent.has_value()) << error.toStdString();
    EXPECT_TRUE(*sent == pressed);
    EXPECT_EQ(sent->subject, "Votre iPhone est pret");
    EXPECT_EQ(sent->recipientName, "Lea Martin");
}

TEST_F(StoreSyncTest, PushShowsTheAnswerTimeInTheUsersZoneOrTheTextAsItCame) {
    const auto store = makeSyncStore();
    const QString prefix = QString::fromUtf16(u"Brouillon envoye vers l'iPhone \u00b7 ");
    struct Case {
        QByteArray answer;
        QString shown;
    };
    const Case cases[] = {
        {uploadBody(kAnswerTime), "10:15"},
        // Winter time, and the next day in Paris.
        {uploadBody("2026-01-15T23:30:00Z"), "00:30"},
        {uploadBody("2026-06-05T08:15:00+02:00"), "08:15"},
        {uploadBody("2026-06-05T08:15:00.250Z"), "2026-06-05T08:15:00.250Z"},
        {uploadBody("demain matin"), "demain matin"},
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
