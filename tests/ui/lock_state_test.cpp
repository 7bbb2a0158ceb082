#include "lock_state.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using velino::ui::LockState;

namespace {

const QString kWrong = QStringLiteral("Mot de passe incorrect.");

void attempt(LockState &lock, const QString &password) {
    lock.setPassword(password);
    lock.unlock();
}

} // namespace

TEST(LockState, StartsLockedWithEmptyFieldAndNoError) {
    LockState lock;
    EXPECT_FALSE(lock.isUnlocked());
    EXPECT_EQ(lock.password(), QString());
    EXPECT_EQ(lock.errorText(), QString());
}

TEST(LockState, ThePasswordUnlocks) {
    LockState lock;
    QSignalSpy unlocked(&lock, &LockState::isUnlockedChanged);
    attempt(lock, QStringLiteral("Falcon77!"));
    EXPECT_TRUE(lock.isUnlocked());
    EXPECT_EQ(lock.password(), QString());
    EXPECT_EQ(lock.errorText(), QString());
    EXPECT_EQ(unlocked.count(), 1);
}

TEST(LockState, NearMissesAreRefusedAndEmptyTheField) {
    const QStringList wrong = {
        QStringLiteral(" Falcon77!"),
        QStringLiteral("Falcon77! "),
        QStringLiteral("falcon77!"),
        QStringLiteral("FALCON77!"),
        QStringLiteral("Falcon77"),
        QStringLiteral("Falcon77!\n"),
        QStringLiteral("\tFalcon77!"),
        QStringLiteral("Falcon77!!"),
        QStringLiteral(""),
        QStringLiteral("Falcon77\uFF01"),
        QStringLiteral("Falcon 77!"),
    };
    for (const QString &password : wrong) {
        SCOPED_TRACE(password.toStdString());
        LockState lock;
        QSignalSpy error(&lock, &LockState::errorTextChanged);
        QSignalSpy unlocked(&lock, &LockState::isUnlockedChanged);
        attempt(lock, password);
        EXPECT_FALSE(lock.isUnlocked());
        EXPECT_EQ(lock.password(), QString());
        EXPECT_EQ(lock.errorText(), kWrong);
        EXPECT_EQ(error.count(), 1);
        EXPECT_EQ(unlocked.count(), 0);
    }
}

TEST(LockState, FieldIsEmptiedAfterEveryAttempt) {
    LockState lock;
    QSignalSpy password(&lock, &LockState::passwordChanged);
    attempt(lock, QStringLiteral("nope"));
    // Set, then emptied.
    EXPECT_EQ(password.count(), 2);
    EXPECT_EQ(lock.password(), QString());
}

TEST(LockState, RetryIsImmediateAndUnlimited) {
    LockState lock;
    for (int i = 0; i < 50; ++i)
        attempt(lock, QStringLiteral("wrong %1").arg(i));
    EXPECT_EQ(lock.errorText(), kWrong);
    EXPECT_FALSE(lock.isUnlocked());
    attempt(lock, QStringLiteral("Falcon77!"));
    EXPECT_TRUE(lock.isUnlocked());
}

TEST(LockState, SuccessAfterRefusalClearsTheError) {
    LockState lock;
    attempt(lock, QStringLiteral("falcon77!"));
    ASSERT_EQ(lock.errorText(), kWrong);
    attempt(lock, QStringLiteral("Falcon77!"));
    EXPECT_TRUE(lock.isUnlocked());
    EXPECT_EQ(lock.errorText(), QString());
    EXPECT_EQ(lock.password(), QString());
}

TEST(LockState, EmptyPasswordIsAWrongPassword) {
    LockState lock;
    lock.unlock();
    EXPECT_FALSE(lock.isUnlocked());
    EXPECT_EQ(lock.errorText(), kWrong);
}

TEST(LockState, WindowsHaveIndependentLocks) {
    LockState first;
    LockState second;
    attempt(first, QStringLiteral("Falcon77!"));
    EXPECT_TRUE(first.isUnlocked());
    EXPECT_FALSE(second.isUnlocked());
}
