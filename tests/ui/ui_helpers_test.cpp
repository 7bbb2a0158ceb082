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

TEST(UiHelpers, TextsFontAndColours) {
    UiHelpers helpers;
    EXPECT_EQ(helpers.upperCased(u"Bloc infos"_s), u"BLOC INFOS"_s);
    const QString family = helpers.fontFamily();
    EXPECT_TRUE(family == u"Inter"_s || !QFontDatabase::families().contains(u"Inter"_s))
        << family.toStdString();
    EXPECT_FALSE(family.isEmpty());
    const auto native = [](const QKeySequence &keys) {
        return keys.toString(QKeySequence::NativeText);
    };
    EXPECT_EQ(helpers.shortcutText(int(QKeySequence::Copy)), native(QKeySequence::Copy));
    EXPECT_EQ(helpers.shortcutText(u"Ctrl+N"_s), native(QKeySequence(u"Ctrl+N"_s)));
    EXPECT_EQ(helpers.shortcutText(QVariant()), QString());
    EXPECT_EQ(helpers.colorFromHex(u" #2f7df6\n"_s), QColor::fromRgb(47, 125, 246));
    EXPECT_EQ(helpers.colorFromHex(u"#GGGGGG"_s).alpha(), 0);
    EXPECT_TRUE(helpers.isHexColor(u"#abc"_s));
    EXPECT_FALSE(helpers.isHexColor(u"#abcd"_s));
}
