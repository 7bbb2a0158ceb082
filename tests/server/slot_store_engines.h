#pragma once

#include "slot_store.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velino::test {

// One storage engine the contract suite runs against. Each entry owns storage of its own,
// empty when the entry is made; every call of `make` gives a new, not yet opened store on
// that same storage (a second call is how the suite checks that reopening keeps the data).
struct SlotStoreEngine {
    std::string name;
    std::function<std::unique_ptr<velino::server::SlotStore>()> make;
};

// Every engine this machine has, each entry with fresh storage: SQLite in a temporary file
// always, PostgreSQL when scripts/with-test-postgres gives a cluster.
std::vector<SlotStoreEngine> availableSlotStoreEngines();

} // namespace velino::test
