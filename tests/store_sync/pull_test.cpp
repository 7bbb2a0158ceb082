#include "identifiers.h"
#include "store_sync_fixture.h"

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
    answerWith(TestHttpAnswer::json(200, downloadBody(true, "2026-06-05T08:15:00Z", payload)));

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
        {"snapshot time with fractional seconds", "pret", PresetKind::Pret,
         "2026-06-05T08:15:00.500Z", "2026-06-05T08:15:00.500Z", [](QJsonObject &) {}},
    };
    int n = 0;
    for (const Case &c : cases) {
        const MailComposerData data =
            defaultWith(u"recipientName", QStringLiteral("Client %1").arg(++n));
        QJsonObject payload = phonePayload(c.preset, data);
        c.adjust(payload);
        answerWith(TestHttpAnswer::json(200, downloadBody(c.ok, c.snapshotTime, payload)));
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

TEST_F(StoreSyncTest, PullAppliesNothingFromASnapshotThatDoesNotDecode) {
    const auto store = makeSyncStore();
    store->setDataField("recipientName", "Client du poste");
    wait(ComposerStore::kDebounceMilliseconds + 100);
    const MailComposerData before = store->data();
    const QByteArray savedBefore = savedBytes();
    const QString lastAction = store->lastAction();
    const MailComposerData phoneData = defaultWith(u"recipientName", "Lea Martin");

    struct Case {
        const char *what;
        std::function<void(QJsonObject &payload)> adjust;
    };
    const Case cases[] = {
        {"preset times with fractional seconds",
         [](QJsonObject &p) {
             p[u"customPresets"] =
                 QJsonArray{phonePreset("2026-05-01T09:00:00.250Z", "2026-05-01T09:00:00Z")};
         }},
        {"preset time without a zone",
         [](QJsonObject &p) {
             p[u"customPresets"] =
                 QJsonArray{phonePreset("2026-05-01T09:00:00Z", "2026-05-01T09:00:00")};
         }},
        {"no draft name", [](QJsonObject &p) { p.remove("customPresetDraftName"); }},
        {"no preset list", [](QJsonObject &p) { p.remove("customPresets"); }},
        {"null source", [](QJsonObject &p) { p[u"source"] = QJsonValue::Null; }},
        {"unknown preset", [](QJsonObject &p) { p[u"activePreset"] = "promo"; }},
        {"content missing a field",
         [](QJsonObject &p) {
             QJsonObject data = p[u"data"].toObject();
             data.remove("footerNote");
             p[u"data"] = data;
         }},
        {"version as text", [](QJsonObject &p) { p[u"version"] = "1"; }},
        {"active saved preset not a UUID",
         [](QJsonObject &p) { p[u"activeCustomPresetID"] = "pas-un-uuid"; }},
    };
    for (const Case &c : cases) {
        QJsonObject payload = phonePayload("relance", phoneData);
        c.adjust(payload);
        answerWith(TestHttpAnswer::json(200, downloadBody(true, "2026-06-05T08:15:00Z", payload)));
        const qsizetype alertsBefore = alerts->shown.size();
        store->pullFromWeb();
        ASSERT_TRUE(waitForIdle(*store)) << c.what;
        ASSERT_EQ(alerts->shown.size(), alertsBefore + 1) << c.what;
        EXPECT_EQ(store->syncStatus(), alerts->shown.last()) << c.what;
        EXPECT_FALSE(store->syncStatus().isEmpty()) << c.what;
        EXPECT_FALSE(store->syncStatus().startsWith("Brouillon")) << c.what;
        EXPECT_EQ(store->lastAction(), lastAction) << c.what;
        EXPECT_EQ(store->activePreset(), PresetKind::Devis) << c.what;
        EXPECT_TRUE(store->data() == before) << c.what;
        EXPECT_EQ(savedBytes(), savedBefore) << c.what;
    }

    // The snapshot and the answer around it are just as strict.
    const QByteArray wholeAnswers[] = {
        R"({"snapshot":{"updatedAt":"2026-06-05T08:15:00Z","payload":{}}})",
        R"({"ok":true})",
        R"({"ok":"true","snapshot":null})",
        R"({"ok":true,"snapshot":{"updatedAt":12,"payload":{}}})",
        R"([1,2,3])",
        "",
    };
    for (const QByteArray &answer : wholeAnswers) {
        answerWith(TestHttpAnswer::json(200, answer));
        store->pullFromWeb();
        ASSERT_TRUE(waitForIdle(*store)) << answer.toStdString();
        EXPECT_EQ(store->syncStatus(), alerts->shown.last()) << answer.toStdString();
        EXPECT_FALSE(store->syncStatus().startsWith("Brouillon")) << answer.toStdString();
        EXPECT_TRUE(store->data() == before) << answer.toStdString();
        EXPECT_EQ(savedBytes(), savedBefore) << answer.toStdString();
    }
    EXPECT_EQ(alerts->shown.size(), std::size(cases) + std::size(wholeAnswers));
    EXPECT_EQ(store->lastAction(), lastAction);
}
