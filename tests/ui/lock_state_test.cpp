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

TEST(LockState, ThePasswordUnlocksAfterAnyNumberOfRefusals) {
    LockState lock;
    EXPECT_FALSE(lock.isUnlocked());
    EXPECT_EQ(lock.password(), QString());
    EXPECT_EQ(lock.errorText(), QString());
    QSignalSpy unlocked(&lock, &LockState::isUnlockedChanged);
    for (int i = 0; i < 50; ++i)
        attempt(lock, QStringLiteral("wrong %1").arg(i));
    EXPECT_EQ(lock.errorText(), kWrong);
    EXPECT_FALSE(lock.isUnlocked());

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
        QSignalSpy field(&lock, &LockState::passwordChanged);
        attempt(lock, password);
        EXPECT_FALSE(lock.isUnlocked());
        EXPECT_EQ(lock.password(), QString());
        EXPECT_EQ(lock.errorText(), kWrong);
        EXPECT_EQ(error.count(), 1);
        EXPECT_EQ(unlocked.count(), 0);
        // Set, then emptied.
        if (!password.isEmpty()) {
            EXPECT_EQ(field.count(), 2);
        }
    }
}
