#include "custom_mail_preset.h"
#include "identifiers.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;

namespace {

CustomMailPreset samplePreset() {
    return {randomUuid(),          "Devis atelier",
            PresetKind::Relance,   MailComposerData::defaultRecord(),
            Instant{788918400.25}, Instant{788918460.5}};
}

std::optional<CustomMailPreset> decode(const QJsonObject &json, TimestampForm form,
                                       QString *error) {
    return CustomMailPreset::fromJson(json, form, "customPresets[0]", error);
}

QDateTime utc(int year, int month, int day, int hour, int minute, int second = 0) {
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC);
}

} // namespace

TEST(CustomMailPreset, SubjectLineIsTheDefaultSubjectWhenBlank) {
    CustomMailPreset p = samplePreset();
    p.data.subject = "   ";
    EXPECT_EQ(p.subjectLine(), "Votre devis Korvel est pret");
}

TEST(CustomMailPreset, RoundTripsInBothTimestampForms) {
    const CustomMailPreset p = samplePreset();
    QString error;
    const TimestampForm numeric = TimestampForm::ReferenceSeconds;
    EXPECT_TRUE(decode(p.toJson(numeric), numeric, &error) == p) << error.toStdString();
    // The text form keeps whole seconds only, and equality compares the exact instants.
    const QJsonObject iso = p.toJson(TimestampForm::Iso8601);
    EXPECT_EQ(iso.value("createdAt").toString(), "2026-01-01T00:00:00Z");
    EXPECT_EQ(iso.value("updatedAt").toString(), "2026-01-01T00:01:00Z");
    const auto fromIso = decode(iso, TimestampForm::Iso8601, &error);
    ASSERT_TRUE(fromIso.has_value()) << error.toStdString();
    EXPECT_EQ(fromIso->updatedAt.sinceReference, 788918460.0);
    EXPECT_FALSE(*fromIso == p);
}

// The store's pull test checks the French messages of a phone's preset (ISO dates); here
// the forms only the desktop's own document (reference seconds) refuses.
TEST(CustomMailPreset, DecodingRefusesTextTimesAndNullNames) {
    const QJsonObject good = samplePreset().toJson(TimestampForm::ReferenceSeconds);
    for (const auto &[key, value] :
         {std::pair<QString, QJsonValue>("updatedAt", "2026-01-01T00:00:00Z"),
          {"name", QJsonValue::Null},
          {"sourcePreset", "promo"}}) {
        QJsonObject json = good;
        json.insert(key, value);
        QString error;
        EXPECT_FALSE(decode(json, TimestampForm::ReferenceSeconds, &error).has_value());
        EXPECT_TRUE(error.contains("customPresets[0]." + key)) << error.toStdString();
    }
}

TEST(CustomMailPreset, UuidIsReadInEitherCaseAndWrittenUpperCase) {
    QJsonObject json = samplePreset().toJson(TimestampForm::ReferenceSeconds);
    json.insert("id", "6f9619ff-8b86-d011-b42d-00cf4fc964ff");
    QString error;
    const auto p = decode(json, TimestampForm::ReferenceSeconds, &error);
    EXPECT_EQ(uuidText(p.value_or(CustomMailPreset{}).id), "6F9619FF-8B86-D011-B42D-00CF4FC964FF")
        << error.toStdString();
    for (const char *bad :
         {"{6f9619ff-8b86-d011-b42d-00cf4fc964ff}", "6f9619ff8b86d011b42d00cf4fc964ff",
          "6f9619ff-8b86-d011-b42d-00cf4fc964fg", "6f9619ff-8b86-d011-b42d00-cf4fc964ff"})
        EXPECT_FALSE(parseUuid(QString::fromLatin1(bad)).has_value()) << bad;
}

TEST(Instant, ReferenceSecondsAndIsoTextWithAZoneMapToCalendarTime) {
    EXPECT_EQ(Instant{788918400}.toDateTime(), utc(2026, 1, 1, 0, 0));
    EXPECT_EQ(Instant::fromDateTime(utc(2001, 1, 1, 0, 0, 1)).sinceReference, 1.0);
    EXPECT_EQ(parseIsoText(u"2026-06-05T08:15:00Z")->sinceReference,
              parseIsoText(u"2026-06-05T10:15:00+02:00")->sinceReference);
    EXPECT_EQ(parseIsoText(u"2026-06-05T08:15:00-01:30")->toDateTime(), utc(2026, 6, 5, 9, 45));
    for (const char16_t *bad :
         {u"2026-06-05T08:15:00.5Z", u"2026-06-05T08:15:00", u"2026-06-05", u"2026-02-30T08:15:00Z",
          u"2026-06-05 08:15:00Z", u"2026-06-05T08:15:00+0200", u"2026-06-05t08:15:00z", u""})
        EXPECT_FALSE(parseIsoText(bad).has_value()) << QString::fromUtf16(bad).toStdString();
}
