#include "server_metrics.h"

#include <sstream>

namespace velino::server {

void ServerMetrics::record(int status, std::chrono::steady_clock::duration duration) {
    {
        std::lock_guard lock(statusMutex_);
        ++byStatus_[status];
    }
    const double seconds = std::chrono::duration<double>(duration).count();
    for (size_t i = 0; i < kBucketSeconds.size(); ++i) {
        if (seconds <= kBucketSeconds[i]) {
            ++buckets_[i];
            break;
        }
    }
    ++count_;
    sumMicroseconds_ += std::chrono::duration_cast<std::chrono::microseconds>(duration).count();
}

std::string ServerMetrics::prometheusText(std::optional<long long> slotCount) const {
    std::ostringstream out;
    out << "# HELP velino_sync_requests_total Requests answered, by HTTP status.\n"
           "# TYPE velino_sync_requests_total counter\n";
    {
        std::lock_guard lock(statusMutex_);
        for (const auto &[status, count] : byStatus_)
            out << "velino_sync_requests_total{status=\"" << status << "\"} " << count << '\n';
    }
    out << "# HELP velino_sync_request_duration_seconds Time from the request's headers to its "
           "answer.\n"
           "# TYPE velino_sync_request_duration_seconds histogram\n";
    long long cumulative = 0;
    for (size_t i = 0; i < kBucketSeconds.size(); ++i) {
        cumulative += buckets_[i].load();
        out << "velino_sync_request_duration_seconds_bucket{le=\"" << kBucketSeconds[i] << "\"} "
            << cumulative << '\n';
    }
    const long long count = count_.load();
    out << "velino_sync_request_duration_seconds_bucket{le=\"+Inf\"} " << count << '\n'
        << "velino_sync_request_duration_seconds_sum " << double(sumMicroseconds_.load()) / 1e6
        << '\n'
        << "velino_sync_request_duration_seconds_count " << count << '\n';
    if (slotCount) {
        out << "# HELP velino_sync_slots Stored slots.\n"
               "# TYPE velino_sync_slots gauge\n"
               "velino_sync_slots "
            << *slotCount << '\n';
    }
    return out.str();
}

} // namespace velino::server
