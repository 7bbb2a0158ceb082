#include "mail_template_context.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;

namespace {

QString plain(const MailComposerData &d) {
    return MailTemplateContext(d).plainText();
}

} // namespace

TEST(PlainText, DefaultRecordHasThe32ExpectedLines) {
    const QStringList lines = plain(MailComposerData::defaultRecord()).split('\n');
    ASSERT_EQ(lines.size(), 32);
    EXPECT_EQ(lines[0], "Korvel");
    EXPECT_EQ(lines[3], "Votre devis Korvel est pret");
    EXPECT_EQ(lines[8], "Bonjour Mme Lambert,");
    EXPECT_TRUE(lines[9].startsWith("Merci pour votre passage"));
    EXPECT_EQ(lines[13],
              QString::fromUtf16(u"Point cle : Montant estime \u00B7 Reponse par email"));
    EXPECT_EQ(lines[15], "Recapitulatif :");
    EXPECT_EQ(lines[16], "- Appareil : iPhone 14 Pro");
    EXPECT_EQ(lines[21], "Action : Repondre a ce mail");
    EXPECT_EQ(lines[22], "mailto:contact@korvel.example");
    EXPECT_EQ(lines[26], "Jules Marchand");
    EXPECT_EQ(lines[29], "contact@korvel.example");
    EXPECT_EQ(lines[31], "Merci pour votre confiance. Ce message a ete prepare depuis VELINO.");
    for (int empty : {2, 5, 7, 10, 12, 14, 20, 23, 25, 30})
        EXPECT_TRUE(lines[empty].isEmpty()) << empty;
}

TEST(PlainText, EverythingBlankStartsAndEndsWithTwoLineFeeds) {
    const QString text = plain(MailComposerData::blank());
    EXPECT_TRUE(text.startsWith("\n\nVotre devis Korvel est pret\n"));
    EXPECT_TRUE(text.endsWith("un bouton rapide pour nous repondre.\n\n"));
    // The fallback introduction loses its blank line.
    EXPECT_TRUE(text.contains("Bonjour Mme Lambert,\nMerci pour votre passage"));
}

TEST(PlainText, CleanUpReducesTriplesInOnePassOnly) {
    MailComposerData d = MailComposerData::blank();
    d.closingNote = "Fin";
    d.senderRole = "Atelier";
    EXPECT_TRUE(plain(d).endsWith("Fin\n\nAtelier"));

    MailComposerData footer = MailComposerData::blank();
    footer.footerNote = "Pied";
    // Body block, empty name line, empty line before the footer: four feeds become three.
    EXPECT_TRUE(plain(footer).endsWith("repondre.\n\n\nPied"));

    MailComposerData highlight = MailComposerData::blank();
    highlight.highlight = "Important\n";
    // The typed line feed and the two that follow make a run of three, reduced to two.
    EXPECT_TRUE(plain(highlight).endsWith("Point cle : Important\n\n"));
}

TEST(PlainText, WritesPresentFieldsAsTyped) {
    MailComposerData d = MailComposerData::blank();
    d.businessName = "Korvel";
    d.businessTagline = "  Atelier  ";
    d.senderName = "Jules";
    d.senderPhone = " 06 ";
    EXPECT_TRUE(plain(d).startsWith("Korvel\n  Atelier  \n\n"));
    EXPECT_TRUE(plain(d).endsWith("Jules\n 06 "));
    d.businessTagline = "   ";
    EXPECT_TRUE(plain(d).startsWith("Korvel\n\nVotre devis"));
}

TEST(PlainText, DetailsAndActionLines) {
    MailComposerData d = MailComposerData::blank();
    d.detailLabel1 = "A";
    d.detailValue3 = "C";
    d.ctaLabel = "Repondre";
    EXPECT_TRUE(plain(d).contains("\n\nRecapitulatif :\n- A : -\n- Detail : C\n\nAction : "
                                  "Repondre\n\n"));
    d.senderEmail = " s@k.fr ";
    EXPECT_TRUE(plain(d).contains("Action : Repondre\nmailto:s@k.fr\n\n"));
}
