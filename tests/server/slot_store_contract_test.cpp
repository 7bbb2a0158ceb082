#include "slot_store_engines.h"

#include <QCryptographicHash>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace velino::server;
using velino::test::availableSlotStoreEngines;
using velino::test::SlotStoreEngine;

namespace {

QByteArray keyOf(int n) {
    return QCryptographicHash::hash(QByteArray::number(n), QCryptographicHash::Sha256);
}

QDateTime at(qint64 secondsSinceEpoch) {
    return QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, QTimeZone::utc());
}

StoredSlot slotOf(qint64 seconds, const QByteArray &payload) {
    return StoredSlot{at(seconds), payload};
}

// The same behaviour from every engine, each test on fresh storage.
class SlotStoreContract : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        for (SlotStoreEngine &candidate : availableSlotStoreEngines()) {
            if (candidate.name == GetParam())
                engine = std::move(candidate);
        }
        ASSERT_TRUE(engine.make) << GetParam();
        store = engine.make();
        ASSERT_TRUE(store->open());
    }

    SlotStoreEngine engine;
    std::unique_ptr<SlotStore> store;
};

TEST_P(SlotStoreContract, PutThenGetReplaceAndNotFound) {
    StoredSlot slot;
    EXPECT_EQ(store->get(keyOf(1), slot), SlotStore::Status::NotFound);
    EXPECT_EQ(store->count(), 0);

    // Payload bytes come back exactly, including bytes beyond ASCII.
    const QByteArray first = QStringLiteral(R"({"a":"é ✓"})").toUtf8();
    ASSERT_EQ(store->put(keyOf(1), slotOf(1'780'000'000, first)), SlotStore::Status::Ok);
    ASSERT_EQ(store->get(keyOf(1), slot), SlotStore::Status::Ok);
    EXPECT_EQ(slot.payloadJson, first);
    EXPECT_EQ(slot.updatedAt, at(1'780'000'000));
    EXPECT_EQ(slot.updatedAt.offsetFromUtc(), 0);

    // Last writer wins, other keys untouched.
    ASSERT_EQ(store->put(keyOf(2), slotOf(1'780'000'005, "{\"b\":2}")), SlotStore::Status::Ok);
    ASSERT_EQ(store->put(keyOf(1), slotOf(1'780'000'010, "{\"a\":3}")), SlotStore::Status::Ok);
    ASSERT_EQ(store->get(keyOf(1), slot), SlotStore::Status::Ok);
    EXPECT_EQ(slot.payloadJson, "{\"a\":3}");
    EXPECT_EQ(slot.updatedAt, at(1'780'000'010));
    ASSERT_EQ(store->get(keyOf(2), slot), SlotStore::Status::Ok);
    EXPECT_EQ(slot.payloadJson, "{\"b\":2}");
    EXPECT_EQ(store->count(), 2);
    EXPECT_EQ(store->get(keyOf(3), slot), SlotStore::Status::NotFound);
    EXPECT_TRUE(store->isHealthy());
}

TEST_P(SlotStoreContract, SweepDeletesOnlySlotsWrittenBeforeTheCutoff) {
    ASSERT_EQ(store->put(keyOf(1), slotOf(1000, "{}")), SlotStore::Status::Ok);
    ASSERT_EQ(store->put(keyOf(2), slotOf(2000, "{}")), SlotStore::Status::Ok);
    ASSERT_EQ(store->put(keyOf(3), slotOf(3000, "{}")), SlotStore::Status::Ok);
    // Rewriting a slot makes it young again.
    ASSERT_EQ(store->put(keyOf(1), slotOf(4000, "{}")), SlotStore::Status::Ok);

    EXPECT_EQ(store->deleteWrittenBefore(at(3000)), 1); // slot 2 only; 3 is exactly at the cutoff
    StoredSlot slot;
    EXPECT_EQ(store->get(keyOf(2), slot), SlotStore::Status::NotFound);
    EXPECT_EQ(store->get(keyOf(3), slot), SlotStore::Status::Ok);
    EXPECT_EQ(store->get(keyOf(1), slot), SlotStore::Status::Ok);
    EXPECT_EQ(store->count(), 2);
    EXPECT_EQ(store->deleteWrittenBefore(at(3000)), 0);
}

TEST_P(SlotStoreContract, ConcurrentWritersAndReadersLoseNothing) {
    constexpr int kThreads = 8;
    constexpr int kPutsPerThread = 40;
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kPutsPerThread; ++i) {
                const int n = t * 1000 + i;
                const QByteArray payload = "{\"n\":" + QByteArray::number(n) + "}";
                if (store->put(keyOf(n), slotOf(1000 + i, payload)) != SlotStore::Status::Ok)
                    ++failures;
                // Every thread also overwrites one shared slot.
                if (store->put(keyOf(-1), slotOf(1000 + i, payload)) != SlotStore::Status::Ok)
                    ++failures;
                StoredSlot back;
                if (store->get(keyOf(n), back) != SlotStore::Status::Ok ||
                    back.payloadJson != payload)
                    ++failures;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(store->count(), kThreads * kPutsPerThread + 1);
    StoredSlot shared;
    ASSERT_EQ(store->get(keyOf(-1), shared), SlotStore::Status::Ok);
    EXPECT_TRUE(shared.payloadJson.startsWith("{\"n\":"));
}

TEST_P(SlotStoreContract, ReopeningKeepsTheData) {
    ASSERT_EQ(store->put(keyOf(7), slotOf(1'780'000'000, "{\"kept\":true}")),
              SlotStore::Status::Ok);
    store.reset();

    std::unique_ptr<SlotStore> reopened = engine.make();
    ASSERT_TRUE(reopened->open());
    StoredSlot slot;
    ASSERT_EQ(reopened->get(keyOf(7), slot), SlotStore::Status::Ok);
    EXPECT_EQ(slot.payloadJson, "{\"kept\":true}");
    EXPECT_EQ(slot.updatedAt, at(1'780'000'000));
    EXPECT_EQ(reopened->count(), 1);
}

std::vector<std::string> engineNames() {
    std::vector<std::string> names;
    for (const SlotStoreEngine &engine : availableSlotStoreEngines())
        names.push_back(engine.name);
    return names;
}

INSTANTIATE_TEST_SUITE_P(Engines, SlotStoreContract, ::testing::ValuesIn(engineNames()),
                         [](const auto &info) { return info.param; });

} // namespace
