#include "surface_images.h"

#include <gtest/gtest.h>

using namespace velino::ui;

TEST(SurfaceImages, ShadowIsANinePatchOfTheBlurredShape) {
    const QImage image = shadowImage(20, 12, QColor(0, 0, 0, 61));
    ASSERT_EQ(image.size(), QSize(2 * (12 + 20) + 1, 2 * (12 + 20) + 1));
    const int middle = 12 + 20;
    // Inside the shape: the colour at its own opacity; the outer edge fades to nothing.
    EXPECT_EQ(qAlpha(image.pixel(middle, middle)), 61);
    EXPECT_EQ(qAlpha(image.pixel(0, middle)), 0);
    EXPECT_EQ(qAlpha(image.pixel(middle, 0)), 0);
    EXPECT_GT(qAlpha(image.pixel(12, middle)), 0);
    EXPECT_LT(qAlpha(image.pixel(12, middle)), 61);
    // Symmetric, so it stretches the same way on every side.
    EXPECT_EQ(image.pixel(5, middle), image.pixel(2 * middle - 5, middle));
    EXPECT_EQ(image.pixel(middle, 5), image.pixel(middle, 2 * middle - 5));
    // The rounded corner is fainter than the straight edge at the same depth.
    EXPECT_LT(qAlpha(image.pixel(16, 16)), qAlpha(image.pixel(16, middle)));
}

TEST(SurfaceImages, CornerCapCoversOnlyOutsideTheQuarterCircle) {
    const QImage image = cornerCapImage(22, QColor(18, 23, 35));
    ASSERT_EQ(image.size(), QSize(22, 22));
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 255);
    EXPECT_EQ(QColor(image.pixel(0, 0)), QColor(18, 23, 35));
    EXPECT_EQ(qAlpha(image.pixel(21, 21)), 0);
    // Where the arc meets the edges, only antialiasing remains.
    EXPECT_LT(qAlpha(image.pixel(21, 0)), 16);
    EXPECT_LT(qAlpha(image.pixel(0, 21)), 16);
    EXPECT_GT(qAlpha(image.pixel(3, 3)), 250);
}

TEST(SurfaceImages, ProviderAnswersItsAddresses) {
    SurfaceImageProvider provider;
    QSize size;
    const QUrl shadow = shadowImageUrl(14, 8, QColor(0, 0, 0, 31));
    EXPECT_EQ(shadow.toString(), QStringLiteral("image://velino-surface/shadow/14/8/1f000000"));
    const QImage image =
        provider.requestImage(QStringLiteral("shadow/14/8/1f000000"), &size, QSize());
    EXPECT_EQ(size, QSize(45, 45));
    EXPECT_EQ(image.size(), size);
    const QUrl corner = cornerCapImageUrl(22, QColor(13, 18, 29));
    EXPECT_EQ(corner.toString(), QStringLiteral("image://velino-surface/corner/22/ff0d121d"));
    EXPECT_EQ(provider.requestImage(QStringLiteral("corner/22/ff0d121d"), &size, QSize()).size(),
              QSize(22, 22));
    EXPECT_TRUE(provider.requestImage(QStringLiteral("unknown/1"), &size, QSize()).isNull());
}

TEST(SurfaceImages, DiagonalGradientRunsFromTheTopLeftToTheBottomRightCorner) {
    const QColor dark(5, 8, 15);
    const QColor light(8, 13, 26);
    const QImage image = diagonalGradientImage({{0.0, dark}, {0.5, light}, {1.0, dark}});
    ASSERT_FALSE(image.isNull());
    const int last = image.width() - 1;
    EXPECT_EQ(QColor(image.pixel(0, 0)), dark);
    EXPECT_EQ(QColor(image.pixel(last, last)), dark);
    // The middle stop lies on the other diagonal, where both corners meet.
    EXPECT_EQ(QColor(image.pixel(last, 0)), light);
    EXPECT_EQ(QColor(image.pixel(0, last)), light);

    SurfaceImageProvider provider;
    QSize size;
    const QUrl url = diagonalGradientImageUrl({{0.0, dark}, {1.0, QColor(0, 0, 0, 128)}});
    EXPECT_EQ(url.toString(),
              QStringLiteral("image://velino-surface/diagonal/0:ff05080f,1:80000000"));
    const QImage served = provider.requestImage(url.toString().section(u'/', 3), &size, QSize());
    EXPECT_EQ(QColor(served.pixel(0, 0)), dark);
    EXPECT_EQ(qAlpha(served.pixel(last, last)), 128);
}

TEST(SurfaceImages, RoundedImageCutsTheCornersOfTheApplicationImage) {
    const QImage image = roundedResourceImage(QStringLiteral("VelinoLogo"), 290, QSize(124, 124));
    ASSERT_EQ(image.size(), QSize(124, 124));
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(image.pixel(123, 123)), 0);
    EXPECT_EQ(qAlpha(image.pixel(62, 62)), 255);
    EXPECT_EQ(qAlpha(image.pixel(62, 1)), 255);
    // Within the radius (36 px) but inside the arc: kept.
    EXPECT_EQ(qAlpha(image.pixel(20, 20)), 255);

    EXPECT_TRUE(roundedResourceImage(QStringLiteral("NoSuchImage"), 290, QSize()).isNull());
    EXPECT_TRUE(roundedResourceImage(QStringLiteral("../VelinoLogo"), 290, QSize()).isNull());
    EXPECT_EQ(roundedImageUrl(QStringLiteral("VelinoLogo"), 290).toString(),
              QStringLiteral("image://velino-surface/rounded/290/VelinoLogo"));
    EXPECT_TRUE(roundedImageUrl(QStringLiteral("NoSuchImage"), 290).isEmpty());
}
