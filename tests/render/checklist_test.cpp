#include "mail_template_context.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;

namespace {

bool check(const MailComposerData &d, int index) {
    return MailTemplateContext(d).checklist().at(index).ok;
}

QString subjectOf(int count, const QString &unit = "a") {
    return unit.repeated(count);
}

} // namespace

TEST(Checklist, DefaultRecordPassesAllEightChecks) {
    const MailTemplateContext c(MailComposerData::defaultRecord());
    const QList<ChecklistItem> items = c.checklist();
    ASSERT_EQ(items.size(), 8);
    for (const ChecklistItem &item : items)
        EXPECT_TRUE(item.ok) << item.text.toStdString();
    EXPECT_EQ(items[0].text, "Le destinataire est renseigne.");
    EXPECT_EQ(items[7].text, "La signature inspire confiance.");
    EXPECT_EQ(c.formatStatus(), "Pret a envoyer");
    EXPECT_EQ(c.detailsCount(), 4);
}

TEST(Checklist, SubjectLengthBoundsCountUserPerceivedCharacters) {
    using test::defaultWith;
    EXPECT_FALSE(check(defaultWith(u"subject", subjectOf(11)), 1));
    EXPECT_TRUE(check(defaultWith(u"subject", subjectOf(12)), 1));
    EXPECT_TRUE(check(defaultWith(u"subject", subjectOf(90)), 1));
    EXPECT_FALSE(check(defaultWith(u"subject", subjectOf(91)), 1));
    EXPECT_TRUE(check(defaultWith(u"subject", "  " + subjectOf(12) + "  "), 1));
    // Decomposed accents and joined emoji count once each.
    const QString decomposed = QString::fromUtf16(u"e\u0301");
    EXPECT_FALSE(check(defaultWith(u"subject", subjectOf(11, decomposed)), 1));
    EXPECT_TRUE(check(defaultWith(u"subject", subjectOf(90, decomposed)), 1));
    const QString family = QString::fromUtf16(u"\U0001F468\u200D\U0001F469\u200D\U0001F467");
    EXPECT_TRUE(check(defaultWith(u"subject", subjectOf(12, family)), 1));
    EXPECT_FALSE(check(defaultWith(u"subject", subjectOf(91, family)), 1));
    // A flag right after an emoji is one character of its own.
    const QString emojiFlag = QString::fromUtf16(u"\U0001F600\U0001F1EB\U0001F1F7");
    EXPECT_FALSE(check(defaultWith(u"subject", emojiFlag + subjectOf(9)), 1));
    EXPECT_TRUE(check(defaultWith(u"subject", emojiFlag + subjectOf(10)), 1));
    const ChecklistItem failing =
        MailTemplateContext(defaultWith(u"subject", "court")).checklist().at(1);
    EXPECT_EQ(failing.text, "Garde un objet entre 12 et 90 caracteres pour une lecture nette.");
}

TEST(Checklist, RecipientActionAndSignatureRules) {
    using test::defaultWith;
    EXPECT_FALSE(check(defaultWith(u"recipientEmail", "   "), 0));

    MailComposerData noLink = MailComposerData::defaultRecord();
    noLink.ctaURL = "";
    noLink.senderEmail = "";
    EXPECT_FALSE(check(noLink, 6));
    noLink.senderEmail = "s@k.fr";
    EXPECT_TRUE(check(noLink, 6));
    EXPECT_FALSE(check(defaultWith(u"ctaLabel", " "), 6));

    MailComposerData signature = MailComposerData::defaultRecord();
    signature.senderEmail = "";
    EXPECT_TRUE(check(signature, 7)); // name and phone
    signature.senderName = "";
    EXPECT_FALSE(check(signature, 7));
    EXPECT_EQ(MailTemplateContext(signature).checklist().at(7).text,
              "Ajoute un nom et un contact dans la signature.");
}

TEST(Checklist, DetailsCheckNeedsTwoRows) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.detailLabel2 = d.detailValue2 = d.detailLabel3 = d.detailValue3 = "";
    d.detailLabel4 = d.detailValue4 = "";
    EXPECT_FALSE(check(d, 4));
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

TEST(Checklist, IdentitiesAreFreshForEachComputation) {
    const MailTemplateContext c(MailComposerData::defaultRecord());
    const auto first = c.checklist();
    const auto second = c.checklist();
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(first[i].text, second[i].text);
        EXPECT_NE(first[i].id, second[i].id);
    }
    EXPECT_NE(c.details[0].id, MailTemplateContext(c.data).details[0].id);
}
