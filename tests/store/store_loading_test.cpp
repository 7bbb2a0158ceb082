#include "identifiers.h"
#include "saved_payload.h"
#include "store_fixture.h"

#include <QFile>
#include <QJsonArray>

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
    EXPECT_EQ(store->generatedHTML().toUtf8(), test::readTestData("default_email.html"));
    EXPECT_EQ(store->generatedSubject(), "Votre devis Korvel est pret");
    EXPECT_EQ(store->currentDetailsCount(), 4);
    EXPECT_EQ(store->currentChecklist().size(), 8);
    EXPECT_EQ(store->currentFormatStatus(), "Pret a envoyer");
    EXPECT_EQ(store->lastAction(), "Application prete.");
    EXPECT_EQ(store->syncStatus(), "Aucune synchronisation effectuee.");
    EXPECT_EQ(store->saveStatus(), QString::fromUtf16(u"Sauvegarde locale active \u00B7 14:07"));

    // The saved document: compact, no active id key, numeric timestamps, empty login.
    const QByteArray bytes = savedBytes();
    EXPECT_FALSE(bytes.contains('\n'));
    const QJsonObject saved = QJsonDocument::fromJson(bytes).object();
    EXPECT_EQ(saved.value("preset").toString(), "devis");
    EXPECT_EQ(saved.value("smtpLoginEmail").toString(), "");
    EXPECT_TRUE(saved.value("customPresets").toArray().isEmpty());
    EXPECT_EQ(saved.value("customPresetDraftName").toString(), "");
    EXPECT_FALSE(saved.contains("activeCustomPresetID"));
    EXPECT_EQ(saved.value("data").toObject(), MailComposerData::defaultRecord().toJson());
}

TEST_F(StoreTest, ValidDocumentIsLoadedRepairedAndSortedNewestFirst) {
    const QString a = uuidText(randomUuid()), b = uuidText(randomUuid()),
                  c = uuidText(randomUuid()), d = uuidText(randomUuid());
    QJsonObject document = minimalDocument();
    MailComposerData legacy = MailComposerData::defaultRecord();
    legacy.highlight = "  " + kLegacyHighlight + " ";
    legacy.subject = "Votre+iPhone+est+pret";
    document.insert("data", legacy.toJson());
    document.insert("customPresets",
                    QJsonArray{presetJson(a, "Dix", 10), presetJson(b, "Trente", 30),
                               presetJson(c, "Vingt", 20, kLegacyHighlight),
                               presetJson(d, "Vingt bis", 20)});
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
    EXPECT_EQ(uuidText(*store->activeCustomPresetID()), c);
    EXPECT_EQ(store->customPresetDraftName(), "Brouillon");

    // Written back at once: repaired texts, sorted library, empty login, upper-case ids.
    const QJsonObject saved = savedDocument();
    EXPECT_EQ(saved.value("smtpLoginEmail").toString(), "");
    EXPECT_EQ(saved.value("activeCustomPresetID").toString(), c);
    const QJsonArray presets = saved.value("customPresets").toArray();
    ASSERT_EQ(presets.size(), 4);
    EXPECT_EQ(presets[0].toObject().value("updatedAt").toDouble(), 30.0);
    EXPECT_EQ(presets[1].toObject().value("data").toObject().value("highlight").toString(),
              kCurrentHighlight);
    EXPECT_EQ(saved.value("data").toObject().value("highlight").toString(), kCurrentHighlight);
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
    const QJsonObject saved = savedDocument();
    EXPECT_EQ(saved.value("smtpLoginEmail").toString(), "");
    EXPECT_TRUE(saved.value("customPresets").isArray());
    EXPECT_FALSE(saved.contains("activeCustomPresetID"));
}

// Each unreadable document makes the store start from the default state, silently, and
// the first save replaces it.
class UnreadableDocument : public StoreTest, public ::testing::WithParamInterface<const char *> {};

TEST_P(UnreadableDocument, FallsBackToTheDefaultStateAndIsOverwritten) {
    const QString kind = QString::fromLatin1(GetParam());
    QJsonObject document = minimalDocument();
    QJsonObject preset = presetJson(uuidText(randomUuid()), "Atelier", 10);
    if (kind == "unknown preset") {
        document.insert("preset", "promo");
    } else if (kind == "missing data") {
        document.remove("data");
    } else if (kind == "data without footerNote") {
        QJsonObject data = document.value("data").toObject();
        data.remove("footerNote");
        document.insert("data", data);
    } else if (kind == "date string") {
        preset.insert("updatedAt", "2026-01-01T00:00:00Z");
        document.insert("customPresets", QJsonArray{preset});
    } else if (kind == "bad active id") {
        document.insert("activeCustomPresetID", "pas-un-uuid");
    } else if (kind == "malformed preset") {
        preset.insert("sourcePreset", "Relance");
        document.insert("customPresets",
                        QJsonArray{presetJson(uuidText(randomUuid()), "Ok", 3), preset});
    } else if (kind == "preset not an object") {
        document.insert("customPresets", QJsonArray{42});
    }
    writeSavedDocument(document);
    const auto store = makeStore();
    EXPECT_EQ(store->activePreset(), PresetKind::Devis);
    EXPECT_TRUE(store->data() == MailComposerData::defaultRecord());
    EXPECT_TRUE(store->customPresets().isEmpty());
    EXPECT_TRUE(alerts->shown.isEmpty());
    EXPECT_EQ(savedDocument().value("preset").toString(), "devis");
    EXPECT_EQ(savedDocument().value("data").toObject(), MailComposerData::defaultRecord().toJson());
}

INSTANTIATE_TEST_SUITE_P(Cases, UnreadableDocument,
                         ::testing::Values("unknown preset", "missing data",
                                           "data without footerNote", "date string",
                                           "bad active id", "malformed preset",
                                           "preset not an object"));

TEST_F(StoreTest, LargeDocumentIsReadWhole) {
    // About 50 MB: one valid document with a very long footer and many presets.
    SavedPayload payload;
    payload.data = MailComposerData::defaultRecord();
    payload.data.footerNote = QString(20 * 1024 * 1024, u'x');
    for (int i = 0; i < 1000; ++i) {
        CustomMailPreset preset;
        preset.id = randomUuid();
        preset.name = QStringLiteral("Preset %1").arg(i);
        preset.data = MailComposerData::defaultRecord();
        preset.data.mailBody = QString(30 * 1024, u'y');
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
    EXPECT_EQ(store->saveStatus(), "Sauvegarde locale indisponible.");
    store->setDataField("subject", "Objet toujours modifiable");
    wait(ComposerStore::kDebounceMilliseconds + 100);
    EXPECT_EQ(store->generatedSubject(), "Objet toujours modifiable");
    EXPECT_EQ(store->saveStatus(), "Sauvegarde locale indisponible.");

    // Once the folder can be written again, the next save writes the whole state.
    unblockDataFolder();
    store->applyPreset(PresetKind::Rdv);
    EXPECT_EQ(store->saveStatus(), QString::fromUtf16(u"Sauvegarde locale active \u00B7 14:07"));
    EXPECT_EQ(savedSubject(), "Confirmation de votre rendez-vous");
}
