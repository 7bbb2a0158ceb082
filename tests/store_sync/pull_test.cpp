#include "store_sync_fixture.h"

using namespace velino;
using namespace velino::test;

namespace {

// Sets the value at a dotted key path; an undefined value removes the key.
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
    const auto store = makeSyncStore(syncServices());
    saveAs(*store, "Devis ecran");
    const QList<CustomMailPreset> library = store->customPresets();
    MailComposerData phoneData = defaultWith(u"recipientName", "Lea Martin");
    phoneData.subject = "Votre relance Korvel";
    QJsonObject payload = phonePayload("relance", phoneData);
    // The phone's own library, active preset and draft name are read, not taken; unknown
    // keys, another schema or version and "ok":false do not stop a well-formed snapshot.
    payload[u"customPresets"] =
        QJsonArray{presetJson("Preset iPhone", "2026-05-01T09:00:00Z", "2026-05-02T09:00:00Z")};
    payload[u"activeCustomPresetID"] = payload[u"customPresets"][0][u"id"];
    for (const auto &[key, value] :
         {std::pair("schema", QJsonValue("autre")), {"version", 7}, {"futur", QJsonObject{}}})
        payload.insert(key, value);
    answerWith({200, compact(downloadAnswer(payload, false))});

    store->pullFromWeb();
    ASSERT_TRUE(waitForIdle(*store));
    const TestHttpRequest request = server->requests().value(0);
    EXPECT_EQ(request.method + " " + request.target,
              QByteArray("GET /api/velino-sync?code=") + kSyncCode);
    EXPECT_TRUE(store->data() == phoneData);
    EXPECT_EQ(store->generatedSubject(), "Votre relance Korvel"); // regenerated
    EXPECT_EQ(store->customPresets(), library);
    // The snapshot's own time, not the payload's.
    EXPECT_EQ(panel(*store) + " | " + store->syncStatus(),
              QString::fromUtf16(u"Devis ecran | Devis ecran | Brouillon iPhone charge. | "
                                 u"Brouillon recupere \u00b7 10:15"));
    EXPECT_EQ(saved(u"preset") + " | " + savedDocument()[u"data"][u"recipientName"].toString() +
                  " | " + saved(u"activeCustomPresetID"),
              "relance | Lea Martin | " + uuidText(library[0].id));
}

TEST_F(StoreSyncTest, PullAppliesNothingFromASnapshotThatDoesNotDecode) {
    const auto store = makeSettledStore(syncServices());
    const QJsonObject good =
        downloadAnswer(phonePayload("relance", defaultWith(u"recipientName", "Lea")));
    // Keys under snapshot.payload, or from the answer's top with "/".
    const std::tuple<QString, QJsonValue, QString> cases[] = {
        {"customPresets",
         QJsonArray{presetJson("Preset iPhone", "2026-05-01T09:00:00.250Z", kAnswerTime)},
         "date invalide pour la cle snapshot.payload.customPresets[0].createdAt : "
         "\"2026-05-01T09:00:00.250Z\" (forme aaaa-mm-jjThh:mm:ssZ attendue)"},
        {"customPresetDraftName", QJsonValue::Undefined,
         "cle manquante : snapshot.payload.customPresetDraftName"},
        {"activePreset", "promo",
         "preset inconnu pour la cle snapshot.payload.activePreset : \"promo\""},
        {"activeCustomPresetID", "pas-un-uuid",
         "UUID invalide pour la cle snapshot.payload.activeCustomPresetID : \"pas-un-uuid\""},
        {"/ok", "true", "type incorrect pour la cle ok : booleen attendu, texte trouve"},
        {"/snapshot", QJsonValue::Null, "valeur null pour la cle snapshot"},
    };
    for (const auto &[key, value, shown] : cases) {
        QJsonObject answer = good;
        setAt(answer, key.startsWith(u'/') ? key.mid(1) : "snapshot.payload." + key, value);
        answerWith({200, compact(answer)});
        expectFailure(*store, pull, shown);
    }
    answerWith({200, "[1,2,3]"});
    expectFailure(*store, pull, "JSON invalide : un objet est attendu");
}
