#include "DFB/color_util.h"

#include "display_fixture.h"
#include "seeded_random.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include <directfb.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>

using namespace zelxxx;
using kestrin_test::SeededRandom;
using kestrin_test::TestDisplay;
using testing::ElementsAre;

namespace {

// ---- An independent model: palette by rule, nearest levels by search, blending by arithmetic ----

using Levels = std::vector<int>;

const Levels kCubeRed = {0, 63, 127, 191, 255};
const Levels kCubeGreen = {0, 31, 63, 95, 127, 159, 191, 223, 255};
const Levels kCubeBlue = {0, 127, 255};
const Levels kGreys = {42, 85, 170, 212};
const Levels kSemiRed = {0, 85, 170, 255};
const Levels kSemiGreen = {0, 51, 102, 153, 204, 255};
const Levels kSemiBlue = {0, 255};

/** The level nearest to a value; the lower one when two are equally near. */
int Nearest(const Levels& levels, int value)
{
    int best = 0;
    for (int i = 1; i < static_cast<int>(levels.size()); ++i) {
        if (std::abs(levels[i] - value) < std::abs(levels[best] - value))
            best = i;
    }
    return best;
}

struct Rgb
{
    int red, green, blue;
    bool IsGrey() const { return red == green && green == blue; }
};

/** The colour behind an index, taken apart by the rule of its range. */
Rgb ColourOf(int index)
{
    if (index >= 53)
        return {kCubeRed[(index - 53) / 27], kCubeGreen[(index - 53) / 3 % 9],
                kCubeBlue[(index - 53) % 3]};
    if (index >= 49)
        return {kGreys[index - 49], kGreys[index - 49], kGreys[index - 49]};
    if (index == 0)
        return {0, 0, 0};
    return {kSemiRed[(index - 1) / 2 % 4], kSemiGreen[(index - 1) / 8], kSemiBlue[(index - 1) % 2]};
}

int NearestInCube(const Rgb& c)
{
    return 53 + 27 * Nearest(kCubeRed, c.red) + 3 * Nearest(kCubeGreen, c.green) +
           Nearest(kCubeBlue, c.blue);
}

int NearestOpaque(const Rgb& c)
{
    // Black, middle grey and white are the cube's.
    const bool grey =
        c.IsGrey() && ((c.red >= 22 && c.red <= 105) || (c.red >= 149 && c.red <= 232));
    return grey ? 49 + Nearest(kGreys, c.red) : NearestInCube(c);
}

int NearestSemi(const Rgb& c)
{
    // The one level that does not begin half-way: 72 to 76 already count as 102.
    const int green = c.green >= 72 && c.green <= 76 ? 2 : Nearest(kSemiGreen, c.green);
    return 1 + Nearest(kSemiBlue, c.blue) + 2 * Nearest(kSemiRed, c.red) + 8 * green;
}

int NearestIndex(UInt32 colour)
{
    const int alpha = static_cast<int>(colour >> 24);
    const Rgb c = {static_cast<int>(colour >> 16 & 255), static_cast<int>(colour >> 8 & 255),
                   static_cast<int>(colour & 255)};
    return alpha >= 231 ? NearestOpaque(c) : alpha < 25 ? 0 : NearestSemi(c);
}

/** `front` at opacity 255 - 0x4c over `back`. */
int Mix(int front, int back)
{
    return (front * 179 + back * 76) / 255;
}

int BlendModel(int back, int colour)
{
    if (colour == 0)
        return back;
    if (colour > 48 || back < 49 || back > 187)
        return colour;
    const Rgb f = ColourOf(colour);
    const Rgb b = ColourOf(back);
    // Over the two middle greys white comes out one step brighter or darker than the arithmetic.
    if (f.IsGrey() && f.red == 255 && (back == 50 || back == 51))
        return back == 50 ? 51 : 187;
    const Rgb mixed = {Mix(f.red, b.red), Mix(f.green, b.green), Mix(f.blue, b.blue)};
    const bool may_be_grey = back <= 53 || (f.IsGrey() && b.IsGrey());
    return may_be_grey ? NearestOpaque(mixed) : NearestInCube(mixed);
}

int Blend(int back, int colour)
{
    auto pixel = static_cast<UInt8>(back);
    OSD_BlendPixels(&pixel, static_cast<UInt8>(colour));
    return pixel;
}

// ---- The fixed palette and the nearest colour ----

TEST(MhegPalette, FollowsItsRules)
{
    EXPECT_EQ(MhegPaletteWord(0), 0xff000000U);
    for (int index = 1; index < kMhegColorCount; ++index) {
        const Rgb c = ColourOf(index);
        const UInt32 transparency = index < 49 ? 0x4c : 0;
        const UInt32 word = transparency << 24 | static_cast<UInt32>(c.red) << 16 |
                            static_cast<UInt32>(c.green) << 8 | static_cast<UInt32>(c.blue);
        EXPECT_EQ(MhegPaletteWord(static_cast<UInt8>(index)), word) << index;
    }
}

TEST(MhegPalette, HasTheColoursThatBroadcastersName)
{
    EXPECT_EQ(MhegPaletteWord(1), 0x4c000000U);
    EXPECT_EQ(MhegPaletteWord(48), 0x4cffffffU);
    EXPECT_EQ(MhegPaletteWord(49), 0x002a2a2aU);
    EXPECT_EQ(MhegPaletteWord(52), 0x00d4d4d4U);
    EXPECT_EQ(MhegPaletteWord(53), 0x00000000U);
    EXPECT_EQ(MhegPaletteWord(120), 0x007f7f7fU);
    EXPECT_EQ(MhegPaletteWord(187), 0x00ffffffU);
}

TEST(NearestLevels, AreTheNearestOfEachChannel)
{
    for (int v = 0; v < 256; ++v) {
        const auto value = static_cast<UInt8>(v);
        EXPECT_EQ(GetNearestRed(value), 27 * Nearest(kCubeRed, v)) << v;
        EXPECT_EQ(GetNearestGreen(value), 3 * Nearest(kCubeGreen, v)) << v;
        EXPECT_EQ(GetNearestBlue(value), Nearest(kCubeBlue, v)) << v;
        EXPECT_EQ(GetNearestSemiRed(value), 2 * Nearest(kSemiRed, v)) << v;
        EXPECT_EQ(GetNearestSemiBlue(value), Nearest(kSemiBlue, v)) << v;
        EXPECT_EQ(GetNearestGrey(value), v / 64) << v;
    }
}

TEST(NearestLevels, SemiTransparentGreenRisesEarlyAt72)
{
    for (int v = 0; v < 256; ++v) {
        const bool early = v >= 72 && v <= 76;
        const int level = early ? 2 : Nearest(kSemiGreen, v);
        EXPECT_EQ(GetNearestSemiGreen(static_cast<UInt8>(v)), 8 * level) << v;
    }
}

TEST(FindNearestColourIndex, DarkestMiddleAndLightestGreyBelongToTheCube)
{
    EXPECT_EQ(OSD_FindNearestColourIndex(0xff808080), 120);
    EXPECT_EQ(OSD_FindNearestColourIndex(0xff404040), 50);
    for (UInt32 v = 0; v < 256; ++v) {
        const UInt8 index = OSD_FindNearestColourIndex(0xff000000 | v << 16 | v << 8 | v);
        const bool cube = v < 22 || (v > 105 && v < 149) || v > 232;
        EXPECT_EQ(index >= 53, cube) << v;
        EXPECT_EQ(index,
                  NearestOpaque({static_cast<int>(v), static_cast<int>(v), static_cast<int>(v)}))
            << v;
    }
}

TEST(FindNearestColourIndex, OpacityChoosesTheRange)
{
    EXPECT_EQ(OSD_FindNearestColourIndex(0x10ffffff), 0);
    EXPECT_EQ(OSD_FindNearestColourIndex(0x18ffffff), 0);
    EXPECT_EQ(OSD_FindNearestColourIndex(0x19ffffff), 48);
    EXPECT_EQ(OSD_FindNearestColourIndex(0x80ff0000), 7);
    EXPECT_EQ(OSD_FindNearestColourIndex(0xe6ffffff), 48);
    EXPECT_EQ(OSD_FindNearestColourIndex(0xe7ffffff), 187);
}

TEST(FindNearestColourIndex, PaletteColoursFindThemselves)
{
    for (int index = 1; index < kMhegColorCount; ++index) {
        const UInt32 word = MhegPaletteWord(static_cast<UInt8>(index));
        EXPECT_EQ(OSD_FindNearestColourIndex(word ^ 0xff000000), index);
    }
}

TEST(FindNearestColourIndex, AnyColourAlsoAskedTwiceFindsTheNearest)
{
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    UInt32 colour = 0;
    for (int i = 0; i < 300000; ++i) {
        // Every third question is the one before, which the cache answers.
        if (i % 3 != 0)
            colour = static_cast<UInt32>(random.Between(0, UINT32_MAX));
        ASSERT_EQ(OSD_FindNearestColourIndex(colour), NearestIndex(colour)) << std::hex << colour;
    }
}

TEST(BlendPixels, AllPairsInRandomOrderMatchTheModel)
{
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    std::vector<int> pairs(256 * 256);
    std::iota(pairs.begin(), pairs.end(), 0);
    std::shuffle(pairs.begin(), pairs.end(), random.Engine());
    for (const int pair : pairs) {
        ASSERT_EQ(Blend(pair >> 8, pair & 255), BlendModel(pair >> 8, pair & 255))
            << (pair & 255) << " over " << (pair >> 8);
    }
}

TEST(BlendPixels, RecentPairsComeBackFromTheCacheUnchanged)
{
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    // Few enough pairs that the two cached ones are asked for again and again, in every order.
    for (int round = 0; round < 1000; ++round) {
        std::array<int, 3> backs;
        std::array<int, 3> colours;
        for (int i = 0; i < 3; ++i) {
            backs[i] = static_cast<int>(random.Between(0, 255));
            colours[i] = static_cast<int>(random.Between(0, 52));
        }
        for (int i = 0; i < 20; ++i) {
            const int back = backs[random.Between(0, 2)];
            const int colour = colours[random.Between(0, 2)];
            ASSERT_EQ(Blend(back, colour), BlendModel(back, colour)) << colour << " over " << back;
        }
    }
}

TEST(BlendPixels, TransparentColourLeavesThePixel)
{
    for (int back = 0; back < 256; ++back)
        EXPECT_EQ(Blend(back, 0), back);
}

TEST(BlendPixels, OverATransparentOrSemiTransparentPixelTheColourReplaces)
{
    for (int back = 0; back < 49; ++back)
        EXPECT_EQ(Blend(back, 7), 7) << back;
}

TEST(BlendPixels, PixelsAboveThePaletteGiveTheColour)
{
    for (int back = 188; back < 256; ++back)
        EXPECT_EQ(Blend(back, 7), 7) << back;
}

TEST(BlendPixels, ColoursAboveThePaletteReplaceLikeOpaqueOnes)
{
    for (int colour = 188; colour < 256; ++colour)
        EXPECT_EQ(Blend(100, colour), colour);
}

TEST(BlendPixels, WhiteOverTheMiddleGreysLeansToTheWhiteSide)
{
    EXPECT_EQ(Blend(50, 48), 51);
    EXPECT_EQ(Blend(51, 48), 187);
}

// ---- Drawing on surfaces ----

/** An 8-bit surface whose pixels can be set and read at will. */
class LutSurface
{
public:
    LutSurface(int width, int height, int first_index) : _width(width), _height(height)
    {
        DFBSurfaceDescription description = {};
        description.flags = static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT |
                                                                    DSDESC_PIXELFORMAT);
        description.width = width;
        description.height = height;
        description.pixelformat = DSPF_LUT8;
        IDirectFB* dfb = zelGetDFBHandle();
        EXPECT_EQ(dfb->CreateSurface(dfb, &description, &_surface), DFB_OK);
        std::vector<int> pixels(static_cast<std::size_t>(width) * height);
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = static_cast<int>((first_index + i * 7) % 188);
        Access(DSLF_WRITE, [&](UInt8& pixel, int x, int y) {
            pixel = static_cast<UInt8>(pixels[y * _width + x]);
        });
    }
    ~LutSurface() { _surface->Release(_surface); }
    LutSurface(const LutSurface&) = delete;
    LutSurface& operator=(const LutSurface&) = delete;

