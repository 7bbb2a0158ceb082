#include "postgres_schema.h"
#include "postgres_slot_store.h"
#include "postgres_test_database.h"

#include <QCryptographicHash>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace velino::server;
using velino::test::PostgresSession;
using velino::test::ScratchPostgresDatabase;
using velino::test::testPostgresUrl;
using Status = SlotStore::Status;

namespace {

QByteArray keyOf(const QString &code) {
    return QCryptographicHash::hash(code.toUtf8(), QCryptographicHash::Sha256);
}

StoredSlot slotAt(qint64 seconds, const QByteArray &payload) {
    return {QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC), payload};
}

std::unique_ptr<SlotStore> storeOn(const QString &url) {
    QString error;
    auto store = makePostgresSlotStore(url, &error);
    EXPECT_TRUE(store) << error.toStdString();
    return store;
}

class PostgresSlotStoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (testPostgresUrl().isEmpty()) {
            GTEST_SKIP() << "VELINO_TEST_POSTGRES_URL not set (scripts/with-test-postgres)";
        }
    }
};

} // namespace

TEST_F(PostgresSlotStoreTest, OpenBringsEverySchemaStateToTheCurrentVersion) {
    const QByteArray versionTable = "CREATE TABLE velino_sync_schema (version integer NOT NULL);";
    const struct {
        const char *name;
        QByteArray setUp;
    } cases[] = {
        {"empty database", ""},
        {"version table without a row", versionTable},
        {"version 0", versionTable + "INSERT INTO velino_sync_schema VALUES (0);"},
    };
    const QByteArray current = QByteArray::number(postgresSchemaVersion());
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScratchPostgresDatabase database(testPostgresUrl());
        ASSERT_TRUE(database.created()) << database.error().toStdString();
        PostgresSession session(database.url());
        ASSERT_TRUE(session.run(c.setUp)) << session.lastError().toStdString();

        auto store = storeOn(database.url());
        ASSERT_TRUE(store->open());
        EXPECT_EQ(session.run("SELECT string_agg(version::text, ',') FROM velino_sync_schema"),
                  current);
        ASSERT_EQ(store->put(keyOf(QStringLiteral("CODE-A")), slotAt(1000, "{}")), Status::Ok);

        // Opening again (a restart, or a second process) changes nothing and keeps the slots.
        auto second = storeOn(database.url());
        ASSERT_TRUE(second->open());
        EXPECT_EQ(session.run("SELECT count(*) FROM velino_sync_schema"), QByteArray("1"));
        EXPECT_EQ(second->count(), 1);
    }
}

TEST_F(PostgresSlotStoreTest, LeavesADatabaseWithANewerSchemaAlone) {
    ScratchPostgresDatabase database(testPostgresUrl());
    ASSERT_TRUE(database.created()) << database.error().toStdString();
    PostgresSession session(database.url());
    const QByteArray newer = QByteArray::number(postgresSchemaVersion() + 1);
    ASSERT_TRUE(session.run("CREATE TABLE velino_sync_schema (version integer NOT NULL);"
                            "INSERT INTO velino_sync_schema VALUES (" +
                            newer + ")"));

    EXPECT_FALSE(storeOn(database.url())->open());
    EXPECT_EQ(session.run("SELECT max(version) FROM velino_sync_schema"), newer);
    EXPECT_EQ(session.run("SELECT count(*) FROM pg_tables WHERE tablename = 'velino_sync_slots'"),
              QByteArray("0"));
}

TEST_F(PostgresSlotStoreTest, SeveralProcessesOpeningAnEmptyDatabaseAtOnceAllSucceed) {
    ScratchPostgresDatabase database(testPostgresUrl());
    ASSERT_TRUE(database.created()) << database.error().toStdString();
    constexpr int processes = 6;
    std::vector<std::unique_ptr<SlotStore>> stores;
    for (int i = 0; i < processes; ++i) {
        stores.push_back(storeOn(database.url()));
    }
    std::atomic<int> opened = 0;
    std::vector<std::thread> threads;
    for (auto &store : stores) {
        threads.emplace_back([&store, &opened] { opened += store->open() ? 1 : 0; });
    }
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(opened, processes);
    EXPECT_EQ(PostgresSession(database.url()).run("SELECT count(*) FROM velino_sync_schema"),
              QByteArray("1"));
}

