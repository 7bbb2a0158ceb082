#include "identifiers.h"
#include "mail_app_texts.h"
#include "store_fixture.h"

#include <QSignalSpy>

using namespace velino;
using velino::test::StoreTest;

TEST_F(StoreTest, TenQuickEditsGiveOneRegenerationAndOneSaveAfterTheLast) {
    const auto store = makeStore();
    QSignalSpy regenerations(store.get(), &ComposerStore::generatedHTMLChanged);
    QSignalSpy saves(store.get(), &ComposerStore::saveStatusChanged);
    QElapsedTimer sinceLastEdit;
    for (int i = 1; i <= 10; ++i) {
        sinceLastEdit.start();
        store->setDataField("subject", QStringLiteral("Objet numero %1").arg(i));
        wait(50);
        EXPECT_EQ(regenerations.count(), 0) << "edit " << i;
    }
    // Until the debounce fires, the outputs still show the content before the edits.
    EXPECT_EQ(store->generatedSubject(), "Votre devis Korvel est pret");
    EXPECT_TRUE(regenerations.wait(1000));
    EXPECT_GE(sinceLastEdit.elapsed(), ComposerStore::kDebounceMilliseconds);
    wait(300);
    EXPECT_EQ(regenerations.count(), 1);
    EXPECT_EQ(saves.count(), 1);
    EXPECT_EQ(store->generatedSubject(), "Objet numero 10");
    EXPECT_EQ(savedDocument().value("data").toObject().value("subject").toString(),
              "Objet numero 10");
}

TEST_F(StoreTest, EveryAssignmentCountsEvenAnEqualValue) {
    const auto store = makeStore();
    QSignalSpy regenerations(store.get(), &ComposerStore::generatedHTMLChanged);
    store->setData(store->data());
    EXPECT_TRUE(regenerations.wait(1000));

    QSignalSpy saves(store.get(), &ComposerStore::saveStatusChanged);
    store->setActivePreset(store->activePreset()); // immediate
    EXPECT_EQ(saves.count(), 1);
    store->setActiveCustomPresetID(std::nullopt); // immediate
    EXPECT_EQ(saves.count(), 2);
    store->setCustomPresetDraftName(QString()); // debounced
    EXPECT_EQ(saves.count(), 2);
    EXPECT_TRUE(saves.wait(1000));
}

TEST_F(StoreTest, ImmediateSavesRecordTheValueBeforeTheAssignment) {
    const auto store = makeStore();
    store->setActivePreset(PresetKind::Relance);
    EXPECT_EQ(savedDocument().value("preset").toString(), "devis");
    store->setActivePreset(PresetKind::Rdv);
    EXPECT_EQ(savedDocument().value("preset").toString(), "relance");
}

TEST_F(StoreTest, DraftNameIsSavedAfterTheDebounce) {
    const auto store = makeStore();
    store->setCustomPresetDraftName("Devis ecran");
    EXPECT_EQ(savedDocument().value("customPresetDraftName").toString(), "");
    wait(ComposerStore::kDebounceMilliseconds + 100);
    EXPECT_EQ(savedDocument().value("customPresetDraftName").toString(), "Devis ecran");
}

TEST_F(StoreTest, PendingChangesOfADestroyedStoreDoNothing) {
    auto store = makeStore();
    store->setDataField("subject", "Jamais enregistre");
    store->setCustomPresetDraftName("Jamais");
    store->setSyncCode("jamais-enregistre");
    store.reset();
    wait(ComposerStore::kDebounceMilliseconds + 100);
    EXPECT_EQ(savedDocument().value("data").toObject().value("subject").toString(),
              "Votre devis Korvel est pret");
    EXPECT_EQ(savedSyncCode(), "");
}

TEST_F(StoreTest, PendingChangesAreSavedAtOnceWhenAsked) {
    auto store = makeStore();
    store->setDataField("subject", "Enregistre a la fermeture");
    store->setCustomPresetDraftName("Brouillon");
    store->setSyncCode("ab-12 cd");
    store->savePendingChanges();
    EXPECT_EQ(savedDocument().value("data").toObject().value("subject").toString(),
              "Enregistre a la fermeture");
    EXPECT_EQ(savedDocument().value("customPresetDraftName").toString(), "Brouillon");
    EXPECT_EQ(savedSyncCode(), "AB-12CD");
    EXPECT_EQ(store->generatedSubject(), "Enregistre a la fermeture");
    store.reset();
    EXPECT_EQ(savedDocument().value("data").toObject().value("subject").toString(),
              "Enregistre a la fermeture");
}

