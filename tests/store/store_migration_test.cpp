#include "store_fixture.h"

#include <functional>

using namespace velino;
using velino::test::StoreTest;

// The single settings file of earlier versions is moved to the document and the INI file.
class MigrationTest : public StoreTest {
protected:
    static void expectEarlierState(const ComposerStore &store) {
        ASSERT_EQ(store.customPresets().size(), 3);
        EXPECT_EQ(
            QStringList({presetId(store.activePreset()), store.data().recipientName,
                         store.data().mailBody, presetNames(store).join(u'|'),
                         store.customPresets()[0].data.highlight, // repaired
                         QString::number(store.customPresets()[2].createdAt.sinceReference, 'f', 1),
                         uuidText(store.activeCustomPresetID().value_or(QUuid())),
                         store.customPresetDraftName(), store.syncCode()}),
            QStringList({"rdv", "Mme Lambert",
                         QString::fromUtf16(u"Ligne 1\nLigne \"2\" avec \\ une barre, un = et "
                                            u"\u00e9t\u00e9 \U0001F600\r\nfin"),
                         QString::fromUtf16(u"Relance \"douce\", 2e = ok|Pret \\ atelier\nnord "
                                            u"\u00e9|Devis ecran"),
                         QString::fromUtf16(u"Montant estime \u00B7 Reponse par email"),
                         "788918400.5", "A0B1C2D3-E4F5-4A6B-8C7D-9E0F1A2B3C4D", "Brouillon du jour",
                         "ATELIER-KORVEL-2026-X1"}));
    }
};

// A CR LF conversion and an empty lock left by a crash cost neither time nor data.
TEST_F(MigrationTest, EarlierFileIsMovedOverOnceWhateverItsLineEndsAndLocks) {
    const QByteArray earlier = test::readTestData("legacy-settings/Velino.conf");
    for (const bool crlf : {false, true}) {
        SCOPED_TRACE(crlf ? "CR LF" : "LF");
        QDir(dir.path()).removeRecursively();
        putFile(settingsPath(), crlf ? QByteArray(earlier).replace("\n", "\r\n") : earlier);
        QFile lock(settingsPath() + ".lock");
        ASSERT_TRUE(lock.open(QIODevice::WriteOnly)); // empty, modified just now
        lock.close();

        QElapsedTimer elapsed;
        elapsed.start();
        auto store = makeStore();
        EXPECT_LT(elapsed.elapsed(), 500);
        expectEarlierState(*store);
        EXPECT_EQ(store->saveStatus(), test::kSavedStatus);
        // The settings file is now plain INI with the sync code alone; all three are private.
        EXPECT_EQ(savedDocument().value("customPresets").toArray().size(), 3);
        EXPECT_EQ(QSettings(settingsPath(), QSettings::IniFormat).allKeys(),
                  QStringList{"velino-sync-code-v1"});
        for (const QString &path : {documentPath(), dataFolder(), settingsPath()})
            EXPECT_EQ(QFileInfo(path).permissions() & QFileDevice::Permissions(0x0077), 0);

        store->setSyncCode("NOUVEAU-CODE-ATELIER-01");
        store->savePendingChanges();
        store = makeStore();
        EXPECT_EQ(store->customPresets().size(), 3);
        EXPECT_EQ(store->syncCode(), "NOUVEAU-CODE-ATELIER-01");
    }
}

TEST_F(MigrationTest, FailedMoveKeepsTheEarlierFileAndIsRetriedAtTheNextStart) {
    const QString replacement = settingsPath() + ".new";
    const std::pair<std::function<void()>, std::function<void()>> cases[] = {
        {[this] { blockDataFolder(); }, [this] { unblockDataFolder(); }},
        {[&] { ASSERT_TRUE(QDir().mkpath(replacement + "/x")); },
         [&] { ASSERT_TRUE(QDir(replacement).removeRecursively()); }},
    };
    const QByteArray earlier = test::readTestData("legacy-settings/Velino.conf");
    for (const auto &[block, unblock] : cases) {
        QFile::remove(documentPath());
        putFile(settingsPath(), earlier);
        block();
        auto store = makeStore();
        expectEarlierState(*store);
        store->applyPreset(PresetKind::Pret);
        store->setSyncCode("CODE-PENDANT-LA-PANNE");
        store->savePendingChanges();
        EXPECT_EQ(store->saveStatus(), test::kUnsavedStatus);
        EXPECT_EQ(readFile(settingsPath()), earlier);
        store.reset();

        unblock();
        store = makeStore();
        expectEarlierState(*store);
        EXPECT_EQ(store->saveStatus(), test::kSavedStatus);
    }
    EXPECT_TRUE(alerts->shown.isEmpty());
}
