#include "https_test_server.h"
#include "identifiers.h"
#include "store_fixture.h"

using namespace velino;
using velino::test::StoreTest;

// Moving the single settings file of earlier versions to the document file and the INI file,
// from a file written by those versions (tests/data/legacy-settings/Velino.conf).
class MigrationTest : public StoreTest {
protected:
    // Puts the earlier file in place, its line ends converted to CR LF when asked.
    void placeEarlierFile(bool crlf) {
        QByteArray bytes = test::readTestData("legacy-settings/Velino.conf");
        ASSERT_FALSE(bytes.isEmpty());
        if (crlf)
            bytes.replace("\n", "\r\n");
        ASSERT_TRUE(QDir().mkpath(configFolder()));
        QFile file(settingsPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray settingsBytes() const {
        QFile file(settingsPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // Everything the earlier file held, as the store shows it.
    void expectEarlierState(const ComposerStore &store) {
        EXPECT_EQ(store.activePreset(), PresetKind::Rdv);
        EXPECT_EQ(store.data().recipientName, "Mme Lambert");
        EXPECT_EQ(store.data().mailBody,
                  QString::fromUtf16(u"Ligne 1\nLigne \"2\" avec \\ une barre, un = et "
                                     u"\u00e9t\u00e9 \U0001F600\r\nfin"));
        EXPECT_EQ(
            presetNames(store),
            QStringList({"Relance \"douce\", 2e = ok",
                         QString::fromUtf16(u"Pret \\ atelier\nnord \u00e9"), "Devis ecran"}));
        ASSERT_EQ(store.customPresets().size(), 3);
        EXPECT_EQ(store.customPresets()[0].data.highlight,
                  QString::fromUtf16(u"Montant estime \u00B7 Reponse par email")); // repaired
        EXPECT_EQ(store.customPresets()[2].createdAt.sinceReference, 788918400.5);
        EXPECT_EQ(uuidText(*store.activeCustomPresetID()), "A0B1C2D3-E4F5-4A6B-8C7D-9E0F1A2B3C4D");
        EXPECT_EQ(store.customPresetDraftName() + "|" + store.syncCode(),
                  "Brouillon du jour|ATELIER-KORVEL-2026-X1");
    }
};

// A CR LF conversion and an empty lock left by a crash cost neither time nor data.
TEST_F(MigrationTest, EarlierFileIsMovedOverOnceWhateverItsLineEndsAndLocks) {
    for (const bool crlf : {false, true}) {
        SCOPED_TRACE(crlf ? "CR LF" : "LF");
        QDir(dir.path()).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(dir.path()));
        placeEarlierFile(crlf);
        QFile lock(settingsPath() + ".lock");
        ASSERT_TRUE(lock.open(QIODevice::WriteOnly)); // empty, modified just now
        lock.close();

        QElapsedTimer elapsed;
        elapsed.start();
        auto store = makeStore();
        EXPECT_LT(elapsed.elapsed(), 500);
        expectEarlierState(*store);
        EXPECT_EQ(store->saveStatus(), test::kSavedStatus);

        // The document file holds the library; the settings file is now plain INI with the
        // sync code alone, which any QSettings reads.
        EXPECT_EQ(savedDocument().value("customPresets").toArray().size(), 3);
        const QSettings ini(settingsPath(), QSettings::IniFormat);
        EXPECT_EQ(ini.allKeys(), QStringList{"velino-sync-code-v1"});
        EXPECT_EQ(savedSyncCode(), "ATELIER-KORVEL-2026-X1");
        for (const QString &path : {documentPath(), dataFolder(), settingsPath()})
            EXPECT_EQ(QFileInfo(path).permissions() & QFileDevice::Permissions(0x0077), 0)
                << path.toStdString();

        // Later saves and the next start use the new files only.
        store->setSyncCode("NOUVEAU-CODE-ATELIER-01");
        EXPECT_TRUE(test::waitUntil([&] { return savedSyncCode() == "NOUVEAU-CODE-ATELIER-01"; },
                                    std::chrono::seconds(5)));
        store.reset();
        store = makeStore();
        EXPECT_EQ(store->customPresets().size(), 3);
        EXPECT_EQ(store->syncCode(), "NOUVEAU-CODE-ATELIER-01");
    }
}

// When the move cannot finish, the earlier file stays byte for byte, the store shows its
// content, says that nothing is saved and writes nothing; the next start tries again.
TEST_F(MigrationTest, FailedMoveKeepsTheEarlierFileAndIsRetriedAtTheNextStart) {
    placeEarlierFile(false);
    const QByteArray earlier = settingsBytes();
    const struct {
        const char *what;
        std::function<void()> block;
        std::function<void()> unblock;
    } cases[] = {
        {"document folder unwritable", [this] { blockDataFolder(); },
         [this] { unblockDataFolder(); }},
        {"settings file not replaceable",
         [this] { ASSERT_TRUE(QDir().mkpath(settingsPath() + ".new/x")); },
         [this] { ASSERT_TRUE(QDir(settingsPath() + ".new").removeRecursively()); }},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        c.block();
        auto store = makeStore();
        expectEarlierState(*store);
        EXPECT_EQ(store->saveStatus(), test::kUnsavedStatus);
        store->applyPreset(PresetKind::Pret);
        store->setSyncCode("CODE-PENDANT-LA-PANNE");
        settle();
        EXPECT_EQ(store->saveStatus(), test::kUnsavedStatus);
        EXPECT_EQ(settingsBytes(), earlier);
        EXPECT_TRUE(alerts->shown.isEmpty());
        store.reset();

        c.unblock();
        store = makeStore();
        expectEarlierState(*store);
        EXPECT_EQ(store->saveStatus(), test::kSavedStatus);
        // Back to the earlier file for the next case.
        QFile::remove(documentPath());
        placeEarlierFile(false);
    }
}
