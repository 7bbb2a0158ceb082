#include "preset_dates.h"
#include "ui_helpers.h"

#include <QTimeZone>

#include <gtest/gtest.h>

using velino::ui::presetUpdatedLabel;

namespace {

const QTimeZone kParis(QByteArrayLiteral("Europe/Paris"));

QDateTime parisTime(int year, int month, int day, int hour, int minute) {
    return QDateTime(QDate(year, month, day), QTime(hour, minute, 42, 250), kParis);
}

} // namespace

TEST(PresetUpdatedLabel, DayAbbreviatedFrenchMonthMiddleDotAndTime) {
    ASSERT_TRUE(kParis.isValid());
    EXPECT_EQ(presetUpdatedLabel(parisTime(2025, 3, 5, 14, 7), kParis),
              QStringLiteral("05 mars · 14:07"));
}

TEST(PresetUpdatedLabel, UsesTheGivenTimeZone) {
    const QDateTime instant = parisTime(2025, 3, 5, 14, 7);
    EXPECT_EQ(presetUpdatedLabel(instant, QTimeZone::utc()), QStringLiteral("05 mars · 13:07"));
    EXPECT_EQ(presetUpdatedLabel(instant.toUTC(), kParis), QStringLiteral("05 mars · 14:07"));
    // Summer time in Paris is two hours ahead of UTC.
    const QDateTime july(QDate(2025, 7, 31), QTime(23, 30), QTimeZone::utc());
    EXPECT_EQ(presetUpdatedLabel(july, kParis), QStringLiteral("01 août · 01:30"));
}

TEST(PresetUpdatedLabel, TwentyFourHourClockZeroPaddingAndNothingForAnInvalidDate) {
    EXPECT_EQ(presetUpdatedLabel(parisTime(2024, 1, 1, 0, 0), kParis),
              QStringLiteral("01 janv. · 00:00"));
    EXPECT_EQ(presetUpdatedLabel(parisTime(2024, 12, 31, 23, 59), kParis),
              QStringLiteral("31 déc. · 23:59"));
    EXPECT_EQ(presetUpdatedLabel(parisTime(2024, 2, 9, 9, 5), kParis),
              QStringLiteral("09 févr. · 09:05"));
    EXPECT_EQ(presetUpdatedLabel(QDateTime(), kParis), QString());
}

TEST(PresetUpdatedLabel, HelperUsesTheUsersTimeZone) {
    velino::ui::UiHelpers helpers;
    const QDateTime instant = parisTime(2025, 3, 5, 14, 7);
    EXPECT_EQ(helpers.updatedLabel(instant),
              presetUpdatedLabel(instant, QTimeZone::systemTimeZone()));
    EXPECT_EQ(helpers.updatedLabel(instant),
              QLocale(QLocale::French, QLocale::France)
                  .toString(instant.toLocalTime(), u"dd MMM · HH:mm"));
}
