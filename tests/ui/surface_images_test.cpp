#include "surface_images.h"

#include <gtest/gtest.h>

using namespace velino::ui;
using namespace Qt::StringLiterals;

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
        ASSERT_FALSE(image.isNull()) << url.toString().toStdString();
        EXPECT_EQ(url.toString().section(u'/', 0, 2), u"image://velino-surface"_s);
        EXPECT_EQ(provider.requestImage(url.toString().section(u'/', 3), &size, QSize()), image)
            << url.toString().toStdString();
        EXPECT_EQ(size, image.size());
    }
    EXPECT_TRUE(provider.requestImage(u"unknown/1"_s, &size, QSize()).isNull());
    // Only the application's own images, by name.
    EXPECT_TRUE(roundedResourceImage(u"../VelinoLogo"_s, 290, QSize()).isNull());
    EXPECT_TRUE(roundedImageUrl(u"NoSuchImage"_s, 290).isEmpty());
}
