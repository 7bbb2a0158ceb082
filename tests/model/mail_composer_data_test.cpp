#include "legacy_text.h"
#include "mail_composer_data.h"
#include "test_records.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace velino;

namespace {

QStringList changedFields(const MailComposerData &before, const MailComposerData &after) {
    QStringList changed;
    for (const auto &field : MailComposerData::fields())
        if (after.*field.member != before.*field.member)
            changed << field.name.toString();
    return changed;
}

} // namespace

// The golden documents render the reference record: it is the compiled-in default. They read
// records as typed; the refusals' messages are checked through velino-render and the store's
// pull test. Unknown keys are ignored.
TEST(MailComposerData, DefaultRecordIsTheReferenceRecord) {
    QJsonObject reference =
        QJsonDocument::fromJson(test::readTestData("default_record.json")).object();
    EXPECT_EQ(MailComposerData::defaultRecord().toJson(), reference);
    reference.insert("unknownKey", 12);
    QString error;
    EXPECT_TRUE(MailComposerData::fromJson(reference, QString(), &error) ==
                MailComposerData::defaultRecord())
        << error.toStdString();
}

TEST(MailComposerData, EqualityIsCanonicalEquivalenceFieldByField) {
    MailComposerData a = MailComposerData::defaultRecord();
    MailComposerData b = a;
    a.recipientName = QString::fromUtf16(u"Ren\u00E9e");
    b.recipientName = QString::fromUtf16(u"Rene\u0301e");
    EXPECT_TRUE(a == b);
    b.footerNote += " ";
    EXPECT_FALSE(a == b);
}

TEST(ApplyPreset, OverwritesMessageTextsOnlyIdempotentlyAndForgetsThePreviousPreset) {
    MailComposerData d = MailComposerData::blank();
    for (const auto &field : MailComposerData::fields())
        d.*field.member = "x";
    const MailComposerData before = d;
    d.applyPreset(PresetKind::Rdv);
    const QStringList changed = changedFields(before, d);
    EXPECT_EQ(changed.size(), 17);
    for (const char *kept :
         {"recipientName", "recipientEmail", "logoURL", "senderName", "footerNote", "senderPhone"})
        EXPECT_FALSE(changed.contains(kept)) << kept;

    MailComposerData once = MailComposerData::defaultRecord();
    once.applyPreset(PresetKind::Devis);
    MailComposerData twice = once, relanceThenDevis = MailComposerData::defaultRecord();
    twice.applyPreset(PresetKind::Devis);
    relanceThenDevis.applyPreset(PresetKind::Relance);
    relanceThenDevis.applyPreset(PresetKind::Devis);
    EXPECT_TRUE(once == twice && relanceThenDevis == once);
}

// Percent escapes are decoded only when well-formed UTF-8; pluses become blanks only in
// blank-free texts with a letter+letter; former highlight lines are replaced when whole.
TEST(LegacyText, RepairsOnlyTextsThatAreSurelyLegacy) {
    const QString relance = QString::fromUtf16(u"Demande en attente \u00B7 Retour par email");
    const std::pair<const char16_t *, QString> cases[] = {
        {u"50%25", "50%"},
        {u"%C3%A9t%C3%A9", QString::fromUtf16(u"\u00E9t\u00E9")},
        {u"iPhone+14", "iPhone 14"},
        {u"a+b+", "a b "},
        {u"\u00E9+\u00FF", QString::fromUtf16(u"\u00E9 \u00FF")},
        {u"a+b\tc", "a b\tc"}, // tabs and line breaks are no blanks
        {u"Demande+toujours+ouverte+chez+Korvel", relance},
        {u"Demande%20toujours%20ouverte%20chez%20Korvel", relance},
        {u"  Devis clair \u00B7 Delai estime \u00B7 Reponse directe par email  ",
         QString::fromUtf16(u"Montant estime \u00B7 Reponse par email")}};
    for (const auto &[text, repaired] : cases)
        EXPECT_EQ(normalizeLegacyText(QString::fromUtf16(text)), repaired);
    // bad%80byte: a lone continuation byte is no UTF-8.
    for (const QString kept :
         {"Remise 100%", "%zz", "abc%4", "bad%80byte", "10 + 5", "A++", "  Bonjour  ",
          "Note : Demande toujours ouverte chez Korvel", "demande toujours ouverte chez Korvel"})
        EXPECT_EQ(normalizeLegacyText(kept), kept);
}

TEST(LegacyText, RecordRepairLeavesAddressesColoursFontsAndPhoneAlone) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.senderPhone = "+33+6+12";
    d.ctaURL = "x+y";
    d.recipientEmail = "a%40b";
    d.subject = "iPhone+14";
    d.footerNote = "Demande+toujours+ouverte+chez+Korvel";
    const MailComposerData before = d;
    d.normalizeLegacyTextFields();
    EXPECT_EQ(changedFields(before, d), QStringList({"subject", "footerNote"}));
    EXPECT_EQ(d.subject, "iPhone 14");
    MailComposerData untouched = MailComposerData::defaultRecord();
    untouched.normalizeLegacyTextFields();
    EXPECT_TRUE(untouched == MailComposerData::defaultRecord());
}
