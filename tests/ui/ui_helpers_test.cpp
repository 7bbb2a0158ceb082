#include "ui_helpers.h"

#include <QImage>
#include <QKeySequence>

#include <gtest/gtest.h>

using velino::ui::UiHelpers;
using namespace Qt::StringLiterals;

TEST(UiHelpers, ImageUrlFindsTheLogoAndNothingElse) {
    UiHelpers helpers;
    EXPECT_EQ(QImage(u":"_s + helpers.imageUrl(u"VelinoLogo"_s).path()).size(), QSize(512, 512));
    // The extension is part of the lookup, not of the name.
    for (const char *name : {"NoSuchLogo", "", "../velino/VelinoLogo", "VelinoLogo.png"})
        EXPECT_TRUE(helpers.imageUrl(QString::fromUtf8(name)).isEmpty()) << name;
}

// The menus show an action's shortcut, given as a standard key or as text.
TEST(UiHelpers, ShortcutTexts) {
    UiHelpers helpers;
    const QString copy = QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText);
    EXPECT_EQ(helpers.shortcutText(int(QKeySequence::Copy)), copy);
    EXPECT_EQ(helpers.shortcutText(u"Ctrl+C"_s), copy);
    EXPECT_EQ(helpers.shortcutText(QVariant()), QString());
}
