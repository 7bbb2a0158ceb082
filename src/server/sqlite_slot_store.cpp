#include "sqlite_slot_store.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimeZone>

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <future>
#include <thread>

namespace velino::server {
namespace {

constexpr int kSchemaVersion = 1;
constexpr int kBusyTimeoutMs = 10000;
constexpr size_t kMaxBatch = 512;
// Write-ahead log pages after which the checkpoint thread is woken (SQLite's own default).
constexpr int kCheckpointPages = 1000;
constexpr std::chrono::seconds kCheckpointEvery{2};
// Per read connection; keeps the page caches of many request threads small.
constexpr auto kReaderCachePragma = "PRAGMA cache_size=-256";

// One prepared statement, finalized when it goes out of scope.
class Statement {
public:
    Statement(sqlite3 *db, const char *sql) {
        if (sqlite3_prepare_v2(db, sql, -1, &statement_, nullptr) != SQLITE_OK)
            statement_ = nullptr;
    }
    ~Statement() { sqlite3_finalize(statement_); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    bool valid() const { return statement_ != nullptr; }
    sqlite3_stmt *get() const { return statement_; }
    void reset() {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }

private:
    sqlite3_stmt *statement_ = nullptr;
};

bool execute(sqlite3 *db, const char *sql) {
    return sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

sqlite3 *openConnection(const QString &path, int flags) {
    sqlite3 *db = nullptr;
    const QByteArray file = QFile::encodeName(path);
    if (sqlite3_open_v2(file.constData(), &db, flags | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        return nullptr;
    }
    sqlite3_busy_timeout(db, kBusyTimeoutMs);
    return db;
}

// Entering WAL mode takes a lock for which SQLite does not call the busy handler: stores
// opening one file at the same moment get "database is locked" at once (or keep the old
// mode). Retried until the busy timeout; the pragma answers the mode in force.
bool enterWalMode(sqlite3 *db) {
    const auto giveUp =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(kBusyTimeoutMs);
    for (;;) {
        Statement pragma(db, "PRAGMA journal_mode=WAL");
        const int step = pragma.valid() ? sqlite3_step(pragma.get()) : SQLITE_ERROR;
        if (step == SQLITE_ROW &&
            qstricmp(reinterpret_cast<const char *>(sqlite3_column_text(pragma.get(), 0)), "wal") ==
                0)
            return true;
        if ((step != SQLITE_ROW && (step & 0xff) != SQLITE_BUSY) ||
            std::chrono::steady_clock::now() > giveUp)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

// The folder (0700 when made here) and an empty database file readable by its owner only;
// SQLite gives its -wal and -shm files the database file's permissions.
bool preparePrivateFile(const QString &path) {
    const QFileInfo info(path);
    const QString folder = info.absolutePath();
    if (!QFileInfo::exists(folder)) {
        if (!QDir().mkpath(folder))
            return false;
        ::chmod(QFile::encodeName(folder).constData(), 0700);
    }
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0)
        return false;
    ::close(fd);
    return true;
}

bool createOrUpgradeSchema(sqlite3 *db) {
    if (!execute(db, "BEGIN IMMEDIATE"))
        return false;
    bool ok = execute(db, "CREATE TABLE IF NOT EXISTS schema_version (version INTEGER NOT NULL)");
    int version = 0;
    if (ok) {
        Statement select(db, "SELECT MAX(version) FROM schema_version");
        ok = select.valid() && sqlite3_step(select.get()) == SQLITE_ROW;
        if (ok)
            version = sqlite3_column_int(select.get(), 0);
    }
    if (ok && version > kSchemaVersion)
        ok = false; // written by a newer server: leave it alone
    if (ok && version < 1) {
        ok = execute(db, "CREATE TABLE slots (key BLOB PRIMARY KEY NOT NULL, "
                         "updated_at INTEGER NOT NULL, payload BLOB NOT NULL)") &&
             execute(db, "CREATE INDEX slots_updated_at ON slots (updated_at)") &&
             execute(db, "DELETE FROM schema_version") &&
             execute(db, "INSERT INTO schema_version (version) VALUES (1)");
    }
    if (!ok) {
        execute(db, "ROLLBACK");
        return false;
    }
    return execute(db, "COMMIT");
}

} // namespace

struct SqliteSlotStore::PendingWrite {
    QByteArray key;
    StoredSlot slot;
    std::promise<Status> done;
};

class SqliteSlotStore::ReadConnection {
public:
    explicit ReadConnection(sqlite3 *db)
        : db_(db), select_(db, "SELECT updated_at, payload FROM slots WHERE key = ?1") {}
    // close_v2 waits for the statement, finalized right after this body.
    ~ReadConnection() { sqlite3_close_v2(db_); }

    sqlite3 *db() const { return db_; }
    Statement &select() { return select_; }

private:
    sqlite3 *db_;
    Statement select_;
};

SqliteSlotStore::SqliteSlotStore(const QString &path) : path_(path) {}

SqliteSlotStore::~SqliteSlotStore() {
    {
        std::lock_guard lock(queueMutex_);
        stopping_ = true;
    }
    queueChanged_.notify_all();
    checkpointWanted_.notify_all();
    if (writerThread_.joinable())
        writerThread_.join();
    if (checkpointThread_.joinable())
        checkpointThread_.join();
    idleReaders_.clear();
    sqlite3_close(checkpointer_);
    sqlite3_close(writer_);
}

bool SqliteSlotStore::open() {
    if (writer_)
        return true;
    if (!preparePrivateFile(path_))
        return false;
    sqlite3 *db = openConnection(path_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (!db)
        return false;
    // FULL: every commit flushes the write-ahead log, so an answered PUT survives a crash of
    // the process or of the machine.
    if (!enterWalMode(db) || !execute(db, "PRAGMA synchronous=FULL") ||
        !execute(db, "PRAGMA wal_autocheckpoint=0") ||
        !execute(db, "PRAGMA journal_size_limit=67108864") || !createOrUpgradeSchema(db)) {
        sqlite3_close(db);
        return false;
    }
    sqlite3 *checkpointer = openConnection(path_, SQLITE_OPEN_READWRITE);
    if (!checkpointer || !execute(checkpointer, "PRAGMA synchronous=FULL")) {
        sqlite3_close(checkpointer);
        sqlite3_close(db);
        return false;
    }
    writer_ = db;
    checkpointer_ = checkpointer;
    sqlite3_wal_hook(writer_, &SqliteSlotStore::walGrew, this);
    writerThread_ = std::thread([this] { writeLoop(); });
    checkpointThread_ = std::thread([this] { checkpointLoop(); });
    return true;
}

int SqliteSlotStore::walGrew(void *self, sqlite3 *, const char *, int pages) {
    if (pages >= kCheckpointPages) {
        auto *store = static_cast<SqliteSlotStore *>(self);
        {
            std::lock_guard lock(store->queueMutex_);
            store->walLarge_ = true;
        }
        store->checkpointWanted_.notify_one();
    }
    return SQLITE_OK;
}

// Passive checkpoints never wait for the writer nor hold it up; the log starts over from its
// beginning once a checkpoint has copied all of it.
void SqliteSlotStore::checkpointLoop() {
    std::unique_lock lock(queueMutex_);
    while (!stopping_) {
        checkpointWanted_.wait_for(lock, kCheckpointEvery,
                                   [this] { return stopping_ || walLarge_; });
        walLarge_ = false;
        lock.unlock();
        sqlite3_wal_checkpoint_v2(checkpointer_, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr,
                                  nullptr);
        lock.lock();
    }
}

SlotStore::Status SqliteSlotStore::put(const QByteArray &key, const StoredSlot &slot) {
    auto write = std::make_shared<PendingWrite>();
    write->key = key;
    write->slot = slot;
    std::future<Status> result = write->done.get_future();
    {
        std::lock_guard lock(queueMutex_);
        if (stopping_ || !writer_)
            return Status::Unavailable;
        queue_.push_back(write);
    }
    queueChanged_.notify_one();
    return result.get();
}

void SqliteSlotStore::writeLoop() {
    for (;;) {
        std::vector<std::shared_ptr<PendingWrite>> batch;
        {
            std::unique_lock lock(queueMutex_);
            queueChanged_.wait(lock, [this] { return stopping_ || !queue_.empty(); });
            while (!queue_.empty() && batch.size() < kMaxBatch) {
                batch.push_back(std::move(queue_.front()));
                queue_.pop_front();
            }
            if (batch.empty() && stopping_)
                return;
        }
        const bool committed = commitBatch(batch);
        for (const auto &write : batch)
            write->done.set_value(committed ? Status::Ok : Status::Unavailable);
    }
}

bool SqliteSlotStore::commitBatch(const std::vector<std::shared_ptr<PendingWrite>> &batch) {
    std::lock_guard lock(writerMutex_);
    if (!execute(writer_, "BEGIN IMMEDIATE"))
        return false;
    Statement upsert(writer_, "INSERT INTO slots (key, updated_at, payload) VALUES (?1, ?2, ?3) "
                              "ON CONFLICT (key) DO UPDATE SET updated_at = excluded.updated_at, "
                              "payload = excluded.payload");
    bool ok = upsert.valid();
    for (const auto &write : batch) {
        if (!ok)
            break;
        sqlite3_stmt *s = upsert.get();
        sqlite3_bind_blob(s, 1, write->key.constData(), int(write->key.size()), SQLITE_STATIC);
        sqlite3_bind_int64(s, 2, write->slot.updatedAt.toSecsSinceEpoch());
        sqlite3_bind_blob(s, 3, write->slot.payloadJson.constData(),
                          int(write->slot.payloadJson.size()), SQLITE_STATIC);
        ok = sqlite3_step(s) == SQLITE_DONE;
        upsert.reset();
    }
    if (ok && execute(writer_, "COMMIT"))
        return true;
    execute(writer_, "ROLLBACK");
    return false;
}

std::unique_ptr<SqliteSlotStore::ReadConnection> SqliteSlotStore::takeReader() {
    {
        std::lock_guard lock(readersMutex_);
        if (!idleReaders_.empty()) {
            auto reader = std::move(idleReaders_.back());
            idleReaders_.pop_back();
            return reader;
        }
    }
    if (!writer_)
        return nullptr;
    sqlite3 *db = openConnection(path_, SQLITE_OPEN_READONLY);
    if (!db)
        return nullptr;
    execute(db, kReaderCachePragma);
    auto reader = std::make_unique<ReadConnection>(db);
    if (!reader->select().valid())
        return nullptr;
    return reader;
}

void SqliteSlotStore::returnReader(std::unique_ptr<ReadConnection> reader) {
    std::lock_guard lock(readersMutex_);
    idleReaders_.push_back(std::move(reader));
}

SlotStore::Status SqliteSlotStore::get(const QByteArray &key, StoredSlot &slot) {
    std::unique_ptr<ReadConnection> reader = takeReader();
    if (!reader)
        return Status::Unavailable;
    sqlite3_stmt *s = reader->select().get();
    sqlite3_bind_blob(s, 1, key.constData(), int(key.size()), SQLITE_STATIC);
    const int step = sqlite3_step(s);
    Status status = Status::Unavailable;
    if (step == SQLITE_ROW) {
        slot.updatedAt =
            QDateTime::fromSecsSinceEpoch(sqlite3_column_int64(s, 0), QTimeZone::utc());
        const auto *bytes = static_cast<const char *>(sqlite3_column_blob(s, 1));
        slot.payloadJson = QByteArray(bytes, sqlite3_column_bytes(s, 1));
        status = Status::Ok;
    } else if (step == SQLITE_DONE) {
        status = Status::NotFound;
    }
    reader->select().reset();
    returnReader(std::move(reader));
    return status;
}

std::optional<qint64> SqliteSlotStore::deleteWrittenBefore(const QDateTime &cutoff) {
    std::lock_guard lock(writerMutex_);
    if (!writer_)
        return std::nullopt;
    Statement remove(writer_, "DELETE FROM slots WHERE updated_at < ?1");
    if (!remove.valid())
        return std::nullopt;
    sqlite3_bind_int64(remove.get(), 1, cutoff.toSecsSinceEpoch());
    if (sqlite3_step(remove.get()) != SQLITE_DONE)
        return std::nullopt;
    return sqlite3_changes(writer_);
}

std::optional<qint64> SqliteSlotStore::count() {
    std::unique_ptr<ReadConnection> reader = takeReader();
    if (!reader)
        return std::nullopt;
    std::optional<qint64> result;
    {
        Statement select(reader->db(), "SELECT COUNT(*) FROM slots");
        if (select.valid() && sqlite3_step(select.get()) == SQLITE_ROW)
            result = sqlite3_column_int64(select.get(), 0);
    }
    returnReader(std::move(reader));
    return result;
}

bool SqliteSlotStore::isHealthy() {
    std::unique_ptr<ReadConnection> reader = takeReader();
    if (!reader)
        return false;
    bool healthy = false;
    {
        Statement select(reader->db(), "SELECT 1 FROM schema_version LIMIT 1");
        healthy = select.valid() && sqlite3_step(select.get()) == SQLITE_ROW;
    }
    returnReader(std::move(reader));
    return healthy;
}

} // namespace velino::server