    std::vector<int> Pixels()
    {
        std::vector<int> pixels(static_cast<std::size_t>(_width) * _height);
        Access(DSLF_READ, [&](UInt8& pixel, int x, int y) { pixels[y * _width + x] = pixel; });
        return pixels;
    }
    IDirectFBSurface* Get() const { return _surface; }

private:
    template <class Visit>
    void Access(DFBSurfaceLockFlags flags, Visit visit)
    {
        void* data = nullptr;
        int pitch = 0;
        ASSERT_EQ(_surface->Lock(_surface, flags, &data, &pitch), DFB_OK);
        for (int y = 0; y < _height; ++y)
            for (int x = 0; x < _width; ++x)
                visit(static_cast<UInt8*>(data)[y * pitch + x], x, y);
        ASSERT_EQ(_surface->Unlock(_surface), DFB_OK);
    }

    int _width, _height;
    IDirectFBSurface* _surface = nullptr;
};

constexpr int kWidth = 40;
constexpr int kHeight = 30;

class MhegDrawing : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        _display = std::make_unique<TestDisplay>(320, 200);
        zelInitialize(320, 200, Color8Bit);
    }
    static void TearDownTestSuite()
    {
        zelUninitialize();
        _display.reset();
    }

    /** `before` with a colour blended over the pixels for which `colour` gives one. */
    template <class Colour>
    static std::vector<int> Expected(std::vector<int> before, Colour colour)
    {
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                int& pixel = before[y * kWidth + x];
                pixel = BlendModel(pixel, colour(x, y));
            }
        return before;
    }

    LutSurface _surface{kWidth, kHeight, 3};

