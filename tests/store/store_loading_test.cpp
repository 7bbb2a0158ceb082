#include "identifiers.h"
#include "saved_payload.h"
#include "store_fixture.h"

using namespace velino;
using velino::test::StoreTest;

namespace {

QJsonObject presetJson(const QString &id, const QString &name, double updatedAt,
                       const QString &highlight = QString()) {
    MailComposerData data = MailComposerData::defaultRecord();
    if (!highlight.isEmpty())
        data.highlight = highlight;
    return QJsonObject{{"id", id},
                       {"name", name},
                       {"sourcePreset", "rdv"},
                       {"data", data.toJson()},
                       {"createdAt", 5.0},
                       {"updatedAt", updatedAt}};
}

QJsonObject minimalDocument() {
    return QJsonObject{{"preset", "pret"}, {"data", MailComposerData::defaultRecord().toJson()}};
}

const QString kLegacyHighlight =
    QString::fromUtf16(u"Devis clair \u00B7 Delai estime \u00B7 Reponse directe par email");
const QString kCurrentHighlight = QString::fromUtf16(u"Montant estime \u00B7 Reponse par email");

} // namespace

TEST_F(StoreTest, EmptyStoreStartsFromTheDefaultStateAndSavesIt) {
    const auto store = makeStore();
    EXPECT_EQ(store->activePreset(), PresetKind::Devis);
    EXPECT_TRUE(store->data() == MailComposerData::defaultRecord());
    EXPECT_EQ(QStringList({store->generatedSubject(), store->currentFormatStatus(),
                           store->lastAction(), store->syncStatus(), store->saveStatus()}),
              QStringList({"Votre devis Korvel est pret", "Pret a envoyer", "Application prete.",
                           "Aucune synchronisation effectuee.", test::kSavedStatus}));

    // The saved document: compact, no active id key, numeric timestamps, empty login.
    EXPECT_FALSE(savedBytes().contains('\n'));
    EXPECT_EQ(
        QStringList({saved(u"preset"), saved(u"smtpLoginEmail"), saved(u"customPresetDraftName")}),
        QStringList({"devis", "", ""}));
    EXPECT_TRUE(savedDocument()[u"customPresets"].toArray().isEmpty());
    EXPECT_FALSE(savedDocument().contains("activeCustomPresetID"));
    EXPECT_EQ(savedDocument()[u"data"].toObject(), MailComposerData::defaultRecord().toJson());
}

TEST_F(StoreTest, ValidDocumentIsLoadedRepairedAndSortedNewestFirst) {
    const QString c = uuidText(randomUuid());
    QJsonObject document = minimalDocument();
    MailComposerData legacy = MailComposerData::defaultRecord();
    legacy.highlight = "  " + kLegacyHighlight + " ";
    legacy.subject = "Votre+iPhone+est+pret";
    document.insert("data", legacy.toJson());
    document.insert("customPresets",
                    QJsonArray{presetJson(uuidText(randomUuid()), "Dix", 10),
                               presetJson(uuidText(randomUuid()), "Trente", 30),
                               presetJson(c, "Vingt", 20, kLegacyHighlight),
                               presetJson(uuidText(randomUuid()), "Vingt bis", 20)});
    document.insert("activeCustomPresetID", c.toLower());
    document.insert("customPresetDraftName", "Brouillon");
    document.insert("smtpLoginEmail", "atelier");
    writeSavedDocument(document);

    const auto store = makeStore();
    EXPECT_EQ(store->activePreset(), PresetKind::Pret);
    EXPECT_EQ(store->data().highlight, kCurrentHighlight);
    EXPECT_EQ(store->data().subject, "Votre iPhone est pret");
    EXPECT_EQ(presetNames(*store), QStringList({"Trente", "Vingt", "Vingt bis", "Dix"}));
    EXPECT_EQ(store->customPresets()[1].data.highlight, kCurrentHighlight);
    EXPECT_EQ(store->customPresets()[1].createdAt.sinceReference, 5.0);
    EXPECT_EQ(panel(*store), "Brouillon | Vingt | Application prete.");

    // Written back at once: repaired texts, sorted library, empty login, upper-case ids.
    EXPECT_EQ(QStringList({saved(u"smtpLoginEmail"), saved(u"activeCustomPresetID")}),
              QStringList({"", c}));
    const QJsonValue presets = savedDocument()[u"customPresets"];
    EXPECT_EQ(presets.toArray().size(), 4);
    EXPECT_EQ(presets[0][u"updatedAt"].toDouble(), 30.0);
    EXPECT_EQ(presets[1][u"data"][u"highlight"].toString(), kCurrentHighlight);
    EXPECT_EQ(savedDocument()[u"data"][u"highlight"].toString(), kCurrentHighlight);
}

