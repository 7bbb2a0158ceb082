#include "mail_template_context.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;
using test::defaultWith;

namespace {

bool check(const MailComposerData &d, int index) {
    return MailTemplateContext(d).checklist().at(index).ok;
}

} // namespace

// That the default record passes all eight checks is checked through velino-render.
TEST(Checklist, EightChecksWithFreshIdentitiesForEachComputation) {
    const MailTemplateContext c(MailComposerData::defaultRecord());
    const QList<ChecklistItem> items = c.checklist(), again = c.checklist();
    ASSERT_EQ(items.size(), 8);
    EXPECT_EQ(items[0].text, "Le destinataire est renseigne.");
    EXPECT_EQ(items[7].text, "La signature inspire confiance.");
    for (int i = 0; i < 8; ++i)
        EXPECT_NE(items[i].id, again[i].id);
    EXPECT_NE(c.details[0].id, MailTemplateContext(c.data).details[0].id);
}

// Between 12 and 90 user-perceived characters: decomposed accents and joined emoji count
// once each, a flag right after an emoji is one character of its own.
TEST(Checklist, SubjectLengthBoundsCountUserPerceivedCharacters) {
    const QString accent = QString::fromUtf16(u"e\u0301");
    const QString family = QString::fromUtf16(u"\U0001F468\u200D\U0001F469\u200D\U0001F467");
    const QString emojiFlag = QString::fromUtf16(u"\U0001F600\U0001F1EB\U0001F1F7");
    const QString a = "a";
    for (const QString &fits :
         {a.repeated(12), a.repeated(90), "  " + a.repeated(12) + "  ", accent.repeated(90),
          family.repeated(12), emojiFlag + a.repeated(10)})
        EXPECT_TRUE(check(defaultWith(u"subject", fits), 1)) << fits.toStdString();
    for (const QString &outside : {a.repeated(11), a.repeated(91), accent.repeated(11),
                                   family.repeated(91), emojiFlag + a.repeated(9)})
        EXPECT_FALSE(check(defaultWith(u"subject", outside), 1)) << outside.toStdString();
    EXPECT_EQ(MailTemplateContext(defaultWith(u"subject", "court")).checklist().at(1).text,
              "Garde un objet entre 12 et 90 caracteres pour une lecture nette.");
}

TEST(Checklist, RecipientActionDetailsAndSignatureRules) {
    EXPECT_FALSE(check(defaultWith(u"recipientEmail", "   "), 0));
    EXPECT_FALSE(check(defaultWith(u"ctaLabel", " "), 6));
    MailComposerData d = MailComposerData::defaultRecord();
    d.ctaURL = d.senderEmail = "";
    EXPECT_FALSE(check(d, 6)); // no link at all
    EXPECT_TRUE(check(d, 7));  // name and phone sign
    d.senderEmail = "s@k.fr";
    EXPECT_TRUE(check(d, 6));
    d.senderEmail = d.senderName = "";
    EXPECT_FALSE(check(d, 7));
    EXPECT_EQ(MailTemplateContext(d).checklist().at(7).text,
              "Ajoute un nom et un contact dans la signature.");

    d = MailComposerData::defaultRecord();
    d.detailLabel2 = d.detailValue2 = d.detailLabel3 = d.detailValue3 = "";
    d.detailLabel4 = d.detailValue4 = "";
    EXPECT_FALSE(check(d, 4)); // the details need two rows
    d.detailValue4 = "x";
    EXPECT_TRUE(check(d, 4));
}

TEST(FormatStatus, ThresholdsDifferFromTheChecklist) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.detailLabel4 = d.detailValue4 = "";
    EXPECT_EQ(MailTemplateContext(d).formatStatus(), "Pret a envoyer"); // three rows
    d.recipientEmail = " ";
    EXPECT_EQ(MailTemplateContext(d).formatStatus(), "En preparation");
    d.recipientEmail = "c@x.fr";
    d.detailLabel3 = d.detailValue3 = "";
    EXPECT_EQ(MailTemplateContext(d).formatStatus(), "En preparation"); // two rows
    d.detailLabel2 = d.detailValue2 = "";
    EXPECT_EQ(MailTemplateContext(d).formatStatus(), "A completer");
    EXPECT_EQ(MailTemplateContext(MailComposerData::blank()).formatStatus(), "A completer");
}