private:
    static std::unique_ptr<TestDisplay> _display;
};

std::unique_ptr<TestDisplay> MhegDrawing::_display;

/** The calls made on a surface, in order; they are carried out all the same. */
class CallRecorder
{
public:
    explicit CallRecorder(IDirectFBSurface* surface) : _surface(surface)
    {
        calls.clear();
        real = *surface;
        surface->SetDrawingFlags = [](IDirectFBSurface* s, DFBSurfaceDrawingFlags flags) {
            calls.push_back("SetDrawingFlags " + std::to_string(flags));
            return real.SetDrawingFlags(s, flags);
        };
        surface->SetPorterDuff = [](IDirectFBSurface* s, DFBSurfacePorterDuffRule rule) {
            calls.push_back("SetPorterDuff " + std::to_string(rule));
            return real.SetPorterDuff(s, rule);
        };
        surface->SetColorIndex = [](IDirectFBSurface* s, unsigned index) {
            calls.push_back("SetColorIndex " + std::to_string(index));
            return real.SetColorIndex(s, index);
        };
        surface->FillRectangle = [](IDirectFBSurface* s, int x, int y, int w, int h) {
            calls.push_back("FillRectangle " + std::to_string(x) + ' ' + std::to_string(y) + ' ' +
                            std::to_string(w) + ' ' + std::to_string(h));
            return real.FillRectangle(s, x, y, w, h);
        };
        surface->Lock = [](IDirectFBSurface* s, DFBSurfaceLockFlags flags, void** data,
                           int* pitch) {
            calls.push_back("Lock " + std::to_string(flags));
            return real.Lock(s, flags, data, pitch);
        };
        surface->Unlock = [](IDirectFBSurface* s) {
            calls.emplace_back("Unlock");
            return real.Unlock(s);
        };
    }
    ~CallRecorder()
    {
        _surface->SetDrawingFlags = real.SetDrawingFlags;
        _surface->SetPorterDuff = real.SetPorterDuff;
        _surface->SetColorIndex = real.SetColorIndex;
        _surface->FillRectangle = real.FillRectangle;
        _surface->Lock = real.Lock;
        _surface->Unlock = real.Unlock;
    }
    CallRecorder(const CallRecorder&) = delete;
    CallRecorder& operator=(const CallRecorder&) = delete;

