#include "store_sync_fixture.h"

using namespace velino;
using namespace velino::test;

class StoreSyncCodeTest : public StoreSyncTest {
protected:
    void SetUp() override {
        StoreSyncTest::SetUp();
        QJsonObject payload = phonePayload("devis", MailComposerData::defaultRecord());
        payload.insert("activeCustomPresetID", QJsonValue()); // no preset loaded on the phone
        server->setHandler([payload](const TestHttpRequest &request) {
            return TestHttpAnswer{200, request.method == "PUT" ? uploadBody(kAnswerTime)
                                                               : downloadAnswer(payload)};
        });
    }
    QString sentCode() const {
        const TestHttpRequest &request = server->requests().last();
        return request.method == "PUT" ? QJsonDocument::fromJson(request.body)[u"code"].toString()
                                       : QString::fromLatin1(request.target).section('=', 1);
    }
};

TEST_F(StoreSyncCodeTest, ATypedCodeIsNormalisedCutRememberedAndSent) {
    const auto store = makeSyncStore(syncServices());
    // Eighty-five kept characters, with spaces and slashes among them.
    const QString cut = QString("AB12-CD34EF56GH78").repeated(4).left(64);
    for (const auto operation : {push, pull}) {
        store->setSyncCode(QString("ab12-cd34 ef56/gh78 ").repeated(5));
        (store.get()->*operation)();
        // Remembered at once, not only when the field's own debounce fires.
        EXPECT_EQ(store->syncCode() + " " + savedSyncCode(), cut + " " + cut);
        ASSERT_TRUE(waitForIdle(*store));
        EXPECT_EQ(sentCode(), cut);
    }
    EXPECT_TRUE(alerts->shown.isEmpty()) << alerts->shown.join(u'|').toStdString();
}

// An accented letter is not kept: fifteen are refused, sixteen are enough.
TEST_F(StoreSyncCodeTest, ACodeShorterThan16IsWrittenBackAndRefusedWithoutARequest) {
    const auto store = makeSyncStore(syncServices());
    const QString tooShort = "Le code prive doit contenir au moins 16 caracteres. Genere-le "
                             "depuis l'interface iPhone.";
    for (const auto operation : {push, pull}) {
        store->setSyncCode(QString::fromUtf16(u"abcd-efgh-ijkl-\u00e9"));
        (store.get()->*operation)();
        EXPECT_EQ(store->syncCode() + " | " + store->syncStatus(), "ABCD-EFGH-IJKL- | " + tooShort);
        EXPECT_EQ(savedSyncCode(), ""); // not remembered by the refused attempt
    }
    EXPECT_EQ(alerts->shown, QStringList(2, tooShort));
    EXPECT_TRUE(server->requests().isEmpty());

    store->setSyncCode(QString::fromUtf16(u"abcd-efgh-ijkl-\u00e9 m"));
    store->pushToWeb();
    ASSERT_TRUE(waitForIdle(*store));
    EXPECT_EQ(sentCode(), "ABCD-EFGH-IJKL-M");
}
