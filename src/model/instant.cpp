#include "instant.h"

#include <cmath>

namespace velino {
namespace {

// Digits at [pos, pos + count) as a number, or -1 when any is not an ASCII digit.
int digits(QStringView text, qsizetype pos, qsizetype count) {
    int value = 0;
    for (qsizetype i = pos; i < pos + count; ++i) {
        const char16_t c = text[i].unicode();
        if (c < '0' || c > '9')
            return -1;
        value = value * 10 + (c - '0');
    }
    return value;
}

} // namespace

Instant Instant::fromUnixMilliseconds(qint64 ms) {
    return Instant{static_cast<double>(ms - kReferenceUnixSeconds * 1000) / 1000.0};
}

Instant Instant::fromDateTime(const QDateTime &dateTime) {
    return fromUnixMilliseconds(dateTime.toMSecsSinceEpoch());
}

QDateTime Instant::toDateTime() const {
    const double ms = std::floor(sinceReference * 1000.0 + 0.5);
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(ms) + kReferenceUnixSeconds * 1000,
                                          Qt::UTC);
}

QString isoText(Instant instant) {
    const double wholeSeconds = std::floor(instant.sinceReference);
    const QDateTime utc = QDateTime::fromSecsSinceEpoch(
        static_cast<qint64>(wholeSeconds) + Instant::kReferenceUnixSeconds, Qt::UTC);
    return utc.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) + u'Z';
}

std::optional<Instant> parseIsoText(QStringView text) {
    // yyyy-MM-ddTHH:mm:ss is 19 characters; then Z (1) or ±HH:MM (6).
    if (text.size() != 20 && text.size() != 25)
        return std::nullopt;
    if (text[4] != u'-' || text[7] != u'-' || text[10] != u'T' || text[13] != u':' ||
        text[16] != u':')
        return std::nullopt;
    const int year = digits(text, 0, 4);
    const int month = digits(text, 5, 2);
    const int day = digits(text, 8, 2);
    const int hour = digits(text, 11, 2);
    const int minute = digits(text, 14, 2);
    const int second = digits(text, 17, 2);
    if (year < 0 || month < 0 || day < 0 || hour < 0 || minute < 0 || second < 0)
        return std::nullopt;
    const QDate date(year, month, day);
    const QTime time(hour, minute, second);
    if (!date.isValid() || !time.isValid())
        return std::nullopt;

    int offsetSeconds = 0;
    if (text.size() == 20) {
        if (text[19] != u'Z')
            return std::nullopt;
    } else {
        const QChar sign = text[19];
        if ((sign != u'+' && sign != u'-') || text[22] != u':')
            return std::nullopt;
        const int offsetHours = digits(text, 20, 2);
        const int offsetMinutes = digits(text, 23, 2);
        if (offsetHours < 0 || offsetMinutes < 0 || offsetHours > 23 || offsetMinutes > 59)
            return std::nullopt;
        offsetSeconds = (offsetHours * 3600 + offsetMinutes * 60) * (sign == u'-' ? -1 : 1);
    }
    const QDateTime utc(date, time, Qt::UTC);
    return Instant::fromUnixMilliseconds((utc.toSecsSinceEpoch() - offsetSeconds) * 1000);
}

} // namespace velino
