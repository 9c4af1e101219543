// The sheet of all drawing primitives against the picture of it that was looked at. If a change is
// meant, look at the new picture and copy it over the kept one.
#include "dla_sheet.h"
#include "picture_compare.h"
#include "png_file.h"

#include <gtest/gtest.h>

using kestrin_display::ArgbImage;

namespace {

TEST(DlaSheet, LooksAsItDid)
{
    const ArgbImage sheet = kestrin_test::DrawDlaSheet();
    const std::string drawn = testing::TempDir() + "/dla_sheet.png";
    const testing::AssertionResult same =
        kestrin_test::SamePicture(sheet, kestrin_tools::ReadPng(KESTRIN_DLA_SHEET));
    if (!same)
        kestrin_tools::WritePng(drawn, sheet);
    EXPECT_TRUE(same) << "as drawn now: " << drawn << "\nas kept: " << KESTRIN_DLA_SHEET;
}

} // namespace
