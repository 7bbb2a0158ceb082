#pragma once

#include <QColor>

namespace velino {

// `top` painted over `bottom` (both with alpha), as a browser composites layers.
QColor composite(const QColor &top, const QColor &bottom);

// WCAG 2 relative luminance of the opaque colour, 0 (black) to 1 (white).
double relativeLuminance(const QColor &color);

// WCAG 2 contrast ratio of two opaque colours, 1 to 21.
double contrastRatio(const QColor &a, const QColor &b);

} // namespace velino
