#include "retention_sweeper.h"
#include "sqlite_slot_store.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace velino::server;

namespace {

mode_t permissionsOf(const QString &path) {
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 0777 : 07777;
}

TEST(SqliteStorageTest, FolderAndFilesAreTheOwnersOnly) {
    QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("velino-sync"));
    const QString path = folder + QStringLiteral("/sync.db");
    SqliteSlotStore store(path);
    ASSERT_TRUE(store.open());
    ASSERT_EQ(store.put(QByteArray(32, 'k'), {QDateTime::currentDateTimeUtc(), "{}"}),
              SlotStore::Status::Ok);
    EXPECT_EQ(permissionsOf(folder), 0700u);
    for (const QString &suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")}) {
        ASSERT_TRUE(QFileInfo::exists(path + suffix)) << suffix.toStdString();
        EXPECT_EQ(permissionsOf(path + suffix), 0600u) << suffix.toStdString();
    }
}

TEST(RetentionSweeperTest, SweepsAtStartSlotsOlderThanTheRetention) {
    QTemporaryDir root;
    SqliteSlotStore store(root.filePath(QStringLiteral("sync.db")));
    ASSERT_TRUE(store.open());
    const QDateTime now = QDateTime::currentDateTimeUtc();
    ASSERT_EQ(store.put(QByteArray(32, 'o'), {now.addDays(-91), "{}"}), SlotStore::Status::Ok);
    ASSERT_EQ(store.put(QByteArray(32, 'y'), {now.addDays(-89), "{}"}), SlotStore::Status::Ok);
    std::vector<std::string> log;
    std::mutex logMutex;
    {
        RetentionSweeper sweeper(store, 90, std::chrono::hours(1), [&](const std::string &line) {
            std::lock_guard lock(logMutex);
            log.push_back(line);
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return store.count() == 1; }, 5000));
    }
    StoredSlot slot;
    EXPECT_EQ(store.get(QByteArray(32, 'y'), slot), SlotStore::Status::Ok);
    EXPECT_EQ(log, std::vector<std::string>{"retention: 1 emplacement(s) supprime(s)"});
}

} // namespace
