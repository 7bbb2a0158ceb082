#pragma once

#include "http_server.h"
#include "server_test_records.h"
#include "sqlite_slot_store.h"
#include "sync_service.h"

#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <thread>

namespace velino::test {

// A service on a real SQLite file, with its clock and log in the test's hands; tests that
// change `config` call remake(), and serve() puts it behind the HTTP layer on its own thread.
class ServiceFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        store = std::make_unique<server::SqliteSlotStore>(databasePath());
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
    QString databasePath() const { return folder.filePath(QStringLiteral("sync.db")); }

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
