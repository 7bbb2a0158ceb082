#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <unordered_map>

namespace velino::server {

// At most `perMinute` events per client address over any minute, as a token bucket per
// address (full at first, refilled steadily). Safe to call from several threads. Addresses
// whose bucket is full again are forgotten, so the table stays small.
class AddressLimiter {
public:
    using Clock = std::chrono::steady_clock;

    // perMinute 0 means no limit.
    explicit AddressLimiter(int perMinute) : perMinute_(perMinute) {}

    // True when `address` may do one more event now; counts it.
    bool take(const std::string &address, Clock::time_point now = Clock::now());
    // True when `address` has used up its events for now; counts nothing.
    bool exhausted(const std::string &address, Clock::time_point now = Clock::now());

private:
    struct Bucket {
        double tokens;
        Clock::time_point refilledAt;
    };

    Bucket &refilled(const std::string &address, Clock::time_point now);
    void forgetFullBuckets(Clock::time_point now);

    const int perMinute_;
    std::mutex mutex_;
    std::unordered_map<std::string, Bucket> buckets_;
    Clock::time_point lastCleanup_{};
};

} // namespace velino::server
