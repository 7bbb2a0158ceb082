#include "retention_sweeper.h"
#include "server_fixtures.h"

#include <QFile>
#include <QTest>

#include <atomic>
#include <ranges>
#include <thread>

using namespace velino::server;
using namespace velino::test;
using Status = SlotStore::Status;

namespace {

class SlotStoreContract : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        SKIP_WITHOUT_TEST_CLUSTER(GetParam());
        ASSERT_TRUE(storage.error.isEmpty()) << storage.error.toStdString();
        store = storage.makeStore();
        ASSERT_TRUE(store && store->open());
    }

    ScratchStorage storage{GetParam()};
    std::unique_ptr<SlotStore> store;
};

QByteArray slotLine(const StoredSlot &slot) {
    return slot.updatedAt.toString("yyyy-MM-ddThh:mm:ss").toUtf8() + ' ' + slot.payloadJson;
}

// "time payload" of a slot, the time as written in its own offset (which must be UTC), or "none".
QByteArray slotText(SlotStore &store, int key) {
    StoredSlot slot;
    return store.get(keyOf(key), slot) == Status::Ok ? slotLine(slot) : "none";
}

TEST_P(SlotStoreContract, PutGetReplaceAndSweep) {
    // Payload bytes come back exactly, even those no text column would keep.
    const QByteArray bytes = QByteArray("{\"t\":\"\xC3\xA9 \\u0000\"}\n") + '\0' + "\xFF";
    ASSERT_EQ(store->put(keyOf(1), {at(1000), bytes}), Status::Ok);
    EXPECT_EQ(slotText(*store, 1), "1970-01-01T00:16:40 " + bytes);

    // Last writer wins, other keys untouched; rewriting a slot makes it young again.
    ASSERT_EQ(store->put(keyOf(2), {at(2000), "{\"b\":2}"}), Status::Ok);
    ASSERT_EQ(store->put(keyOf(3), {at(3000), "{}"}), Status::Ok);
    ASSERT_EQ(store->put(keyOf(1), {at(4000), "{\"a\":3}"}), Status::Ok);
    EXPECT_EQ(slotText(*store, 1) + '|' + slotText(*store, 2),
              "1970-01-01T01:06:40 {\"a\":3}|1970-01-01T00:33:20 {\"b\":2}");

    EXPECT_EQ(store->deleteWrittenBefore(at(3000)), 1); // slot 2 only; 3 is exactly at the cutoff
    EXPECT_EQ(slotText(*store, 2), "none");
    EXPECT_EQ(store->count(), 2);

    if (GetParam() == "sqlite") { // the folder and every file are the owner's only
        // Owner, group and other digits of Qt's flags; nothing for a missing file.
        const QString folder = storage.folder.filePath("slots");
        EXPECT_EQ(QFile::permissions(folder).toInt() & 0x7077, 0x7000);
        for (const char *file : {"/sync.db", "/sync.db-wal", "/sync.db-shm"})
            EXPECT_EQ(QFile::permissions(folder + file).toInt() & 0x7077, 0x6000) << file;
    }
}

TEST_P(SlotStoreContract, RetentionSweeperSweepsAtStartSlotsOlderThanTheRetention) {
    const QDateTime now = QDateTime::currentDateTimeUtc();
    ASSERT_EQ(store->put(keyOf(1), {now.addDays(-91), "{}"}), Status::Ok);
    ASSERT_EQ(store->put(keyOf(2), {now.addDays(-89), "{}"}), Status::Ok);
    std::vector<std::string> log; // written by the sweeper's thread, read once it has ended
    {
        RetentionSweeper sweeper(*store, 90, std::chrono::hours(1),
                                 [&](const std::string &line) { log.push_back(line); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return store->count() == 1; }, 5000));
    }
    EXPECT_NE(slotText(*store, 2), "none");
    EXPECT_EQ(log, std::vector<std::string>{"retention: 1 emplacement(s) supprime(s)"});
}

// Stores (as processes) open one storage at once, then write: no failure, last write wins.
TEST_P(SlotStoreContract, StoresOnOneStorageActAsOneService) {
    ScratchStorage empty(GetParam());
    std::vector<std::unique_ptr<SlotStore>> stores(3);
    std::atomic<int> opened = 0, failures = 0;
    for (std::vector<std::jthread> openers; auto &each : stores) {
        each = empty.makeStore();
        openers.emplace_back([&each, &opened] { opened += each->open(); });
    }
    ASSERT_EQ(opened, 3);

    constexpr int kWriters = 36, kWritesEach = 20; // 18 a store: more than its connections
    const auto write = [](int writer, int index) {
        return StoredSlot{at(writer * 1000 + index), QByteArray::number(writer * 1000 + index)};
    };
    for (std::vector<std::jthread> writers; int writer : std::views::iota(0, kWriters)) {
        writers.emplace_back([&, writer] {
            for (int index = 0; index < kWritesEach; ++index)
                for (const QByteArray &key : {keyOf(writer), keyOf(-1)})
                    failures += stores[writer % 2]->put(key, write(writer, index)) != Status::Ok;
        });
    }
    EXPECT_EQ(failures, 0);
    if (GetParam() == "postgresql") { // the two writing stores kept within 16 connections each
        const auto backends = runSql(empty.url, "SELECT count(*) FROM pg_stat_activity "
                                                "WHERE datname = current_database()");
        EXPECT_GT(backends.value_or("0").toInt(), 2);
        EXPECT_LE(backends.value_or("99").toInt(), 2 * 16 + 2) << "two stores, a third, this one";
    }
    EXPECT_EQ(stores[2]->count(), kWriters + 1);
    QByteArray lastWrites, expected;
    for (int writer = 0; writer < kWriters; ++writer) {
        lastWrites += slotText(*stores[2], writer) + '\n';
        expected += slotLine(write(writer, kWritesEach - 1)) + '\n';
    }
    EXPECT_EQ(lastWrites, expected);
}

INSTANTIATE_TEST_SUITE_P(Engines, SlotStoreContract, ::testing::Values("sqlite", "postgresql"),
                         [](const auto &info) { return info.param; });

} // namespace
