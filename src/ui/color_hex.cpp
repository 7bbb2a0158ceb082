#include "color_hex.h"

#include "text.h"

#include <QString>

namespace velino::ui {

namespace {

int hexDigitValue(QChar c) {
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    return -1;
}

} // namespace

std::optional<QColor> colorFromHex(QStringView text) {
    const QStringView trimmed = velino::text::trimmedView(text);
    // Only ASCII text can be a colour: a hexadecimal digit is ASCII, so any other
    // character fails, whatever the length counted in characters or code units.
    if (!velino::text::isAscii(trimmed) || trimmed.isEmpty() || trimmed.front() != u'#')
        return std::nullopt;

    QString digits;
    if (trimmed.size() == 4) {
        for (const QChar c : trimmed.mid(1)) {
            digits.append(c);
            digits.append(c);
        }
    } else if (trimmed.size() == 7) {
        digits = trimmed.mid(1).toString();
    } else {
        return std::nullopt;
    }

    int value = 0;
    for (const QChar c : digits) {
        const int digit = hexDigitValue(c);
        if (digit < 0)
            return std::nullopt;
        value = value * 16 + digit;
    }
    return QColor::fromRgb((value >> 16) & 0xFF, (value >> 8) & 0xFF, value & 0xFF);
}

} // namespace velino::ui
