#include "css_background.h"

#include "color_contrast.h"

#include <QList>

#include <algorithm>
#include <cctype>
#include <cmath>

namespace velino {
namespace {

// Splits at `separator` outside parentheses; with a space as separator any white space splits
// and empty parts are dropped.
QList<QStringView> splitTopLevel(QStringView text, QChar separator) {
    QList<QStringView> parts;
    int depth = 0;
    qsizetype start = 0;
    const auto push = [&](qsizetype end) {
        const QStringView part = text.mid(start, end - start).trimmed();
        if (!part.isEmpty() || separator != u' ')
            parts.append(part);
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'(')
            ++depth;
        else if (c == u')')
            depth = std::max(0, depth - 1);
        else if (depth == 0 && (separator == u' ' ? c.isSpace() : c == separator)) {
            push(i);
            start = i + 1;
        }
    }
    push(text.size());
    return parts;
}

// A channel (0-255) or alpha (0-1) given as a number or a percentage.
std::optional<double> cssNumber(QStringView text, double percentScale) {
    const bool percent = text.endsWith(u'%');
    bool ok = false;
    const double value = (percent ? text.chopped(1) : text).toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return percent ? value / 100 * percentScale : value;
}

std::optional<QColor> functionalColor(QStringView arguments) {
    QString normalized = arguments.toString();
    normalized.replace(u'/', u' ');
    normalized.replace(u',', u' ');
    const QList<QStringView> parts = splitTopLevel(normalized, u' ');
    if (parts.size() != 3 && parts.size() != 4)
        return std::nullopt;
    int channels[3];
    for (int i = 0; i < 3; ++i) {
        const std::optional<double> value = cssNumber(parts[i], 255);
        if (!value)
            return std::nullopt;
        channels[i] = std::clamp(static_cast<int>(std::lround(*value)), 0, 255);
    }
    QColor color(channels[0], channels[1], channels[2]);
    if (parts.size() == 4) {
        const std::optional<double> alpha = cssNumber(parts[3], 1);
        if (!alpha)
            return std::nullopt;
        color.setAlphaF(static_cast<float>(std::clamp(*alpha, 0.0, 1.0)));
    }
    return color;
}

std::optional<QColor> hexColor(QStringView digits) {
    for (const QChar c : digits) {
        if (!std::isxdigit(static_cast<unsigned char>(c.toLatin1())))
            return std::nullopt;
    }
    QString expanded;
    if (digits.size() == 3 || digits.size() == 4) {
        for (const QChar c : digits)
            expanded += QString(2, c);
    } else if (digits.size() == 6 || digits.size() == 8) {
        expanded = digits.toString();
    } else {
        return std::nullopt;
    }
    const auto byte = [&](int index) { return expanded.mid(index * 2, 2).toInt(nullptr, 16); };
    return QColor(byte(0), byte(1), byte(2), expanded.size() == 8 ? byte(3) : 255);
}

// The premultiplied average of the colour stops of one gradient's arguments.
std::optional<QColor> averageOfStops(QStringView arguments) {
    double red = 0, green = 0, blue = 0, alpha = 0;
    int stops = 0;
    for (const QStringView argument : splitTopLevel(arguments, u',')) {
        for (const QStringView token : splitTopLevel(argument, u' ')) {
            if (const std::optional<QColor> color = parseCssColor(token)) {
                const double a = color->alphaF();
                red += color->red() * a;
                green += color->green() * a;
                blue += color->blue() * a;
                alpha += a;
                ++stops;
                break;
            }
        }
    }
    if (stops == 0)
        return std::nullopt;
    if (alpha <= 0)
        return QColor(0, 0, 0, 0);
    QColor average(static_cast<int>(std::lround(red / alpha)),
                   static_cast<int>(std::lround(green / alpha)),
                   static_cast<int>(std::lround(blue / alpha)));
    average.setAlphaF(static_cast<float>(alpha / stops));
    return average;
}

std::optional<QColor> layerColor(QStringView layer) {
    for (const QStringView token : splitTopLevel(layer, u' ')) {
        const qsizetype open = token.indexOf(u'(');
        if (open > 0 && token.endsWith(u')') &&
            token.first(open).endsWith(u"gradient", Qt::CaseInsensitive))
            return averageOfStops(token.sliced(open + 1).chopped(1));
        if (const std::optional<QColor> color = parseCssColor(token))
            return color;
    }
    return std::nullopt;
}

} // namespace

std::optional<QColor> parseCssColor(QStringView text) {
    text = text.trimmed();
    if (text.startsWith(u'#'))
        return hexColor(text.sliced(1));
    if (text.compare(u"transparent", Qt::CaseInsensitive) == 0)
        return QColor(0, 0, 0, 0);
    const qsizetype open = text.indexOf(u'(');
    if (open > 0 && text.endsWith(u')')) {
        const QStringView name = text.first(open).trimmed();
        if (name.compare(u"rgb", Qt::CaseInsensitive) == 0 ||
            name.compare(u"rgba", Qt::CaseInsensitive) == 0)
            return functionalColor(text.sliced(open + 1).chopped(1));
        return std::nullopt;
    }
    if (QColor::isValidColorName(text) && !text.isEmpty() && text[0].isLetter())
        return QColor::fromString(text);
    return std::nullopt;
}

std::optional<QColor> solidBackground(QStringView value) {
    const QList<QStringView> layers = splitTopLevel(value, u',');
    std::optional<QColor> result;
    for (auto layer = layers.crbegin(); layer != layers.crend(); ++layer) {
        const std::optional<QColor> color = layerColor(*layer);
        if (!color)
            continue;
        result = result ? composite(*color, *result) : *color;
    }
    return result;
}

} // namespace velino
