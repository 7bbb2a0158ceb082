#pragma once

#include "slot_store.h"

#include <QString>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

struct sqlite3;

namespace velino::server {

// Slots in one SQLite file (WAL journal, synchronous=FULL). Writes go through one writer
// thread that commits whatever PUTs are waiting in one transaction (group commit), so many
// writers share one fsync; a PUT returns once its transaction is on disk. Checkpoints (the
// log copied into the database file) run on a thread of their own, beside the commits
// instead of in their way. Reads use a pool of read-only connections, beside the writer.
class SqliteSlotStore : public SlotStore {
public:
    explicit SqliteSlotStore(const QString &path);
    ~SqliteSlotStore() override;

    bool open() override;
    Status put(const QByteArray &key, const StoredSlot &slot) override;
    Status get(const QByteArray &key, StoredSlot &slot) override;
    std::optional<qint64> deleteWrittenBefore(const QDateTime &cutoff) override;
    std::optional<qint64> count() override;
    bool isHealthy() override;

private:
    struct PendingWrite;
    class ReadConnection;

    void writeLoop();
    void checkpointLoop();
    static int walGrew(void *self, sqlite3 *db, const char *name, int pages);
    bool commitBatch(const std::vector<std::shared_ptr<PendingWrite>> &batch);
    std::unique_ptr<ReadConnection> takeReader();
    void returnReader(std::unique_ptr<ReadConnection> reader);

    const QString path_;

    std::mutex writerMutex_; // guards writer_ (batches and sweeps)
    sqlite3 *writer_ = nullptr;

    std::mutex queueMutex_;
    std::condition_variable queueChanged_;
    std::deque<std::shared_ptr<PendingWrite>> queue_;
    bool stopping_ = false;
    std::thread writerThread_;

    sqlite3 *checkpointer_ = nullptr;
    std::condition_variable checkpointWanted_;
    bool walLarge_ = false;
    std::thread checkpointThread_;

    std::mutex readersMutex_;
    std::vector<std::unique_ptr<ReadConnection>> idleReaders_;
};

} // namespace velino::server
