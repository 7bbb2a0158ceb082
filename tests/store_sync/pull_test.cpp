#include "identifiers.h"
#include "store_sync_fixture.h"

#include <functional>

using namespace velino;
using namespace velino::test;

namespace {

// A saved preset as the phone would list it, with the given timestamp texts.
QJsonObject phonePreset(const QString &createdAt, const QString &updatedAt) {
    return QJsonObject{
        {"id", uuidText(randomUuid())}, {"name", "Preset iPhone"},
        {"sourcePreset", "rdv"},        {"data", MailComposerData::defaultRecord().toJson()},
        {"createdAt", createdAt},       {"updatedAt", updatedAt},
    };
}

} // namespace

TEST_F(StoreSyncTest, PullReplacesOnlyThePresetAndTheContentThenSaves) {
    const auto store = makeSyncStore();
    store->setCustomPresetDraftName("Devis ecran");
    store->saveAsNewCustomPreset();
    const QList<CustomMailPreset> library = store->customPresets();
    const std::optional<QUuid> activeId = store->activeCustomPresetID();
    ASSERT_EQ(library.size(), 1);
    ASSERT_TRUE(activeId.has_value());
    ASSERT_EQ(store->activePreset(), PresetKind::Devis);
    const MailComposerData before = store->data();

    MailComposerData phoneData = defaultWith(u"recipientName", "Lea Martin");
    phoneData.subject = "Votre relance Korvel";
    QJsonObject payload = phonePayload("relance", phoneData);
    // The phone's own library, active preset and draft name are read, not taken.
    const QJsonObject otherPreset = phonePreset("2026-05-01T09:00:00Z", "2026-05-02T09:00:00Z");
    payload[u"customPresets"] = QJsonArray{otherPreset};
    payload[u"activeCustomPresetID"] = otherPreset[u"id"];
    answerJson(compact(downloadAnswer(payload)));

    QSignalSpy saves(store.get(), &ComposerStore::saveStatusChanged);
    QSignalSpy regenerations(store.get(), &ComposerStore::generatedHTMLChanged);
    store->pullFromWeb();

    // Nothing is regenerated, saved or applied before the answer.
    EXPECT_TRUE(store->isSyncing());
    EXPECT_EQ(store->syncStatus(), "Recuperation du dernier brouillon...");
    EXPECT_EQ(saves.count(), 0);
    EXPECT_EQ(regenerations.count(), 0);
    EXPECT_TRUE(store->data() == before);

    ASSERT_TRUE(waitForIdle(*store));
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
    ASSERT_EQ(server->requests().size(), 1);
    const TestHttpRequest &request = server->requests().first();
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.target, QByteArray("/api/velino-sync?code=") + kSyncCode);
    EXPECT_EQ(request.header("Accept"), "application/json");
    EXPECT_EQ(request.body, "");

    EXPECT_EQ(store->activePreset(), PresetKind::Relance);
    EXPECT_TRUE(store->data() == phoneData);
    EXPECT_EQ(store->generatedSubject(), "Votre relance Korvel");
    EXPECT_EQ(store->previewRecipientName(), "Lea Martin");
    EXPECT_EQ(store->customPresets(), library);
    EXPECT_EQ(store->activeCustomPresetID(), activeId);
    EXPECT_EQ(store->customPresetDraftName(), "Devis ecran");
    // The snapshot's own time, not the payload's.
    EXPECT_EQ(store->syncStatus(), QString::fromUtf16(u"Brouillon recupere \u00b7 10:15"));
    EXPECT_EQ(store->lastAction(), "Brouillon iPhone charge.");

    const QJsonObject saved = savedDocument();
    EXPECT_EQ(saved[u"preset"].toString(), "relance");
    EXPECT_EQ(saved[u"data"][u"recipientName"].toString(), "Lea Martin");
    EXPECT_EQ(saved[u"data"][u"subject"].toString(), "Votre relance Korvel");
    ASSERT_EQ(saved[u"customPresets"].toArray().size(), 1);
    EXPECT_EQ(saved[u"customPresets"][0][u"name"].toString(), "Devis ecran");
    EXPECT_EQ(saved[u"activeCustomPresetID"].toString(), uuidText(*activeId));
    EXPECT_EQ(saved[u"customPresetDraftName"].toString(), "Devis ecran");
}

