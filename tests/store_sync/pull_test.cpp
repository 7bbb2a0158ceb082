#include "identifiers.h"
#include "store_sync_fixture.h"

using namespace velino;
using namespace velino::test;

namespace {

// One saved preset as the phone would list it, with the given timestamp texts.
QJsonArray phonePresets(const QString &createdAt, const QString &updatedAt) {
    return {QJsonObject{{"id", uuidText(randomUuid())},
                        {"name", "Preset iPhone"},
                        {"sourcePreset", "rdv"},
                        {"data", MailComposerData::defaultRecord().toJson()},
                        {"createdAt", createdAt},
                        {"updatedAt", updatedAt}}};
}

// Sets the value at a dotted key path ("snapshot.payload.source"); an undefined value removes
// the key.
void setAt(QJsonObject &object, QStringView path, const QJsonValue &value) {
    const qsizetype dot = path.indexOf(u'.');
    if (dot < 0)
        return void(object.insert(path, value));
    QJsonObject inner = object.value(path.left(dot)).toObject();
    setAt(inner, path.mid(dot + 1), value);
    object.insert(path.left(dot), inner);
}

} // namespace

TEST_F(StoreSyncTest, PullReplacesOnlyThePresetAndTheContentThenSaves) {
    const auto store = makeSyncStore();
    saveAs(*store, "Devis ecran");
    const QList<CustomMailPreset> library = store->customPresets();
    const std::optional<QUuid> activeId = store->activeCustomPresetID();
    ASSERT_EQ(library.size(), 1);
    const MailComposerData before = store->data();

    MailComposerData phoneData = defaultWith(u"recipientName", "Lea Martin");
    phoneData.subject = "Votre relance Korvel";
    QJsonObject payload = phonePayload("relance", phoneData);
    // The phone's own library, active preset and draft name are read, not taken.
    payload[u"customPresets"] = phonePresets("2026-05-01T09:00:00Z", "2026-05-02T09:00:00Z");
    payload[u"activeCustomPresetID"] = payload[u"customPresets"][0][u"id"];
    answerJson(compact(downloadAnswer(payload)));

    QSignalSpy saves(store.get(), &ComposerStore::saveStatusChanged);
    QSignalSpy regenerations(store.get(), &ComposerStore::generatedHTMLChanged);
    store->pullFromWeb();

    // Nothing is regenerated, saved or applied before the answer.
    EXPECT_TRUE(store->isSyncing());
    EXPECT_EQ(store->syncStatus(), "Recuperation du dernier brouillon...");
    EXPECT_EQ(saves.count() + regenerations.count(), 0);
    EXPECT_TRUE(store->data() == before);

    ASSERT_TRUE(waitForIdle(*store));
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
    ASSERT_EQ(server->requests().size(), 1);
    const TestHttpRequest &request = server->requests().first();
    EXPECT_EQ(request.method + " " + request.target + " " + request.header("Accept"),
              QByteArray("GET /api/velino-sync?code=") + kSyncCode + " application/json");
    EXPECT_EQ(request.body, "");

    EXPECT_EQ(store->activePreset(), PresetKind::Relance);
    EXPECT_TRUE(store->data() == phoneData);
    EXPECT_EQ(store->generatedSubject(), "Votre relance Korvel");
    EXPECT_EQ(store->customPresets(), library);
    EXPECT_EQ(store->activeCustomPresetID(), activeId);
    // The snapshot's own time, not the payload's.
    EXPECT_EQ(panel(*store) + " | " + store->syncStatus(),
              QString::fromUtf16(u"Devis ecran | Devis ecran | Brouillon iPhone charge. | "
                                 u"Brouillon recupere \u00b7 10:15"));

    const QJsonObject saved = savedDocument();
    EXPECT_EQ(QStringList({saved[u"preset"].toString(), saved[u"data"][u"recipientName"].toString(),
                           saved[u"data"][u"subject"].toString(),
                           saved[u"customPresets"][0][u"name"].toString(),
                           saved[u"activeCustomPresetID"].toString(),
                           saved[u"customPresetDraftName"].toString()})
                  .join(" | "),
              "relance | Lea Martin | Votre relance Korvel | Devis ecran | " + uuidText(*activeId) +
                  " | Devis ecran");
    EXPECT_EQ(saved[u"customPresets"].toArray().size(), 1);
}

