#include "lock_state.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using velino::ui::LockState;
using namespace Qt::StringLiterals;

namespace {

void attempt(LockState &lock, const QString &password) {
    lock.setPassword(password);
    lock.unlock();
}

QStringList fieldAndError(const LockState &lock) {
    return {lock.password(), lock.errorText()};
}

} // namespace

// Each near miss is refused and empties the field; the password still unlocks after them.
TEST(LockState, OnlyTheExactPasswordUnlocks) {
    LockState lock;
    QSignalSpy unlocked(&lock, &LockState::isUnlockedChanged);
    for (const char16_t *text :
         {u" Falcon77!", u"Falcon77! ", u"falcon77!", u"FALCON77!", u"Falcon77", u"Falcon77!\n",
          u"\tFalcon77!", u"Falcon77!!", u"", u"Falcon77\uFF01", u"Falcon 77!"}) {
        SCOPED_TRACE(QString::fromUtf16(text).toStdString());
        attempt(lock, QString::fromUtf16(text));
        EXPECT_EQ(fieldAndError(lock), QStringList({QString(), u"Mot de passe incorrect."_s}));
        EXPECT_FALSE(lock.isUnlocked());
    }
    attempt(lock, u"Falcon77!"_s);
    EXPECT_TRUE(lock.isUnlocked());
    EXPECT_EQ(fieldAndError(lock), QStringList({QString(), QString()}));
    EXPECT_EQ(unlocked.count(), 1);
}
