#include "lock_state.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using velino::ui::LockState;
using namespace Qt::StringLiterals;

namespace {

const QString kWrong = u"Mot de passe incorrect."_s;

void attempt(LockState &lock, const QString &password) {
    lock.setPassword(password);
    lock.unlock();
}

} // namespace

TEST(LockState, ThePasswordUnlocksAfterAnyNumberOfRefusals) {
    LockState lock;
    EXPECT_FALSE(lock.isUnlocked());
    QSignalSpy unlocked(&lock, &LockState::isUnlockedChanged);
    for (int i = 0; i < 50; ++i)
        attempt(lock, u"wrong %1"_s.arg(i));
    EXPECT_EQ(lock.errorText(), kWrong);
    attempt(lock, u"Falcon77!"_s);
    EXPECT_TRUE(lock.isUnlocked());
    EXPECT_EQ(lock.password(), QString());
    EXPECT_EQ(lock.errorText(), QString());
    EXPECT_EQ(unlocked.count(), 1);
}

TEST(LockState, NearMissesAreRefusedAndEmptyTheField) {
    for (const char16_t *text :
         {u" Falcon77!", u"Falcon77! ", u"falcon77!", u"FALCON77!", u"Falcon77", u"Falcon77!\n",
          u"\tFalcon77!", u"Falcon77!!", u"", u"Falcon77\uFF01", u"Falcon 77!"}) {
        const QString password = QString::fromUtf16(text);
        SCOPED_TRACE(password.toStdString());
        LockState lock;
        QSignalSpy error(&lock, &LockState::errorTextChanged);
        QSignalSpy unlocked(&lock, &LockState::isUnlockedChanged);
        QSignalSpy field(&lock, &LockState::passwordChanged);
        attempt(lock, password);
        EXPECT_EQ(lock.password(), QString());
        EXPECT_EQ(lock.errorText(), kWrong);
        EXPECT_EQ(error.count(), 1);
        EXPECT_EQ(unlocked.count(), 0);
        EXPECT_EQ(field.count(), password.isEmpty() ? 0 : 2); // set, then emptied
    }
}
