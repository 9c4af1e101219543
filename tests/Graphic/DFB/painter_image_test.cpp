/** Images and textures of the painter: which calls are made, and what is seen. */
#include "DFB/painter.h"

#include "engine_display.h"
#include "image_support.h"
#include "picture_compare.h"
#include "recording_surface.h"
#include "seeded_random.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::CallLog;
using kestrin_test::EngineDisplay;
using kestrin_test::GroundOf;
using kestrin_test::kGroundColor;
using kestrin_test::kGroundIndex;
using kestrin_test::MemoryImage;
using kestrin_test::NameInLogs;
using kestrin_test::PixelsOf;
using kestrin_test::RecordingSurface;
using kestrin_test::SamePicture;
using kestrin_test::SeededRandom;
using kestrin_test::SetPixels;
using kestrin_test::SurfaceOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace zelxxx;

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 40;

/** An image that notes which parts of it are drawn. */
class NotedImage : public Image
{
public:
    NotedImage(MetricValue width, MetricValue height)
        : Image(Color32Bit, width, height, nullptr, UseSystemMemory, TypeImg, 0, nullptr, nullptr)
    {
    }
    void PaintToSurface(IDirectFBSurface*, UInt16 frame, MetricValue x, MetricValue y,
                        MetricValue width, MetricValue height, MetricValue src_x, MetricValue src_y,
                        BlendMode blend_mode) override
    {
        std::string line;
        for (const int number : {int{frame}, int{x}, int{y}, int{width}, int{height}, int{src_x},
                                 int{src_y}, int{blend_mode}})
            line += (line.empty() ? "" : " ") + std::to_string(number);
        painted.push_back(line);
    }
    std::vector<std::string> painted;
};

class PainterImage : public testing::Test
{
protected:
    explicit PainterImage(ColorMode mode = Color32Bit)
        : _mode(mode), _engine(64, 48, mode), _canvas(zelCreateCanvas(kWidth, kHeight, mode)),
          _painter(zelCreatePainter(_canvas)), _noted(new NotedImage(16, 16)),
          _recording(SurfaceOf(_canvas))
    {
        SetPixels(SurfaceOf(_canvas), ArgbImage(kWidth, kHeight, GroundOf(mode)));
        _recording.Take();
    }

    void Draw(IImage* image, MetricValue x, MetricValue y, MetricValue width, MetricValue height,
              MetricValue src_x = 0, MetricValue src_y = 0, BlendValue blend = 255,
              BlendMode blend_mode = BlendSrcOver)
    {
        _painter->DrawImage(image, 3, x, y, width, height, src_x, src_y, width, height, blend,
                            blend_mode);
    }
    void Tile(MetricValue left, MetricValue top, MetricValue width, MetricValue height,
              MetricValue origin_x, MetricValue origin_y)
    {
        _painter->DrawTexture(_noted, 3, left, top, width, height, origin_x, origin_y, 255,
                              BlendSrcCopy);
    }
    /** What was painted since the last question. */
    std::vector<std::string> Painted() { return std::exchange(_noted->painted, {}); }
    std::uint32_t At(int x, int y) { return PixelsOf(SurfaceOf(_canvas)).At(x, y); }

    ColorMode _mode;
    EngineDisplay _engine;
    PCanvas _canvas;
    ZELObjPtr<IPainter> _painter;
    ZELObjPtr<NotedImage> _noted;
    RecordingSurface _recording;
};

class PainterImageOn8Bit : public PainterImage
{
protected:
    PainterImageOn8Bit() : PainterImage(Color8Bit) {}
};

// ---- DrawImage

TEST_F(PainterImage, SourceOverSetsEverythingAndResetsTheFlagsOnly)
{
    Draw(_noted, 5, 6, 7, 8, 1, 2, 128);
    EXPECT_THAT(Painted(), ElementsAre("3 5 6 7 8 1 2 0"));
    EXPECT_THAT(_recording.Take(),
                ElementsAre("SetBlittingFlags(BLEND_ALPHACHANNEL|BLEND_COLORALPHA)",
                            "SetPorterDuff(SRC_OVER)", "SetColor(0, 0, 0, 128)",
                            "SetBlittingFlags(NOFX)"));
    EXPECT_EQ(DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_BLEND_COLORALPHA, 3);
}

