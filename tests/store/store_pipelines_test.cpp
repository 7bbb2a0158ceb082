#include "https_test_server.h"
#include "identifiers.h"
#include "mail_app_texts.h"
#include "store_fixture.h"

#include <QSignalSpy>

using namespace velino;
using velino::test::StoreTest;
using velino::test::waitUntil;

// Timed from the test's own clock, so that a stalled machine cannot make it fail: the
// property checked is the debounce itself, whatever the gaps between the edits turn out to be.
TEST_F(StoreTest, QuickEditsGiveOneRegenerationAndOneSaveAfterTheLast) {
    const auto store = makeStore();
    QElapsedTimer clock;
    clock.start();
    QList<qint64> edits;
    QList<qint64> regenerations;
    QObject::connect(store.get(), &ComposerStore::generatedHTMLChanged,
                     [&] { regenerations.append(clock.elapsed()); });
    QSignalSpy saves(store.get(), &ComposerStore::saveStatusChanged);
    for (int i = 1; i <= 10; ++i) {
        edits.append(clock.elapsed());
        store->setDataField("subject", QStringLiteral("Objet numero %1").arg(i));
        wait(50);
    }
    ASSERT_TRUE(
        waitUntil([&] { return !regenerations.isEmpty() && regenerations.last() > edits.last(); },
                  std::chrono::seconds(5)));
    wait(ComposerStore::kDebounceMilliseconds + 100);

    for (const qint64 at : regenerations) {
        // The edit just before it came at least the debounce delay earlier.
        const auto edit = std::upper_bound(edits.begin(), edits.end(), at) - 1;
        EXPECT_GE(at - *edit, ComposerStore::kDebounceMilliseconds);
    }
    // Edits closer than the delay restart it: nothing runs between them.
    for (qsizetype i = 1; i < edits.size(); ++i) {
        if (edits[i] - edits[i - 1] < ComposerStore::kDebounceMilliseconds) {
            for (const qint64 at : regenerations)
                EXPECT_FALSE(at > edits[i - 1] && at < edits[i]) << "between edits " << i;
        }
    }
    EXPECT_EQ(std::count_if(regenerations.begin(), regenerations.end(),
                            [&](qint64 at) { return at > edits.last(); }),
              1);
    EXPECT_EQ(saves.count(), regenerations.size());
    EXPECT_EQ(store->generatedSubject(), "Objet numero 10");
    EXPECT_EQ(savedSubject(), "Objet numero 10");
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
    EXPECT_TRUE(waitUntil(
        [&] { return savedDocument().value("customPresetDraftName").toString() == "Devis ecran"; },
        std::chrono::seconds(5)));
}

TEST_F(StoreTest, PendingChangesOfADestroyedStoreDoNothing) {
    auto store = makeStore();
    store->setDataField("subject", "Jamais enregistre");
    store->setCustomPresetDraftName("Jamais");
    store->setSyncCode("jamais-enregistre");
    store.reset();
    wait(ComposerStore::kDebounceMilliseconds + 100);
    EXPECT_EQ(savedSubject(), "Votre devis Korvel est pret");
    EXPECT_EQ(savedSyncCode(), "");
}

TEST_F(StoreTest, PendingChangesAreSavedAtOnceWhenAsked) {
    auto store = makeStore();
    store->setDataField("subject", "Enregistre a la fermeture");
    store->setCustomPresetDraftName("Brouillon");
    store->setSyncCode("ab-12 cd");
    store->savePendingChanges();
    EXPECT_EQ(savedSubject(), "Enregistre a la fermeture");
    EXPECT_EQ(savedDocument().value("customPresetDraftName").toString(), "Brouillon");
    EXPECT_EQ(savedSyncCode(), "AB-12CD");
    EXPECT_EQ(store->generatedSubject(), "Enregistre a la fermeture");
    store.reset();
    EXPECT_EQ(savedSubject(), "Enregistre a la fermeture");
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
