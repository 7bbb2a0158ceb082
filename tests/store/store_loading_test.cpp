#include "saved_payload.h"
#include "store_fixture.h"

using namespace velino;
using velino::test::StoreTest;

namespace {

QByteArray documentWith(const QString &key, const QJsonValue &value) {
    QJsonObject document{{"preset", "pret"}, {"data", MailComposerData::defaultRecord().toJson()}};
    document.insert(key, value); // an undefined value removes the key
    return test::compact(document);
}

const QString kLegacyHighlight =
    QString::fromUtf16(u"Devis clair \u00B7 Delai estime \u00B7 Reponse directe par email");
const QString kCurrentHighlight = QString::fromUtf16(u"Montant estime \u00B7 Reponse par email");

} // namespace

TEST_F(StoreTest, EmptyStoreStartsFromTheDefaultStateAndSavesIt) {
    const auto store = makeStore();
    EXPECT_EQ(store->saveStatus(), test::kSavedStatus);
    EXPECT_EQ(savedDocument(), QJsonObject({{"preset", "devis"},
                                            {"data", MailComposerData::defaultRecord().toJson()},
                                            {"smtpLoginEmail", ""},
                                            {"customPresets", QJsonArray()},
                                            {"customPresetDraftName", ""}}));
}

TEST_F(StoreTest, ValidDocumentIsLoadedRepairedAndSortedNewestFirst) {
    QJsonObject vingt = presetJson("Vingt", 5.0, 20);
    vingt["data"] = test::defaultWith(u"highlight", kLegacyHighlight).toJson();
    MailComposerData legacy = MailComposerData::defaultRecord();
    legacy.highlight = "  " + kLegacyHighlight + " ";
    legacy.subject = "Votre+iPhone+est+pret";
    const QJsonObject document{{"preset", "pret"},
                               {"data", legacy.toJson()},
                               {"customPresets", QJsonArray{presetJson("Dix", 5.0, 10),
                                                            presetJson("Trente", 5.0, 30), vingt}},
                               {"activeCustomPresetID", vingt[u"id"]},
                               {"customPresetDraftName", "Brouillon"},
                               {"smtpLoginEmail", "atelier"}};
    putFile(documentPath(), QJsonDocument(document).toJson());

    const auto store = makeStore();
    EXPECT_EQ(store->activePreset(), PresetKind::Pret);
    EXPECT_EQ(store->data().highlight + "|" + store->data().subject,
              kCurrentHighlight + "|Votre iPhone est pret");
    EXPECT_EQ(presetNames(*store), QStringList({"Trente", "Vingt", "Dix"}));
    EXPECT_EQ(store->customPresets()[1].data.highlight, kCurrentHighlight);
    EXPECT_EQ(panel(*store), "Brouillon | Vingt | Application prete.");

    // Written back at once: repaired, and without the login.
    EXPECT_EQ(saved(u"smtpLoginEmail") + "|" + savedDocument()[u"data"][u"highlight"].toString(),
              "|" + kCurrentHighlight);
}

TEST_F(StoreTest, MinimalDocumentLoadsAndLargeOnesAreReadWhole) {
    putFile(documentPath(), documentWith("customPresets", QJsonValue::Null));
    auto store = makeStore();
    EXPECT_EQ(store->activePreset(), PresetKind::Pret);
    EXPECT_TRUE(savedDocument()[u"customPresets"].isArray());

    // Far over what a sync answer may hold: a local state has no size limit.
    putFile(documentPath(),
            documentWith("customPresets", QJsonArray{presetJson(QString(9 << 20, u'n'), 5.0, 1)}));
    store = makeStore();
    ASSERT_EQ(store->customPresets().size(), 1);
    EXPECT_EQ(store->customPresets()[0].name.size(), 9 << 20);
}

TEST_F(StoreTest, UnreadableDocumentFallsBackToTheDefaultStateAndIsOverwritten) {
    QJsonObject malformed = presetJson("Atelier", 5.0, 10);
    malformed.insert("sourcePreset", "Relance");
    const std::pair<QString, QJsonValue> cases[] = {
        {"preset", "promo"},
        {"data", QJsonValue::Undefined},
        {"customPresets", QJsonArray{presetJson("Atelier", 5.0, "2026-01-01T00:00:00Z")}},
        {"activeCustomPresetID", "pas-un-uuid"},
        {"customPresets", QJsonArray{presetJson("Ok", 5.0, 3), malformed}},
    };
    for (const auto &[key, value] : cases) {
        SCOPED_TRACE(QJsonDocument(QJsonArray{key, value}).toJson().toStdString());
        putFile(documentPath(), documentWith(key, value));
        const auto store = makeStore();
        EXPECT_TRUE(store->data() == MailComposerData::defaultRecord());
        EXPECT_TRUE(store->customPresets().isEmpty());
        EXPECT_EQ(saved(u"preset"), "devis");
    }
}

TEST_F(StoreTest, UnwritableDocumentIsReportedAndTheStoreKeepsWorking) {
    blockDataFolder();
    const auto store = makeStore();
    store->setDataField("subject", "Objet toujours modifiable");
    settle();
    EXPECT_EQ(store->generatedSubject(), "Objet toujours modifiable");
    EXPECT_EQ(store->saveStatus(), test::kUnsavedStatus);

    unblockDataFolder();
    store->applyPreset(PresetKind::Rdv);
    EXPECT_EQ(store->saveStatus(), test::kSavedStatus);
    EXPECT_EQ(savedSubject(), "Confirmation de votre rendez-vous");
}