    static std::vector<std::string> calls;

private:
    static IDirectFBSurface real;
    IDirectFBSurface* _surface;
};

std::vector<std::string> CallRecorder::calls;
IDirectFBSurface CallRecorder::real;

TEST_F(MhegDrawing, OpaqueRectangleIsFilledByDirectFb)
{
    const std::vector<int> before = _surface.Pixels();
    {
        const CallRecorder recorder(_surface.Get());
        MHEG_displayRectangle(_surface.Get(), 3, 4, 12, 6, 60);
        EXPECT_THAT(recorder.calls, ElementsAre("SetDrawingFlags " + std::to_string(DSDRAW_NOFX),
                                                "SetPorterDuff " + std::to_string(DSPD_NONE),
                                                "SetColorIndex 60", "FillRectangle 3 4 10 3"));
    }
    EXPECT_EQ(_surface.Pixels(), Expected(before, [](int x, int y) {
                  return x >= 3 && x <= 12 && y >= 4 && y <= 6 ? 60 : 0;
              }));
}

TEST_F(MhegDrawing, SemiTransparentRectangleIsBlendedPixelByPixel)
{
    const std::vector<int> before = _surface.Pixels();
    {
        const CallRecorder recorder(_surface.Get());
        MHEG_displayRectangle(_surface.Get(), 0, 0, kWidth - 1, kHeight - 2, 10);
        EXPECT_THAT(recorder.calls, ElementsAre("Lock " + std::to_string(DSLF_WRITE), "Unlock"));
    }
    EXPECT_EQ(_surface.Pixels(),
              Expected(before, [](int, int y) { return y <= kHeight - 2 ? 10 : 0; }));
}

