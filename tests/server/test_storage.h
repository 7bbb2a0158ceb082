#pragma once

#include "slot_store.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QTimeZone>

#include <optional>
#include <string>

namespace velino::test {

// The test cluster's address given by scripts/with-test-postgres, or empty outside it.
QString testPostgresUrl();

// Skips a test on "postgresql" outside scripts/with-test-postgres.
#define SKIP_WITHOUT_TEST_CLUSTER(engine)                                                          \
    do {                                                                                           \
        if (std::string(engine) == "postgresql" && velino::test::testPostgresUrl().isEmpty())      \
            GTEST_SKIP() << "VELINO_TEST_POSTGRES_URL not set (scripts/with-test-postgres)";       \
    } while (false)

// The key of slot `n` and a slot written `n` seconds after 2023-11-14 22:13:20 UTC.
inline QByteArray keyOf(int n) {
    return QCryptographicHash::hash(QByteArray::number(n), QCryptographicHash::Sha256);
}
inline QDateTime at(qint64 secondsSinceEpoch) {
    return QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, QTimeZone::utc());
}
inline server::StoredSlot slotOf(int n) {
    return {at(1'700'000'000 + n), "{\"n\":" + QByteArray::number(n) + "}"};
}

// Empty storage of one engine, removed with the object: a SQLite file in a folder of its own,
// or a database of its own on the test cluster whose time zone is far from UTC.
class ScratchStorage {
public:
    explicit ScratchStorage(const std::string &engine);
    ~ScratchStorage();

    QString error() const { return m_error; }
    // The address as --database takes it.
    QString url() const { return m_url; }
    // A new store on this storage, not opened yet.
    std::unique_ptr<server::SlotStore> makeStore() const;

private:
    QTemporaryDir m_folder;
    QString m_databaseName;
    QString m_url;
    QString m_error;
};

// Runs SQL (several statements allowed) on a connection of its own: the first value of the
// first row as text, empty when there is no row, nothing on failure (the reason in `error`).
std::optional<QByteArray> runSql(const QString &url, const QByteArray &sql,
                                 QString *error = nullptr);

} // namespace velino::test
