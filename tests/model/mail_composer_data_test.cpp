#include "legacy_text.h"
#include "mail_composer_data.h"
#include "test_records.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace velino;

namespace {

QString decodeError(const QJsonObject &object) {
    QString error;
    const auto record = MailComposerData::fromJson(object, QString(), &error);
    EXPECT_FALSE(record.has_value());
    return error;
}

} // namespace

TEST(MailComposerData, DefaultRecordHoldsTheCompiledInAddressesAndFallbacks) {
    const MailComposerData d = MailComposerData::defaultRecord();
    EXPECT_EQ(d.recipientEmail, "client@example.com");
    EXPECT_EQ(d.ctaURL, "mailto:contact@korvel.example");
    EXPECT_EQ(d.senderEmail, "contact@korvel.example");
    EXPECT_EQ(d.logoURL, MailComposerData::fallbackLogoURL());
    EXPECT_EQ(MailComposerData::fallbackLogoURL(),
              "https://korvel.example/photos/velino-logo.png?v=1");
    EXPECT_EQ(d.accentPrimary, "#2f7cf6");
    EXPECT_EQ(d.accentSecondary, "#7a5cff");
    EXPECT_EQ(d.titleFont, MailComposerData::fallbackTitleFont());
    EXPECT_EQ(d.bodyFont, MailComposerData::fallbackBodyFont());
    EXPECT_EQ(d.highlight, QString::fromUtf16(u"Montant estime \u00B7 Reponse par email"));
}

TEST(MailComposerData, JsonRoundTripWritesAll31KeysAsStrings) {
    MailComposerData d = MailComposerData::blank();
    d.mailIntro = "  a\n\nb  ";
    const QJsonObject json = d.toJson();
    EXPECT_EQ(json.size(), 31);
    for (const auto &field : MailComposerData::fields())
        EXPECT_TRUE(json.value(field.name).isString()) << field.name.toString().toStdString();
    QString error;
    const auto back = MailComposerData::fromJson(json, QString(), &error);
    ASSERT_TRUE(back.has_value()) << error.toStdString();
    EXPECT_EQ(back->mailIntro, "  a\n\nb  "); // nothing trimmed
    EXPECT_TRUE(*back == d);
}

