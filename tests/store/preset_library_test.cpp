#include "identifiers.h"
#include "preset_names.h"
#include "store_fixture.h"

#include <QJsonArray>

using namespace velino;
using velino::test::StoreTest;

TEST_F(StoreTest, SaveAsNewNormalisesTheNameAndMakesThePresetActive) {
    const auto store = makeStore();
    store->setActivePreset(PresetKind::Rdv);
    store->setDataField("subject", "Objet du preset");
    store->setCustomPresetDraftName("  Devis\n\tclient  ");
    store->saveAsNewCustomPreset();

    ASSERT_EQ(store->customPresets().size(), 1);
    const CustomMailPreset &preset = store->customPresets().first();
    EXPECT_EQ(preset.name, "Devis client");
    EXPECT_EQ(preset.sourcePreset, PresetKind::Rdv);
    EXPECT_EQ(preset.data.subject, "Objet du preset");
    EXPECT_EQ(preset.createdAt, clock->now());
    EXPECT_EQ(preset.updatedAt, clock->now());
    EXPECT_EQ(store->activeCustomPresetID(), preset.id);
    EXPECT_EQ(store->customPresetDraftName(), "Devis client");
    EXPECT_EQ(store->activeCustomPresetName(), "Devis client");
    EXPECT_EQ(store->lastAction(), "Preset Devis client enregistre.");
    EXPECT_EQ(store->generatedSubject(), "Objet du preset");

    const QJsonObject saved = savedDocument();
    EXPECT_EQ(saved.value("activeCustomPresetID").toString(), uuidText(preset.id));
    const QJsonObject savedPreset = saved.value("customPresets").toArray().first().toObject();
    EXPECT_TRUE(savedPreset.value("createdAt").isDouble());
    EXPECT_EQ(savedPreset.value("updatedAt").toDouble(), clock->now().sinceReference);
}

TEST_F(StoreTest, BlankNameIsRefusedWithAnAlertAndNothingChanges) {
    const auto store = makeStore();
    store->setCustomPresetDraftName(" \n\t ");
    EXPECT_FALSE(store->canSaveAsNewCustomPreset());
    const QString before = store->lastAction();
    store->saveAsNewCustomPreset();
    EXPECT_EQ(alerts->shown, QStringList({"Donne un nom a ton preset avant de l'enregistrer."}));
    EXPECT_TRUE(store->customPresets().isEmpty());
    EXPECT_EQ(store->lastAction(), before);
}

TEST_F(StoreTest, NamesStayUniqueIgnoringCaseAndSpacing) {
    const auto store = makeStore();
    for (const char *name : {"Devis atelier", "devis  Atelier", "DEVIS ATELIER"}) {
        store->setCustomPresetDraftName(QString::fromLatin1(name));
        store->saveAsNewCustomPreset();
        clock->advance(1);
    }
    EXPECT_EQ(presetNames(*store),
              QStringList({"DEVIS ATELIER 3", "devis Atelier 2", "Devis atelier"}));

    // A name that only a numbered candidate blocks is kept as it is.
    store->setCustomPresetDraftName("Relance 2");
    store->saveAsNewCustomPreset();
    store->setCustomPresetDraftName("Relance");
    store->saveAsNewCustomPreset();
    EXPECT_EQ(store->customPresetDraftName(), "Relance");
    store->setCustomPresetDraftName("Relance");
    store->saveAsNewCustomPreset();
    EXPECT_EQ(store->customPresetDraftName(), "Relance 3");

    // Canonically equivalent names collide too.
    store->setCustomPresetDraftName(QString::fromUtf16(u"Pr\u00EAt"));
    store->saveAsNewCustomPreset();
    store->setCustomPresetDraftName(QString::fromUtf16(u"pre\u0302t"));
    store->saveAsNewCustomPreset();
    EXPECT_EQ(store->customPresetDraftName(), QString::fromUtf16(u"pre\u0302t 2"));
}

TEST_F(StoreTest, UpdateKeepsItsOwnNameAndMovesThePresetFirst) {
    const auto store = makeStore();
    store->setCustomPresetDraftName("Premier");
    store->saveAsNewCustomPreset();
    clock->advance(10);
    store->setCustomPresetDraftName("Second");
    store->saveAsNewCustomPreset();
    clock->advance(10);

    store->loadCustomPreset(store->customPresets().last()); // "Premier"
    store->setDataField("footerNote", "Pied mis a jour");
    store->updateActiveCustomPreset();
    EXPECT_EQ(presetNames(*store), QStringList({"Premier", "Second"}));
    EXPECT_EQ(store->customPresets().first().data.footerNote, "Pied mis a jour");
    EXPECT_EQ(store->customPresets().first().updatedAt, clock->now());
    EXPECT_LT(store->customPresets().first().createdAt, clock->now());
    EXPECT_EQ(store->lastAction(), "Preset Premier mis a jour.");

    // Renaming onto another preset's name gets a number; a blank draft keeps the stored
    // name in normalised form.
    store->setCustomPresetDraftName("second");
    store->updateActiveCustomPreset();
    EXPECT_EQ(store->customPresets().first().name, "second 2");
    store->setCustomPresetDraftName("   ");
    store->updateActiveCustomPreset();
    EXPECT_EQ(store->customPresets().first().name, "second 2");
    EXPECT_EQ(store->customPresetDraftName(), "second 2");
}

