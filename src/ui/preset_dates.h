#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

namespace velino::ui {

// The "updated" date of a saved preset row: day, abbreviated French month, a middle dot
// and the 24-hour time ("05 mars · 14:07"), in the given time zone.
QString presetUpdatedLabel(const QDateTime &instant,
                           const QTimeZone &zone = QTimeZone::systemTimeZone());

} // namespace velino::ui
