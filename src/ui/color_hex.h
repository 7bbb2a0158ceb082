#pragma once

#include <QColor>
#include <QStringView>

#include <optional>

namespace velino::ui {

// Reads the colour fields' notation: "#RRGGBB" or the short "#RGB" (each digit doubled),
// hexadecimal digits of either case, after trimming white space and line breaks at both
// ends. Every other text, an alpha form or a form without "#" included, gives nothing.
// The colour is opaque sRGB.
std::optional<QColor> colorFromHex(QStringView text);

} // namespace velino::ui
