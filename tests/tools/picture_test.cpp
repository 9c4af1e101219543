/**
 * Whole pictures: comparing, scaling, arranging.
 */
#include "picture.h"

#include <gtest/gtest.h>

namespace kestrin_play {
namespace {

TEST(Picture, TheTestPictureIsOpaqueAndReproducible)
{
    const ArgbImage picture = TestPicture(64, 36);
    for (const std::uint32_t pixel : picture.pixels)
        ASSERT_EQ(pixel >> 24, 0xFFu);
    EXPECT_EQ(picture.pixels, TestPicture(64, 36).pixels);
    EXPECT_NE(picture.At(0, 0), picture.At(0, 35));
}

TEST(Picture, ScalingDownTakesTheMeanByOpacity)
{
    ArgbImage image(2, 2, 0x00FF0000);
    image.At(0, 0) = 0xFF0000FF;
    image.At(1, 1) = 0xFF00FF00;
    EXPECT_EQ(Scaled(image, 1, 1).At(0, 0), 0x7F007F7Fu);
    EXPECT_EQ(Scaled(ArgbImage(2, 2, 0), 1, 1).At(0, 0), 0u);
}

TEST(Picture, ScalingUpRepeatsPixels)
{
    ArgbImage image(2, 1, 0xFF000000);
    image.At(1, 0) = 0xFFFFFFFF;
    const ArgbImage large = Scaled(image, 4, 3);
    EXPECT_EQ(large.At(1, 2), 0xFF000000);
    EXPECT_EQ(large.At(2, 0), 0xFFFFFFFF);
}

TEST(Picture, ChangeCountsPixelsAndTheBoxAroundThem)
{
    const ArgbImage before(10, 10);
    ArgbImage after = before;
    EXPECT_EQ(Compare(before, after).pixels, 0);
    EXPECT_EQ(Compare(before, after).box, 0);
    after.At(2, 3) = 1;
    after.At(5, 4) = 1;
    EXPECT_DOUBLE_EQ(Compare(before, after).pixels, 0.02);
    EXPECT_DOUBLE_EQ(Compare(before, after).box, 0.08);
}

TEST(ContactSheet, PlacesDoNotTouchAndLieInside)
{
    for (const std::size_t count : {1, 2, 5, 48, 1000}) {
        const ContactSheet sheet(count, 1280, 720);
        ContactSheet::Place last = {};
        for (std::size_t i = 0; i < count; ++i) {
            const ContactSheet::Place place = sheet.PlaceOf(i);
            EXPECT_LE(place.x + place.width, sheet.Image().width);
            EXPECT_LE(place.y + place.height, sheet.Image().height);
            if (i > 0) {
                EXPECT_TRUE(place.y == last.y ? place.x > last.x + last.width
                                              : place.y > last.y + last.height);
            }
            last = place;
        }
        EXPECT_LE(sheet.Image().width, 2560);
    }
}

TEST(ContactSheet, PicturesOfOtherProportionsAreFittedIn)
{
    ContactSheet sheet(2, 400, 200);
    sheet.Add(ArgbImage(400, 200, 0xFFFF0000));
    sheet.Add(ArgbImage(100, 100, 0xFF00FF00));
    const ContactSheet::Place first = sheet.PlaceOf(0);
    EXPECT_EQ(sheet.Image().At(first.x, first.y), 0xFFFF0000);
    const ContactSheet::Place second = sheet.PlaceOf(1);
    EXPECT_EQ(sheet.Image().At(second.x + second.width / 2, second.y), 0xFF00FF00);
    EXPECT_NE(sheet.Image().At(second.x, second.y), 0xFF00FF00);
}

} // namespace
} // namespace kestrin_play
