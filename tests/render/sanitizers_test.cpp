#include "mail_template_context.h"
#include "sanitizers.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;
using namespace velino::render;

// The colour fields of the e-mail and of the window read colours the same way.
TEST(HexColor, ReadsLongAndShortFormsOfEitherCaseTrimmed) {
    const struct {
        const char16_t *text;
        std::array<int, 3> rgb;
    } accepted[] = {
        {u"#2F7DF6", {47, 125, 246}},
        {u"\t\r\n#2f7DF6 \u00A0\u2003", {47, 125, 246}},
        {u"#FfFfFf", {255, 255, 255}},
        {u"#1a2", {0x11, 0xAA, 0x22}},
    };
    for (const auto &c : accepted)
        EXPECT_EQ(hexColorChannels(QString::fromUtf16(c.text)), c.rgb);
    for (const char16_t *refused : {u"abc",       u"#abcd",     u"#2F7DF6FF",
                                    u"#GGGGGG",   u"2F7DF6",    u"",
                                    u"   ",       u"#",         u"#ab",
                                    u"#12345G",   u"# abcdef",  u"##abcde",
                                    u"#+2F7DF",   u"#-12345",   u"#ab\u0301c",
                                    u"#\uFF21BC", u"\uFF03abc", u"#\uFF11\uFF12\uFF13",
                                    u"#2F7 DF6",  u"#a\nb"})
        EXPECT_FALSE(hexColorChannels(QString::fromUtf16(refused)))
            << QString::fromUtf16(refused).toStdString();

    const QString fb = "#fallbk";
    EXPECT_EQ(normalizeHex(" #2F7CF6 \n", fb), "#2f7cf6");
    EXPECT_EQ(normalizeHex("#ABC", fb), "#aabbcc");
    EXPECT_EQ(normalizeHex("#ggg", fb), fb);
}

TEST(Rgba, WritesDecimalChannelsAndTwoDecimals) {
    EXPECT_EQ(rgba("#2f7cf6", 0.1), "rgba(47, 124, 246, 0.10)");
    EXPECT_EQ(rgba("#7a5cff", 0.24), "rgba(122, 92, 255, 0.24)");
    EXPECT_EQ(rgba("#000000", 0.9), "rgba(0, 0, 0, 0.90)");
    EXPECT_EQ(rgba("nonsense", 0.72), "rgba(47, 124, 246, 0.72)");
}

TEST(Context, InvalidColoursFallBackForTheTranslucentVariants) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.accentPrimary = "red";
    d.accentSecondary = "#12";
    const MailTemplateContext c(d);
    EXPECT_EQ(c.primaryGlow, "rgba(47, 124, 246, 0.24)");
    EXPECT_EQ(c.secondarySoft, "rgba(122, 92, 255, 0.16)");
    EXPECT_EQ(c.primarySoft, "rgba(47, 124, 246, 0.10)");
    EXPECT_EQ(c.primaryBorder, "rgba(47, 124, 246, 0.18)");
}

TEST(SanitizeFontStack, KeepsLettersNumbersAndTheEightListedCharacters) {
    const QString fb = "fallback";
    EXPECT_EQ(sanitizeFontStack("Georgia; color:red", fb), "Georgia colorred");
    EXPECT_EQ(sanitizeFontStack("{}", fb), fb);
    EXPECT_EQ(sanitizeFontStack("  Inter  ", fb), "  Inter  ");
    EXPECT_EQ(sanitizeFontStack(" ; ", fb), fb); // only a blank is left
    EXPECT_EQ(sanitizeFontStack("\"A-b\", 'C.d' (x)_/<>\t\n", fb), "\"A-b\", 'C.d' (x)");
    EXPECT_EQ(sanitizeFontStack(QString::fromUtf16(u"\u00C9cole 2\u00BD \u0661"), fb),
              QString::fromUtf16(u"\u00C9cole 2\u00BD \u0661"));
    // A listed character carrying a combining mark is no longer that character.
    EXPECT_EQ(sanitizeFontStack(QString::fromUtf16(u"a,\u0301b e\u0301"), fb),
              QString::fromUtf16(u"ab e\u0301"));
    EXPECT_EQ(sanitizeFontStack(QString::fromUtf16(u"Serif\U0001F600"), fb), "Serif");
}

TEST(SanitizeURL, CoversEveryBranch) {
    EXPECT_EQ(sanitizeURL("", ""), "#");
    EXPECT_EQ(sanitizeURL(" \n", " a@b.fr "), "mailto:a@b.fr");
    EXPECT_EQ(sanitizeURL(" MAILTO:x@y ", ""), "MAILTO:x@y");
    EXPECT_EQ(sanitizeURL("Http://k.fr", ""), "Http://k.fr");
    EXPECT_EQ(sanitizeURL("HTTPS://k.fr/a b", ""), "HTTPS://k.fr/a b");
    EXPECT_EQ(sanitizeURL("tel:0612", ""), "tel:0612");
    EXPECT_EQ(sanitizeURL("client@korvel.example", ""), "mailto:client@korvel.example");
    EXPECT_EQ(sanitizeURL("WWW.Korvel.example", ""), "https://WWW.Korvel.example");
    EXPECT_EQ(sanitizeURL("www.a b", ""), "https://www.a b"); // www. is tested before spaces
    EXPECT_EQ(sanitizeURL("korvel.example/rdv", ""), "https://korvel.example/rdv");
    EXPECT_EQ(sanitizeURL("a. b", ""), "a. b");
    EXPECT_EQ(sanitizeURL("contact", ""), "contact");
    EXPECT_EQ(sanitizeURL("a@b .fr", ""), "a@b .fr");
    EXPECT_EQ(sanitizeURL("#", "x@y"), "#");
    EXPECT_EQ(sanitizeURL("ftp:relative", ""), "ftp:relative");
}

