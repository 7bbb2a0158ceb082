#pragma once

#include "http_server.h"
#include "sqlite_slot_store.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace velino::test {

// A sync service on SQLite in a fresh folder, served by the HTTP layer from its own thread.
// Fixtures call startServer() from SetUp() inside ASSERT_NO_FATAL_FAILURE.
class HttpServerFixture : public ::testing::Test {
protected:
    void startServer(velino::server::SyncServiceConfig config,
                     const velino::server::HttpServerOptions &options) {
        ASSERT_TRUE(folder.isValid());
        store = std::make_unique<velino::server::SqliteSlotStore>(
            folder.filePath(QStringLiteral("sync.db")));
        ASSERT_TRUE(store->open());
        config.log = [](const std::string &) {};
        service = std::make_unique<velino::server::SyncService>(*store, config);
        server = std::make_unique<velino::server::HttpServer>(*service, options);
        QString error;
        ASSERT_TRUE(server->bind(&error)) << error.toStdString();
        runner = std::thread([this] { server->run(); });
    }

    void TearDown() override {
        if (server)
            server->stop();
        if (runner.joinable())
            runner.join();
    }

    QTemporaryDir folder;
    std::unique_ptr<velino::server::SqliteSlotStore> store;
    std::unique_ptr<velino::server::SyncService> service;
    std::unique_ptr<velino::server::HttpServer> server;
    std::thread runner;
};

} // namespace velino::test