TEST(MailComposerData, DecodingIsStrictAndNamesTheKey) {
    QJsonObject json = MailComposerData::defaultRecord().toJson();
    json.insert("unknownKey", 12);
    QString error;
    EXPECT_TRUE(MailComposerData::fromJson(json, QString(), &error).has_value());

    QJsonObject missing = json;
    missing.remove("footerNote");
    EXPECT_EQ(decodeError(missing), "cle manquante : footerNote");

    QJsonObject null = json;
    null.insert("footerNote", QJsonValue::Null);
    EXPECT_EQ(decodeError(null), "valeur null pour la cle footerNote");

    QJsonObject number = json;
    number.insert("footerNote", 3);
    EXPECT_EQ(decodeError(number),
              "type incorrect pour la cle footerNote : texte attendu, nombre trouve");
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

TEST(ApplyPreset, OverwritesMessageTextsAndKeepsRecipientBrandingAndSignature) {
    MailComposerData d = MailComposerData::blank();
    for (const auto &field : MailComposerData::fields())
        d.*field.member = "x";
    const MailComposerData before = d;
    d.applyPreset(PresetKind::Rdv);
    EXPECT_EQ(d.detailLabel3, "Rendez-vous");
    EXPECT_EQ(d.detailValue3, "Mardi a 14h30");
    EXPECT_EQ(d.ctaURL, "mailto:contact@korvel.example");
    int changed = 0;
    for (const auto &field : MailComposerData::fields())
        changed += (d.*field.member != before.*field.member) ? 1 : 0;
    EXPECT_EQ(changed, 17);
    for (QString MailComposerData::*kept :
         {&MailComposerData::recipientName, &MailComposerData::recipientEmail,
          &MailComposerData::logoURL, &MailComposerData::senderName, &MailComposerData::footerNote,
          &MailComposerData::senderPhone})
        EXPECT_EQ(d.*kept, "x");
}

TEST(ApplyPreset, IsIdempotentAndForgetsThePreviousPreset) {
    MailComposerData once = MailComposerData::defaultRecord();
    once.applyPreset(PresetKind::Devis);
    MailComposerData twice = once;
    twice.applyPreset(PresetKind::Devis);
    EXPECT_TRUE(once == twice);

    MailComposerData relanceThenDevis = MailComposerData::defaultRecord();
    relanceThenDevis.applyPreset(PresetKind::Relance);
    relanceThenDevis.applyPreset(PresetKind::Devis);
    EXPECT_TRUE(relanceThenDevis == once);
}

TEST(ApplyPreset, DevisChangesOnlyThreeFieldsOfTheDefaultRecord) {
    const MailComposerData base = MailComposerData::defaultRecord();
    MailComposerData d = base;
    d.applyPreset(PresetKind::Devis);
    QStringList changed;
    for (const auto &field : MailComposerData::fields()) {
        if (d.*field.member != base.*field.member)
            changed << field.name.toString();
    }
    EXPECT_EQ(changed, QStringList({"preheader", "ctaLabel", "closingNote"}));
}

TEST(PresetKind, IdentifiersAreExactAndCaseSensitive) {
    EXPECT_EQ(presetKindFromId(u"relance"), PresetKind::Relance);
    EXPECT_FALSE(presetKindFromId(u"Relance").has_value());
    EXPECT_FALSE(presetKindFromId(u" devis").has_value());
    EXPECT_EQ(presetTitle(PresetKind::Pret), "Appareil pret");
    EXPECT_EQ(presetId(PresetKind::Rdv), "rdv");
}

TEST(LegacyText, DecodesPercentEscapesOnlyWhenWellFormedUtf8) {
    EXPECT_EQ(normalizeLegacyText("Remise 100%"), "Remise 100%");
    EXPECT_EQ(normalizeLegacyText("50%25"), "50%");
    EXPECT_EQ(normalizeLegacyText("%C3%A9t%C3%A9"), QString::fromUtf16(u"\u00E9t\u00E9"));
    EXPECT_EQ(normalizeLegacyText("%zz"), "%zz");
    EXPECT_EQ(normalizeLegacyText("abc%4"), "abc%4");
    // A lone continuation byte is not UTF-8: the text is kept as it was.
    EXPECT_EQ(normalizeLegacyText("bad%80byte"), "bad%80byte");
}

TEST(LegacyText, TurnsPlusesIntoBlanksOnlyInBlankFreeTextsWithALetterPlusLetter) {
    EXPECT_EQ(normalizeLegacyText("iPhone+14"), "iPhone 14");
    EXPECT_EQ(normalizeLegacyText("10 + 5"), "10 + 5");
    EXPECT_EQ(normalizeLegacyText("A++"), "A++");
    EXPECT_EQ(normalizeLegacyText("a+b+"), "a b ");
    EXPECT_EQ(normalizeLegacyText(QString::fromUtf16(u"\u00E9+\u00FF")),
              QString::fromUtf16(u"\u00E9 \u00FF"));
    // Tabs and line breaks are not blanks.
    EXPECT_EQ(normalizeLegacyText("a+b\tc"), "a b\tc");
}

TEST(LegacyText, ReplacesFormerHighlightLinesMatchedWhole) {
    const QString relance = QString::fromUtf16(u"Demande en attente \u00B7 Retour par email");
    EXPECT_EQ(normalizeLegacyText("Demande+toujours+ouverte+chez+Korvel"), relance);
    EXPECT_EQ(normalizeLegacyText("Demande%20toujours%20ouverte%20chez%20Korvel"), relance);
    EXPECT_EQ(normalizeLegacyText(QString::fromUtf16(
                  u"  Devis clair \u00B7 Delai estime \u00B7 Reponse directe par email  ")),
              QString::fromUtf16(u"Montant estime \u00B7 Reponse par email"));
    EXPECT_EQ(normalizeLegacyText("  Bonjour  "), "  Bonjour  ");
    EXPECT_EQ(normalizeLegacyText("Note : Demande toujours ouverte chez Korvel"),
              "Note : Demande toujours ouverte chez Korvel");
    EXPECT_EQ(normalizeLegacyText("demande toujours ouverte chez Korvel"),
              "demande toujours ouverte chez Korvel");
}

TEST(LegacyText, RecordRepairLeavesAddressesColoursFontsAndPhoneAlone) {
    MailComposerData d = MailComposerData::defaultRecord();
    d.senderPhone = "+33+6+12";
    d.ctaURL = "x+y";
    d.recipientEmail = "a%40b";
    d.subject = "iPhone+14";
    d.footerNote = "Demande+toujours+ouverte+chez+Korvel";
    d.normalizeLegacyTextFields();
    EXPECT_EQ(d.senderPhone, "+33+6+12");
    EXPECT_EQ(d.ctaURL, "x+y");
    EXPECT_EQ(d.recipientEmail, "a%40b");
    EXPECT_EQ(d.subject, "iPhone 14");
    EXPECT_EQ(d.footerNote, QString::fromUtf16(u"Demande en attente \u00B7 Retour par email"));

    MailComposerData untouched = MailComposerData::defaultRecord();
    untouched.normalizeLegacyTextFields();
    EXPECT_TRUE(untouched == MailComposerData::defaultRecord());
}
