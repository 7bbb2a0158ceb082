#pragma once

#include <QColor>
#include <QStringView>

#include <optional>

namespace velino {

// A CSS colour: #rgb, #rgba, #rrggbb, #rrggbbaa, rgb()/rgba() (numbers or percentages,
// alpha as a number or percentage), "transparent" or a named colour. Nothing otherwise.
std::optional<QColor> parseCssColor(QStringView text);

// One solid colour standing in for the value of a CSS `background` (or `background-image`)
// declaration, for readers that know no gradients: each gradient counts as the average of
// its colour stops, and the layers (the first listed on top) are composited. The result may
// be translucent; nothing when the value names no colour.
std::optional<QColor> solidBackground(QStringView value);

} // namespace velino
