#include "color_hex.h"
#include "ui_helpers.h"

#include <QString>

#include <gtest/gtest.h>

using velino::ui::colorFromHex;

TEST(ColorFromHex, ReadsLongAndShortFormsOfEitherCaseTrimmed) {
    struct Case {
        QString text;
        int red, green, blue;
    };
    const Case accepted[] = {
        {QStringLiteral("#2F7DF6"), 47, 125, 246},
        {QStringLiteral(" #2f7df6\n"), 47, 125, 246},
        {QStringLiteral("\t\r\n#2f7DF6 \u00A0\u2003"), 47, 125, 246},
        {QStringLiteral("#000000"), 0, 0, 0},
        {QStringLiteral("#FfFfFf"), 255, 255, 255},
        {QStringLiteral("#7A5cff"), 0x7A, 0x5C, 0xFF},
        // The short form doubles each digit.
        {QStringLiteral("#abc"), 0xAA, 0xBB, 0xCC},
        {QStringLiteral("#1a2"), 0x11, 0xAA, 0x22},
        {QStringLiteral("  #FFF\n"), 255, 255, 255},
    };
    for (const Case &c : accepted) {
        SCOPED_TRACE(c.text.toStdString());
        const std::optional<QColor> color = colorFromHex(c.text);
        ASSERT_TRUE(color.has_value());
        EXPECT_EQ(color->red(), c.red);
        EXPECT_EQ(color->green(), c.green);
        EXPECT_EQ(color->blue(), c.blue);
        EXPECT_EQ(color->alpha(), 255);
    }
    // QColor hands its components out as floats: the bytes divided by 255.
    const std::optional<QColor> color = colorFromHex(u"#2F7DF6");
    ASSERT_TRUE(color.has_value());
    EXPECT_FLOAT_EQ(color->redF(), float(47.0 / 255.0));
    EXPECT_FLOAT_EQ(color->greenF(), float(125.0 / 255.0));
    EXPECT_FLOAT_EQ(color->blueF(), float(246.0 / 255.0));
}

TEST(ColorFromHex, OtherFormsGiveNothing) {
    const QStringList refused = {
        QStringLiteral("abc"),
        QStringLiteral("#abcd"),
        QStringLiteral("#2F7DF6FF"),
        QStringLiteral("#GGGGGG"),
        QStringLiteral("2F7DF6"),
        QStringLiteral(""),
        QStringLiteral("   "),
        QStringLiteral("#"),
        QStringLiteral("#ab"),
        QStringLiteral("#abcde"),
        QStringLiteral("#12345G"),
        QStringLiteral("#a c"),
        QStringLiteral("# abcdef"),
        QStringLiteral("#abc def"),
        QStringLiteral("##abcde"),
        QStringLiteral("0x2F7DF6"),
        QStringLiteral("#+2F7DF"),
        QStringLiteral("#-12345"),
        QStringLiteral("#ab\u0301c"),
        QStringLiteral("#\uFF21BC"),
        QStringLiteral("\uFF03abc"),
        QStringLiteral("#2F7DF6 x"),
        QStringLiteral("rgb(1,2,3)"),
        // White space is trimmed at the ends only.
        QStringLiteral("#2F7 DF6"),
        QStringLiteral("#a\nb"),
    };
    for (const QString &text : refused)
        EXPECT_FALSE(colorFromHex(text).has_value()) << text.toStdString();
}

TEST(UiHelpersColour, UnparsableTextGivesTransparent) {
    velino::ui::UiHelpers helpers;
    EXPECT_EQ(helpers.colorFromHex(QStringLiteral("#GGGGGG")).alpha(), 0);
    EXPECT_EQ(helpers.colorFromHex(QStringLiteral("abc")).alpha(), 0);
    EXPECT_FALSE(helpers.isHexColor(QStringLiteral("#abcd")));

    const QColor parsed = helpers.colorFromHex(QStringLiteral(" #2f7df6\n"));
    EXPECT_EQ(parsed, QColor::fromRgb(47, 125, 246));
    EXPECT_TRUE(helpers.isHexColor(QStringLiteral("#abc")));
}
