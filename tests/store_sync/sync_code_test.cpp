#include "store_sync_fixture.h"

using namespace velino;
using namespace velino::test;

// Spaces, slashes and accented letters are not kept: fifteen kept characters are refused,
// sixteen are enough, over sixty-four are cut. The refused row comes first: nothing before it
// remembered a code or sent a request.
TEST_F(StoreSyncTest, ATypedCodeIsNormalisedCutRememberedAndSentOrRefusedUnder16) {
    const QJsonObject payload = phonePayload("devis", MailComposerData::defaultRecord());
    server->setHandler([payload](const TestHttpRequest &request) {
        return TestHttpAnswer{200, request.method == "PUT" ? kUploadAnswer
                                                           : compact(downloadAnswer(payload))};
    });
    const auto sentCode = [&] {
        const TestHttpRequest &request = server->requests().last();
        return request.method == "PUT" ? QJsonDocument::fromJson(request.body)[u"code"].toString()
                                       : QString::fromLatin1(request.target).section('=', 1);
    };
    const QString tooShort = "Le code prive doit contenir au moins 16 caracteres. Genere-le "
                             "depuis l'interface iPhone.";
    const std::tuple<QString, QString, QString> cases[] = {
        {QString::fromUtf16(u"abcd-efgh-ijkl-\u00e9"), "ABCD-EFGH-IJKL-", tooShort},
        {QString::fromUtf16(u"abcd-efgh-ijkl-\u00e9 m"), "ABCD-EFGH-IJKL-M", ""},
        {QString("ab12-cd34 ef56/gh78 ").repeated(5),
         QString("AB12-CD34EF56GH78").repeated(4).left(64), ""},
    };
    const auto store = makeSyncStore(syncServices());
    for (const auto &[typed, kept, refusal] : cases) {
        for (const auto operation : {push, pull}) {
            SCOPED_TRACE(typed.toStdString() + (operation == push ? " push" : " pull"));
            store->setSyncCode(typed);
            (store.get()->*operation)();
            // Remembered at once, not only when the field's own debounce fires.
            EXPECT_EQ(store->syncCode() + " | " + savedSyncCode(),
                      kept + " | " + (refusal.isEmpty() ? kept : ""));
            if (!refusal.isEmpty()) {
                EXPECT_EQ(store->syncStatus(), refusal);
                EXPECT_TRUE(server->requests().isEmpty());
                continue;
            }
            ASSERT_TRUE(waitForIdle(*store));
            EXPECT_EQ(sentCode(), kept);
        }
    }
    EXPECT_EQ(alerts->shown, QStringList(2, tooShort));
}