TEST_F(PainterImage, OtherModesOnlyClearTheFlagsAndHandOnThePaintersMode)
{
    _painter->SetBlendMode(BlendSrcOver8BIT);
    Draw(_noted, 5, 6, 7, 8, 1, 2, 128, BlendSrcCopy);
    EXPECT_THAT(Painted(), ElementsAre("3 5 6 7 8 1 2 2"));
    EXPECT_THAT(_recording.Take(), ElementsAre("SetBlittingFlags(NOFX)"));
}

TEST_F(PainterImage, NothingIsDrawnWithoutOpacityImageOrSize)
{
    Draw(_noted, 5, 6, 7, 8, 0, 0, 0);
    Draw(nullptr, 5, 6, 7, 8);
    for (const auto& size : {std::pair<MetricValue, MetricValue>{0, 8}, {7, 0}, {-1, 8}, {7, -1}})
        Draw(_noted, 5, 6, size.first, size.second);
    EXPECT_THAT(Painted(), IsEmpty());
    EXPECT_THAT(_recording.Take(), IsEmpty());
}

TEST_F(PainterImage, SourceSizeOfZeroDrawsNothing)
{
    for (const auto& size : {std::pair<MetricValue, MetricValue>{0, 8}, {7, 0}, {-1, 8}, {7, -1}})
        _painter->DrawImage(_noted, 0, 5, 6, 7, 8, 0, 0, size.first, size.second, 255,
                            BlendSrcOver);
    EXPECT_THAT(Painted(), IsEmpty());
}

TEST_F(PainterImage, SourceSizeDoesNotScale)
{
    _painter->DrawImage(_noted, 0, 5, 6, 7, 8, 1, 2, 100, 1, 255, BlendSrcOver);
    EXPECT_THAT(Painted(), ElementsAre("0 5 6 7 8 1 2 0"));
}

TEST_F(PainterImage, SourceMovesWithTheClip)
{
    _painter->SetOrigin(10, 20);
    _painter->SetClipping(2, 3, 12, 13);
    Draw(_noted, 8, 19, 16, 16, 1, 1);
    EXPECT_THAT(Painted(), ElementsAre("3 2 3 10 10 5 5 0"));
    Draw(_noted, 22, 20, 16, 16);
    Draw(_noted, -10, 20, 16, 16);
    EXPECT_THAT(Painted(), IsEmpty());
}

TEST_F(PainterImage, PainterWithoutACanvasDrawsNothing)
{
    const ZELObjPtr<IPainter> painter(zelCreatePainter(nullptr));
    painter->DrawImage(_noted, 0, 0, 0, 5, 5, 0, 0, 5, 5, 255, BlendSrcOver);
    EXPECT_THAT(Painted(), IsEmpty());
}

TEST_F(PainterImage, OpaquePixelsReplaceAndTransparentOnesLeaveWhatIsThere)
{
    const PImage image = MemoryImage(Color32Bit, 2, 1, {1, 2, 3, 255, 0, 0, 0, 0});
    _painter->DrawImage(image, 0, 4, 5, 2, 1, 0, 0, 2, 1, 255, BlendSrcOver);
    EXPECT_EQ(At(3, 5), kGroundColor);
    EXPECT_EQ(At(4, 5), 0xff010203U);
    EXPECT_EQ(At(5, 5), kGroundColor);
}

TEST_F(PainterImage, ColoursCountAsPremultiplied)
{
    // Half opaque: the ground's half is added to the colours as they are.
    const PImage image = MemoryImage(Color32Bit, 1, 1, {0x40, 0x20, 0x10, 128});
    _painter->DrawImage(image, 0, 0, 0, 1, 1, 0, 0, 1, 1, 255, BlendSrcOver);
    const std::uint32_t seen = At(0, 0);
    EXPECT_NEAR(seen >> 16 & 0xff, 0x40 + 0x10, 1);
    EXPECT_NEAR(seen >> 8 & 0xff, 0x20 + 0x18, 1);
    EXPECT_NEAR(seen & 0xff, 0x10 + 0x20, 1);
}

