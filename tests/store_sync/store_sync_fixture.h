#pragma once

#include "../store/store_fixture.h"
#include "https_test_server.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>

#include <chrono>
#include <memory>
#include <optional>

namespace velino::test {

inline constexpr std::chrono::seconds kSyncWait{15};
inline constexpr auto kSyncCode = "AB12-CD34EF56GH78";

// A store talking to a real HTTPS server on 127.0.0.1, whose certificate comes from an
// authority made for this run and trusted through the store's services only.
class StoreSyncTest : public StoreTest {
protected:
    static void SetUpTestSuite() {
        if (identity_)
            return;
        QString error;
        identity_ = TestTlsIdentity::generate(&error);
        identityError_ = error;
    }

    void SetUp() override {
        StoreTest::SetUp();
        ASSERT_TRUE(identity_.has_value()) << identityError_.toStdString();
        server = std::make_unique<HttpsTestServer>(*identity_);
        ASSERT_TRUE(server->listen());
    }

    StoreServices syncServices() {
        StoreServices s = services();
        s.syncEndpoint = server->url(QStringLiteral("/api/velino-sync"));
        s.extraSyncCaCertificates = {identity_->caCertificate};
        s.syncTransferTimeout = transferTimeout;
        return s;
    }

    std::unique_ptr<ComposerStore> makeSyncStore() {
        auto store = std::make_unique<ComposerStore>(syncServices());
        store->setSyncCode(QString::fromLatin1(kSyncCode));
        return store;
    }

    // Runs the event loop until the push or pull under way has been handled.
    static bool waitForIdle(const ComposerStore &store) {
        return waitUntil([&] { return !store.isSyncing(); }, kSyncWait);
    }

    void answerWith(const TestHttpAnswer &answer) {
        server->setHandler([answer](const TestHttpRequest &) { return answer; });
    }

    // The JSON object of a request body, or an empty object when it is not one.
    static QJsonObject bodyObject(const TestHttpRequest &request) {
        return QJsonDocument::fromJson(request.body).object();
    }

    // A well-formed payload as the phone would store it, written out key by key.
    static QJsonObject phonePayload(const QString &preset, const MailComposerData &data) {
        return QJsonObject{
            {"schema", "korvel-velino-sync"},
            {"version", 1},
            {"activePreset", preset},
            {"data", data.toJson()},
            {"customPresets", QJsonArray{}},
            {"customPresetDraftName", "Nom cote iPhone"},
            {"updatedAt", "2026-01-01T00:00:00Z"},
            {"source", "ios"},
        };
    }

    static QByteArray downloadBody(const QJsonValue &ok, const QString &snapshotUpdatedAt,
                                   const QJsonObject &payload) {
        const QJsonObject answer{
            {"ok", ok},
            {"snapshot", QJsonObject{{"updatedAt", snapshotUpdatedAt}, {"payload", payload}}}};
        return QJsonDocument(answer).toJson(QJsonDocument::Compact);
    }

    static QByteArray uploadBody(const QString &updatedAt) {
        return QJsonDocument(QJsonObject{{"ok", true}, {"updatedAt", updatedAt}})
            .toJson(QJsonDocument::Compact);
    }

    std::unique_ptr<HttpsTestServer> server;
    std::chrono::milliseconds transferTimeout{15000};

    static inline std::optional<TestTlsIdentity> identity_;
    static inline QString identityError_;
};

} // namespace velino::test