TEST(ResolveLogoSource, AcceptsWebAndDataAddressesOnly) {
    const QString fallback = MailComposerData::fallbackLogoURL();
    EXPECT_EQ(resolveLogoSource("  https://a.fr/l.png "), "https://a.fr/l.png");
    EXPECT_EQ(resolveLogoSource("HTTP://a.fr/l.png"), "HTTP://a.fr/l.png");
    EXPECT_EQ(resolveLogoSource("DATA:image/png;base64,AAA"), "DATA:image/png;base64,AAA");
    EXPECT_EQ(resolveLogoSource("ftp://a.fr/l.png"), fallback);
    EXPECT_EQ(resolveLogoSource("logo.png"), fallback);
    EXPECT_EQ(resolveLogoSource(""), fallback);
}

TEST(TelephoneHref, KeepsNumbersAndPluses) {
    EXPECT_EQ(telephoneHref("06 12 34 56 78"), "tel:0612345678");
    EXPECT_EQ(telephoneHref("+33 (0)6 12"), "tel:+330612");
    EXPECT_EQ(telephoneHref("Standard"), "");
    EXPECT_EQ(telephoneHref(""), "");
    EXPECT_EQ(telephoneHref(QString::fromUtf16(u"\u0660\u0661-2")),
              QString::fromUtf16(u"tel:\u0660\u06612"));
}

TEST(BuildDetails, SkipsEmptyPairsAndFillsMissingHalves) {
    MailComposerData d = MailComposerData::blank();
    d.detailLabel1 = " Appareil ";
    d.detailValue1 = " iPhone ";
    d.detailLabel2 = " ";
    d.detailValue2 = "\n";
    d.detailValue3 = "Seule valeur";
    d.detailLabel4 = "Seul libelle";
    const QList<DetailItem> details = buildDetails(d);
    ASSERT_EQ(details.size(), 3);
    EXPECT_EQ(details[0].label, "Appareil");
    EXPECT_EQ(details[0].value, "iPhone");
    EXPECT_EQ(details[1].label, "Detail");
    EXPECT_EQ(details[1].value, "Seule valeur");
    EXPECT_EQ(details[2].label, "Seul libelle");
    EXPECT_EQ(details[2].value, "-");
    EXPECT_TRUE(buildDetails(MailComposerData::blank()).isEmpty());
}

TEST(TextParagraphs, JoinsNonBlankTrimmedLinesIntoOneParagraph) {
    EXPECT_EQ(textParagraphs("a\n\n b \n\nc"), QStringList({"a\nb\nc"}));
    EXPECT_TRUE(textParagraphs("   \n\t ").isEmpty());
    EXPECT_EQ(textParagraphs("a\r\nb"), QStringList({"a\nb"}));
    EXPECT_EQ(textParagraphs(QString::fromUtf16(u"a\u2028b\u2029c\u0085d\vE\fF\rG")),
              QStringList({"a\nb\nc\nd\nE\nF\nG"}));
    EXPECT_EQ(textParagraphs("\n\n  seule ligne  \n"), QStringList({"seule ligne"}));
}

TEST(Context, TrimsShortTextsButKeepsIntroductionAndBodyAsTyped) {
    MailComposerData d = MailComposerData::blank();
    d.subject = "  Votre  devis  ";
    d.mailIntro = "  Bonjour  ";
    d.mailBody = "\n\n\n";
    d.closingNote = "  fin  ";
    const MailTemplateContext c(d);
    EXPECT_EQ(c.subject, "Votre  devis");
    EXPECT_EQ(c.preheader, MailComposerData::defaultRecord().preheader);
    EXPECT_EQ(c.mailTitle, "Votre devis est pret");
    EXPECT_EQ(c.mailIntro, "  Bonjour  ");
    EXPECT_EQ(c.mailBody, MailComposerData::defaultRecord().mailBody);
    EXPECT_EQ(c.closingNote, "fin");
    EXPECT_EQ(c.ctaHref, "#");
    EXPECT_EQ(c.logoURL, MailComposerData::fallbackLogoURL());
    EXPECT_EQ(MailTemplateContext(MailComposerData::blank()).closingNote, "");
}

TEST(Context, RecipientLabelPrefersNameThenEmailThenClient) {
    MailComposerData d = MailComposerData::blank();
    d.recipientName = " ";
    d.recipientEmail = " x ";
    EXPECT_EQ(MailTemplateContext(d).recipientLabel(), "x");
    d.recipientEmail = "";
    EXPECT_EQ(MailTemplateContext(d).recipientLabel(), "Client");
    d.recipientName = " Mme Roy ";
    EXPECT_EQ(MailTemplateContext(d).recipientLabel(), "Mme Roy");
}
