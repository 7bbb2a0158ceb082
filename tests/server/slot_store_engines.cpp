#include "slot_store_engines.h"

#include "sqlite_slot_store.h"

#include <QTemporaryDir>

namespace velino::test {

std::vector<SlotStoreEngine> availableSlotStoreEngines() {
    std::vector<SlotStoreEngine> engines;
    auto folder = std::make_shared<QTemporaryDir>();
    engines.push_back({"sqlite", [folder]() -> std::unique_ptr<server::SlotStore> {
                           return std::make_unique<server::SqliteSlotStore>(
                               folder->filePath(QStringLiteral("slots/sync.db")));
                       }});
    return engines;
}

} // namespace velino::test
