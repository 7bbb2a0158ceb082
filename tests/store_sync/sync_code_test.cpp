#include "store_sync_fixture.h"

using namespace velino;
using namespace velino::test;

class StoreSyncCodeTest : public StoreSyncTest {
protected:
    void SetUp() override {
        StoreSyncTest::SetUp();
        // Both requests succeed, so that only the code decides what happens.
        server->setHandler([](const TestHttpRequest &request) {
            if (request.method == "PUT")
                return TestHttpAnswer::json(200, uploadBody(kAnswerTime));
            return TestHttpAnswer::json(
                200,
                compact(downloadAnswer(phonePayload("devis", MailComposerData::defaultRecord()))));
        });
    }
};

TEST_F(StoreSyncCodeTest, ATypedCodeIsNormalisedCutRememberedAndSent) {
    const auto store = makeSyncStore();
    // Eighty-five kept characters, with spaces and slashes among them.
    const QString typed = QString("ab12-cd34 ef56/gh78 ").repeated(5);
    const QString cut = QString("AB12-CD34EF56GH78").repeated(4).left(64);
    const std::pair<QString, QString> codes[] = {{"ab12-cd34 ef56/gh78", "AB12-CD34EF56GH78"},
                                                 {typed, cut}};
    QStringList sent;
    for (const auto &[code, expected] : codes) {
        for (const auto operation : {push, pull}) {
            store->setSyncCode(code);
            (store.get()->*operation)();
            // Remembered at once, not only when the field's own debounce fires.
            EXPECT_EQ(store->syncCode() + " " + savedSyncCode(), expected + " " + expected);
            ASSERT_TRUE(waitForIdle(*store));
            const TestHttpRequest &request = server->requests().last();
            sent << (request.method == "PUT" ? bodyObject(request)[u"code"].toString()
                                             : QString::fromLatin1(request.target));
        }
    }
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
    EXPECT_EQ(server->requests().size(), 4);
    EXPECT_EQ(sent, QStringList({"AB12-CD34EF56GH78", "/api/velino-sync?code=AB12-CD34EF56GH78",
                                 cut, "/api/velino-sync?code=" + cut}));
    EXPECT_EQ(store->lastAction(), "Brouillon iPhone charge.");

    // The field's debounce, once it fires, keeps the same cut code. The content's debounce,
    // started later with the same delay, fires after it.
    store->setDataField("subject", "Apres le code");
    ASSERT_TRUE(waitUntil([&] { return savedSubject() == "Apres le code"; }, kSyncWait));
    EXPECT_EQ(savedSyncCode(), cut);
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
        {QString::fromUtf16(u"abcd-efgh-ijkl-\u00e9"), "ABCD-EFGH-IJKL-"}};
    const QString tooShort = "Le code prive doit contenir au moins 16 caracteres. Genere-le "
                             "depuis l'interface iPhone.";
    for (const auto &[typed, written] : codes) {
        for (const auto operation : {push, pull}) {
            store->setSyncCode(typed);
            alerts->shown.clear();
            (store.get()->*operation)();
            EXPECT_EQ(store->syncCode(), written);
            EXPECT_EQ(store->syncStatus(), tooShort);
            EXPECT_EQ(alerts->shown, QStringList{tooShort});
            EXPECT_FALSE(store->isSyncing());
            // Refused codes are not remembered by the attempt itself.
            EXPECT_EQ(savedSyncCode(), "");
        }
    }
    // No operation started; the one request below is the only one the server sees.
    EXPECT_TRUE(syncing.isEmpty());
    EXPECT_EQ(store->lastAction(), lastAction);
    EXPECT_TRUE(store->data() == data);

    // Sixteen kept characters are enough.
    store->setSyncCode(QString::fromUtf16(u"abcd-efgh-ijkl-\u00e9 m"));
    store->pushToWeb();
    ASSERT_TRUE(waitForIdle(*store));
    EXPECT_EQ(store->lastAction(), "Synchronisation iPhone terminee.");
    ASSERT_EQ(server->requests().size(), 1);
    EXPECT_EQ(bodyObject(server->requests()[0])[u"code"].toString(), "ABCD-EFGH-IJKL-M");
}