TEST_F(StoreTest, SyncCodeIsRememberedNormalisedButShownAsTyped) {
    {
        const auto store = makeStore();
        store->setSyncCode("ab-12 cd");
        EXPECT_EQ(savedSyncCode(), "");
        wait(ComposerStore::kDebounceMilliseconds + 100);
        EXPECT_EQ(store->syncCode(), "ab-12 cd");
        EXPECT_EQ(savedSyncCode(), "AB-12CD");
    }
    // The next start shows the normalised code, taken as stored.
    const auto restarted = makeStore();
    EXPECT_EQ(restarted->syncCode(), "AB-12CD");
}

TEST_F(StoreTest, ApplyingAPresetKeepsRecipientAndBrandingAndForgetsTheSavedPreset) {
    const auto store = makeStore();
    store->setDataField("recipientName", "M. Roy");
    store->setDataField("accentPrimary", "#112233");
    store->setCustomPresetDraftName("Mon preset");
    store->saveAsNewCustomPreset();
    ASSERT_TRUE(store->activeCustomPresetID().has_value());

    store->applyPreset(PresetKind::Pret);
    EXPECT_EQ(store->activePreset(), PresetKind::Pret);
    EXPECT_FALSE(store->activeCustomPresetID().has_value());
    EXPECT_EQ(store->customPresetDraftName(), "");
    EXPECT_EQ(store->data().recipientName, "M. Roy");
    EXPECT_EQ(store->data().accentPrimary, "#112233");
    EXPECT_EQ(store->data().subject, "Votre appareil est pret");
    EXPECT_EQ(store->generatedSubject(), "Votre appareil est pret"); // regenerated at once
    EXPECT_EQ(store->lastAction(), "Appareil pret charge.");
    EXPECT_EQ(savedDocument().value("preset").toString(), "pret");
    EXPECT_FALSE(savedDocument().contains("activeCustomPresetID"));
    EXPECT_EQ(store->customPresets().size(), 1);
}

TEST_F(StoreTest, ResetRestoresTheDefaultContentAndKeepsLibraryAndSyncCode) {
    const auto store = makeStore();
    store->setSyncCode("CODE-PRIVE-1234567");
    store->setCustomPresetDraftName("Garde");
    store->saveAsNewCustomPreset();
    store->applyPreset(PresetKind::Relance);
    store->setDataField("footerNote", "Autre pied");

    store->resetToDefault();
    EXPECT_TRUE(store->data() == MailComposerData::defaultRecord());
    EXPECT_EQ(store->activePreset(), PresetKind::Devis);
    EXPECT_FALSE(store->activeCustomPresetID().has_value());
    EXPECT_EQ(store->customPresetDraftName(), "");
    EXPECT_EQ(store->customPresets().size(), 1);
    EXPECT_EQ(store->syncCode(), "CODE-PRIVE-1234567");
    EXPECT_EQ(store->lastAction(), "Nouveau message.");
    EXPECT_EQ(store->generatedHTML().toUtf8(), test::readTestData("default_email.html"));
    EXPECT_EQ(savedDocument().value("data").toObject(), MailComposerData::defaultRecord().toJson());
}

TEST_F(StoreTest, PreviewTextsFallBackWhenBlank) {
    const auto store = makeStore();
    store->setDataField("recipientName", " \t ");
    store->setDataField("recipientEmail", "");
    EXPECT_EQ(store->previewRecipientName(), "Client");
    EXPECT_EQ(store->previewRecipientEmail(), "email non renseigne");
    store->setDataField("recipientName", " Mme Roy ");
    EXPECT_EQ(store->previewRecipientName(), "Mme Roy");
    EXPECT_EQ(store->appleConnectionStatusText(), platformMailAppTexts().connectionStatus);
}
