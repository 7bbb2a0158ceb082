#include "https_test_server.h"
#include "store_fixture.h"

using namespace velino;
using velino::test::StoreTest;
using velino::test::waitUntil;

// Timed by the test's own clock, so that a stalled machine cannot make it fail.
TEST_F(StoreTest, QuickEditsGiveOneRegenerationAfterTheLastAndAreSaved) {
    const auto store = makeStore();
    const qint64 delay = ComposerStore::kDebounceMilliseconds;
    QElapsedTimer clock;
    clock.start();
    QList<qint64> edits, regenerations;
    QObject::connect(store.get(), &ComposerStore::generatedHTMLChanged,
                     [&] { regenerations.append(clock.elapsed()); });
    for (int i = 1; i <= 10; ++i) {
        edits.append(clock.elapsed());
        store->setDataField("subject", QStringLiteral("Objet numero %1").arg(i));
        QTest::qWait(50);
    }
    ASSERT_TRUE(
        waitUntil([&] { return !regenerations.isEmpty() && regenerations.last() > edits.last(); },
                  std::chrono::seconds(5)));
    settle();
    for (const qint64 at : regenerations)
        EXPECT_GE(at - *(std::upper_bound(edits.begin(), edits.end(), at) - 1), delay);
    for (qsizetype i = 1; i < edits.size(); ++i)
        for (const qint64 at : regenerations) // edits closer than the delay restart it
            EXPECT_FALSE(edits[i] - edits[i - 1] < delay && at > edits[i - 1] && at < edits[i]);
    EXPECT_EQ(std::count_if(regenerations.begin(), regenerations.end(),
                            [&](qint64 at) { return at > edits.last(); }),
              1);
    EXPECT_EQ(store->generatedSubject() + "|" + savedSubject(), "Objet numero 10|Objet numero 10");
}

// The sync code is remembered normalised but shown as typed until the next start.
TEST_F(StoreTest, PendingChangesAreDroppedWithTheStoreOrSavedAtOnceOrAfterTheDebounce) {
    enum { Dropped, Asked, Waited };
    for (const int how : {Dropped, Asked, Waited}) {
        QFile::remove(documentPath());
        QFile::remove(settingsPath());
        auto store = makeStore();
        store->setDataField("subject", "Enregistre a la fermeture");
        store->setCustomPresetDraftName("Brouillon");
        store->setSyncCode("ab-12 cd");
        if (how == Asked)
            store->savePendingChanges();
        if (how == Waited) {
            settle();
            EXPECT_EQ(store->syncCode(), "ab-12 cd");
        }
        store.reset();
        settle();
        EXPECT_EQ(savedSubject() + " | " + saved(u"customPresetDraftName") + " | " +
                      savedSyncCode() + " | " + makeStore()->syncCode(),
                  how == Dropped ? "Votre devis Korvel est pret |  |  | "
                                 : "Enregistre a la fermeture | Brouillon | AB-12CD | AB-12CD");
    }
}
