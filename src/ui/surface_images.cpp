#include "surface_images.h"

#include "ui_helpers.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QQmlEngine>
#include <QQmlListReference>

#include <algorithm>
#include <vector>

namespace velino::ui {

namespace {

QString colorKey(const QColor &color) {
    return color.name(QColor::HexArgb).mid(1);
}

// One box-blur pass of radius r over the alpha values, along rows or along columns.
void boxBlur(std::vector<float> &alpha, int width, int height, int r, bool rows) {
    if (r <= 0)
        return;
    const int lines = rows ? height : width;
    const int length = rows ? width : height;
    std::vector<float> line(length);
    const float scale = 1.0f / float(2 * r + 1);
    for (int l = 0; l < lines; ++l) {
        const auto at = [&](int i) -> float & {
            return rows ? alpha[size_t(l) * width + i] : alpha[size_t(i) * width + l];
        };
        for (int i = 0; i < length; ++i)
            line[i] = at(i);
        float sum = 0;
        for (int i = -r; i <= r; ++i)
            sum += (i >= 0 && i < length) ? line[i] : 0.0f;
        for (int i = 0; i < length; ++i) {
            at(i) = sum * scale;
            const int out = i - r;
            const int in = i + r + 1;
            sum -= (out >= 0 && out < length) ? line[out] : 0.0f;
            sum += (in < length) ? line[in] : 0.0f;
        }
    }
}

} // namespace

QImage shadowImage(int cornerRadius, int blur, const QColor &color) {
    cornerRadius = std::clamp(cornerRadius, 0, 256);
    blur = std::clamp(blur, 0, 256);
    const int side = 2 * (blur + cornerRadius) + 1;
    QImage shape(side, side, QImage::Format_ARGB32_Premultiplied);
    shape.fill(Qt::transparent);
    {
        QPainter painter(&shape);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        const QRectF rect(blur, blur, side - 2 * blur, side - 2 * blur);
        painter.drawRoundedRect(rect, cornerRadius, cornerRadius);
    }
    std::vector<float> alpha(size_t(side) * side);
    for (int y = 0; y < side; ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(shape.constScanLine(y));
        for (int x = 0; x < side; ++x)
            alpha[size_t(y) * side + x] = float(qAlpha(line[x])) / 255.0f;
    }
    // Three box passes approach a Gaussian whose spread is the blur radius.
    const int r = std::max(1, blur / 3);
    if (blur > 0) {
        for (int pass = 0; pass < 3; ++pass) {
            boxBlur(alpha, side, side, r, true);
            boxBlur(alpha, side, side, r, false);
        }
    }
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    const float a = float(color.alphaF());
    for (int y = 0; y < side; ++y) {
        QRgb *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const float coverage = std::clamp(alpha[size_t(y) * side + x] * a, 0.0f, 1.0f);
            const int alpha255 = int(coverage * 255.0f + 0.5f);
            line[x] = qPremultiply(qRgba(color.red(), color.green(), color.blue(), alpha255));
        }
    }
    return image;
}

