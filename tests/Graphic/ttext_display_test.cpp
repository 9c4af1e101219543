/** Text on the display itself, glyph pixels compared with FreeType's own. */
#include "display_fixture.h"
#include "text_support.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

using namespace kestrin_test;

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 200;
constexpr int kSize = 48;
constexpr int kLeft = 30; // of the widget
constexpr int kTop = 40;
constexpr WChar kLetter = 0xc5; // a capital A with a ring

/** The letter's coverage where it is to appear, by FreeType without the engine's cache. */
class ExpectedGlyph
{
public:
    ExpectedGlyph()
    {
        FT_Init_FreeType(&_library);
        FT_New_Face(_library, kSans.c_str(), 0, &_face);
        FT_Set_Char_Size(_face, kSize * 64, kSize * 64, 72, 72);
        FT_Load_Char(_face, kLetter, FT_LOAD_RENDER);
        // The top of the line is where the tallest glyph of the face would end.
        const int units = _face->units_per_EM;
        const int ascent = static_cast<int>((_face->bbox.yMax * kSize + units - 1) / units);
        x = kLeft + _face->glyph->bitmap_left;
        y = kTop + ascent - _face->glyph->bitmap_top;
    }
    ~ExpectedGlyph() { FT_Done_FreeType(_library); }
    ExpectedGlyph(const ExpectedGlyph&) = delete;
    ExpectedGlyph& operator=(const ExpectedGlyph&) = delete;

    /** Coverage of a pixel of the screen. */
    int At(int column, int row) const
    {
        const FT_Bitmap& bitmap = _face->glyph->bitmap;
        const int bx = column - x;
        const int by = row - y;
        const bool inside = bx >= 0 && by >= 0 && bx < static_cast<int>(bitmap.width) &&
                            by < static_cast<int>(bitmap.rows);
        return inside ? bitmap.buffer[by * bitmap.pitch + bx] : 0;
    }

    int x = 0;
    int y = 0;

private:
    FT_Library _library = nullptr;
    FT_Face _face = nullptr;
};

/** A scene with one text of one letter, brought to the display. */
void ShowLetter(ColorMode mode, BlendMode blend_mode, TestFormater& formater)
{
    const ZELObjPtr<IScene> scene(
        zelCreateScene(0, kWidth, kHeight, mode, SceneUseDoubleBuffer, blend_mode));
    const PLayer layer(zelCreateLayer(nullptr));
    const ZELObjPtr<IText> text(zelCreateText(PResource(OpenSans())));
    text->SetAttribute(AttrFontIndex, 1);
    text->SetAttribute(AttrFontSize, kSize);
    text->SetAttribute(AttrPosX, kLeft);
    text->SetAttribute(AttrPosY, kTop);
    text->SetAttribute(AttrSpanX, 200);
    text->SetAttribute(AttrSpanY, 100);
    text->SetText(&kLetter, 2, EncodingUnicode, &formater);
    layer->AddWidget(text);
    scene->AddLayer(layer);
    zelUpdateScreen(true, true);
}

/** One display for all cases: DirectFB takes its settings once in a process. */
class TextOnDisplay : public testing::Test
{
protected:
    static void SetUpTestSuite() { display = std::make_unique<TestDisplay>(kWidth, kHeight); }
    static void TearDownTestSuite() { display.reset(); }
    static std::unique_ptr<TestDisplay> display;
};

std::unique_ptr<TestDisplay> TextOnDisplay::display;

TEST_F(TextOnDisplay, GlyphHasFreeTypesShapeInTheRecordsColour)
{
    zelInitialize(kWidth, kHeight, Color32Bit);
    TestFormater formater([](IText& text) {
        text.AddColorInfo(0x20, 0x80, 0xe0, 255);
        text.AddCharInfo(0, 0, 0, kLetter);
    });
    ShowLetter(Color32Bit, BlendSrcOver, formater);
    const auto shot = display->Shot();
    zelUninitialize();

    const ExpectedGlyph expected;
    int inked = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const int coverage = expected.At(x, y);
            const std::uint32_t pixel = shot.At(x, y);
            inked += coverage == 255;
            if (coverage == 255) {
                ASSERT_EQ(pixel, 0xff2080e0U) << x << ' ' << y;
            } else {
                ASSERT_NEAR(static_cast<int>(pixel >> 24), coverage, 1) << x << ' ' << y;
            }
        }
    }
    EXPECT_GT(inked, 100);
}

TEST_F(TextOnDisplay, EightBitGlyphHasTheIndicesTheFormaterMade)
{
    zelInitialize(kWidth, kHeight, Color8Bit);
    TestFormater formater([](IText& text) {
        text.AddColorIndex(100);
        text.AddCharInfo(0, 0, 0, kLetter);
    });
    ShowLetter(Color8Bit, BlendSrcOver8BIT, formater);
    const std::vector<std::uint8_t> indices = display->Indices();
    zelUninitialize();

    const ExpectedGlyph expected;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            ASSERT_EQ(indices[y * kWidth + x], expected.At(x, y) >= 128 ? 100 : 0) << x << ' ' << y;
    EXPECT_GT(std::count(indices.begin(), indices.end(), 100), 100);
}

// What comes in while a frame is painted has no place yet: it shows with the next one.
TEST_F(TextOnDisplay, FormaterMayChangeTheTreeWhileItIsPainted)
{
    zelInitialize(kWidth, kHeight, Color32Bit);
    {
        ZELObjPtr<IScene> scene(
            zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
        PLayer layer(zelCreateLayer(nullptr));
        scene->AddLayer(layer);
        ZELObjPtr<IWidget> behind(zelCreateRectangle(nullptr));
        ZELObjPtr<IWidget> added(zelCreateRectangle(nullptr));
        for (const auto& rectangle : {behind, added}) {
            rectangle->SetAttribute(AttrPosX, rectangle == added ? 200 : 100);
            rectangle->SetAttribute(AttrSpanX, 50);
            rectangle->SetAttribute(AttrSpanY, 50);
            rectangle->SetAttribute(AttrColor, 0x0000ff);
        }
        TestFormater formater([&](IText&) {
            layer->AddWidget(added);
            layer->AddWidget(behind);
        });
        ZELObjPtr<IText> text(zelCreateText(PResource(OpenSans())));
        text->SetAttribute(AttrFontIndex, 1);
        text->SetAttribute(AttrFontSize, kSize);
        text->SetAttribute(AttrSpanX, 10);
        text->SetAttribute(AttrSpanY, 10);
        text->SetText(&kLetter, 2, EncodingUnicode, &formater);
        layer->AddWidget(text);
        layer->AddWidget(behind);
        zelUpdateScreen(true, false);
        EXPECT_EQ(formater.runs, 1);
        EXPECT_EQ(display->Shot().At(110, 10), 0xffff0000U);
        zelUpdateScreen(true, false);
        EXPECT_EQ(display->Shot().At(210, 10), 0xffff0000U);
    }
    zelUninitialize();
}

} // namespace
