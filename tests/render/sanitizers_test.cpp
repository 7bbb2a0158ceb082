#include "mail_template_context.h"
#include "sanitizers.h"

#include <gtest/gtest.h>

using namespace velino;
using namespace velino::render;

// The colour fields of the e-mail and of the window read colours the same way.
TEST(HexColor, ReadsLongAndShortFormsOfEitherCaseTrimmed) {
    const std::pair<const char16_t *, std::array<int, 3>> accepted[] = {
        {u"#2F7DF6", {47, 125, 246}},
        {u"\t\r\n#2f7DF6 \u00A0\u2003", {47, 125, 246}},
        {u"#FfFfFf", {255, 255, 255}},
        {u"#1a2", {0x11, 0xAA, 0x22}}};
    for (const auto &[text, rgb] : accepted)
        EXPECT_EQ(hexColorChannels(QString::fromUtf16(text)), rgb);
    for (const char16_t *refused : {u"abc",       u"#abcd",     u"#2F7DF6FF",
                                    u"#GGGGGG",   u"2F7DF6",    u"",
                                    u"   ",       u"#",         u"#ab",
                                    u"#12345G",   u"# abcdef",  u"##abcde",
                                    u"#+2F7DF",   u"#-12345",   u"#ab\u0301c",
                                    u"#\uFF21BC", u"\uFF03abc", u"#\uFF11\uFF12\uFF13",
                                    u"#2F7 DF6",  u"#a\nb"})
        EXPECT_FALSE(hexColorChannels(QString::fromUtf16(refused)))
            << QString::fromUtf16(refused).toStdString();
    EXPECT_EQ(normalizeHex(" #2F7CF6 \n", "#fallbk"), "#2f7cf6");
}

TEST(SanitizeFontStack, KeepsLettersNumbersAndTheEightListedCharacters) {
    const auto q = [](const char16_t *text) { return QString::fromUtf16(text); };
    const std::pair<QString, QString> cases[] = {
        {" ; ", "fallback"}, // only a blank is left
        {"  Inter  ", "  Inter  "},
        {"\"A-b\", 'C.d' (x)_/<>\t\n", "\"A-b\", 'C.d' (x)"},
        {q(u"\u00C9cole 2\u00BD \u0661"), q(u"\u00C9cole 2\u00BD \u0661")},
        // A listed character carrying a combining mark is no longer that character.
        {q(u"a,\u0301b e\u0301"), q(u"ab e\u0301")},
        {q(u"Serif\U0001F600"), "Serif"}};
    for (const auto &[stack, kept] : cases)
        EXPECT_EQ(sanitizeFontStack(stack, "fallback"), kept) << stack.toStdString();
}

// The empty address, the sender's and www. are written by the golden documents.
TEST(SanitizeURL, CoversEveryBranch) {
    for (const char *asTyped : {"Http://k.fr", "HTTPS://k.fr/a b", "tel:0612", "a. b", "contact",
                                "a@b .fr", "ftp:relative"})
        EXPECT_EQ(sanitizeURL(asTyped, ""), asTyped);
    const std::array<const char *, 3> cases[] = {
        {" MAILTO:x@y ", "", "MAILTO:x@y"},
        {"client@korvel.example", "", "mailto:client@korvel.example"},
        {"www.a b", "", "https://www.a b"}, // www. is tested before spaces
        {"korvel.example/rdv", "", "https://korvel.example/rdv"},
        {"#", "x@y", "#"},
        {" \n", " a@b.fr ", "mailto:a@b.fr"}}; // blank: the sender's address
    for (const auto &[url, sender, href] : cases)
        EXPECT_EQ(sanitizeURL(url, sender), href) << url;
}

// What the golden documents do not reach: web and data logo addresses, other phone numbers,
// detail rows and the trimming of short texts are written by them.
TEST(Sanitizers, BranchesTheGoldenDocumentsDoNotReach) {
    EXPECT_EQ(rgba("#2f7cf6", 0.1), "rgba(47, 124, 246, 0.10)");
    EXPECT_EQ(rgba("nonsense", 0.72), "rgba(47, 124, 246, 0.72)");
    for (const char *refused : {"ftp://a.fr/l.png", "logo.png", ""})
        EXPECT_EQ(resolveLogoSource(refused), MailComposerData::fallbackLogoURL());
    EXPECT_EQ(telephoneHref(QString::fromUtf16(u"\u0660\u0661-2")),
              QString::fromUtf16(u"tel:\u0660\u06612"));
    // Every line separator breaks the line.
    EXPECT_EQ(textParagraphs(QString::fromUtf16(u"a\u2028b\u2029c\u0085d\vE\fF\rG\n\n")),
              QStringList({"a\nb\nc\nd\nE\nF\nG"}));
}
