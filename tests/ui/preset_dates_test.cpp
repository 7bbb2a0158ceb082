#include "preset_dates.h"

#include <QTimeZone>

#include <gtest/gtest.h>

#include <tuple>

using velino::ui::presetUpdatedLabel;

TEST(PresetUpdatedLabel, FrenchDayAndMonthThenTwentyFourHourTimeInTheGivenZone) {
    const QTimeZone paris(QByteArrayLiteral("Europe/Paris"));
    const QTimeZone utc = QTimeZone::utc();
    const auto at = [](int year, int month, int day, int hour, int minute, const QTimeZone &zone) {
        return QDateTime(QDate(year, month, day), QTime(hour, minute, 42, 250), zone);
    };
    const std::tuple<QDateTime, QTimeZone, const char *> cases[] = {
        {at(2025, 3, 5, 14, 7, paris), paris, "05 mars · 14:07"},
        {at(2025, 3, 5, 14, 7, paris), utc, "05 mars · 13:07"},
        {at(2025, 3, 5, 14, 7, paris).toUTC(), paris, "05 mars · 14:07"},
        {at(2025, 7, 31, 23, 30, utc), paris, "01 août · 01:30"}, // summer time: UTC+2
        {at(2024, 1, 1, 0, 0, paris), paris, "01 janv. · 00:00"},
        {at(2024, 12, 31, 23, 59, paris), paris, "31 déc. · 23:59"},
        {at(2024, 2, 9, 9, 5, paris), paris, "09 févr. · 09:05"},
        {QDateTime(), paris, ""},
    };
    for (const auto &[instant, zone, expected] : cases)
        EXPECT_EQ(presetUpdatedLabel(instant, zone), QString::fromUtf8(expected)) << expected;
}