TEST_F(MhegDrawing, OpaqueColoursAre49To187)
{
    for (const int color : {1, 48, 188, 255}) {
        const CallRecorder recorder(_surface.Get());
        MHEG_displayRectangle(_surface.Get(), 1, 1, 2, 2, color);
        EXPECT_EQ(recorder.calls.size(), 2U) << color;
    }
    for (const int color : {49, 53, 187}) {
        const CallRecorder recorder(_surface.Get());
        MHEG_displayRectangle(_surface.Get(), 1, 1, 2, 2, color);
        EXPECT_EQ(recorder.calls.size(), 4U) << color;
    }
}

TEST_F(MhegDrawing, CornersAreInclusiveSoOneCornerIsAPixel)
{
    const std::vector<int> before = _surface.Pixels();
    MHEG_displayRectangle(_surface.Get(), 5, 6, 5, 6, 100);
    MHEG_displayRectangle(_surface.Get(), kWidth - 1, kHeight - 1, kWidth - 1, kHeight - 1, 10);
    EXPECT_EQ(_surface.Pixels(), Expected(before, [](int x, int y) {
                  return x == 5 && y == 6 ? 100 : x == kWidth - 1 && y == kHeight - 1 ? 10 : 0;
              }));
}

TEST_F(MhegDrawing, NegativeEmptyAndTransparentRectanglesMakeNoCall)
{
    const CallRecorder recorder(_surface.Get());
    MHEG_displayRectangle(nullptr, 0, 0, 5, 5, 60);
    for (const int color : {60, 10}) {
        MHEG_displayRectangle(_surface.Get(), -1, 0, 5, 5, color);
        MHEG_displayRectangle(_surface.Get(), 0, -1, 5, 5, color);
        MHEG_displayRectangle(_surface.Get(), 5, 0, 4, 5, color);
        MHEG_displayRectangle(_surface.Get(), 0, 5, 5, 4, color);
    }
    MHEG_displayRectangle(_surface.Get(), 0, 0, 5, 5, 0);
    EXPECT_THAT(recorder.calls, ElementsAre());
}

/** A bitmap of palette indices with a margin around the part to be drawn. */
struct Bitmap
{
    static constexpr int kRow = 37;
    static constexpr int kRows = 33;
    Bitmap()
    {
        for (std::size_t i = 0; i < indices.size(); ++i)
            indices[i] = static_cast<UInt8>(i % 5 == 0 ? 0 : i * 11 % 188);
    }
    int At(int x, int y) const { return indices[y * kRow + x]; }
    std::array<UInt8, kRow * kRows> indices;
};

TEST_F(MhegDrawing, BitmapIsBlendedWhereItStands)
{
    const std::vector<int> before = _surface.Pixels();
    Bitmap bitmap;
    MHEG_draw_bitmap(_surface.Get(), 7, 5, Bitmap::kRow, 20, 10, bitmap.indices.data(), 3, 2);
    EXPECT_EQ(_surface.Pixels(), Expected(before, [&](int x, int y) {
                  const bool inside = x >= 7 && x < 27 && y >= 5 && y < 15;
                  return inside ? bitmap.At(x - 7 + 3, y - 5 + 2) : 0;
              }));
}

