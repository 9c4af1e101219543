#include "dla_sketch.h"

#include <gtest/gtest.h>

using kestrin_test::DlaSketch;

namespace {

TEST(DlaContext, NothingIsDrawnBeforeInit)
{
    S_POINT points[] = {{0, 0}, {9, 0}, {9, 9}};
    EXPECT_FALSE(DLA_Line(0, 0, 9, 9, 1, 1));
    EXPECT_FALSE(DLA_Rectangle(0, 0, 9, 9, 1, 1, 1));
    EXPECT_FALSE(DLA_Border(1, 1));
    EXPECT_FALSE(DLA_Polygon(points, 3, 1, 1, 1));
    EXPECT_FALSE(DLA_Polyline(points, 3, 1, 1));
    EXPECT_FALSE(DLA_Ellipse(0, 0, 9, 9, 1, 1, 1));
    EXPECT_FALSE(DLA_Arc(0, 0, 9, 9, 0, 100, 1, 1));
    EXPECT_FALSE(DLA_Sector(0, 0, 9, 9, 0, 100, 1, 1, 1));
}

// Also with arguments that would draw nothing anyway.
TEST(DlaContext, DegenerateArgumentsDoNotHideTheMissingInit)
{
    EXPECT_FALSE(DLA_Line(0, 0, 9, 9, 0, 1));
    EXPECT_FALSE(DLA_Rectangle(5, 5, 5, 5, 1, 1, 1));
    EXPECT_FALSE(DLA_Border(0, 1));
    EXPECT_FALSE(DLA_Polygon(nullptr, 0, 1, 1, 1));
    EXPECT_FALSE(DLA_Polyline(nullptr, 0, 1, 1));
    EXPECT_FALSE(DLA_Ellipse(0, 0, 0, 0, 1, 1, 1));
    EXPECT_FALSE(DLA_Arc(0, 0, 0, 0, 0, 0, 1, 1));
    EXPECT_FALSE(DLA_Sector(0, 0, 0, 0, 0, 0, 1, 1, 1));
}

TEST(DlaContext, InitRefusesANullBufferAndSizesOfZero)
{
    U32BIT pixel = 0;
    EXPECT_FALSE(DLA_Init(nullptr, 1, 1));
    EXPECT_FALSE(DLA_Init(&pixel, 0, 1));
    EXPECT_FALSE(DLA_Init(&pixel, 1, 0));
    EXPECT_FALSE(DLA_Border(1, 1));
}

TEST(DlaContext, ARefusedInitLeavesTheFormerBufferInForce)
{
    const DlaSketch sketch(3, 2);
    U32BIT pixel = 0;
    EXPECT_FALSE(DLA_Init(&pixel, 0, 1));
    EXPECT_FALSE(DLA_Init(&pixel, 1, 0));
    EXPECT_FALSE(DLA_Init(nullptr, 1, 1));
    EXPECT_TRUE(DLA_Rectangle(0, 0, 3, 2, 0, 'f', 'l'));
    EXPECT_EQ(sketch.Count('f'), 6);
    EXPECT_EQ(pixel, 0U);
}

TEST(DlaContext, ALaterInitRetargets)
{
    const DlaSketch sketch(3, 2);
    U32BIT pixel = 0;
    EXPECT_TRUE(DLA_Init(&pixel, 1, 1));
    EXPECT_TRUE(DLA_Rectangle(0, 0, 3, 2, 0, 7, 7));
    EXPECT_EQ(pixel, 7U);
    EXPECT_TRUE(sketch.IsBlank());
}

TEST(DlaContext, ColoursAreStoredAsTheyAre)
{
    U32BIT pixels[2] = {};
    EXPECT_TRUE(DLA_Init(pixels, 2, 1));
    EXPECT_TRUE(DLA_Line(0, 0, 0, 0, 1, 0x80402010));
    EXPECT_TRUE(DLA_Line(1, 0, 1, 0, 1, 0xfffefdfc));
    EXPECT_EQ(pixels[0], 0x80402010U);
    EXPECT_EQ(pixels[1], 0xfffefdfcU);
    dla_info = DLA_INFO();
}

TEST(DlaContext, PixelsOutsideTheBufferAreIgnored)
{
    const DlaSketch sketch(2, 2);
    const S_POINT outside[] = {{-1, 0}, {0, -1}, {2, 0}, {0, 2}, {-32768, -32768}, {32767, 32767}};
    for (const S_POINT& point : outside)
        PutPixel(point.x, point.y, '*');
    EXPECT_TRUE(sketch.IsBlank());
    PutPixel(1, 0, '*');
    EXPECT_THAT(sketch.Rows(), testing::ElementsAre(".*", ".."));
}

TEST(DlaMemory, CanBeWrittenAndFreed)
{
    auto* memory = static_cast<U8BIT*>(MHEG5_MALLOC(1000));
    ASSERT_NE(memory, nullptr);
    std::fill_n(memory, 1000, U8BIT{1});
    MHEG5_FREE(memory);
}

TEST(DlaMemory, FreeingNullDoesNothing)
{
    MHEG5_FREE(nullptr);
}

} // namespace
