#include "ui_helpers.h"

#include <QFontDatabase>
#include <QImage>
#include <QKeySequence>

#include <gtest/gtest.h>

using velino::ui::UiHelpers;
using namespace Qt::StringLiterals;

TEST(UiHelpers, ImageUrlFindsTheLogoAndNothingElse) {
    UiHelpers helpers;
    const QUrl url = helpers.imageUrl(u"VelinoLogo"_s);
    ASSERT_EQ(url.scheme(), u"qrc"_s);
    EXPECT_EQ(QImage(u":"_s + url.path()).size(), QSize(512, 512));
    // The extension is part of the lookup, not of the name.
    for (const char *name : {"NoSuchLogo", "", "../velino/VelinoLogo", "VelinoLogo.png"})
        EXPECT_TRUE(helpers.imageUrl(QString::fromUtf8(name)).isEmpty()) << name;
}

// Upper-casing is checked through the summary cards (tst_MainWindow), colours through the
// branding field (tst_Components) and their parsing in the render tests.
TEST(UiHelpers, FontAndShortcutTexts) {
    UiHelpers helpers;
    const QString family = helpers.fontFamily();
    EXPECT_FALSE(family.isEmpty());
    EXPECT_TRUE(family == u"Inter"_s || !QFontDatabase::families().contains(u"Inter"_s))
        << family.toStdString();
    const QString copy = QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText);
    EXPECT_EQ(helpers.shortcutText(int(QKeySequence::Copy)), copy);
    EXPECT_EQ(helpers.shortcutText(u"Ctrl+C"_s), copy);
    EXPECT_EQ(helpers.shortcutText(QVariant()), QString());
    EXPECT_TRUE(helpers.isHexColor(u"#abc"_s));
    EXPECT_FALSE(helpers.isHexColor(u"#abcd"_s));
}
