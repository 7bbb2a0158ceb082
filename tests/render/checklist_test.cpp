#include "mail_template_context.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;

namespace {

bool check(const MailComposerData &d, int index) {
    return MailTemplateContext(d).checklist().at(index).ok;
}

// The default record with "field=value" edits separated by "|".
MailComposerData edited(const QString &edits) {
    MailComposerData d = MailComposerData::defaultRecord();
    for (const QString &edit : edits.split(u'|')) {
        const MailComposerData::Field *field = MailComposerData::field(edit.section(u'=', 0, 0));
        EXPECT_NE(field, nullptr) << edit.toStdString();
        if (field)
            d.*field->member = edit.section(u'=', 1);
    }
    return d;
}

} // namespace

// That the default record passes all eight checks is checked through velino-render.
TEST(Checklist, EachComputationGivesFreshIdentities) {
    const MailTemplateContext c(MailComposerData::defaultRecord());
    EXPECT_NE(c.checklist().at(7).id, c.checklist().at(7).id);
    EXPECT_NE(c.details[0].id, MailTemplateContext(c.data).details[0].id);
}

// Between 12 and 90 user-perceived characters (the counting itself is tested in text_test).
TEST(Checklist, SubjectLengthBoundsCountUserPerceivedCharacters) {
    const QString accent = QString::fromUtf16(u"e\u0301");
    const std::pair<QString, bool> cases[] = {
        {QString(12, u'a'), true},    {QString(90, u'a'), true},  {"  " + QString(12, u'a'), true},
        {accent.repeated(90), true},  {QString(11, u'a'), false}, {QString(91, u'a'), false},
        {accent.repeated(11), false},
    };
    for (const auto &[subject, fits] : cases)
        EXPECT_EQ(check(edited("subject=" + subject), 1), fits) << subject.toStdString();
}

TEST(Checklist, RecipientActionDetailsAndSignatureRules) {
    const QString noDetails2To4 = "detailLabel2=|detailValue2=|detailLabel3=|detailValue3=|";
    const std::tuple<QString, int, bool> cases[] = {
        {"recipientEmail=   ", 0, false},
        {"ctaLabel= ", 6, false},
        {"ctaURL=|senderEmail=", 6, false}, // no link at all
        {"ctaURL=|senderEmail=", 7, true},  // name and phone sign
        {"ctaURL=|senderEmail=s@k.fr", 6, true},
        {"ctaURL=|senderEmail=|senderName=", 7, false},
        {noDetails2To4 + "detailLabel4=|detailValue4=", 4, false}, // the details need two rows
        {noDetails2To4 + "detailLabel4=|detailValue4=x", 4, true},
    };
    for (const auto &[edits, index, ok] : cases)
        EXPECT_EQ(check(edited(edits), index), ok) << edits.toStdString() << " check " << index;
}

TEST(FormatStatus, ThresholdsDifferFromTheChecklist) {
    const std::pair<QString, QString> cases[] = {
        {"detailLabel4=|detailValue4=", "Pret a envoyer"}, // three rows
        {"detailLabel4=|detailValue4=|recipientEmail= ", "En preparation"},
        {"detailLabel4=|detailValue4=|detailLabel3=|detailValue3=", "En preparation"}, // two rows
        {"detailLabel4=|detailValue4=|detailLabel3=|detailValue3=|detailLabel2=|detailValue2=",
         "A completer"},
    };
    for (const auto &[edits, status] : cases)
        EXPECT_EQ(MailTemplateContext(edited(edits)).formatStatus(), status) << edits.toStdString();
}
