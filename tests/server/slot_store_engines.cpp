#include "slot_store_engines.h"

#include "postgres_slot_store.h"
#include "postgres_test_database.h"
#include "sqlite_slot_store.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace velino::test {

namespace {

// A database of its own on the test cluster, made at the first store asked for (listing the
// engines makes none) and dropped with the last one.
SlotStoreEngine postgresEngine(const QString &clusterUrl) {
    auto database = std::make_shared<std::unique_ptr<ScratchPostgresDatabase>>();
    return {"postgresql", [database, clusterUrl]() -> std::unique_ptr<server::SlotStore> {
                if (!*database) {
                    *database = std::make_unique<ScratchPostgresDatabase>(clusterUrl);
                    if (!(*database)->created()) {
                        ADD_FAILURE() << "test database: " << (*database)->error().toStdString();
                    }
                }
                QString error;
                auto store = server::makePostgresSlotStore((*database)->url(), &error);
                if (!store) {
                    ADD_FAILURE() << error.toStdString();
                }
                return store;
            }};
}

} // namespace

std::vector<SlotStoreEngine> availableSlotStoreEngines() {
    std::vector<SlotStoreEngine> engines;
    auto folder = std::make_shared<QTemporaryDir>();
    engines.push_back({"sqlite", [folder]() -> std::unique_ptr<server::SlotStore> {
                           return std::make_unique<server::SqliteSlotStore>(
                               folder->filePath(QStringLiteral("slots/sync.db")));
                       }});
    if (const QString clusterUrl = testPostgresUrl(); !clusterUrl.isEmpty()) {
        engines.push_back(postgresEngine(clusterUrl));
    }
    return engines;
}

} // namespace velino::test
