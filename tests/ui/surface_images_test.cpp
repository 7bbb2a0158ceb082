#include "surface_images.h"

#include <gtest/gtest.h>

using namespace velino::ui;
using namespace Qt::StringLiterals;

namespace {

int alphaAt(const QImage &image, int x, int y) {
    return qAlpha(image.pixel(x, y));
}

} // namespace

TEST(SurfaceImages, ShadowIsASymmetricNinePatchOfTheBlurredShape) {
    const QImage image = shadowImage(20, 12, QColor(0, 0, 0, 61));
    const int middle = 12 + 20;
    ASSERT_EQ(image.size(), QSize(2 * middle + 1, 2 * middle + 1));
    // Inside: the colour at its own opacity; fading to nothing at the outer edge; the rounded
    // corner fainter than the straight edge at the same depth.
    EXPECT_EQ(alphaAt(image, middle, middle), 61);
    EXPECT_EQ(alphaAt(image, 0, middle) + alphaAt(image, middle, 0), 0);
    EXPECT_TRUE(alphaAt(image, 12, middle) > 0 && alphaAt(image, 12, middle) < 61);
    EXPECT_LT(alphaAt(image, 16, 16), alphaAt(image, 16, middle));
    EXPECT_EQ(image.pixel(5, middle), image.pixel(2 * middle - 5, middle));
    EXPECT_EQ(image.pixel(middle, 5), image.pixel(middle, 2 * middle - 5));
}

TEST(SurfaceImages, CornerCapCoversOnlyOutsideTheQuarterCircle) {
    const QImage image = cornerCapImage(22, QColor(18, 23, 35));
    ASSERT_EQ(image.size(), QSize(22, 22));
    EXPECT_EQ(image.pixel(0, 0), qRgba(18, 23, 35, 255));
    EXPECT_GT(alphaAt(image, 3, 3), 250);
    EXPECT_EQ(alphaAt(image, 21, 21), 0);
    // Where the arc meets the edges, only antialiasing remains.
    EXPECT_LT(std::max(alphaAt(image, 21, 0), alphaAt(image, 0, 21)), 16);
}

TEST(SurfaceImages, DiagonalGradientRunsFromTheTopLeftToTheBottomRightCorner) {
    const QColor dark(5, 8, 15);
    const QColor light(8, 13, 26);
    const QImage image = diagonalGradientImage({{0.0, dark}, {0.5, light}, {1.0, dark}});
    const int last = image.width() - 1;
    // The middle stop lies on the other diagonal, where both corners meet.
    const QList<QColor> corners{image.pixel(0, 0), image.pixel(last, last), image.pixel(last, 0),
                                image.pixel(0, last)};
    EXPECT_EQ(corners, (QList<QColor>{dark, dark, light, light}));
}

TEST(SurfaceImages, RoundedImageCutsTheCornersOfTheApplicationImage) {
    const QImage image = roundedResourceImage(u"VelinoLogo"_s, 290, QSize(124, 124));
    ASSERT_EQ(image.size(), QSize(124, 124));
    // Cut at the corners; kept in the middle, at the edge and inside the 36 px arc.
    const int expected[][3] = {
        {0, 0, 0}, {123, 123, 0}, {62, 62, 255}, {62, 1, 255}, {20, 20, 255}};
    for (const auto &p : expected)
        EXPECT_EQ(alphaAt(image, p[0], p[1]), p[2]) << p[0] << "," << p[1];
    EXPECT_TRUE(roundedResourceImage(u"../VelinoLogo"_s, 290, QSize()).isNull());
    EXPECT_TRUE(roundedImageUrl(u"NoSuchImage"_s, 290).isEmpty());
}

TEST(SurfaceImages, ProviderServesTheImageOfEachAddress) {
    SurfaceImageProvider provider;
    QSize size;
    const QColor clear(0, 0, 0, 128);
    const std::pair<QUrl, QImage> cases[] = {
        {shadowImageUrl(14, 8, clear), shadowImage(14, 8, clear)},
        {cornerCapImageUrl(22, clear), cornerCapImage(22, clear)},
        {diagonalGradientImageUrl({{0.0, QColor(5, 8, 15)}, {1.0, clear}}),
         diagonalGradientImage({{0.0, QColor(5, 8, 15)}, {1.0, clear}})},
        {roundedImageUrl(u"VelinoLogo"_s, 290),
         roundedResourceImage(u"VelinoLogo"_s, 290, QSize())},
    };
    for (const auto &[url, image] : cases) {
        EXPECT_EQ(url.toString().section(u'/', 0, 2), u"image://velino-surface"_s);
        EXPECT_EQ(provider.requestImage(url.toString().section(u'/', 3), &size, QSize()), image)
            << url.toString().toStdString();
        EXPECT_EQ(size, image.size());
    }
    EXPECT_TRUE(provider.requestImage(u"unknown/1"_s, &size, QSize()).isNull());
}
