/** What the tests of fonts share: fonts to open, FreeType itself to compare with, and the log. */
#pragma once

#include "DFB/font.h"
#include "test_font.h"
#include "vrel_debug.h"

#include <climits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrin_test {

using namespace zelxxx;

using PFont = ZELObjPtr<Font>;

inline PFont OpenFile(const std::string& name)
{
    return new Font(name.c_str());
}

inline PFont OpenBytes(const std::string& bytes)
{
    return new Font("bytes", bytes.data(), static_cast<int>(bytes.size()));
}

/** FreeType asked directly, without a cache. */
class Oracle
{
public:
    explicit Oracle(const std::string& name)
    {
        EXPECT_EQ(FT_Init_FreeType(&_library), 0);
        EXPECT_EQ(FT_New_Face(_library, name.c_str(), 0, &face), 0) << name;
    }
    ~Oracle() { FT_Done_FreeType(_library); }
    Oracle(const Oracle&) = delete;
    Oracle& operator=(const Oracle&) = delete;

    FT_UInt Glyph(WChar ch) const
    {
        const FT_UInt index = FT_Get_Char_Index(face, ch);
        return index ? index : FT_Get_Char_Index(face, ' ');
    }
    /** Renders a glyph; its bitmap is in face->glyph until the next one. */
    const FT_Bitmap& Render(FT_UInt glyph, int size, int x_res)
    {
        EXPECT_EQ(FT_Set_Char_Size(face, size * 64, size * 64, x_res, 72), 0);
        EXPECT_EQ(FT_Load_Glyph(face, glyph, FT_LOAD_RENDER), 0);
        return face->glyph->bitmap;
    }

    FT_Face face = nullptr;

private:
    FT_Library _library = nullptr;
};

/** A bitmap as lines of numbers, for comparison and for reading. */
inline std::vector<std::vector<int>> Rows(const UInt8* buffer, int width, int height, int pitch)
{
    std::vector<std::vector<int>> rows;
    for (int y = 0; buffer && y < height; ++y)
        rows.emplace_back(buffer + y * pitch, buffer + y * pitch + width);
    return rows;
}

inline std::vector<std::vector<int>> Rows(const FT_Bitmap& bitmap)
{
    return Rows(bitmap.buffer, static_cast<int>(bitmap.width), static_cast<int>(bitmap.rows),
                bitmap.pitch);
}

inline std::vector<std::vector<int>> Rows(const CharMetrics& glyph)
{
    return Rows(glyph.buffer, glyph.width, glyph.height, glyph.width);
}

inline CharMetrics GlyphOf(IFont& font, WChar ch, UInt16 size, UInt32 molecule = 100,
                           UInt32 denominator = 100)
{
    CharMetrics glyph = {0, -1, -1, -1, -1, nullptr};
    font.GetFTCharMetrics(ch, size, FontRegular, &glyph, molecule, denominator);
    return glyph;
}

inline void ExpectGlyph(const CharMetrics& glyph, Oracle& oracle, FT_UInt index, int size,
                        int x_res)
{
    const FT_Bitmap& bitmap = oracle.Render(index, size, x_res);
    EXPECT_EQ(glyph.pix_mode, 2);
    EXPECT_EQ(glyph.width, static_cast<Int32>(bitmap.width));
    EXPECT_EQ(glyph.height, static_cast<Int32>(bitmap.rows));
    EXPECT_EQ(glyph.hori_bearing_x, oracle.face->glyph->bitmap_left);
    EXPECT_EQ(glyph.bitmap_top, oracle.face->glyph->bitmap_top);
    EXPECT_EQ(Rows(glyph), Rows(bitmap));
}

/** Everything a font answers is 0 and no glyph has ink. */
inline void ExpectBlank(Font& font)
{
    EXPECT_TRUE(font.IsAvailable());
    for (const UInt16 size : {0, 1, 2, 16, 255, 300, 65535}) {
        EXPECT_EQ(font.GetFTYOffsetTop(size), 0);
        EXPECT_EQ(font.GetFTYOffsetBottom(size), 0);
        EXPECT_EQ(font.GetFTXOffsetLeft(size, 100, 100), 0);
        for (const WChar ch : {0, 65, 32, 255, 256, 0x4e2d, 0xffff}) {
            EXPECT_EQ(font.GetFTNoScaleCharMetricsX(ch, size, FontRegular), 0);
            EXPECT_EQ(font.GetFTKerning('A', ch, size, FontRegular), 0);
            for (const auto& row : Rows(GlyphOf(font, ch, size)))
                EXPECT_THAT(row, testing::Each(0));
        }
    }
    EXPECT_EQ(font.NoScaleFontUnitsToPixelsInCalculate(INT_MAX, 100, 100), 0);
    EXPECT_EQ(font.NoScaleFontUnitsToPixelsInDrawText(INT_MIN, 100, -1), 0);
}

/** What was logged while a level was on. */
template <class Work>
std::string LogOf(int level, Work work)
{
    __vrel_debug_min = level;
    testing::internal::CaptureStderr();
    work();
    __vrel_debug_min = 0;
    return testing::internal::GetCapturedStderr();
}

class FontTest : public testing::Test
{
protected:
    FontTest() { Font::Initialize(); }
};

} // namespace kestrin_test