TEST_F(PainterImage, CopyReplacesOpacityToo)
{
    const PImage image = MemoryImage(Color32Bit, 2, 1, {1, 2, 3, 40, 0, 0, 0, 0});
    _painter->DrawImage(image, 0, 0, 0, 2, 1, 0, 0, 2, 1, 7, BlendSrcCopy);
    EXPECT_EQ(At(0, 0), 0x28010203U);
    EXPECT_EQ(At(1, 0), 0U);
}

TEST_F(PainterImage, FrameIsBlittedWithoutItsKeyIfItHasNone)
{
    const PImage image = MemoryImage(Color24Bit, 2, 1, {1, 2, 3, 0, 0, 0}, UseFrameBuffer);
    _painter->DrawImage(image, 0, 4, 5, 2, 1, 0, 0, 2, 1, 255, BlendSrcOver);
    EXPECT_EQ(At(4, 5), 0xff010203U);
    EXPECT_EQ(At(5, 5), 0xff000000U);
    EXPECT_THAT(_recording.Take(),
                Contains(testing::MatchesRegex("Blit\\(.*, \\[0 0 2 1\\], 4, 5\\)")));
}

TEST_F(PainterImageOn8Bit, ColoursBecomeTheNearestOfThePalette)
{
    PaletteEntry table[256] = {};
    table[7] = {0xff, 0, 0, 255};
    table[8] = {0, 0, 0xff, 255};
    const PView view(zelCreateView(0, 64, 48, Color8Bit, false));
    view->SetPalette(PPalette(zelCreatePalette(table)), 256, 256, 256);
    const PImage image = MemoryImage(Color32Bit, 2, 1, {0xf0, 1, 2, 255, 3, 9, 0xe0, 255});
    _painter->DrawImage(image, 0, 0, 0, 2, 1, 0, 0, 2, 1, 255, BlendSrcCopy);
    EXPECT_EQ(At(0, 0), 7U);
    EXPECT_EQ(At(1, 0), 8U);
    view->SetPalette(nullptr);
}

TEST_F(PainterImageOn8Bit, IndicesInMemoryAreCopiedInCopyMode)
{
    _painter->SetBlendMode(BlendSrcCopy);
    const PImage image = MemoryImage(Color8Bit, 2, 1, {0, 7});
    _painter->DrawImage(image, 0, 4, 5, 2, 1, 0, 0, 2, 1, 255, BlendSrcCopy);
    EXPECT_THAT(_recording.Take(),
                ElementsAre("SetBlittingFlags(NOFX)", "Lock(WRITE, out, out)", "Unlock()"));
    EXPECT_EQ(At(4, 5), 0U);
    EXPECT_EQ(At(5, 5), 7U);
}

TEST_F(PainterImageOn8Bit, IndicesInMemoryBlendByTable)
{
    _painter->SetBlendMode(BlendSrcOver8BIT);
    UInt8 blended = kGroundIndex;
    OSD_BlendPixels(&blended, 10);
    const PImage image = MemoryImage(Color8Bit, 2, 1, {0, 10});
    _painter->DrawImage(image, 0, 4, 5, 2, 1, 0, 0, 2, 1, 255, BlendSrcCopy);
    EXPECT_EQ(At(4, 5), kGroundIndex);
    EXPECT_EQ(At(5, 5), blended);
}

// ---- DrawTexture

TEST_F(PainterImage, TilesOfAPositiveOriginBeginOutside)
{
    Tile(0, 0, 40, 16, 4, 0);
    EXPECT_THAT(Painted(), ElementsAre("3 0 0 4 16 12 0 0", "3 4 0 16 16 0 0 0",
                                       "3 20 0 16 16 0 0 0", "3 36 0 4 16 0 0 0"));
}

TEST_F(PainterImage, TilesOfANegativeOriginBeginThere)
{
    Tile(1, 2, 20, 20, -4, -20);
    EXPECT_THAT(Painted(), ElementsAre("3 1 2 12 12 4 4 0", "3 13 2 8 12 0 4 0",
                                       "3 1 14 12 8 4 0 0", "3 13 14 8 8 0 0 0"));
}

