#pragma once

#include "tls_store_fixture.h"

#include <chrono>
#include <memory>
#include <tuple>

namespace velino::test {

inline constexpr std::chrono::seconds kSyncWait{15};
inline constexpr auto kSyncCode = "AB12-CD34EF56GH78";
inline constexpr auto kAnswerTime = "2026-06-05T08:15:00Z"; // 10:15 in Paris
// Unknown keys and "ok":false do not stop an upload answer.
inline const QByteArray kUploadAnswer =
    R"({"extra":[1],"updatedAt":"2026-06-05T08:15:00Z","ok":false})";

// A store talking to a real HTTPS server on 127.0.0.1 with an authority of the test's own.
class StoreSyncTest : public TlsStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(TlsStoreTest::SetUp());
        server = std::make_unique<HttpsTestServer>(*identity_);
        ASSERT_TRUE(server->listen());
    }

    StoreServices syncServices() {
        StoreServices s = services();
        s.syncEndpoint = server->url(QStringLiteral("/api/velino-sync"));
        s.extraSyncCaCertificates = {identity_->caCertificate};
        return s;
    }
    std::unique_ptr<ComposerStore> makeSyncStore(const StoreServices &services) {
        auto store = std::make_unique<ComposerStore>(services);
        store->setSyncCode(QString::fromLatin1(kSyncCode));
        return store;
    }

    // A store with content of its own, saved: its next save writes the same bytes.
    std::unique_ptr<ComposerStore> makeSettledStore(const StoreServices &services) {
        auto store = makeSyncStore(services);
        store->setActivePreset(PresetKind::Rdv);
        store->setDataField("recipientName", "Client du poste");
        store->savePendingChanges();
        return store;
    }

    static bool waitForIdle(const ComposerStore &store) {
        return waitUntil([&] { return !store.isSyncing(); }, kSyncWait);
    }

    // A push or pull that fails, alerting once with the status it shows and moving nothing
    // else. An expected text ending in "..." is compared up to there (the rest is the
    // platform's).
    void expectFailure(ComposerStore &store, void (ComposerStore::*operation)(),
                       const QString &expected) {
        SCOPED_TRACE(expected.toStdString() + (operation == push ? " (push)" : " (pull)"));
        const auto untouched = [&] {
            return std::tuple(store.activePreset(), store.data().toJson(), store.lastAction(),
                              savedBytes());
        };
        const auto before = untouched();
        const QStringList alertsBefore = alerts->shown;
        (store.*operation)();
        EXPECT_TRUE(store.isSyncing());
        ASSERT_TRUE(waitForIdle(store));
        const QString shown = store.syncStatus();
        EXPECT_EQ(alerts->shown, alertsBefore + QStringList{shown});
        EXPECT_TRUE(expected.endsWith("...") ? shown.startsWith(expected.chopped(3))
                                             : shown == expected)
            << "shown: " << shown.toStdString();
        EXPECT_TRUE(untouched() == before) << "preset, content, action or file moved";
    }
    static constexpr auto push = &ComposerStore::pushToWeb;
    static constexpr auto pull = &ComposerStore::pullFromWeb;

    void answerWith(const TestHttpAnswer &answer) {
        server->setHandler([answer](const TestHttpRequest &) { return answer; });
    }

    static QJsonObject phonePayload(const QString &preset, const MailComposerData &data) {
        QJsonObject payload = QJsonDocument::fromJson(R"({"schema":"korvel-velino-sync",
            "version":1,"customPresets":[],"activeCustomPresetID":null,
            "customPresetDraftName":"iPhone","updatedAt":"2026-01-01T00:00:00Z","source":"ios"})")
                                  .object();
        payload.insert("activePreset", preset);
        payload.insert("data", data.toJson());
        return payload;
    }
    static QJsonObject downloadAnswer(const QJsonObject &payload, bool ok = true) {
        return {{"ok", ok},
                {"snapshot", QJsonObject{{"updatedAt", kAnswerTime}, {"payload", payload}}}};
    }

    std::unique_ptr<HttpsTestServer> server;
};

} // namespace velino::test