TEST_F(StoreTest, UpdateWithoutAnActivePresetIsRefused) {
    const auto store = makeStore();
    EXPECT_FALSE(store->canUpdateActiveCustomPreset());
    store->updateActiveCustomPreset();
    EXPECT_EQ(alerts->shown,
              QStringList({"Charge d'abord un preset perso pour le mettre a jour."}));

    // A stale id still enables the button, and the update is refused the same way.
    store->setActiveCustomPresetID(randomUuid());
    EXPECT_TRUE(store->canUpdateActiveCustomPreset());
    EXPECT_FALSE(store->activeCustomPresetName().has_value());
    store->updateActiveCustomPreset();
    EXPECT_EQ(alerts->shown.size(), 2);
    EXPECT_EQ(store->lastAction(), "Application prete.");
}

TEST_F(StoreTest, OverwriteKeepsTheNameAndTakesTheCurrentContent) {
    const auto store = makeStore();
    store->setCustomPresetDraftName("Atelier  du  lundi");
    store->saveAsNewCustomPreset();
    clock->advance(5);
    store->setCustomPresetDraftName("Autre");
    store->saveAsNewCustomPreset();
    const CustomMailPreset lundi = store->customPresets().last();

    clock->advance(5);
    store->applyPreset(PresetKind::Relance);
    store->setCustomPresetDraftName("Nom ignore");
    store->overwriteCustomPreset(lundi);
    const CustomMailPreset &first = store->customPresets().first();
    EXPECT_EQ(first.id, lundi.id);
    EXPECT_EQ(first.name, "Atelier du lundi");
    EXPECT_EQ(first.sourcePreset, PresetKind::Relance);
    EXPECT_EQ(first.data.subject, "Je reviens vers vous concernant votre demande");
    EXPECT_EQ(first.createdAt, lundi.createdAt);
    EXPECT_EQ(store->activeCustomPresetID(), lundi.id);
    EXPECT_EQ(store->customPresetDraftName(), "Atelier du lundi");
    EXPECT_EQ(store->lastAction(), "Preset Atelier du lundi remplace.");

    // A preset no longer in the library is added back.
    store->deleteCustomPreset(lundi);
    store->overwriteCustomPreset(lundi);
    EXPECT_EQ(store->customPresets().size(), 2);
}

TEST_F(StoreTest, LoadReplacesTheContentWholeAndRepairsIt) {
    const auto store = makeStore();
    store->applyPreset(PresetKind::Rdv);
    store->setDataField("highlight", "Creneau+confirme+%C2%B7+Accueil+atelier+Korvel");
    store->setCustomPresetDraftName("Ancien");
    store->saveAsNewCustomPreset();
    const CustomMailPreset saved = store->customPresets().first();

    store->resetToDefault();
    store->loadCustomPreset(saved);
    EXPECT_EQ(store->activePreset(), PresetKind::Rdv);
    EXPECT_EQ(store->activeCustomPresetID(), saved.id);
    EXPECT_EQ(store->customPresetDraftName(), "Ancien");
    EXPECT_EQ(store->data().highlight,
              QString::fromUtf16(u"Rendez-vous confirme \u00B7 Reponse simple si besoin"));
    EXPECT_EQ(store->customPresets().first().data.highlight, saved.data.highlight); // untouched
    EXPECT_EQ(store->lastAction(), "Preset Ancien charge.");
}

TEST_F(StoreTest, DeletingTheActivePresetClearsItButDeletingAnotherDoesNot) {
    const auto store = makeStore();
    store->setCustomPresetDraftName("Un");
    store->saveAsNewCustomPreset();
    const CustomMailPreset one = store->customPresets().first();
    clock->advance(1);
    store->setCustomPresetDraftName("Deux");
    store->saveAsNewCustomPreset();
    const CustomMailPreset two = store->customPresets().first();

    store->deleteCustomPreset(one);
    EXPECT_EQ(store->activeCustomPresetID(), two.id);
    EXPECT_EQ(store->customPresetDraftName(), "Deux");
    EXPECT_EQ(store->lastAction(), "Preset Un supprime.");

    store->deleteCustomPreset(two);
    EXPECT_FALSE(store->activeCustomPresetID().has_value());
    EXPECT_EQ(store->customPresetDraftName(), "");
    EXPECT_TRUE(store->customPresets().isEmpty());
    EXPECT_TRUE(savedDocument().value("customPresets").toArray().isEmpty());
    EXPECT_FALSE(savedDocument().contains("activeCustomPresetID"));
}

TEST_F(StoreTest, EqualUpdateTimesKeepTheirOrder) {
    const auto store = makeStore();
    store->setCustomPresetDraftName("A");
    store->saveAsNewCustomPreset();
    store->setCustomPresetDraftName("B");
    store->saveAsNewCustomPreset(); // same instant: goes after A
    EXPECT_EQ(presetNames(*store), QStringList({"A", "B"}));
}

// Presets saved within the same instant keep their library order: the sort must be stable,
// which small libraries do not show (libstdc++ sorts up to 16 entries by insertion).
TEST(SortNewestFirst, KeepsTheOrderOfPresetsWithEqualTimestamps) {
    QList<CustomMailPreset> library;
    QStringList expected[2];
    for (int i = 0; i < 40; ++i) {
        CustomMailPreset preset;
        preset.id = QUuid::createUuid();
        preset.name = QString::number(i);
        const bool newer = i % 5 == 0;
        preset.updatedAt = Instant{newer ? 200.0 : 100.0};
        expected[newer ? 0 : 1].append(preset.name);
        library.append(preset);
    }
    sortNewestFirst(library);
    QStringList names;
    for (const CustomMailPreset &preset : library)
        names.append(preset.name);
    EXPECT_EQ(names, expected[0] + expected[1]);
}