TEST_F(StoreSyncTest, PullAppliesEveryWellFormedSnapshot) {
    const auto store = makeSyncStore();
    const QString prefix = QString::fromUtf16(u"Brouillon recupere \u00b7 ");
    struct Case {
        const char *what;
        QString preset;
        PresetKind kind;
        QString snapshotTime;
        QString shown;
        std::function<void(QJsonObject &payload)> adjust;
        QJsonValue ok = true;
    };
    const Case cases[] = {
        {"ok false", "pret", PresetKind::Pret, "2026-06-05T08:15:00Z", "10:15",
         [](QJsonObject &) {}, false},
        {"null active saved preset", "rdv", PresetKind::Rdv, "2026-12-24T17:45:00Z", "18:45",
         [](QJsonObject &p) { p[u"activeCustomPresetID"] = QJsonValue::Null; }},
        {"lower-case active saved preset and whole-second preset times", "relance",
         PresetKind::Relance, "2026-06-05T08:15:00Z", "10:15",
         [](QJsonObject &p) {
             const QJsonObject preset =
                 phonePreset("2026-05-01T09:00:00Z", "2026-05-01T11:00:00+02:00");
             p[u"customPresets"] = QJsonArray{preset};
             p[u"activeCustomPresetID"] = preset[u"id"].toString().toLower();
         }},
        {"another schema and version, unknown keys", "devis", PresetKind::Devis, "hier soir",
         "hier soir",
         [](QJsonObject &p) {
             p[u"schema"] = "autre-format";
             p[u"version"] = 7;
             p[u"futur"] = QJsonObject{{"a", 1}};
         }},
    };
    int n = 0;
    for (const Case &c : cases) {
        const MailComposerData data =
            defaultWith(u"recipientName", QStringLiteral("Client %1").arg(++n));
        QJsonObject payload = phonePayload(c.preset, data);
        c.adjust(payload);
        answerJson(compact(downloadAnswer(payload, c.snapshotTime, c.ok)));
        store->pullFromWeb();
        ASSERT_TRUE(waitForIdle(*store)) << c.what;
        EXPECT_EQ(store->syncStatus(), prefix + c.shown) << c.what;
        EXPECT_EQ(store->activePreset(), c.kind) << c.what;
        EXPECT_TRUE(store->data() == data) << c.what;
        EXPECT_EQ(savedDocument()[u"data"][u"recipientName"].toString(), data.recipientName)
            << c.what;
    }
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
}

namespace {

using Edit = std::function<void(QJsonObject &)>;

// The same edit, made to the payload inside a download answer.
Edit inPayload(const Edit &edit) {
    return [edit](QJsonObject &answer) {
        QJsonObject snapshot = answer[u"snapshot"].toObject();
        QJsonObject payload = snapshot[u"payload"].toObject();
        edit(payload);
        snapshot[u"payload"] = payload;
        answer[u"snapshot"] = snapshot;
    };
}

// One saved preset in the payload, with the given timestamp texts.
Edit withPresetTimes(const QString &createdAt, const QString &updatedAt) {
    return inPayload([=](QJsonObject &p) {
        p[u"customPresets"] = QJsonArray{phonePreset(createdAt, updatedAt)};
    });
}

QString badDate(const char *key, const char *text) {
    return QStringLiteral("date invalide pour la cle snapshot.payload.customPresets[0].%1 : "
                          "\"%2\" (forme aaaa-mm-jjThh:mm:ssZ attendue)")
        .arg(QLatin1String(key), QLatin1String(text));
}

QString wrongType(const char *key, const char *expected) {
    return QStringLiteral("type incorrect pour la cle %1 : %2")
        .arg(QLatin1String(key), QLatin1String(expected));
}

} // namespace

