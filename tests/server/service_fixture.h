#pragma once

#include "http_server.h"
#include "sqlite_slot_store.h"
#include "sync_records.h"
#include "sync_service.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <thread>

namespace velino::test {

inline constexpr auto kCode = "AB12-CD34EF56GH78";

inline VelinoSyncUpload defaultUpload(const QString &code = QString::fromLatin1(kCode)) {
    return VelinoSyncUpload{code, VelinoSyncPayload::forSending(PresetKind::Devis,
                                                                MailComposerData::defaultRecord(),
                                                                Instant{788918400})};
}

inline std::string uploadBody(const QString &code = QString::fromLatin1(kCode)) {
    return encodeSyncRecord(defaultUpload(code)).toStdString();
}

inline std::string compactJson(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

inline server::HttpRequest request(const std::string &method, const std::string &path,
                                   const std::string &body = {},
                                   const std::string &peer = "192.0.2.10") {
    return {method, path, {}, {}, body, peer};
}

inline server::HttpRequest putRequest(const std::string &body,
                                      const std::string &peer = "192.0.2.10") {
    return request("PUT", "/api/velino-sync", body, peer);
}

inline server::HttpRequest getRequest(const std::string &code,
                                      const std::string &peer = "192.0.2.10") {
    return {"GET", "/api/velino-sync", {{"code", code}}, {}, {}, peer};
}

inline QString errorText(const std::string &body) {
    QString error;
    const auto record =
        decodeSyncRecord<VelinoSyncErrorResponse>(QByteArray::fromStdString(body), &error);
    return record ? record->error : QStringLiteral("(not an error record)");
}

// A service on SQLite with its clock and log in the test's hands; serve() adds the HTTP layer.
class ServiceFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        store = std::make_unique<server::SqliteSlotStore>(folder.filePath("sync.db"));
        ASSERT_TRUE(store->open());
        config.now = [this] { return now; };
        config.log = [this](const std::string &line) { logLines.push_back(line); };
        config.logoPng = "\x89PNG\r\n\x1a\nlogo";
        remake();
    }

    void TearDown() override {
        if (server)
            server->stop();
        if (runner.joinable())
            runner.join();
    }

    void remake() { service = std::make_unique<server::SyncService>(*store, config); }

    void serve(const server::HttpServerOptions &options) {
        server = std::make_unique<server::HttpServer>(*service, options);
        QString error;
        ASSERT_TRUE(server->bind(&error)) << error.toStdString();
        runner = std::thread([this] { server->run(); });
    }

    QTemporaryDir folder;
    std::unique_ptr<server::SqliteSlotStore> store;
    server::SyncServiceConfig config;
    std::unique_ptr<server::SyncService> service;
    QDateTime now = QDateTime(QDate(2026, 6, 5), QTime(8, 15, 0, 734), QTimeZone::utc());
    std::vector<std::string> logLines;
    std::unique_ptr<server::HttpServer> server;
    std::thread runner;
};

} // namespace velino::test