TEST_F(MhegDrawing, BitmapsAreCutAtTheSurfaceOnEverySide)
{
    Bitmap bitmap;
    for (const auto& [left, top] : {std::array{-5, -3},
                                    {30, 25},
                                    {-36, 29},
                                    {39, -32},
                                    {-37, 0},
                                    {0, 30},
                                    {40, 0},
                                    {0, -33}}) {
        const std::vector<int> before = _surface.Pixels();
        MHEG_draw_bitmap(_surface.Get(), left, top, Bitmap::kRow, Bitmap::kRow, Bitmap::kRows,
                         bitmap.indices.data(), 0, 0);
        const int l = left;
        const int t = top;
        EXPECT_EQ(_surface.Pixels(), Expected(before,
                                              [&](int x, int y) {
                                                  const bool inside =
                                                      x >= l && x < l + Bitmap::kRow && y >= t &&
                                                      y < t + Bitmap::kRows;
                                                  return inside ? bitmap.At(x - l, y - t) : 0;
                                              }))
            << left << ' ' << top;
    }
}

TEST_F(MhegDrawing, PositionsAndSizesAtTheEndsOfTheirRangeDrawNothing)
{
    const std::vector<int> before = _surface.Pixels();
    Bitmap bitmap;
    UInt8* pixels = bitmap.indices.data();
    MHEG_draw_bitmap(_surface.Get(), INT32_MAX, 0, Bitmap::kRow, INT32_MAX, 1, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), 0, INT32_MAX, Bitmap::kRow, 1, INT32_MAX, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), INT32_MIN, 0, Bitmap::kRow, INT32_MAX, 1, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), 0, INT32_MIN, Bitmap::kRow, 1, INT32_MAX, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), 0, 0, Bitmap::kRow, -1, 5, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), 0, 0, Bitmap::kRow, 5, INT32_MIN, pixels, 0, 0);
    EXPECT_EQ(_surface.Pixels(), before);
}

TEST_F(MhegDrawing, BitmapFromMemoryLocksTheSurfaceOnce)
{
    Bitmap bitmap;
    const CallRecorder recorder(_surface.Get());
    MHEG_draw_bitmap(_surface.Get(), 0, 0, Bitmap::kRow, 5, 5, bitmap.indices.data(), 0, 0);
    EXPECT_THAT(recorder.calls, ElementsAre("Lock " + std::to_string(DSLF_WRITE), "Unlock"));
}

TEST_F(MhegDrawing, BitmapFromASurfaceIsCutAtBoth)
{
    constexpr int source_width = 25;
    constexpr int source_height = 20;
    LutSurface source(source_width, source_height, 50);
    const std::vector<int> indices = source.Pixels();
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    for (int i = 0; i < 200; ++i) {
        const int left = static_cast<int>(random.Between(-45, 45));
        const int top = static_cast<int>(random.Between(-35, 35));
        const int width = static_cast<int>(random.Between(-2, 45));
        const int height = static_cast<int>(random.Between(-2, 35));
        const int from_x = static_cast<int>(random.Between(-30, 30));
        const int from_y = static_cast<int>(random.Between(-30, 30));
        const std::vector<int> before = _surface.Pixels();
        MHEG_draw_bitmap(_surface.Get(), left, top, width, height, source.Get(), from_x, from_y);
        ASSERT_EQ(_surface.Pixels(),
                  Expected(before,
                           [&](int x, int y) {
                               const int column = x - left;
                               const int row = y - top;
                               const int sx = from_x + column;
                               const int sy = from_y + row;
                               const bool inside = column >= 0 && column < width && row >= 0 &&
                                                   row < height && sx >= 0 && sx < source_width &&
                                                   sy >= 0 && sy < source_height;
                               return inside ? indices[sy * source_width + sx] : 0;
                           }))
            << left << ' ' << top << ' ' << width << ' ' << height << ' ' << from_x << ' '
            << from_y;
    }
    EXPECT_EQ(source.Pixels(), indices);
}

// ---- Failed calls: each ends the process under its own text ----

/** Runs the statement in a child on a display of its own and expects it to end with the report. */
class ColorUtilDeathTest : public testing::Test
{
protected:
    static std::string Report(const std::string& call)
    {
        return "Graphic/DFB/color_util\\.cpp <[0-9]+>:\n\t.*" + call;
    }
    static bool Exited(int status) { return WIFEXITED(status) && WEXITSTATUS(status) != 0; }

