/** Formatted text on the display: a real widget, a real font, pixels compared with FreeType's. */
#include "engine_display.h"
#include "test_font.h"
#include "vrel_kestrin_flow.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <ft2build.h>
#include FT_FREETYPE_H
#include <gtest/gtest.h>

using namespace kestrin_test;
using namespace zelxxx;
using kestrin_display::ArgbImage;

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 200;
constexpr int kLeft = 30; // of the widget
constexpr int kTop = 40;
constexpr int kSpanX = 240;
constexpr int kSpanY = 120;
constexpr int kSize = 40;

/** Coverage of characters at pens of a line, by FreeType without the engine. */
class ExpectedInk
{
public:
    ExpectedInk()
    {
        FT_Init_FreeType(&_library);
        FT_New_Face(_library, kSans.c_str(), 0, &_face);
        FT_Set_Char_Size(_face, kSize * 64, kSize * 64, 72, 72);
    }
    ~ExpectedInk() { FT_Done_FreeType(_library); }
    ExpectedInk(const ExpectedInk&) = delete;
    ExpectedInk& operator=(const ExpectedInk&) = delete;

    /** In font units, kerning to the next character included. */
    int Advance(char32_t one, char32_t next)
    {
        FT_Load_Char(_face, one, FT_LOAD_NO_SCALE);
        FT_Vector kerning = {};
        FT_Get_Kerning(_face, FT_Get_Char_Index(_face, one), FT_Get_Char_Index(_face, next),
                       FT_KERNING_UNSCALED, &kerning);
        return static_cast<int>(_face->glyph->advance.x + (next ? kerning.x : 0));
    }
    int Pixels(int units) const
    {
        return (units * kSize + _face->units_per_EM - 1) / _face->units_per_EM;
    }

    void Draw(char32_t character, int pen, int baseline)
    {
        FT_Load_Char(_face, character, FT_LOAD_RENDER);
        const FT_Bitmap& bitmap = _face->glyph->bitmap;
        for (int y = 0; y < static_cast<int>(bitmap.rows); ++y) {
            for (int x = 0; x < static_cast<int>(bitmap.width); ++x) {
                int& at = coverage[{pen + _face->glyph->bitmap_left + x,
                                    baseline - _face->glyph->bitmap_top + y}];
                at = std::max<int>(at, bitmap.buffer[y * bitmap.pitch + x]);
            }
        }
    }

    std::map<std::pair<int, int>, int> coverage;

private:
    FT_Library _library = nullptr;
    FT_Face _face = nullptr;
};

class FlowDisplay : public testing::Test
{
protected:
    /** A scene with one text. The engine starts in the mode. */
    void Start(ColorMode mode)
    {
        engine.emplace(kWidth, kHeight, mode);
        formatter.emplace(mode);
        const bool indexed = mode == Color8Bit;
        scene = zelCreateScene(0, kWidth, kHeight, mode, SceneUseDoubleBuffer,
                               indexed ? BlendSrcOver8BIT : BlendSrcOver);
        layer = zelCreateLayer(nullptr);
        text = zelCreateText(MakeFontResource());
        text->SetAttribute(AttrPosX, kLeft);
        text->SetAttribute(AttrPosY, kTop);
        text->SetAttribute(AttrSpanX, kSpanX);
        text->SetAttribute(AttrSpanY, kSpanY);
        text->SetAttribute(AttrFontIndex, 1);
        text->SetAttribute(AttrFontSize, kSize);
        text->SetAttribute(AttrLineHeight, 0);
        layer->AddWidget(text);
        scene->AddLayer(layer);
    }
    ~FlowDisplay() override
    {
        text = nullptr;
        layer = nullptr;
        scene = nullptr;
        formatter.reset();
    }

    void Show(const std::string& utf8)
    {
        text->SetText(utf8.data(), static_cast<UInt32>(utf8.size()), EncodingUTF8, &*formatter);
        scene->Update(false, true);
    }

    std::optional<EngineDisplay> engine;
    std::optional<FlowFormatter> formatter;
    ZELObjPtr<IScene> scene;
    PLayer layer;
    ZELObjPtr<IText> text;
};

/** Bounds of the pixels that are not transparent. */
struct Bounds
{
    int left = kWidth, top = kHeight, right = 0, bottom = 0;
};

Bounds BoundsOf(const ArgbImage& shot)
{
    Bounds bounds;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            if (shot.At(x, y) >> 24 == 0)
                continue;
            bounds = {std::min(bounds.left, x), std::min(bounds.top, y),
                      std::max(bounds.right, x + 1), std::max(bounds.bottom, y + 1)};
        }
    }
    return bounds;
}

