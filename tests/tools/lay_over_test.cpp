/**
 * Pictures over one another.
 */
#include "lay_over.h"

#include <gtest/gtest.h>

namespace kestrin_tools {
namespace {

using kestrin_display::ArgbImage;

ArgbImage Composed(std::uint32_t front, std::uint32_t opacity, const ArgbImage& background)
{
    ArgbImage image(background.width, background.height, front);
    Fade(image, opacity);
    LayOver(image, background);
    return image;
}

TEST(LayOver, ATransparentPictureShowsTheBackground)
{
    ArgbImage background(3, 2, 0xFF204060);
    background.At(2, 1) = 0xFFFF0080;
    EXPECT_EQ(Composed(0x00FFFFFF, 255, background).pixels, background.pixels);
    EXPECT_EQ(Composed(0xFF123456, 0, background).pixels, background.pixels);
}

TEST(LayOver, OpacityOfPixelAndLayerMultiply)
{
    const ArgbImage background(1, 1, 0xFF000000);
    EXPECT_EQ(Composed(0xFFFF8000, 255, background).At(0, 0), 0xFFFF8000);
    EXPECT_EQ(Composed(0x80FF00FF, 255, background).At(0, 0), 0xFF800080);
    EXPECT_EQ(Composed(0x80FF00FF, 128, background).At(0, 0), 0xFF400040);
}

TEST(LayOver, TransparencyOfBothStays)
{
    EXPECT_EQ(Composed(0x00123456, 255, ArgbImage(1, 1, 0)).At(0, 0), 0u);
    EXPECT_EQ(Composed(0x80FF0000, 255, ArgbImage(1, 1, 0)).At(0, 0), 0x80FF0000);
    // 1 - (1 - 0.5)(1 - 0.5) covered, two thirds of it by the one in front.
    EXPECT_EQ(Composed(0x80FF0000, 255, ArgbImage(1, 1, 0x800000FF)).At(0, 0), 0xC0AA0055);
}

TEST(LayOver, TheBackgroundIsStretched)
{
    ArgbImage background(2, 1, 0xFF0000FF);
    background.At(1, 0) = 0xFF00FF00;
    ArgbImage image(4, 3, 0);
    LayOver(image, background);
    EXPECT_EQ(image.At(1, 2), 0xFF0000FF);
    EXPECT_EQ(image.At(2, 0), 0xFF00FF00);
}

} // namespace
} // namespace kestrin_tools
