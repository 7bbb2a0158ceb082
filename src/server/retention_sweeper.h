#pragma once

#include "slot_store.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace velino::server {

// Deletes, at start and then every `interval`, the slots not written for `retentionDays`,
// on a thread of its own.
class RetentionSweeper {
public:
    RetentionSweeper(SlotStore &store, int retentionDays, std::chrono::milliseconds interval,
                     std::function<void(const std::string &)> log);
    ~RetentionSweeper();

private:
    void sweepOnce();
    void run();

    SlotStore &store_;
    const int retentionDays_;
    const std::chrono::milliseconds interval_;
    std::function<void(const std::string &)> log_;

    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopping_ = false;
    std::thread thread_;
};

} // namespace velino::server
