#include "ui_helpers.h"

#include <QFontDatabase>
#include <QImage>
#include <QKeySequence>

#include <gtest/gtest.h>

using velino::ui::UiHelpers;

TEST(UiHelpers, ImageUrlFindsTheLogoAndNothingElse) {
    UiHelpers helpers;
    const QUrl url = helpers.imageUrl(QStringLiteral("VelinoLogo"));
    ASSERT_EQ(url.scheme(), QStringLiteral("qrc"));
    const QImage image(QStringLiteral(":") + url.path());
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.width(), 512);
    EXPECT_EQ(image.height(), 512);

    EXPECT_TRUE(helpers.imageUrl(QStringLiteral("NoSuchLogo")).isEmpty());
    EXPECT_TRUE(helpers.imageUrl(QString()).isEmpty());
    EXPECT_TRUE(helpers.imageUrl(QStringLiteral("../velino/VelinoLogo")).isEmpty());
    // The extension is part of the lookup, not of the name.
    EXPECT_TRUE(helpers.imageUrl(QStringLiteral("VelinoLogo.png")).isEmpty());
}

TEST(UiHelpers, UpperCasesTitles) {
    UiHelpers helpers;
    EXPECT_EQ(helpers.upperCased(QStringLiteral("Etat")), QStringLiteral("ETAT"));
    EXPECT_EQ(helpers.upperCased(QStringLiteral("Bloc infos")), QStringLiteral("BLOC INFOS"));
    EXPECT_EQ(helpers.upperCased(QStringLiteral("straße")), QStringLiteral("STRASSE"));
}

TEST(UiHelpers, FontFamilyIsInstalled) {
    UiHelpers helpers;
    const QString family = helpers.fontFamily();
    ASSERT_FALSE(family.isEmpty());
    if (QFontDatabase::families().contains(QStringLiteral("Inter"))) {
        EXPECT_EQ(family, QStringLiteral("Inter"));
    }
}

TEST(UiHelpers, ShortcutTextOfStandardKeysAndSequences) {
    UiHelpers helpers;
    EXPECT_EQ(helpers.shortcutText(int(QKeySequence::Copy)),
              QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText));
    EXPECT_FALSE(helpers.shortcutText(int(QKeySequence::SelectAll)).isEmpty());
    EXPECT_EQ(helpers.shortcutText(QStringLiteral("Ctrl+N")),
              QKeySequence(QStringLiteral("Ctrl+N")).toString(QKeySequence::NativeText));
    EXPECT_EQ(helpers.shortcutText(QVariant()), QString());
}

TEST(UiHelpersColour, ReadsTheColourFieldsAndGivesTransparentOtherwise) {
    velino::ui::UiHelpers helpers;
    EXPECT_EQ(helpers.colorFromHex(QStringLiteral(" #2f7df6\n")), QColor::fromRgb(47, 125, 246));
    EXPECT_EQ(helpers.colorFromHex(QStringLiteral("#GGGGGG")).alpha(), 0);
    EXPECT_TRUE(helpers.isHexColor(QStringLiteral("#abc")));
    EXPECT_FALSE(helpers.isHexColor(QStringLiteral("#abcd")));
}
