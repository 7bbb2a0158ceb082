#include "preset_dates.h"

#include <QLocale>

namespace velino::ui {

QString presetUpdatedLabel(const QDateTime &instant, const QTimeZone &zone) {
    if (!instant.isValid())
        return QString();
    static const QLocale french(QLocale::French, QLocale::France);
    return french.toString(instant.toTimeZone(zone), u"dd MMM · HH:mm");
}

} // namespace velino::ui
