#include "mail_template_context.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;
using test::blankWith;

namespace {

QString plain(const MailComposerData &d) {
    return MailTemplateContext(d).plainText();
}

} // namespace

// The default and blank records are checked line by line by the golden documents.
TEST(PlainText, CleanUpReducesTriplesInOnePassOnly) {
    MailComposerData d = blankWith(u"closingNote", "Fin");
    d.senderRole = "Atelier";
    EXPECT_TRUE(plain(d).endsWith("Fin\n\nAtelier"));
    // Body block, empty name line, empty line before the footer: four feeds become three.
    EXPECT_TRUE(plain(blankWith(u"footerNote", "Pied")).endsWith("repondre.\n\n\nPied"));
    // The typed line feed and the two that follow make a run of three, reduced to two.
    EXPECT_TRUE(
        plain(blankWith(u"highlight", "Important\n")).endsWith("Point cle : Important\n\n"));
}

TEST(PlainText, WritesPresentFieldsAsTyped) {
    MailComposerData d = blankWith(u"businessName", "Korvel");
    d.businessTagline = "  Atelier  ";
    d.senderName = "Jules";
    d.senderPhone = " 06 ";
    EXPECT_TRUE(plain(d).startsWith("Korvel\n  Atelier  \n\n"));
    EXPECT_TRUE(plain(d).endsWith("Jules\n 06 "));
    d.businessTagline = "   ";
    EXPECT_TRUE(plain(d).startsWith("Korvel\n\nVotre devis"));
}

TEST(PlainText, DetailsAndActionLines) {
    MailComposerData d = blankWith(u"detailLabel1", "A");
    d.detailValue3 = "C";
    d.ctaLabel = "Repondre";
    EXPECT_TRUE(plain(d).contains("\n\nRecapitulatif :\n- A : -\n- Detail : C\n\nAction : "
                                  "Repondre\n\n"));
    d.senderEmail = " s@k.fr ";
    EXPECT_TRUE(plain(d).contains("Action : Repondre\nmailto:s@k.fr\n\n"));
}