TEST_F(FlowDisplay, KernedLettersStandWhereFreeTypePutsThem)
{
    Start(Color32Bit);
    text->SetAttribute(AttrTextFormat, TextAlignRight | TextAlignBottom);
    Show("AVO");

    ExpectedInk expected;
    const int second = expected.Advance('A', 'V');
    const int third = second + expected.Advance('V', 'O');
    ASSERT_LT(second, expected.Advance('A', 0)) << "the font kerns this pair";
    const int left = kLeft + kSpanX - expected.Pixels(third + expected.Advance('O', 0));
    // The line is 62/256 and 231/256 of the size high, each rounded up, below and above.
    const int baseline = kTop + kSpanY - (kSize * 62 + 255) / 256;
    expected.Draw('A', left, baseline);
    expected.Draw('V', left + expected.Pixels(second), baseline);
    expected.Draw('O', left + expected.Pixels(third), baseline);

    const ArgbImage shot = engine->Shot();
    int inked = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const auto at = expected.coverage.find({x, y});
            const int coverage = at == expected.coverage.end() ? 0 : at->second;
            inked += coverage == 255;
            if (coverage == 0 || coverage == 255) {
                ASSERT_EQ(shot.At(x, y) >> 24, static_cast<UInt32>(coverage)) << x << ' ' << y;
            }
        }
    }
    EXPECT_GT(inked, 300);
}

TEST_F(FlowDisplay, EveryAlignmentKeepsTheTextInItsBox)
{
    Start(Color32Bit);
    for (int format = 0; format < 64; ++format) {
        text->SetAttribute(AttrTextFormat, format);
        Show("Joyful");
        const Bounds bounds = BoundsOf(engine->Shot());
        const bool left = (format & TextAlignLeft) != 0;
        const bool right = !left && (format & TextAlignRight) != 0;
        EXPECT_GE(bounds.left, kLeft);
        EXPECT_LE(bounds.right, kLeft + kSpanX);
        EXPECT_EQ(bounds.left < kLeft + 6, left) << format;
        EXPECT_EQ(bounds.right > kLeft + kSpanX - 6, right) << format;
        const bool top = (format & TextAlignTop) != 0;
        const bool bottom = !top && (format & TextAlignBottom) != 0;
        EXPECT_EQ(bounds.top < kTop + 20, top) << format;
        EXPECT_EQ(bounds.bottom > kTop + kSpanY - 20, bottom) << format;
    }
}

TEST_F(FlowDisplay, AnotherWidthBreaksLinesAnew)
{
    Start(Color32Bit);
    text->SetAttribute(AttrTextFormat, TextWrap | TextAlignTop | TextAlignLeft);
    Show("two words");
    const Bounds one = BoundsOf(engine->Shot());
    text->SetAttribute(AttrSpanX, 150);
    scene->Update(false, true);
    const Bounds two = BoundsOf(engine->Shot());
    EXPECT_LT(one.bottom, two.bottom - 30);
    EXPECT_LT(two.right, one.right);
}

TEST_F(FlowDisplay, MarkIsALineBelowTheBaseline)
{
    Start(Color32Bit);
    FlowStyle style;
    style.mark_begin = 1;
    style.mark_end = 3;
    style.mark_color = 0x0000ff;
    style.mark_blend = 255;
    formatter->SetStyle(style);
    text->SetAttribute(AttrTextFormat, TextAlignTop | TextAlignLeft | TextMarked);
    Show("noon");
    const FlowLayout layout = formatter->LayOut(text, "noon", 4, EncodingUTF8);
    const ArgbImage shot = engine->Shot();
    const int line = kTop + 9 * ((kSize * 62 + 255) / 256 + (kSize * 231 + 255) / 256) / 10;
    int marked = 0;
    for (int x = 0; x < kWidth; ++x)
        marked += shot.At(x, line) == 0xffff0000;
    const int width = layout.GetCharacterRect(2).right - layout.GetCharacterRect(1).left;
    EXPECT_NEAR(marked, width, 1);
    EXPECT_EQ(shot.At(kLeft + layout.GetCharacterRect(1).left, line), 0xffff0000);
    EXPECT_EQ(shot.At(kLeft + layout.GetCharacterRect(1).left - 1, line), 0U);
}

