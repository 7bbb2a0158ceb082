#include "saved_payload.h"
#include "store_fixture.h"

#include <QProcess>
#include <QRandomGenerator>

#include <csignal>

using namespace velino;
using velino::test::StoreTest;

TEST_F(StoreTest, SavesSurviveAKillAtAnyMoment) {
    const quint32 seed = QRandomGenerator::global()->generate();
    SCOPED_TRACE(testing::Message() << "kill delays drawn with seed " << seed);
    QRandomGenerator random(seed);
    int roundsThatSaved = 0;
    for (int round = 0; round < 30; ++round) {
        const QByteArray before = savedBytes();
        QProcess writer;
        writer.start(QStringLiteral(VELINO_STORE_WRITER_BINARY), {configFolder(), dataFolder()});
        ASSERT_TRUE(writer.waitForStarted());
        ASSERT_TRUE(writer.waitForReadyRead(30000)) << writer.readAllStandardError().toStdString();
        QTest::qSleep(random.bounded(1, 60));
        ::kill(static_cast<pid_t>(writer.processId()), SIGKILL);
        ASSERT_TRUE(writer.waitForFinished(10000));
        ASSERT_EQ(writer.exitStatus(), QProcess::CrashExit);

        QString error;
        const auto payload = SavedPayload::fromJson(savedBytes(), &error);
        ASSERT_TRUE(payload.has_value()) << "round " << round << ": " << error.toStdString();
        EXPECT_NE(payload->preset, PresetKind::Pret);
        if (savedBytes() != before)
            ++roundsThatSaved;
    }
    // Kills that always came before the first save would prove nothing.
    EXPECT_GT(roundsThatSaved, 10);
}
