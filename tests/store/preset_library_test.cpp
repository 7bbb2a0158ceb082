#include "preset_names.h"
#include "store_fixture.h"

using namespace velino;
using namespace Qt::StringLiterals;
using velino::test::StoreTest;

// An id no preset has any more is refused like no id at all.
TEST_F(StoreTest, SavingWithoutANameOrUpdatingWithoutALoadedPresetIsRefused) {
    const auto store = makeStore();
    saveAs(*store, " \n\t ");
    store->updateActiveCustomPreset();
    store->setActiveCustomPresetID(randomUuid());
    store->updateActiveCustomPreset();
    const QString updateRefused = "Charge d'abord un preset perso pour le mettre a jour.";
    EXPECT_EQ(alerts->shown, QStringList({"Donne un nom a ton preset avant de l'enregistrer.",
                                          updateRefused, updateRefused}));
    EXPECT_TRUE(store->customPresets().isEmpty());
}

// Saved in one instant, so that equal update times must keep the order of saving.
TEST_F(StoreTest, NamesStayUniqueIgnoringCaseSpacingAndCanonicalForm) {
    const std::pair<QStringList, QStringList> cases[] = {
        {{"Devis atelier", "devis  Atelier", "DEVIS ATELIER"},
         {"Devis atelier", "devis Atelier 2", "DEVIS ATELIER 3"}},
        // Only a numbered candidate blocks "Relance" the first time.
        {{"Relance 2", "Relance", "Relance"}, {"Relance 2", "Relance", "Relance 3"}},
        {{u"Pr\u00EAt"_s, u"pre\u0302t"_s}, {u"Pr\u00EAt"_s, u"pre\u0302t 2"_s}},
    };
    for (const auto &[typed, names] : cases) {
        SCOPED_TRACE(typed.join(u'|').toStdString());
        QFile::remove(documentPath());
        const auto store = makeStore();
        for (const QString &name : typed)
            saveAs(*store, name);
        EXPECT_EQ(presetNames(*store), names);
        EXPECT_EQ(store->customPresetDraftName(), names.last());
    }
}

TEST_F(StoreTest, SaveAsNewUpdateAndOverwriteKeepTheLibraryNewestFirst) {
    const auto store = makeStore();
    store->setActivePreset(PresetKind::Rdv);
    saveAs(*store, "  Pre\n\tmier  ");
    const auto first = [&] { return store->customPresets().first(); };
    EXPECT_EQ(std::tuple(first().name, first().sourcePreset, first().createdAt, first().updatedAt,
                         first().data),
              std::tuple(QString("Pre mier"), PresetKind::Rdv, clock->now(), clock->now(),
                         store->data()));
    EXPECT_EQ(panel(*store), "Pre mier | Pre mier | Preset Pre mier enregistre.");
    EXPECT_EQ(saved(u"activeCustomPresetID"), uuidText(first().id));
    clock->advance(10);
    saveAs(*store, "Second");
    const CustomMailPreset premier = store->customPresets().last();
    clock->advance(10);
    store->loadCustomPreset(premier);
    store->setDataField("footerNote", "Pied mis a jour");
    store->updateActiveCustomPreset();
    EXPECT_EQ(std::tuple(first().id, first().createdAt, first().updatedAt, first().data),
              std::tuple(premier.id, premier.createdAt, clock->now(), store->data()));
    EXPECT_EQ(store->lastAction(), "Preset Pre mier mis a jour.");
    // Renaming onto another preset's name gets a number; a blank draft keeps the stored name.
    store->setCustomPresetDraftName("second");
    store->updateActiveCustomPreset();
    store->setCustomPresetDraftName("   ");
    store->updateActiveCustomPreset();
    EXPECT_EQ(first().name + "|" + store->customPresetDraftName(), "second 2|second 2");

    const CustomMailPreset older = store->customPresets().last();
    clock->advance(10);
    store->applyPreset(PresetKind::Relance);
    store->setCustomPresetDraftName("Nom ignore");
    store->overwriteCustomPreset(older);
    EXPECT_EQ(
        std::tuple(first().id, first().name, first().sourcePreset, first().createdAt, first().data),
        std::tuple(older.id, older.name, PresetKind::Relance, older.createdAt, store->data()));
    EXPECT_EQ(panel(*store), "Second | Second | Preset Second remplace.");
    store->deleteCustomPreset(older); // a preset no longer in the library is added back
    store->overwriteCustomPreset(older);
    EXPECT_EQ(store->customPresets().size(), 2);
}

// Applying a built-in preset or resetting unloads the saved preset but keeps the library
// and the sync code.
TEST_F(StoreTest, ApplyingResettingLoadingAndDeletingReportInThePanel) {
    const auto store = makeStore();
    store->setSyncCode("CODE-PRIVE-1234567");
    store->applyPreset(PresetKind::Rdv);
    saveAs(*store, "Ancien");
    const CustomMailPreset ancien = store->customPresets().first();
    clock->advance(1);
    store->applyPreset(PresetKind::Pret);
    EXPECT_EQ(panel(*store), " | - | Appareil pret charge.");
    saveAs(*store, "Autre");
    store->resetToDefault();
    EXPECT_EQ(panel(*store), " | - | Nouveau message.");
    EXPECT_EQ(store->generatedHTML().toUtf8(), test::readTestData("default_email.html"));
    EXPECT_EQ(QString::number(store->customPresets().size()) + " " + store->syncCode(),
              "2 CODE-PRIVE-1234567");

    store->loadCustomPreset(ancien);
    EXPECT_EQ(store->activePreset(), PresetKind::Rdv);
    EXPECT_EQ(panel(*store), "Ancien | Ancien | Preset Ancien charge.");
    EXPECT_TRUE(store->data() == ancien.data);
    store->deleteCustomPreset(store->customPresets().first()); // another one
    EXPECT_EQ(panel(*store), "Ancien | Ancien | Preset Autre supprime.");
    store->deleteCustomPreset(ancien); // the loaded one
    EXPECT_EQ(panel(*store), " | - | Preset Ancien supprime.");
    EXPECT_FALSE(savedDocument().contains("activeCustomPresetID"));
}

// Small libraries would not show an unstable sort (libstdc++ sorts 16 by insertion).
TEST(SortNewestFirst, KeepsTheOrderOfPresetsWithEqualTimestamps) {
    QList<CustomMailPreset> library(40);
    QStringList expected[2], names;
    for (int i = 0; i < 40; ++i) {
        library[i].name = QString::number(i);
        library[i].updatedAt = Instant{i % 5 == 0 ? 200.0 : 100.0};
        expected[i % 5 == 0 ? 0 : 1].append(library[i].name);
    }
    sortNewestFirst(library);
    for (const CustomMailPreset &preset : library)
        names.append(preset.name);
    EXPECT_EQ(names, expected[0] + expected[1]);
}
