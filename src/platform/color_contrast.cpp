#include "color_contrast.h"

#include <algorithm>
#include <cmath>

namespace velino {
namespace {

double linearChannel(int value) {
    const double c = value / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

} // namespace

QColor composite(const QColor &top, const QColor &bottom) {
    const QColor t = top.toRgb();
    const QColor b = bottom.toRgb();
    const double topAlpha = t.alphaF();
    const double alpha = topAlpha + b.alphaF() * (1 - topAlpha);
    if (alpha <= 0)
        return QColor(0, 0, 0, 0);
    const auto channel = [&](int topValue, int bottomValue) {
        const double mixed =
            (topValue * topAlpha + bottomValue * b.alphaF() * (1 - topAlpha)) / alpha;
        return std::clamp(static_cast<int>(std::lround(mixed)), 0, 255);
    };
    QColor result(channel(t.red(), b.red()), channel(t.green(), b.green()),
                  channel(t.blue(), b.blue()));
    result.setAlphaF(static_cast<float>(alpha));
    return result;
}

double relativeLuminance(const QColor &color) {
    const QColor c = color.toRgb();
    return 0.2126 * linearChannel(c.red()) + 0.7152 * linearChannel(c.green()) +
           0.0722 * linearChannel(c.blue());
}

double contrastRatio(const QColor &a, const QColor &b) {
    const double la = relativeLuminance(a);
    const double lb = relativeLuminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

} // namespace velino
