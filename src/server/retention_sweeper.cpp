#include "retention_sweeper.h"

namespace velino::server {

RetentionSweeper::RetentionSweeper(SlotStore &store, int retentionDays,
                                   std::chrono::milliseconds interval,
                                   std::function<void(const std::string &)> log)
    : store_(store), retentionDays_(retentionDays), interval_(interval), log_(std::move(log)) {
    thread_ = std::thread([this] { run(); });
}

RetentionSweeper::~RetentionSweeper() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

void RetentionSweeper::sweepOnce() {
    const QDateTime cutoff = QDateTime::currentDateTimeUtc().addDays(-retentionDays_);
    const std::optional<qint64> deleted = store_.deleteWrittenBefore(cutoff);
    if (log_) {
        log_(deleted ? "retention: " + std::to_string(*deleted) + " emplacement(s) supprime(s)"
                     : std::string("retention: stockage indisponible, nouvel essai plus tard"));
    }
}

void RetentionSweeper::run() {
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        lock.unlock();
        sweepOnce();
        lock.lock();
        wake_.wait_for(lock, interval_, [this] { return stopping_; });
    }
}

} // namespace velino::server