TEST_F(StoreTest, MinimalDocumentLoadsAndTheNextSaveAddsTheOptionalKeys) {
    QJsonObject document = minimalDocument();
    document.insert("activeCustomPresetID", QJsonValue::Null);
    document.insert("customPresets", QJsonValue::Null);
    writeSavedDocument(document);
    const auto store = makeStore();
    EXPECT_EQ(store->activePreset(), PresetKind::Pret);
    EXPECT_TRUE(store->customPresets().isEmpty());
    EXPECT_FALSE(store->activeCustomPresetID().has_value());
    EXPECT_EQ(store->customPresetDraftName(), "");
    EXPECT_EQ(saved(u"smtpLoginEmail"), "");
    EXPECT_TRUE(savedDocument()[u"customPresets"].isArray());
    EXPECT_FALSE(savedDocument().contains("activeCustomPresetID"));
}

// Each unreadable document makes the store start from the default state, silently, and
// the first save replaces it.
TEST_F(StoreTest, UnreadableDocumentFallsBackToTheDefaultStateAndIsOverwritten) {
    QJsonObject noFooter = MailComposerData::defaultRecord().toJson();
    noFooter.remove("footerNote");
    QJsonObject dated = presetJson(uuidText(randomUuid()), "Atelier", 10);
    dated.insert("updatedAt", "2026-01-01T00:00:00Z");
    QJsonObject malformed = presetJson(uuidText(randomUuid()), "Atelier", 10);
    malformed.insert("sourcePreset", "Relance");
    const QJsonArray fine{presetJson(uuidText(randomUuid()), "Ok", 3)};
    const std::tuple<const char *, QString, QJsonValue> cases[] = {
        {"unknown preset", "preset", "promo"},
        {"missing data", "data", QJsonValue::Undefined},
        {"data without footerNote", "data", noFooter},
        {"date string", "customPresets", QJsonArray{dated}},
        {"bad active id", "activeCustomPresetID", "pas-un-uuid"},
        {"malformed preset", "customPresets", fine + malformed},
        {"preset not an object", "customPresets", QJsonArray{42}},
    };
    for (const auto &[what, key, value] : cases) {
        SCOPED_TRACE(what);
        QJsonObject document = minimalDocument();
        document.insert(key, value); // an undefined value removes the key
        writeSavedDocument(document);
        const auto store = makeStore();
        EXPECT_EQ(store->activePreset(), PresetKind::Devis);
        EXPECT_TRUE(store->data() == MailComposerData::defaultRecord());
        EXPECT_TRUE(store->customPresets().isEmpty());
        EXPECT_TRUE(alerts->shown.isEmpty());
        EXPECT_EQ(saved(u"preset"), "devis");
        EXPECT_EQ(savedDocument()[u"data"].toObject(), MailComposerData::defaultRecord().toJson());
    }
}

TEST_F(StoreTest, LargeDocumentIsReadWhole) {
    SavedPayload payload; // about 50 MB: a very long footer and many presets
    payload.data = MailComposerData::defaultRecord();
    payload.data.footerNote = QString(20 * 1024 * 1024, u'x');
    CustomMailPreset preset;
    preset.data = test::defaultWith(u"mailBody", QString(30 * 1024, u'y'));
    for (int i = 0; i < 1000; ++i) {
        preset.id = randomUuid();
        preset.name = QStringLiteral("Preset %1").arg(i);
        preset.updatedAt = Instant{static_cast<double>(i)};
        payload.customPresets.append(preset);
    }
    const QByteArray bytes = payload.toJson();
    ASSERT_GT(bytes.size(), 50 * 1000 * 1000);
    writeSaved(bytes);
    const auto store = makeStore();
    EXPECT_EQ(store->data().footerNote.size(), 20 * 1024 * 1024);
    ASSERT_EQ(store->customPresets().size(), 1000);
    EXPECT_EQ(store->customPresets().first().name, "Preset 999");
}

TEST_F(StoreTest, UnwritableDocumentIsReportedAndTheStoreKeepsWorking) {
    blockDataFolder();
    const auto store = makeStore();
    EXPECT_EQ(store->saveStatus(), test::kUnsavedStatus);
    store->setDataField("subject", "Objet toujours modifiable");
    settle();
    EXPECT_EQ(store->generatedSubject(), "Objet toujours modifiable");
    EXPECT_EQ(store->saveStatus(), test::kUnsavedStatus);

    // Once the folder can be written again, the next save writes the whole state.
    unblockDataFolder();
    store->applyPreset(PresetKind::Rdv);
    EXPECT_EQ(store->saveStatus(), test::kSavedStatus);
    EXPECT_EQ(savedSubject(), "Confirmation de votre rendez-vous");
}
