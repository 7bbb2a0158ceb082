#pragma once

#include <QColor>
#include <QImage>
#include <QObject>
#include <QQuickImageProvider>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class QQmlEngine;
class QJSEngine;

namespace velino::ui {

// Images the window's surfaces are drawn with, made once per size and colour and then
// drawn as plain textures (no offscreen pass per item, which costs whole frames when the
// window is drawn in software):
//
//   shadow/R/B/AARRGGBB   the soft shadow of a rounded rectangle of corner radius R,
//                         blurred over B pixels, in that colour: a nine-patch image with a
//                         one-pixel middle, to be stretched with borders of B + R
//   corner/R/AARRGGBB     a top-left corner cap: the colour outside a quarter circle of
//                         radius R, for rounding the corners of a view that cannot clip
//   diagonal/P:AARRGGBB,...   a square of a gradient running from the top-left to the
//                         bottom-right corner through the stops P (0 to 1), to be stretched
//                         over a rectangle
//   rounded/F/NAME        the application image NAME (ui_helpers.h) with its corners cut
//                         round, of radius F thousandths of its side, at the requested size
class SurfaceImageProvider : public QQuickImageProvider {
public:
    static constexpr char kName[] = "velino-surface";

    SurfaceImageProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

// The shadow image: side 2 * (blur + radius) + 1; the rounded rectangle covers all but
// `blur` pixels on each side before blurring.
QImage shadowImage(int cornerRadius, int blur, const QColor &color);
QImage cornerCapImage(int radius, const QColor &color);
struct GradientStopValue {
    qreal position = 0;
    QColor color;
};
QImage diagonalGradientImage(const QList<GradientStopValue> &stops);
// Null when the image cannot be read.
QImage roundedResourceImage(const QString &name, int radiusPermille, const QSize &size);

QUrl shadowImageUrl(int cornerRadius, int blur, const QColor &color);
QUrl cornerCapImageUrl(int radius, const QColor &color);
QUrl diagonalGradientImageUrl(const QList<GradientStopValue> &stops);
// Empty when there is no such application image.
QUrl roundedImageUrl(const QString &name, int radiusPermille);

// The addresses of these images for QML. Creating the singleton gives its engine the
// image provider, so any engine that uses the module can draw surfaces.
class SurfaceImages : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    static SurfaceImages *create(QQmlEngine *qmlEngine, QJSEngine *jsEngine);

    // Sizes are rounded to whole pixels.
    Q_INVOKABLE QUrl shadow(qreal cornerRadius, qreal blur, const QColor &color) const;
    Q_INVOKABLE QUrl cornerCap(qreal radius, const QColor &color) const;
    // `gradient`: a QML Gradient; an empty address for anything else.
    Q_INVOKABLE QUrl diagonalGradient(QObject *gradient) const;
    // The corner radius as a share of the side (0 to 0.5).
    Q_INVOKABLE QUrl roundedImage(const QString &resourceName, qreal radiusShare) const;

private:
    SurfaceImages() = default;
};

} // namespace velino::ui