TEST_F(PainterImage, TileThatBeginsAtTheEdgeIsNotDrawn)
{
    Tile(0, 0, 16, 16, 0, 0);
    EXPECT_THAT(Painted(), ElementsAre("3 0 0 16 16 0 0 0"));
}

TEST_F(PainterImage, OriginsRepeatWithTheTile)
{
    Tile(0, 0, 40, 16, 4, 0);
    const std::vector<std::string> once = Painted();
    for (const MetricValue origin : {20, 4 + 16 * 100}) {
        Tile(0, 0, 40, 16, origin, 16);
        EXPECT_EQ(Painted(), once) << origin;
    }
}

TEST_F(PainterImage, TextureSmallerThanATile)
{
    Tile(3, 4, 5, 6, 0, 0);
    EXPECT_THAT(Painted(), ElementsAre("3 3 4 5 6 0 0 0"));
    Tile(3, 4, 5, 6, 8, 8);
    EXPECT_THAT(Painted(), ElementsAre("3 3 4 5 6 8 8 0"));
}

TEST_F(PainterImage, TextureOfNothing)
{
    Tile(0, 0, 0, 16, 0, 0);
    Tile(0, 0, 16, -1, 0, 0);
    Tile(0, 0, -40, -40, 0, 0);
    _painter->DrawTexture(_noted, 0, 0, 0, 16, 16, 0, 0, 0, BlendSrcOver);
    _painter->DrawTexture(nullptr, 0, 0, 0, 16, 16, 0, 0, 255, BlendSrcOver);
    EXPECT_THAT(Painted(), IsEmpty());
}

TEST_F(PainterImage, TextureOfAnImageWithoutASizeEnds)
{
    for (const auto& size : {std::pair<MetricValue, MetricValue>{0, 16}, {16, 0}, {0, 0}}) {
        const ZELObjPtr<NotedImage> image(new NotedImage(size.first, size.second));
        _painter->DrawTexture(image, 0, 0, 0, 40, 16, 4, 0, 255, BlendSrcOver);
        EXPECT_THAT(image->painted, IsEmpty());
    }
}

TEST_F(PainterImage, EveryTexturePixelIsThatOfTheEndlessGrid)
{
    std::vector<UInt8> bytes;
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x)
            bytes.insert(bytes.end(), {static_cast<UInt8>(x), static_cast<UInt8>(y), 0});
    }
    const PImage image = MemoryImage(Color24Bit, 5, 4, bytes, UseFrameBuffer);
    SeededRandom random;
    for (int round = SeededRandom::Rounds(200); round > 0 && !HasFailure(); --round) {
        const int left = static_cast<int>(random.Between(-10, 50));
        const int top = static_cast<int>(random.Between(-10, 50));
        const int width = static_cast<int>(random.Between(0, 40));
        const int height = static_cast<int>(random.Between(0, 40));
        const int ox = static_cast<int>(random.Between(-30, 30));
        const int oy = static_cast<int>(random.Between(-30, 30));
        SCOPED_TRACE(testing::Message() << left << ' ' << top << ' ' << width << ' ' << height
                                        << " at " << ox << ' ' << oy);
        ArgbImage expected(kWidth, kHeight, kGroundColor);
        for (int y = std::max(top, 0); y < std::min(top + height, kHeight); ++y) {
            for (int x = std::max(left, 0); x < std::min(left + width, kWidth); ++x)
                expected.At(x, y) =
                    0xff000000U | static_cast<std::uint32_t>(((x - left - ox) % 5 + 5) % 5) << 16 |
                    static_cast<std::uint32_t>(((y - top - oy) % 4 + 4) % 4) << 8;
        }
        SetPixels(SurfaceOf(_canvas), ArgbImage(kWidth, kHeight, kGroundColor));
        _painter->DrawTexture(image, 0, static_cast<MetricValue>(left),
                              static_cast<MetricValue>(top), static_cast<MetricValue>(width),
                              static_cast<MetricValue>(height), static_cast<MetricValue>(ox),
                              static_cast<MetricValue>(oy), 255, BlendSrcOver);
        EXPECT_TRUE(SamePicture(PixelsOf(SurfaceOf(_canvas)), expected));
    }
}

} // namespace
