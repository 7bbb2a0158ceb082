#include "lock_state.h"

#include <gtest/gtest.h>

using velino::ui::LockState;
using namespace Qt::StringLiterals;

// Each near miss is refused and empties the field; the password still unlocks after them.
TEST(LockState, OnlyTheExactPasswordUnlocks) {
    LockState lock;
    for (const char16_t *text :
         {u" Falcon77!", u"Falcon77! ", u"falcon77!", u"FALCON77!", u"Falcon77", u"Falcon77!\n",
          u"\tFalcon77!", u"Falcon77!!", u"", u"Falcon77\uFF01", u"Falcon 77!", u"Falcon77!"}) {
        const QString password = QString::fromUtf16(text);
        lock.setPassword(password);
        lock.unlock();
        const bool right = password == u"Falcon77!"_s;
        EXPECT_EQ(QStringList({lock.password(), lock.errorText()}),
                  QStringList({QString(), right ? QString() : u"Mot de passe incorrect."_s}))
            << password.toStdString();
        EXPECT_EQ(lock.isUnlocked(), right);
    }
}
