#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>

#include <compare>
#include <optional>

namespace velino {

// A point in time with sub-second precision, counted in seconds since the reference
// instant 2001-01-01 00:00:00 UTC (the form of the numeric timestamps in saved state).
struct Instant {
    double sinceReference = 0.0;

    static constexpr qint64 kReferenceUnixSeconds = 978307200;

    static Instant fromUnixMilliseconds(qint64 ms);
    static Instant fromDateTime(const QDateTime &dateTime);
    QDateTime toDateTime() const; // UTC, millisecond precision

    auto operator<=>(const Instant &) const = default;
};

// Internet date-time in UTC with whole seconds: yyyy-MM-ddTHH:mm:ssZ.
QString isoText(Instant instant);

// Reads yyyy-MM-ddTHH:mm:ss followed by "Z" or an offset ±HH:MM. Fractional seconds,
// a missing zone, a date alone and every other form give nothing.
std::optional<Instant> parseIsoText(QStringView text);

} // namespace velino
