#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace velino::server {

// Request counts by status and a latency histogram, written by the request threads and
// shown in the Prometheus text format.
class ServerMetrics {
public:
    void record(int status, std::chrono::steady_clock::duration duration);

    // The exposition text; the slot count is left out when the storage did not answer.
    std::string prometheusText(std::optional<long long> slotCount) const;

private:
    static constexpr std::array<double, 12> kBucketSeconds{0.001, 0.0025, 0.005, 0.01, 0.025, 0.05,
                                                           0.1,   0.25,   0.5,   1,    2.5,   10};

    mutable std::mutex statusMutex_;
    std::map<int, long long> byStatus_;

    std::array<std::atomic<long long>, kBucketSeconds.size()> buckets_{};
    std::atomic<long long> count_{0};
    std::atomic<long long> sumMicroseconds_{0};
};

} // namespace velino::server
