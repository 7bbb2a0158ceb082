#include "mail_template_context.h"
#include "sanitizers.h"
#include "test_records.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace velino;
using test::defaultWith;

namespace {

QString html(const MailComposerData &d) {
    return MailTemplateContext(d).htmlDocument();
}

const QString kIndent = QString(28, u' ');

} // namespace

// Reference documents written independently of this renderer, byte for byte.
class GoldenDocument : public ::testing::TestWithParam<const char *> {};

TEST_P(GoldenDocument, MatchesByteForByte) {
    const QString name = QString::fromLatin1(GetParam());
    QString error;
    const auto record = MailComposerData::fromJson(
        QJsonDocument::fromJson(test::readTestData(name + "_record.json")).object(), {}, &error);
    ASSERT_TRUE(record.has_value()) << error.toStdString();
    const MailTemplateContext context(*record);
    EXPECT_EQ(context.htmlDocument().toUtf8(), test::readTestData(name + "_email.html"));
    EXPECT_EQ(context.plainText().toUtf8(), test::readTestData(name + "_email.txt"));
}

INSTANTIATE_TEST_SUITE_P(Records, GoldenDocument, ::testing::Values("default", "blank", "hostile"));

// The default and hostile records are checked byte for byte above, and the fuzz corpus
// (fuzz/corpus/render) checks that no text of any field reaches the markup unescaped.
TEST(HtmlDocument, LineBreaksInTitleAndIntroduction) {
    EXPECT_TRUE(
        html(defaultWith(u"mailTitle", "Ligne 1\nLigne 2"))
            .contains(QString(22, u' ') + "Ligne 1\nLigne 2\n" + QString(20, u' ') + "</h1>"));
    EXPECT_TRUE(html(defaultWith(u"mailIntro", "Un\n\n  Deux  \n\nTrois"))
                    .contains("<p style=\"margin:0 0 16px; color:#36465d; font-size:16px; "
                              "line-height:1.76;\">Un<br>Deux<br>Trois</p>"));
}

TEST(HtmlDocument, AbsentBlocksLeaveTheirSeparators) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.highlight = d.ctaLabel = d.detailLabel1 = d.detailValue1 = d.detailLabel2 = "";
    d.detailValue2 = d.detailLabel3 = d.detailValue3 = d.detailLabel4 = d.detailValue4 = "";
    const QString doc = html(d);
    EXPECT_TRUE(doc.contains("un bouton rapide pour nous repondre.</p>" +
                             QString("\n" + QString(20, u' ')).repeated(4) +
                             "<p style=\"margin:0 0 16px; color:#45556d; font-size:15px; "
                             "line-height:1.74;\">Si vous souhaitez valider"));
    EXPECT_FALSE(doc.contains("Recapitulatif"));
    // A single detail row has no bottom border, in both cells.
    const QString single = html(test::blankWith(u"detailLabel3", "Montant"));
    EXPECT_EQ(single.count("border-bottom:none;"), 2);
    EXPECT_FALSE(single.contains("border-bottom:1px solid #e8edf5;"));
}

TEST(HtmlDocument, ButtonAndContactLineRules) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.ctaURL = d.senderEmail = "";
    EXPECT_TRUE(html(d).contains("<a href=\"#\" style=\"display:inline-block;"));

    d = defaultWith(u"senderPhone", "Standard");
    EXPECT_TRUE(html(d).contains("Standard\n" + kIndent + "<br>"));
    EXPECT_FALSE(html(d).contains("tel:"));
    d.senderPhone = "   "; // blank, but present for the separator
    EXPECT_TRUE(html(d).contains("   \n" + kIndent + "<br>"));
    d.senderPhone = "";
    EXPECT_FALSE(html(d).contains("<br>\n" + kIndent + "<a href=\"mailto:"));

    d = defaultWith(u"senderEmail", " a@b.fr ");
    EXPECT_TRUE(html(d).contains("<a href=\"mailto: a@b.fr \" style=\"color:#2f7cf6; "
                                 "text-decoration:none;\"> a@b.fr </a>"));
    d.senderEmail = "  ";
    EXPECT_FALSE(html(d).contains("<br>\n" + kIndent + "\n"));
    EXPECT_TRUE(html(d).contains("</a>\n" + kIndent + "\n" + kIndent + "\n"));
}

TEST(HtmlDocument, EscapeHtmlReplacesAmpersandFirst) {
    EXPECT_EQ(render::escapeHTML("&lt; <a href='x'>\"&\""),
              "&amp;lt; &lt;a href=&#39;x&#39;&gt;&quot;&amp;&quot;");
    EXPECT_EQ(render::escapeHTML(QString::fromUtf16(u"\u00E9\n")), QString::fromUtf16(u"\u00E9\n"));
}