TEST_F(StoreSyncTest, PullAppliesEveryWellFormedSnapshot) {
    const auto store = makeSyncStore();
    const QJsonArray presets = phonePresets("2026-05-01T09:00:00Z", "2026-05-01T11:00:00+02:00");
    const QString lowerId = presets[0][u"id"].toString().toLower();
    struct Case {
        const char *what;
        QString preset;
        PresetKind kind;
        QString snapshotTime;
        QString shown;
        QJsonObject payloadKeys;
        QJsonValue ok = true;
    };
    const Case cases[] = {
        {"ok false", "pret", PresetKind::Pret, kAnswerTime, "10:15", {}, false},
        {"null active saved preset",
         "rdv",
         PresetKind::Rdv,
         "2026-12-24T17:45:00Z",
         "18:45",
         {{"activeCustomPresetID", QJsonValue::Null}}},
        {"lower-case active saved preset and whole-second preset times",
         "relance",
         PresetKind::Relance,
         kAnswerTime,
         "10:15",
         {{"customPresets", presets}, {"activeCustomPresetID", lowerId}}},
        {"another schema and version, unknown keys",
         "devis",
         PresetKind::Devis,
         "hier soir",
         "hier soir",
         {{"schema", "autre-format"}, {"version", 7}, {"futur", QJsonObject{{"a", 1}}}}},
    };
    int n = 0;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        const MailComposerData data =
            defaultWith(u"recipientName", QStringLiteral("Client %1").arg(++n));
        QJsonObject payload = phonePayload(c.preset, data);
        for (auto key = c.payloadKeys.begin(); key != c.payloadKeys.end(); ++key)
            payload.insert(key.key(), key.value());
        answerJson(compact(downloadAnswer(payload, c.snapshotTime, c.ok)));
        store->pullFromWeb();
        ASSERT_TRUE(waitForIdle(*store));
        EXPECT_EQ(store->syncStatus(), QString::fromUtf16(u"Brouillon recupere \u00b7 ") + c.shown);
        EXPECT_EQ(store->activePreset(), c.kind);
        EXPECT_TRUE(store->data() == data);
        EXPECT_EQ(savedDocument()[u"data"][u"recipientName"].toString(), data.recipientName);
    }
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
}

TEST_F(StoreSyncTest, PullAppliesNothingFromASnapshotThatDoesNotDecode) {
    const auto store = makeSettledStore(syncServices());
    const QJsonObject good =
        downloadAnswer(phonePayload("relance", defaultWith(u"recipientName", "Lea Martin")));
    QJsonObject noFooter = MailComposerData::defaultRecord().toJson();
    noFooter.remove("footerNote");
    const QString time = "2026-05-01T09:00:00Z";
    const QJsonValue gone = QJsonValue::Undefined;
    const auto badDate = [](const char *key, const char *text) {
        return QStringLiteral("date invalide pour la cle snapshot.payload.customPresets[0].%1 : "
                              "\"%2\" (forme aaaa-mm-jjThh:mm:ssZ attendue)")
            .arg(QLatin1String(key), QLatin1String(text));
    };
    const auto wrongType = [](const char *keyAndDetail) {
        return "type incorrect pour la cle snapshot.payload." + QLatin1String(keyAndDetail);
    };
    const std::tuple<QString, QJsonValue, QString> cases[] = {
        {"customPresets", phonePresets("2026-05-01T09:00:00.250Z", time),
         badDate("createdAt", "2026-05-01T09:00:00.250Z")},
        {"customPresets", phonePresets(time, "2026-05-01T09:00:00"),
         badDate("updatedAt", "2026-05-01T09:00:00")},
        {"customPresetDraftName", gone, "cle manquante : snapshot.payload.customPresetDraftName"},
        {"customPresets", gone, "cle manquante : snapshot.payload.customPresets"},
        {"source", QJsonValue::Null, "valeur null pour la cle snapshot.payload.source"},
        {"schema", QJsonValue::Null, "valeur null pour la cle snapshot.payload.schema"},
        {"activePreset", "promo",
         "preset inconnu pour la cle snapshot.payload.activePreset : \"promo\""},
        {"data", noFooter, "cle manquante : snapshot.payload.data.footerNote"},
        {"version", "1", wrongType("version : nombre entier attendu, texte trouve")},
        {"version", 1.5, wrongType("version : nombre entier attendu")},
        {"customPresets", QJsonArray{"x"},
         wrongType("customPresets[0] : objet attendu, texte trouve")},
        {"source", 2, wrongType("source : texte attendu, nombre trouve")},
        {"activeCustomPresetID", "pas-un-uuid",
         "UUID invalide pour la cle snapshot.payload.activeCustomPresetID : \"pas-un-uuid\""},
        {"activeCustomPresetID", true,
         wrongType("activeCustomPresetID : texte attendu, booleen trouve")},
        // The snapshot and the answer around it are just as strict ("/": from the answer).
        {"/ok", gone, "cle manquante : ok"},
        {"/ok", "true", "type incorrect pour la cle ok : booleen attendu, texte trouve"},
        {"/snapshot", gone, "cle manquante : snapshot"},
        {"/snapshot", QJsonValue::Null, "valeur null pour la cle snapshot"},
        {"/snapshot.updatedAt", 12,
         "type incorrect pour la cle snapshot.updatedAt : texte attendu, nombre trouve"},
    };
    for (const auto &[key, value, shown] : cases) {
        QJsonObject answer = good;
        if (key.startsWith(u'/'))
            setAt(answer, QStringView(key).mid(1), value);
        else
            setAt(answer, QString("snapshot.payload." + key), value);
        answerJson(compact(answer));
        EXPECT_EQ(failureOf(*store, pull, shown.toStdString()), shown);
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