    static IDirectFBSurface* Surface(DFBSurfacePixelFormat format)
    {
        zelInitialize(320, 200, Color8Bit);
        DFBSurfaceDescription description = {};
        description.flags = static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT |
                                                                    DSDESC_PIXELFORMAT);
        description.width = 8;
        description.height = 8;
        description.pixelformat = format;
        IDirectFBSurface* surface = nullptr;
        zelGetDFBHandle()->CreateSurface(zelGetDFBHandle(), &description, &surface);
        return surface;
    }
    static IDirectFBSurface* Locked()
    {
        IDirectFBSurface* surface = Surface(DSPF_LUT8);
        void* data = nullptr;
        int pitch = 0;
        surface->Lock(surface, DSLF_WRITE, &data, &pitch);
        return surface;
    }
    static IDirectFBSurface* WithoutUnlock()
    {
        IDirectFBSurface* surface = Surface(DSPF_LUT8);
        surface->Unlock = [](IDirectFBSurface*) { return DFB_FAILURE; };
        return surface;
    }

    TestDisplay _display{320, 200};
    UInt8 _bitmap[64] = {};
};

TEST_F(ColorUtilDeathTest, EachFailedCallOfAnOpaqueFillIsReported)
{
    EXPECT_EXIT(MHEG_displayRectangle(Surface(DSPF_ARGB), 0, 0, 1, 1, 60), Exited,
                Report(R"(dest_surf->SetColorIndex\(dest_surf, color\))"));
    EXPECT_EXIT(
        {
            IDirectFBSurface* surface = Surface(DSPF_LUT8);
            surface->SetDrawingFlags = [](IDirectFBSurface*, DFBSurfaceDrawingFlags) {
                return DFB_FAILURE;
            };
            MHEG_displayRectangle(surface, 0, 0, 1, 1, 60);
        },
        Exited, Report(R"(dest_surf->SetDrawingFlags\(dest_surf, DSDRAW_NOFX\))"));
    EXPECT_EXIT(
        {
            IDirectFBSurface* surface = Surface(DSPF_LUT8);
            surface->SetPorterDuff = [](IDirectFBSurface*, DFBSurfacePorterDuffRule) {
                return DFB_FAILURE;
            };
            MHEG_displayRectangle(surface, 0, 0, 1, 1, 60);
        },
        Exited, Report(R"(dest_surf->SetPorterDuff\(dest_surf, DSPD_NONE\))"));
    EXPECT_EXIT(MHEG_displayRectangle(Locked(), 0, 0, 1, 1, 60), Exited,
                Report(R"(dest_surf->FillRectangle\(dest_surf, x1, y1, x2 - x1 \+ 1, )"
                       R"(y2 - y1 \+ 1\))"));
}

TEST_F(ColorUtilDeathTest, FailedLocksAreReported)
{
    EXPECT_EXIT(MHEG_displayRectangle(Locked(), 0, 0, 1, 1, 10), Exited,
                Report(R"(dest_surf->Lock\(dest_surf, DSLF_WRITE, &surf_data, &ret_pitch\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(Locked(), 0, 0, 8, 8, 8, _bitmap, 0, 0), Exited,
                Report(R"(dest_surf->Lock\(dest_surf, DSLF_WRITE, &surf_data, &ret_pitch\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(Locked(), 0, 0, 8, 8, Surface(DSPF_LUT8), 0, 0), Exited,
                Report(R"(dest_surf->Lock\(dest_surf, DSLF_WRITE, &surf_data_dst, )"
                       R"(&ret_pitch_dst\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(Surface(DSPF_LUT8), 0, 0, 8, 8, Locked(), 0, 0), Exited,
                Report(R"(src_surf->Lock\(src_surf, DSLF_READ, &surf_data_src, )"
                       R"(&ret_pitch_src\))"));
}

TEST_F(ColorUtilDeathTest, FailedUnlocksAreReported)
{
    EXPECT_EXIT(MHEG_displayRectangle(WithoutUnlock(), 0, 0, 1, 1, 10), Exited,
                Report(R"(dest_surf->Unlock\(dest_surf\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(WithoutUnlock(), 0, 0, 8, 8, 8, _bitmap, 0, 0), Exited,
                Report(R"(dest_surf->Unlock\(dest_surf\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(Surface(DSPF_LUT8), 0, 0, 8, 8, WithoutUnlock(), 0, 0), Exited,
                Report(R"(src_surf->Unlock\(src_surf\))"));
}

} // namespace
