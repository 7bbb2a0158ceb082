#include "store_sync_fixture.h"

#include <functional>

using namespace velino;
using namespace velino::test;

namespace {

const QString kTooShort = QStringLiteral(
    "Le code prive doit contenir au moins 16 caracteres. Genere-le depuis l'interface iPhone.");

} // namespace

class StoreSyncCodeTest : public StoreSyncTest {
protected:
    void SetUp() override {
        StoreSyncTest::SetUp();
        // Both requests succeed, so that only the code decides what happens.
        server->setHandler([](const TestHttpRequest &request) {
            if (request.method == "PUT")
                return TestHttpAnswer::json(200, uploadBody("2026-06-05T08:15:00Z"));
            return TestHttpAnswer::json(
                200, downloadBody(true, "2026-06-05T08:15:00Z",
                                  phonePayload("devis", MailComposerData::defaultRecord())));
        });
    }
};

TEST_F(StoreSyncCodeTest, ATypedCodeIsNormalisedRememberedAndSent) {
    const auto store = makeSyncStore();

    store->setSyncCode("ab12-cd34 ef56/gh78");
    store->pushToWeb();
    EXPECT_EQ(store->syncCode(), "AB12-CD34EF56GH78");
    // Remembered at once, not only when the field's own debounce fires.
    EXPECT_EQ(savedSyncCode(), "AB12-CD34EF56GH78");
    ASSERT_TRUE(waitForIdle(*store));

    store->setSyncCode(QString::fromUtf16(u" ab12-cd34\u00a0\u00e9f56/gh78\n"));
    store->pullFromWeb();
    EXPECT_EQ(store->syncCode(), "AB12-CD34F56GH78");
    EXPECT_EQ(savedSyncCode(), "AB12-CD34F56GH78");
    ASSERT_TRUE(waitForIdle(*store));

    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
    ASSERT_EQ(server->requests().size(), 2);
    EXPECT_EQ(bodyObject(server->requests()[0])[u"code"].toString(), "AB12-CD34EF56GH78");
    EXPECT_EQ(server->requests()[1].target, "/api/velino-sync?code=AB12-CD34F56GH78");
    EXPECT_EQ(store->lastAction(), "Brouillon iPhone charge.");
}

TEST_F(StoreSyncCodeTest, ACodeShorterThan16IsWrittenBackAndRefusedWithoutARequest) {
    const auto store = makeSyncStore();
    const QString lastAction = store->lastAction();
    const MailComposerData data = store->data();
    QList<bool> syncing;
    QObject::connect(store.get(), &ComposerStore::isSyncingChanged,
                     [&] { syncing.append(store->isSyncing()); });
    const std::pair<QString, QString> codes[] = {
        {"abc", "ABC"},
        {"", ""},
        {QString::fromUtf16(u"abcd-efgh-ijkl-\u00e9"), "ABCD-EFGH-IJKL-"},
    };
    const std::function<void()> operations[] = {[&] { store->pushToWeb(); },
                                                [&] { store->pullFromWeb(); }};

    for (const auto &[typed, written] : codes) {
        for (const auto &operation : operations) {
            store->setSyncCode(typed);
            const qsizetype alertsBefore = alerts->shown.size();
            operation();
            EXPECT_EQ(store->syncCode(), written);
            EXPECT_EQ(store->syncStatus(), kTooShort);
            ASSERT_EQ(alerts->shown.size(), alertsBefore + 1);
            EXPECT_EQ(alerts->shown.last(), kTooShort);
            EXPECT_FALSE(store->isSyncing());
            // Refused codes are not remembered by the attempt itself.
            EXPECT_EQ(savedSyncCode(), "");
        }
    }
    wait(300);
    EXPECT_TRUE(server->requests().isEmpty());
    EXPECT_TRUE(syncing.isEmpty());
    EXPECT_EQ(store->lastAction(), lastAction);
    EXPECT_TRUE(store->data() == data);

    // Sixteen kept characters are enough.
    store->setSyncCode(QString::fromUtf16(u"abcd-efgh-ijkl-\u00e9 m"));
    store->pushToWeb();
    EXPECT_TRUE(store->isSyncing());
    ASSERT_TRUE(waitForIdle(*store));
    EXPECT_EQ(store->lastAction(), "Synchronisation iPhone terminee.");
    ASSERT_EQ(server->requests().size(), 1);
    EXPECT_EQ(bodyObject(server->requests()[0])[u"code"].toString(), "ABCD-EFGH-IJKL-M");
}

TEST_F(StoreSyncCodeTest, ACodeOver64CharactersIsCutAndTheCutCodeIsSavedAndSent) {
    const auto store = makeSyncStore();
    QString typed;
    QString kept;
    for (int i = 0; i < 70; ++i) {
        const QChar c = i % 7 == 6 ? QChar(u'-') : QChar(i % 2 ? u'a' + i % 26 : u'0' + i % 10);
        kept += c;
        typed += c;
        if (i % 10 == 9)
            typed += QStringLiteral(" /");
    }
    ASSERT_EQ(kept.size(), 70);
    const QString expected = kept.left(64).toUpper();

    store->setSyncCode(typed);
    store->pushToWeb();
    EXPECT_EQ(store->syncCode(), expected);
    EXPECT_EQ(savedSyncCode(), expected);
    ASSERT_TRUE(waitForIdle(*store));

    store->setSyncCode(typed);
    store->pullFromWeb();
    EXPECT_EQ(store->syncCode(), expected);
    ASSERT_TRUE(waitForIdle(*store));

    ASSERT_EQ(server->requests().size(), 2);
    EXPECT_EQ(bodyObject(server->requests()[0])[u"code"].toString(), expected);
    EXPECT_EQ(server->requests()[1].target, "/api/velino-sync?code=" + expected.toLatin1());
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
    // The field's debounce, once it fires, keeps the same cut code.
    wait(ComposerStore::kDebounceMilliseconds + 100);
    EXPECT_EQ(savedSyncCode(), expected);
}
