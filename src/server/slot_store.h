#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>
#include <optional>

// Where the sync service keeps its slots: one stored state per private code, keyed by the
// SHA-256 of the code (never the code itself), last writer wins. Implementations: SQLite
// (one file, the default) and PostgreSQL (several service processes on one database).
// Every implementation is safe to call from several request threads at once.
namespace velino::server {

// What a PUT stored: the server's time of the write (UTC, whole seconds) and the payload
// exactly as it will be answered to a GET (compact JSON of the decoded payload).
struct StoredSlot {
    QDateTime updatedAt;
    QByteArray payloadJson;
};

class SlotStore {
public:
    enum class Status { Ok, NotFound, Unavailable };

    virtual ~SlotStore() = default;

    // Creates or upgrades the schema (a version table). False when the storage cannot be
    // opened or upgraded.
    virtual bool open() = 0;
    // Replaces the slot under `key` (32 raw bytes); returns once the write is durable.
    virtual Status put(const QByteArray &key, const StoredSlot &slot) = 0;
    // The slot under `key`, NotFound when there is none.
    virtual Status get(const QByteArray &key, StoredSlot &slot) = 0;
    // Deletes the slots not written since `cutoff`; the number deleted, or nothing when
    // the storage is unavailable.
    virtual std::optional<qint64> deleteWrittenBefore(const QDateTime &cutoff) = 0;
    // The number of slots, or nothing when the storage is unavailable.
    virtual std::optional<qint64> count() = 0;
    // True when the storage answers a trivial query now.
    virtual bool isHealthy() = 0;
};

// "sqlite:PATH" or "postgresql://USER@HOST:PORT/DB" (password from PGPASSWORD or .pgpass);
// nothing, with a French sentence in `error`, for anything else.
std::unique_ptr<SlotStore> makeSlotStore(const QString &databaseUrl, QString *error);

} // namespace velino::server