TEST_F(StoreSyncTest, PullAppliesNothingFromASnapshotThatDoesNotDecode) {
    const auto store = makeSettledStore(syncServices());
    const QJsonObject good =
        downloadAnswer(phonePayload("relance", defaultWith(u"recipientName", "Lea Martin")));
    struct Case {
        Edit edit;
        QString shown;
    };
    const Case cases[] = {
        {withPresetTimes("2026-05-01T09:00:00.250Z", "2026-05-01T09:00:00Z"),
         badDate("createdAt", "2026-05-01T09:00:00.250Z")},
        {withPresetTimes("2026-05-01T09:00:00Z", "2026-05-01T09:00:00"),
         badDate("updatedAt", "2026-05-01T09:00:00")},
        {withPresetTimes("2026-06-05", "2026-05-01T09:00:00Z"), badDate("createdAt", "2026-06-05")},
        {withPresetTimes("788918400", "2026-05-01T09:00:00Z"), badDate("createdAt", "788918400")},
        {inPayload([](QJsonObject &p) { p.remove("customPresetDraftName"); }),
         "cle manquante : snapshot.payload.customPresetDraftName"},
        {inPayload([](QJsonObject &p) { p.remove("customPresets"); }),
         "cle manquante : snapshot.payload.customPresets"},
        {inPayload([](QJsonObject &p) { p[u"source"] = QJsonValue::Null; }),
         "valeur null pour la cle snapshot.payload.source"},
        {inPayload([](QJsonObject &p) { p[u"schema"] = QJsonValue::Null; }),
         "valeur null pour la cle snapshot.payload.schema"},
        {inPayload([](QJsonObject &p) { p[u"activePreset"] = "promo"; }),
         "preset inconnu pour la cle snapshot.payload.activePreset : \"promo\""},
        {inPayload([](QJsonObject &p) {
             QJsonObject data = p[u"data"].toObject();
             data.remove("footerNote");
             p[u"data"] = data;
         }),
         "cle manquante : snapshot.payload.data.footerNote"},
        {inPayload([](QJsonObject &p) { p[u"version"] = "1"; }),
         wrongType("snapshot.payload.version", "nombre entier attendu, texte trouve")},
        {inPayload([](QJsonObject &p) { p[u"version"] = 1.5; }),
         wrongType("snapshot.payload.version", "nombre entier attendu")},
        {inPayload([](QJsonObject &p) { p[u"customPresets"] = QJsonArray{"x"}; }),
         wrongType("snapshot.payload.customPresets[0]", "objet attendu, texte trouve")},
        {inPayload([](QJsonObject &p) { p[u"source"] = 2; }),
         wrongType("snapshot.payload.source", "texte attendu, nombre trouve")},
        {inPayload([](QJsonObject &p) { p[u"activeCustomPresetID"] = "pas-un-uuid"; }),
         "UUID invalide pour la cle snapshot.payload.activeCustomPresetID : \"pas-un-uuid\""},
        {inPayload([](QJsonObject &p) { p[u"activeCustomPresetID"] = true; }),
         wrongType("snapshot.payload.activeCustomPresetID", "texte attendu, booleen trouve")},
        // The snapshot and the answer around it are just as strict.
        {[](QJsonObject &a) { a.remove("ok"); }, "cle manquante : ok"},
        {[](QJsonObject &a) { a[u"ok"] = "true"; },
         wrongType("ok", "booleen attendu, texte trouve")},
        {[](QJsonObject &a) { a.remove("snapshot"); }, "cle manquante : snapshot"},
        {[](QJsonObject &a) { a[u"snapshot"] = QJsonValue::Null; },
         "valeur null pour la cle snapshot"},
        {[](QJsonObject &a) {
             a[u"snapshot"] =
                 QJsonObject{{"updatedAt", 12}, {"payload", a.value(u"snapshot")[u"payload"]}};
         },
         wrongType("snapshot.updatedAt", "texte attendu, nombre trouve")},
    };
    for (const Case &c : cases) {
        QJsonObject answer = good;
        c.edit(answer);
        answerJson(compact(answer));
        EXPECT_EQ(failureOf(*store, pull, c.shown.toStdString()), c.shown);
    }

    answerJson("[1,2,3]");
    EXPECT_EQ(failureOf(*store, pull, "array"), "JSON invalide : un objet est attendu");
    for (const QByteArray &body : {QByteArray(), QByteArray("{\"ok\":tr\xff}")}) {
        answerJson(body);
        const QString shown = failureOf(*store, pull, body.toStdString());
        EXPECT_TRUE(shown.startsWith("JSON invalide")) << shown.toStdString();
    }
    EXPECT_EQ(alerts->shown.size(), std::size(cases) + 3);
}