QImage cornerCapImage(int radius, const QColor &color) {
    radius = std::clamp(radius, 1, 256);
    QImage image(radius, radius, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath outside;
    outside.addRect(0, 0, radius, radius);
    QPainterPath quarter;
    quarter.addEllipse(QPointF(radius, radius), radius, radius);
    painter.fillPath(outside.subtracted(quarter), color);
    return image;
}

QImage diagonalGradientImage(const QList<GradientStopValue> &stops) {
    // A linear gradient survives stretching: the smoothing between pixels is linear too.
    constexpr int kSide = 256;
    QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QLinearGradient gradient(0, 0, kSide, kSide);
    for (const GradientStopValue &stop : stops)
        gradient.setColorAt(std::clamp(stop.position, qreal(0), qreal(1)), stop.color);
    QPainter painter(&image);
    painter.fillRect(image.rect(), gradient);
    return image;
}

QImage roundedResourceImage(const QString &name, int radiusPermille, const QSize &size) {
    const QString path = imageResourcePath(name);
    QImage source = path.isEmpty() ? QImage() : QImage(path);
    if (source.isNull())
        return QImage();
    if (size.isValid() && !size.isEmpty())
        source = source.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QImage image(source.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const qreal side = std::min(image.width(), image.height());
    const qreal radius = side * std::clamp(radiusPermille, 0, 500) / 1000.0;
    QPainterPath shape;
    shape.addRoundedRect(QRectF(image.rect()), radius, radius);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(source);
    painter.drawPath(shape);
    return image;
}

QUrl shadowImageUrl(int cornerRadius, int blur, const QColor &color) {
    return QUrl(QStringLiteral("image://%1/shadow/%2/%3/%4")
                    .arg(QLatin1StringView(SurfaceImageProvider::kName))
                    .arg(cornerRadius)
                    .arg(blur)
                    .arg(colorKey(color)));
}

QUrl cornerCapImageUrl(int radius, const QColor &color) {
    return QUrl(QStringLiteral("image://%1/corner/%2/%3")
                    .arg(QLatin1StringView(SurfaceImageProvider::kName))
                    .arg(radius)
                    .arg(colorKey(color)));
}

QUrl diagonalGradientImageUrl(const QList<GradientStopValue> &stops) {
    QStringList parts;
    for (const GradientStopValue &stop : stops)
        parts.append(QString::number(stop.position, 'g', 4) + u':' + colorKey(stop.color));
    return QUrl(QStringLiteral("image://%1/diagonal/%2")
                    .arg(QLatin1StringView(SurfaceImageProvider::kName), parts.join(u',')));
}

QUrl roundedImageUrl(const QString &name, int radiusPermille) {
    if (imageResourcePath(name).isEmpty())
        return QUrl();
    return QUrl(QStringLiteral("image://%1/rounded/%2/%3")
                    .arg(QLatin1StringView(SurfaceImageProvider::kName))
                    .arg(radiusPermille)
                    .arg(name));
}

SurfaceImages *SurfaceImages::create(QQmlEngine *qmlEngine, QJSEngine *) {
    if (qmlEngine && !qmlEngine->imageProvider(QLatin1StringView(SurfaceImageProvider::kName)))
        qmlEngine->addImageProvider(QLatin1StringView(SurfaceImageProvider::kName),
                                    new SurfaceImageProvider);
    return new SurfaceImages;
}

QUrl SurfaceImages::shadow(qreal cornerRadius, qreal blur, const QColor &color) const {
    return shadowImageUrl(qRound(cornerRadius), qRound(blur), color);
}

QUrl SurfaceImages::cornerCap(qreal radius, const QColor &color) const {
    return cornerCapImageUrl(qRound(radius), color);
}

QUrl SurfaceImages::diagonalGradient(QObject *gradient) const {
    const QQmlListReference stopList(gradient, "stops");
    if (!stopList.isValid())
        return QUrl();
    QList<GradientStopValue> stops;
    for (qsizetype i = 0; i < stopList.count(); ++i) {
        const QObject *stop = stopList.at(i);
        if (stop)
            stops.append(
                {stop->property("position").toReal(), stop->property("color").value<QColor>()});
    }
    return diagonalGradientImageUrl(stops);
}

QUrl SurfaceImages::roundedImage(const QString &resourceName, qreal radiusShare) const {
    return roundedImageUrl(resourceName, qRound(std::clamp(radiusShare, 0.0, 0.5) * 1000));
}

SurfaceImageProvider::SurfaceImageProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

namespace {

QList<GradientStopValue> parseStops(const QString &text) {
    QList<GradientStopValue> stops;
    for (const QString &part : text.split(u',', Qt::SkipEmptyParts)) {
        const qsizetype colon = part.indexOf(u':');
        if (colon > 0)
            stops.append({part.left(colon).toDouble(), QColor(u'#' + part.mid(colon + 1))});
    }
    return stops;
}

} // namespace

QImage SurfaceImageProvider::requestImage(const QString &id, QSize *size,
                                          const QSize &requestedSize) {
    const QStringList parts = id.split(u'/');
    QImage image;
    if (parts.size() == 4 && parts[0] == QStringLiteral("shadow")) {
        image =
            shadowImage(parts[1].toInt(), parts[2].toInt(), QColor(QStringLiteral("#") + parts[3]));
    } else if (parts.size() == 3 && parts[0] == QStringLiteral("corner")) {
        image = cornerCapImage(parts[1].toInt(), QColor(QStringLiteral("#") + parts[2]));
    } else if (parts.size() == 2 && parts[0] == QStringLiteral("diagonal")) {
        image = diagonalGradientImage(parseStops(parts[1]));
    } else if (parts.size() == 3 && parts[0] == QStringLiteral("rounded")) {
        image = roundedResourceImage(parts[2], parts[1].toInt(), requestedSize);
    }
    if (size)
        *size = image.size();
    return image;
}

} // namespace velino::ui