TEST_F(FlowDisplay, ReferenceSizesSettleInOneFurtherUpdate)
{
    Start(Color32Bit);
    FlowStyle style;
    style.reference_sizes = true;
    formatter->SetStyle(style);
    text->SetAttribute(AttrOrgSpanX, kSpanX / 2);
    text->SetAttribute(AttrOrgSpanY, kSpanY / 2);
    text->SetAttribute(AttrOrgFontSize, kSize / 2);
    text->SetAttribute(AttrOrgLineHeight, 20);
    text->SetAttribute(AttrFontSize, 9);
    Show("Org");
    const ArgbImage first = engine->Shot();
    EXPECT_EQ(text->GetAttribute(AttrFontSize), kSize);
    scene->Update(false, true);
    EXPECT_EQ(engine->Shot().pixels, first.pixels);
    const auto presented = engine->Presented();
    scene->Update(false, true);
    EXPECT_EQ(engine->Presented(), presented);
    text->SetAttribute(AttrOrgFontSize, 16);
    style.reference_sizes = false;
    formatter->SetStyle(style, text);
    scene->Update(false, true);
    EXPECT_EQ(engine->Shot().pixels, first.pixels) << "the same at that size without a reference";
}

/** Remembers the last line it is told of. */
class LastLine : public IFlowLineHandler
{
public:
    void HandleLine(IText*, UInt32, UInt32, const FlowLine& line) override { box = line.box; }
    FlowRect box = {};
};

TEST_F(FlowDisplay, BoxGoesBehindTheLineThatTheHandlerWasToldOf)
{
    Start(Color32Bit);
    ZELObjPtr<IWidget> rectangle(zelCreateRectangle(nullptr));
    rectangle->SetAttribute(AttrColor, 0xff0000);
    rectangle->SetAttribute(AttrPosZ, -1);
    layer->AddWidget(rectangle);
    LastLine line;
    formatter->SetLineHandler(&line);
    Show("box");
    const FlowRect box = line.box;
    rectangle->SetAttribute(AttrPosX, kLeft + box.left);
    rectangle->SetAttribute(AttrPosY, kTop + box.top);
    rectangle->SetAttribute(AttrSpanX, box.right - box.left);
    rectangle->SetAttribute(AttrSpanY, box.bottom - box.top);
    scene->Update(false, true);
    const ArgbImage shot = engine->Shot();
    EXPECT_EQ(shot.At(kLeft + box.left, kTop + box.top), 0xff0000ff);
    EXPECT_EQ(shot.At(kLeft + box.left - 1, kTop + box.top), 0U);
    EXPECT_EQ(shot.At(kLeft + box.left, kTop + box.bottom), 0U);
    const Bounds bounds = BoundsOf(shot);
    EXPECT_EQ(bounds.left, kLeft + box.left) << "all of the text is on it";
    EXPECT_EQ(bounds.right, kLeft + box.right);
    EXPECT_EQ(bounds.top, kTop + box.top);
    EXPECT_EQ(bounds.bottom, kTop + box.bottom);
}

// ---- 8 bits ----

/** The fixed palette as far as these tests use it: white, black and greys, opaque. */
PPalette MakePalette()
{
    std::array<PaletteEntry, 256> entries = {};
    entries[187] = {255, 255, 255, 255};
    return zelCreatePalette(entries.data());
}

TEST_F(FlowDisplay, EightBitTextHasSoftEdges)
{
    Start(Color8Bit);
    const PPalette palette = MakePalette();
    scene->SetPalette(palette, 256, 256, 256);
    text->SetAttribute(AttrTextFormat, TextAlignTop | TextAlignLeft);
    Show("O");

    ExpectedInk expected;
    const int baseline = kTop + (kSize * 231 + 255) / 256;
    expected.Draw('O', kLeft, baseline);
    const std::vector<std::uint8_t> indices = engine->Indices();
    std::set<int> used;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const auto at = expected.coverage.find({x, y});
            const UInt32 coverage =
                at == expected.coverage.end() ? 0 : static_cast<UInt32>(at->second);
            const int index = indices[static_cast<std::size_t>(y * kWidth + x)];
            ASSERT_EQ(index, OSD_FindNearestColourIndex(coverage << 24 | 0xffffff))
                << x << ' ' << y;
            used.insert(index);
        }
    }
    EXPECT_EQ(used, (std::set<int>{0, 48, 187})) << "nothing, semi-transparent, opaque white";
}

TEST_F(FlowDisplay, EightBitTextOnAKnownGroundHasGreys)
{
    Start(Color8Bit);
    const PPalette palette = MakePalette();
    scene->SetPalette(palette, 256, 256, 256);
    formatter->SetGround(0x000000);
    Show("O");
    const std::vector<std::uint8_t> indices = engine->Indices();
    const std::set<int> used(indices.begin(), indices.end());
    EXPECT_EQ(used, (std::set<int>{0, 49, 50, 51, 52, 120, 187}));
}

} // namespace
