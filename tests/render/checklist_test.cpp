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

// Between 12 and 90 user-perceived characters (the counting itself is tested in text_test).
TEST(Checklist, SubjectLengthBoundsCountUserPerceivedCharacters) {
    const QString accent = QString::fromUtf16(u"e\u0301");
    const std::pair<QString, bool> cases[] = {
        {QString(12, u'a'), true},   {QString(90, u'a'), true},  {"  " + QString(12, u'a'), true},
        {accent.repeated(90), true}, {QString(11, u'a'), false}, {QString(91, u'a'), false},
        {accent.repeated(11), false}};
    for (const auto &[subject, fits] : cases)
        EXPECT_EQ(check(defaultWith(u"subject", subject), 1), fits) << subject.toStdString();
}

TEST(Checklist, RecipientActionAndSignatureRules) {
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
}

// The status needs three detail rows, the checklist two.
TEST(FormatStatus, ThresholdsDifferFromTheChecklist) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.detailLabel4 = d.detailValue4 = "";
    EXPECT_EQ(MailTemplateContext(d).formatStatus(), "Pret a envoyer"); // three rows
    d.recipientEmail = " ";
    EXPECT_EQ(MailTemplateContext(d).formatStatus(), "En preparation");
    d.recipientEmail = "c@x.fr";
    d.detailLabel3 = d.detailValue3 = "";
    EXPECT_EQ(MailTemplateContext(d).formatStatus(), "En preparation"); // two rows
    EXPECT_TRUE(check(d, 4));
    d.detailLabel2 = d.detailValue2 = "";
    EXPECT_EQ(MailTemplateContext(d).formatStatus(), "A completer");
    EXPECT_FALSE(check(d, 4));
    d.detailValue4 = "x"; // a value alone makes a row
    EXPECT_TRUE(check(d, 4));
}
