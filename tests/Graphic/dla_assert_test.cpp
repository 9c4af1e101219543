// The primitives' assertions hold also where assertions are switched off: this program builds the
// primitives once more, with NDEBUG.
#include "dla_polygon_p.h"
#include "dla_sketch.h"

#include <gtest/gtest.h>

#ifndef NDEBUG
#error "this program is to be built with NDEBUG"
#endif

using kestrin_test::DlaSketch;

/** A sanitizer's allocator reports failure like any other. */
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}

namespace {

TEST(DlaAssertDeathTest, ExhaustedMemoryFailsTheAssertionZero)
{
    EXPECT_DEATH(MHEG5_MALLOC(-1), "Assertion `0' failed");
}

TEST(DlaAssertDeathTest, AShallowLineThatLeavesTheColumns)
{
    const DlaSketch sketch(8, 4);
    const char* text = "Assertion `x >= 0 && x < dla_info.width' failed";
    EXPECT_DEATH(DrawThinLine(0, 0, 8, 1, '*'), text);
    EXPECT_DEATH(DrawThinLine(-1, 0, 7, 1, '*'), text);
}

TEST(DlaAssertDeathTest, AShallowLineThatLeavesTheRows)
{
    const DlaSketch sketch(8, 4);
    const char* text = "Assertion `y >= 0 && y < dla_info.height' failed";
    EXPECT_DEATH(DrawThinLine(0, 0, 7, 4, '*'), text);
    EXPECT_DEATH(DrawThinLine(0, -1, 7, 2, '*'), text);
}

// The texts of a steep line name the sizes crosswise, since its row is called x.
TEST(DlaAssertDeathTest, ASteepLineThatLeavesTheRows)
{
    const DlaSketch sketch(8, 4);
    const char* text = "Assertion `x >= 0 && x < dla_info.height' failed";
    EXPECT_DEATH(DrawThinLine(0, 0, 1, 4, '*'), text);
    EXPECT_DEATH(DrawThinLine(0, -1, 1, 3, '*'), text);
}

TEST(DlaAssertDeathTest, ASteepLineThatLeavesTheColumns)
{
    const DlaSketch sketch(4, 8);
    const char* text = "Assertion `y >= 0 && y < dla_info.width' failed";
    EXPECT_DEATH(DrawThinLine(0, 0, 4, 7, '*'), text);
    EXPECT_DEATH(DrawThinLine(-1, 0, 2, 7, '*'), text);
}

TEST(DlaAssertDeathTest, APolygonsRowThatLeavesTheColumns)
{
    const DlaSketch sketch(8, 4);
    S_HLINE row = {3, 8};
    EXPECT_DEATH(FillHLines({1, 0, &row}, '*'), "Assertion `hline->x_end < dla_info.width' failed");
}

TEST(DlaAssert, APolygonsRowUpToTheLastColumnIsLegal)
{
    const DlaSketch sketch(8, 1);
    S_HLINE row = {3, 7};
    FillHLines({1, 0, &row}, '*');
    EXPECT_THAT(sketch.Rows(), testing::ElementsAre("...*****"));
}

// Both end at 65535, where a row that starts at column 0 and has no pixels ends.
TEST(DlaAssert, EmptyAndReversedRowsAreSkippedBeforeTheAssertion)
{
    const DlaSketch sketch(8, 4);
    S_HLINE rows[] = {{0, 65535}, {1, 65535}, {7, 65535}, {5, 2}};
    FillHLines({4, 0, rows}, '*');
    EXPECT_TRUE(sketch.IsBlank());
}

} // namespace