// What a bytea column keeps and a text column would not, and times that the database's own
// time zone does not shift.
TEST_F(PostgresSlotStoreTest, KeepsRawBytesAndUtcTimesWhateverTheDatabaseTimeZone) {
    ScratchPostgresDatabase database(testPostgresUrl());
    ASSERT_TRUE(database.created()) << database.error().toStdString();
    ASSERT_TRUE(PostgresSession(database.url())
                    .run("ALTER DATABASE " + database.name().toUtf8() +
                         " SET timezone = 'Pacific/Kiritimati'"));
    auto store = storeOn(database.url());
    ASSERT_TRUE(store->open());

    const QByteArray key = keyOf(QStringLiteral("CODE-RAW-0000000"));
    const QByteArray payload = QByteArray("{\"t\":\"\xC3\xA9\\u0000\"}\n") + '\0' + "\xFF";
    ASSERT_EQ(store->put(key, slotAt(1'700'000'900, payload)), Status::Ok);
    StoredSlot read;
    ASSERT_EQ(store->get(key, read), Status::Ok);
    EXPECT_EQ(read.payloadJson, payload);
    EXPECT_EQ(read.updatedAt, QDateTime::fromSecsSinceEpoch(1'700'000'900, Qt::UTC));
    EXPECT_EQ(store->deleteWrittenBefore(QDateTime::fromSecsSinceEpoch(1'700'000'900, Qt::UTC)), 0);
    EXPECT_EQ(store->deleteWrittenBefore(QDateTime::fromSecsSinceEpoch(1'700'000'901, Qt::UTC)), 1);
}

// Request threads of two processes write their own slots and one shared slot while others
// read: every call succeeds, no row is ever seen half-written, and each slot ends with its
// last write.
TEST_F(PostgresSlotStoreTest, ConcurrentWritersOfTwoProcessesActAsOneService) {
    ScratchPostgresDatabase database(testPostgresUrl());
    ASSERT_TRUE(database.created()) << database.error().toStdString();
    auto first = storeOn(database.url());
    auto second = storeOn(database.url());
    ASSERT_TRUE(first->open());
    ASSERT_TRUE(second->open());

    constexpr int writers = 36; // more than the connections of one process
    constexpr int writesEach = 20;
    const QByteArray shared = keyOf(QStringLiteral("SHARED-CODE-0000"));
    // Each payload names its writer and write: a reader can check it against the time.
    const auto write = [](int writer, int index) {
        return slotAt(1'700'000'000 + writer * 1000 + index,
                      QByteArray::number(writer * 1000 + index));
    };
    std::atomic<int> failures = 0;
    std::atomic<int> tornReads = 0;
    std::atomic<bool> writing = true;
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([&, writer] {
            SlotStore &store = writer % 2 ? *second : *first;
            const QByteArray own =
                keyOf(QStringLiteral("WRITER-CODE-%1").arg(writer, 4, 10, QLatin1Char('0')));
            for (int index = 0; index < writesEach; ++index) {
                failures += store.put(own, write(writer, index)) != Status::Ok;
                failures += store.put(shared, write(writer, index)) != Status::Ok;
            }
        });
    }
    std::thread reader([&] {
        StoredSlot read;
        while (writing) {
            if (first->get(shared, read) == Status::Ok &&
                read.updatedAt.toSecsSinceEpoch() - 1'700'000'000 != read.payloadJson.toInt()) {
                ++tornReads;
            }
        }
    });
    for (auto &thread : threads) {
        thread.join();
    }
    writing = false;
    reader.join();

    EXPECT_EQ(failures, 0);
    EXPECT_EQ(tornReads, 0);
    EXPECT_EQ(first->count(), writers + 1);
    // Each process stays within its pool (16 connections), however many threads call it.
    const auto backends = PostgresSession(database.url())
                              .run("SELECT count(*) FROM pg_stat_activity "
                                   "WHERE datname = current_database()");
    ASSERT_TRUE(backends);
    EXPECT_LE(backends->toInt(), 2 * 16 + 1);
    EXPECT_GT(backends->toInt(), 2);
    for (int writer = 0; writer < writers; ++writer) {
        StoredSlot read;
        const QByteArray own =
            keyOf(QStringLiteral("WRITER-CODE-%1").arg(writer, 4, 10, QLatin1Char('0')));
        ASSERT_EQ(second->get(own, read), Status::Ok);
        EXPECT_EQ(read.payloadJson, write(writer, writesEach - 1).payloadJson);
    }
    StoredSlot last;
    ASSERT_EQ(second->get(shared, last), Status::Ok);
    EXPECT_EQ(last.payloadJson.toInt() % 1000, writesEach - 1) << "the last write of a writer";
}

TEST_F(PostgresSlotStoreTest, WrongPasswordOrMissingServerIsUnavailableQuickly) {
    const QString missingSocket = velino::test::postgresUrlWithDatabase(
        QStringLiteral("postgresql://velino@/x?host=/nonexistent/velino-socket"),
        QStringLiteral("sync"));
    const struct {
        const char *name;
        QString url;
        const char *password;
    } cases[] = {
        {"no server", missingSocket, nullptr},
        {"wrong password", testPostgresUrl(), "not-the-password"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        if (c.password) {
            qputenv("PGPASSWORD", c.password);
        }
        auto store = storeOn(c.url);
        QElapsedTimer timer;
        timer.start();
        StoredSlot slot;
        EXPECT_FALSE(store->open());
        EXPECT_EQ(store->put(keyOf(QStringLiteral("CODE-A")), slotAt(1, "{}")),
                  Status::Unavailable);
        EXPECT_EQ(store->get(keyOf(QStringLiteral("CODE-A")), slot), Status::Unavailable);
        EXPECT_EQ(store->count(), std::nullopt);
        EXPECT_EQ(store->deleteWrittenBefore(QDateTime::currentDateTimeUtc()), std::nullopt);
        EXPECT_FALSE(store->isHealthy());
        EXPECT_LT(timer.elapsed(), 3000);
        qunsetenv("PGPASSWORD");
    }
}
