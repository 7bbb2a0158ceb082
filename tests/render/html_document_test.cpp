#include "mail_template_context.h"
#include "sanitizers.h"
#include "test_records.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace velino;

namespace {

MailComposerData recordFromTestData(const QString &name) {
    const QJsonObject json = QJsonDocument::fromJson(test::readTestData(name)).object();
    QString error;
    const auto record = MailComposerData::fromJson(json, QString(), &error);
    EXPECT_TRUE(record.has_value()) << error.toStdString();
    return record.value_or(MailComposerData::blank());
}

QString html(const MailComposerData &d) {
    return MailTemplateContext(d).htmlDocument();
}

const QString kSeparator = "\n" + QString(20, u' ');

} // namespace

// Reference documents written independently of this renderer, byte for byte.
class GoldenDocument : public ::testing::TestWithParam<const char *> {};

TEST_P(GoldenDocument, MatchesByteForByte) {
    const QString name = QString::fromLatin1(GetParam());
    const MailTemplateContext context(recordFromTestData(name + "_record.json"));
    EXPECT_EQ(context.htmlDocument().toUtf8(), test::readTestData(name + "_email.html"));
    EXPECT_EQ(context.plainText().toUtf8(), test::readTestData(name + "_email.txt"));
}

INSTANTIATE_TEST_SUITE_P(Records, GoldenDocument, ::testing::Values("default", "blank", "hostile"));

// The default and hostile records are checked byte for byte above, and the fuzz corpus
// (fuzz/corpus/render) checks that no text of any field reaches the markup unescaped.
TEST(HtmlDocument, TitleLineBreakStaysInsideTheHeading) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.mailTitle = "Ligne 1\nLigne 2";
    const QString doc = html(d);
    EXPECT_TRUE(doc.contains("                      Ligne 1\nLigne 2\n                    </h1>"));
}

TEST(HtmlDocument, IntroductionLinesBecomeOneParagraphWithBreaks) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.mailIntro = "Un\n\n  Deux  \n\nTrois";
    EXPECT_TRUE(html(d).contains("<p style=\"margin:0 0 16px; color:#36465d; font-size:16px; "
                                 "line-height:1.76;\">Un<br>Deux<br>Trois</p>"));
}

TEST(HtmlDocument, AbsentBlocksLeaveTheirSeparators) {
    MailComposerData d = MailComposerData::defaultRecord();
    for (QString MailComposerData::*f :
         {&MailComposerData::highlight, &MailComposerData::ctaLabel,
          &MailComposerData::detailLabel1, &MailComposerData::detailValue1,
          &MailComposerData::detailLabel2, &MailComposerData::detailValue2,
          &MailComposerData::detailLabel3, &MailComposerData::detailValue3,
          &MailComposerData::detailLabel4, &MailComposerData::detailValue4})
        d.*f = "";
    const QString doc = html(d);
    const QString body = "un bouton rapide pour nous repondre.</p>";
    const QString closing = "<p style=\"margin:0 0 16px; color:#45556d; font-size:15px; "
                            "line-height:1.74;\">Si vous souhaitez valider";
    EXPECT_TRUE(doc.contains(body + kSeparator + kSeparator + kSeparator + kSeparator + closing));
    EXPECT_FALSE(doc.contains("Recapitulatif"));
}

TEST(HtmlDocument, SingleDetailRowHasNoBottomBorderInBothCells) {
    MailComposerData d = MailComposerData::blank();
    d.detailLabel3 = "Montant";
    const QString doc = html(d);
    EXPECT_EQ(doc.count("border-bottom:none;"), 2);
    EXPECT_FALSE(doc.contains("border-bottom:1px solid #e8edf5;"));
}

TEST(HtmlDocument, ButtonWithoutAnyLinkPointsToHash) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.ctaURL = "";
    d.senderEmail = "";
    EXPECT_TRUE(html(d).contains("<a href=\"#\" style=\"display:inline-block;"));
}

TEST(HtmlDocument, ContactLineSeparatorRules) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.senderPhone = "Standard";
    const QString text = html(d);
    EXPECT_TRUE(text.contains("Standard\n                            <br>"));
    EXPECT_FALSE(text.contains("tel:"));

    d.senderPhone = "   "; // blank, but present for the separator
    EXPECT_TRUE(html(d).contains("   \n                            <br>"));

    d.senderPhone = "";
    EXPECT_FALSE(html(d).contains("<br>\n                            <a href=\"mailto:"));

    d = MailComposerData::defaultRecord();
    d.senderEmail = " a@b.fr ";
    EXPECT_TRUE(html(d).contains("<a href=\"mailto: a@b.fr \" style=\"color:#2f7cf6; "
                                 "text-decoration:none;\"> a@b.fr </a>"));
    d.senderEmail = "  ";
    EXPECT_FALSE(html(d).contains("<br>\n                            \n"));
    EXPECT_TRUE(
        html(d).contains("</a>\n                            \n                            \n"));
}

TEST(HtmlDocument, EscapeHtmlReplacesAmpersandFirst) {
    EXPECT_EQ(render::escapeHTML("&lt; <a href='x'>\"&\""),
              "&amp;lt; &lt;a href=&#39;x&#39;&gt;&quot;&amp;&quot;");
    EXPECT_EQ(render::escapeHTML(QString::fromUtf16(u"\u00E9\n")), QString::fromUtf16(u"\u00E9\n"));
}
