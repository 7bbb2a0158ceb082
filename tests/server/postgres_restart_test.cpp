#include "postgres_slot_store.h"
#include "postgres_test_database.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QProcess>

#include <gtest/gtest.h>

using namespace velino::server;
using velino::test::PostgresSession;
using Status = SlotStore::Status;

namespace {

QByteArray keyOf(int number) {
    return QCryptographicHash::hash(QByteArray::number(number), QCryptographicHash::Sha256);
}

StoredSlot slotOf(int number) {
    return {QDateTime::fromSecsSinceEpoch(1'700'000'000 + number, Qt::UTC),
            "{\"n\":" + QByteArray::number(number) + "}"};
}

// A cluster of its own, so that stopping it disturbs no other test: the test cluster script
// around a command that prints the cluster's address and waits for its input to close.
class PrivateCluster {
public:
    PrivateCluster() {
        m_script.start(QStringLiteral(VELINO_SOURCE_DIR "/scripts/with-test-postgres"),
                       {QStringLiteral("sh"), QStringLiteral("-c"),
                        QStringLiteral("printf '%s\\n' \"$VELINO_TEST_POSTGRES_URL\" "
                                       "\"$VELINO_TEST_POSTGRES_CTL\" \"$PGPASSFILE\"; "
                                       "exec cat >/dev/null")});
        QByteArray output;
        QElapsedTimer timer;
        timer.start();
        while (output.count('\n') < 4 && timer.elapsed() < 60000 &&
               m_script.state() != QProcess::NotRunning) {
            m_script.waitForReadyRead(1000);
            output += m_script.readAllStandardOutput();
        }
        // First line: the script's own "PostgreSQL 15.x on ..." note.
        const QList<QByteArray> lines = output.split('\n');
        if (lines.size() >= 4) {
            m_url = QString::fromUtf8(lines[1]);
            m_control = QString::fromUtf8(lines[2]);
            m_previousPassFile = qgetenv("PGPASSFILE");
            qputenv("PGPASSFILE", lines[3]);
        } else {
            m_error = QString::fromUtf8(output + m_script.readAllStandardError());
        }
    }
    ~PrivateCluster() {
        m_script.closeWriteChannel();
        if (!m_script.waitForFinished(60000)) {
            m_script.kill();
            m_script.waitForFinished(5000);
        }
        qputenv("PGPASSFILE", m_previousPassFile);
    }

    bool started() const { return !m_url.isEmpty(); }
    QString error() const { return m_error; }
    QString url() const { return m_url; }

    // pg_ctl on the cluster: "restart", "stop" or "start", with the given shutdown mode.
    bool control(const QString &action, const QString &mode = QStringLiteral("fast")) {
        QProcess pgCtl;
        pgCtl.start(m_control, {action, QStringLiteral("-w"), QStringLiteral("-t"),
                                QStringLiteral("60"), QStringLiteral("-m"), mode});
        return pgCtl.waitForFinished(60000) && pgCtl.exitStatus() == QProcess::NormalExit &&
               pgCtl.exitCode() == 0;
    }

private:
    QProcess m_script;
    QString m_url;
    QString m_control;
    QString m_error;
    QByteArray m_previousPassFile;
};

} // namespace

// The database restarts under a running store: calls made while it is down are answered
// "unavailable" at once, the first call once it is back succeeds on a new connection, and
// every write acknowledged before a crash (an immediate stop, no checkpoint) is still there,
// even with a database whose default is not to wait for the disk.
TEST(PostgresRestartTest, ReconnectsAndLosesNoAcknowledgedWrite) {
    if (velino::test::testPostgresUrl().isEmpty()) {
        GTEST_SKIP() << "VELINO_TEST_POSTGRES_URL not set (scripts/with-test-postgres)";
    }
    PrivateCluster cluster;
    ASSERT_TRUE(cluster.started()) << cluster.error().toStdString();
    ASSERT_TRUE(PostgresSession(cluster.url())
                    .run("ALTER DATABASE velino_test SET synchronous_commit = off"));
    QString error;
    auto store = makePostgresSlotStore(cluster.url(), &error);
    ASSERT_TRUE(store) << error.toStdString();
    ASSERT_TRUE(store->open());
    ASSERT_EQ(store->put(keyOf(0), slotOf(0)), Status::Ok);

    ASSERT_TRUE(cluster.control(QStringLiteral("restart")));
    StoredSlot read;
    EXPECT_EQ(store->get(keyOf(0), read), Status::Ok);
    EXPECT_EQ(read.payloadJson, slotOf(0).payloadJson);

    constexpr int writes = 300;
    for (int number = 1; number <= writes; ++number) {
        ASSERT_EQ(store->put(keyOf(number), slotOf(number)), Status::Ok) << number;
    }
    ASSERT_TRUE(cluster.control(QStringLiteral("stop"), QStringLiteral("immediate")));

    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(store->put(keyOf(writes + 1), slotOf(writes + 1)), Status::Unavailable);
    EXPECT_EQ(store->get(keyOf(0), read), Status::Unavailable);
    EXPECT_EQ(store->count(), std::nullopt);
    EXPECT_FALSE(store->isHealthy());
    EXPECT_LT(timer.elapsed(), 3000);

    ASSERT_TRUE(cluster.control(QStringLiteral("start")));
    EXPECT_TRUE(store->isHealthy());
    EXPECT_EQ(store->count(), writes + 1);
    for (int number = 0; number <= writes; ++number) {
        ASSERT_EQ(store->get(keyOf(number), read), Status::Ok) << number;
        EXPECT_EQ(read.payloadJson, slotOf(number).payloadJson);
        EXPECT_EQ(read.updatedAt, slotOf(number).updatedAt);
    }
}
