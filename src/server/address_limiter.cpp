#include "address_limiter.h"

#include <algorithm>

namespace velino::server {
namespace {

constexpr size_t kCleanupAbove = 4096;
constexpr std::chrono::seconds kCleanupEvery{10};

} // namespace

AddressLimiter::Bucket &AddressLimiter::refilled(const std::string &address,
                                                 Clock::time_point now) {
    const auto [entry, inserted] = buckets_.try_emplace(address, Bucket{double(perMinute_), now});
    Bucket &bucket = entry->second;
    if (!inserted) {
        const double seconds = std::chrono::duration<double>(now - bucket.refilledAt).count();
        bucket.tokens = std::min(double(perMinute_), bucket.tokens + seconds * perMinute_ / 60.0);
        bucket.refilledAt = now;
    }
    return bucket;
}

void AddressLimiter::forgetFullBuckets(Clock::time_point now) {
    if (buckets_.size() < kCleanupAbove || now - lastCleanup_ < kCleanupEvery)
        return;
    lastCleanup_ = now;
    std::erase_if(buckets_, [&](const auto &entry) {
        const double seconds = std::chrono::duration<double>(now - entry.second.refilledAt).count();
        return entry.second.tokens + seconds * perMinute_ / 60.0 >= perMinute_;
    });
}

bool AddressLimiter::take(const std::string &address, Clock::time_point now) {
    if (perMinute_ <= 0)
        return true;
    std::lock_guard lock(mutex_);
    forgetFullBuckets(now);
    Bucket &bucket = refilled(address, now);
    if (bucket.tokens < 1.0)
        return false;
    bucket.tokens -= 1.0;
    return true;
}

bool AddressLimiter::exhausted(const std::string &address, Clock::time_point now) {
    if (perMinute_ <= 0)
        return false;
    std::lock_guard lock(mutex_);
    const auto found = buckets_.find(address);
    if (found == buckets_.end())
        return false;
    return refilled(address, now).tokens < 1.0;
}

} // namespace velino::server
