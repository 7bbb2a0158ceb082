#include "color_hex.h"
#include "ui_helpers.h"

#include <QString>

#include <gtest/gtest.h>

using velino::ui::colorFromHex;

namespace {

void expectRgb(const QString &text, int red, int green, int blue) {
    SCOPED_TRACE(text.toStdString());
    const std::optional<QColor> color = colorFromHex(text);
    ASSERT_TRUE(color.has_value());
    EXPECT_EQ(color->red(), red);
    EXPECT_EQ(color->green(), green);
    EXPECT_EQ(color->blue(), blue);
    EXPECT_EQ(color->alpha(), 255);
}

} // namespace

TEST(ColorFromHex, ReadsSixDigits) {
    expectRgb(QStringLiteral("#2F7DF6"), 47, 125, 246);
}

TEST(ColorFromHex, ComponentsAreTheBytesDividedBy255) {
    const std::optional<QColor> color = colorFromHex(u"#2F7DF6");
    ASSERT_TRUE(color.has_value());
    // QColor hands its components out as floats.
    EXPECT_FLOAT_EQ(color->redF(), float(47.0 / 255.0));
    EXPECT_FLOAT_EQ(color->greenF(), float(125.0 / 255.0));
    EXPECT_FLOAT_EQ(color->blueF(), float(246.0 / 255.0));
}

TEST(ColorFromHex, LowerCaseWithSurroundingWhiteSpaceGivesTheSameColour) {
    expectRgb(QStringLiteral(" #2f7df6\n"), 47, 125, 246);
    expectRgb(QStringLiteral("\t\r\n#2f7DF6 \u00A0\u2003"), 47, 125, 246);
}

TEST(ColorFromHex, ShortFormDoublesEachDigit) {
    const std::optional<QColor> shortForm = colorFromHex(u"#abc");
    const std::optional<QColor> longForm = colorFromHex(u"#aabbcc");
    ASSERT_TRUE(shortForm.has_value());
    ASSERT_TRUE(longForm.has_value());
    EXPECT_EQ(*shortForm, *longForm);
    expectRgb(QStringLiteral("#1a2"), 0x11, 0xAA, 0x22);
    expectRgb(QStringLiteral("  #FFF\n"), 255, 255, 255);
}

TEST(ColorFromHex, ExtremesAndMixedCase) {
    expectRgb(QStringLiteral("#000000"), 0, 0, 0);
    expectRgb(QStringLiteral("#FfFfFf"), 255, 255, 255);
    expectRgb(QStringLiteral("#7A5cff"), 0x7A, 0x5C, 0xFF);
}

TEST(ColorFromHex, OtherFormsGiveNothing) {
    const QStringList refused = {
        QStringLiteral("abc"),        QStringLiteral("#abcd"),      QStringLiteral("#2F7DF6FF"),
        QStringLiteral("#GGGGGG"),    QStringLiteral("2F7DF6"),     QStringLiteral(""),
        QStringLiteral("   "),        QStringLiteral("#"),          QStringLiteral("#ab"),
        QStringLiteral("#abcde"),     QStringLiteral("#12345G"),    QStringLiteral("#a c"),
        QStringLiteral("# abcdef"),   QStringLiteral("#abc def"),   QStringLiteral("##abcde"),
        QStringLiteral("0x2F7DF6"),   QStringLiteral("#+2F7DF"),    QStringLiteral("#-12345"),
        QStringLiteral("#ab\u0301c"), QStringLiteral("#\uFF21BC"),  QStringLiteral("\uFF03abc"),
        QStringLiteral("#2F7DF6 x"),  QStringLiteral("rgb(1,2,3)"),
    };
    for (const QString &text : refused)
        EXPECT_FALSE(colorFromHex(text).has_value()) << text.toStdString();
}

TEST(ColorFromHex, InnerWhiteSpaceIsNotTrimmed) {
    EXPECT_FALSE(colorFromHex(u"#2F7 DF6").has_value());
    EXPECT_FALSE(colorFromHex(u"#a\nb").has_value());
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
