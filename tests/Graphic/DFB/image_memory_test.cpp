/** Images of a client's pixels: what is kept, how it can be changed, what it looks like. */
#include "engine_display.h"
#include "image_support.h"
#include "picture_files.h"
#include "recording_surface.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::EngineDisplay;
using kestrin_test::JpegFile;
using kestrin_test::kGroundColor;
using kestrin_test::kGroundIndex;
using kestrin_test::MemoryImage;
using kestrin_test::PaintedOn;
using kestrin_test::PngFile;
using kestrin_test::RecordingSurface;
using kestrin_test::SurfaceOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace zelxxx;

namespace {

class ImageMemory : public testing::Test
{
protected:
    explicit ImageMemory(ColorMode mode = Color32Bit) : _engine(64, 48, mode), _mode(mode) {}

    /** The first pixels of a painted image, row by row. */
    std::vector<std::uint32_t> Painted(const PImage& image, int width, int height,
                                       BlendMode blend_mode = BlendSrcOver)
    {
        return PaintedOn(_mode, image, 0, width, height, blend_mode).pixels;
    }

    EngineDisplay _engine;
    ColorMode _mode;
};

class ImageMemoryOn8Bit : public ImageMemory
{
protected:
    ImageMemoryOn8Bit() : ImageMemory(Color8Bit) {}
};

std::vector<UInt32> Words(const PImage& image)
{
    const auto* words = reinterpret_cast<UInt32*>(image->GetImageBuffer());
    return std::vector<UInt32>(words, words + image->GetWidth() * image->GetHeight());
}

// ---- What is kept

TEST_F(ImageMemory, RgbaBytesBecomeArgbWords)
{
    const PImage image = MemoryImage(Color32Bit, 2, 1, {1, 2, 3, 4, 0xff, 0xfe, 0xfd, 0xfc});
    EXPECT_THAT(Words(image), ElementsAre(0x04010203U, 0xfcfffefdU));
    EXPECT_EQ(image->GetFrameCount(), 1);
    EXPECT_EQ(image->GetImageType(), TypeImg);
}

TEST_F(ImageMemory, OneBitDataIsCopiedInWholeBytesOfItsWidth)
{
    const PImage image = MemoryImage(Color1Bit, 20, 2, {1, 2, 3, 4, 5, 6});
    ASSERT_TRUE(image->GetImageBuffer());
    EXPECT_EQ(std::vector<UInt8>(image->GetImageBuffer(), image->GetImageBuffer() + 4),
              (std::vector<UInt8>{1, 2, 3, 4}));
}

TEST_F(ImageMemory, SurfaceTypeCopiesNothing)
{
    const PImage image =
        MemoryImage(Color32Bit, 2, 1, {1, 2, 3, 4, 5, 6, 7, 8}, UseSystemMemory, TypeSurface);
    EXPECT_EQ(image->GetImageBuffer(), nullptr);
    EXPECT_EQ(image->GetWidth(), 2);
    EXPECT_EQ(image->GetFrameCount(), 1);
    EXPECT_THAT(Painted(image, 2, 1), Each(kGroundColor));
}

TEST_F(ImageMemory, FrameBufferPixelsAreInAFrame)
{
    for (const ColorMode mode : {Color4Bit, Color8Bit, Color16Bit, Color24Bit}) {
        const PImage image = MemoryImage(mode, 2, 1, {1, 2, 3, 4, 5, 6}, UseFrameBuffer);
        EXPECT_TRUE(SideOf<Image>(static_cast<IImage*>(image))->IsAvailable());
        EXPECT_EQ(image->GetImageBuffer(), nullptr);
        EXPECT_EQ(image->GetFrameCount(), 1);
    }
}

TEST_F(ImageMemory, NumbersKeptForTheClient)
{
    const PImage image = MemoryImage(Color32Bit, 2, 1, {});
    Int32 left = 1;
    Int32 top = 1;
    image->GetAttribute(left, top);
    EXPECT_EQ(left, 0);
    EXPECT_EQ(top, 0);
    image->SetAttribute(-70000, 80000);
    image->GetAttribute(left, top);
    EXPECT_EQ(left, -70000);
    EXPECT_EQ(top, 80000);
    EXPECT_EQ(image->GetFileSize(), 0);
    image->SetFileSize(-3);
    EXPECT_EQ(image->GetFileSize(), -3);
}

TEST_F(ImageMemory, SizesOfNothing)
{
    for (const ColorMode mode : {Color1Bit, Color8Bit, Color32Bit}) {
        for (const ImageBufferMode buffer : {UseFrameBuffer, UseSystemMemory}) {
            for (const int width : {0, -5}) {
                const PImage image = MemoryImage(mode, width, 3, {1, 2, 3}, buffer);
                EXPECT_EQ(image->GetWidth(), 0);
                EXPECT_EQ(image->GetImageBuffer(), nullptr);
                EXPECT_THAT(Painted(image, 2, 1), Each(kGroundColor));
            }
        }
    }
}

// ---- Clip rectangle

class ClippedImage : public Image
{
public:
    ClippedImage(MetricValue width, MetricValue height)
        : Image(Color32Bit, width, height, nullptr, UseSystemMemory, TypeImg, 0, nullptr, nullptr)
    {
    }
    std::vector<Int32> Clip() const { return {_clip_x1, _clip_y1, _clip_x2, _clip_y2}; }
};

TEST_F(ImageMemory, ClippingIsCutAtTheImage)
{
    ClippedImage image(100, 50);
    EXPECT_THAT(image.Clip(), ElementsAre(0, 0, 0, 0));
    image.SetClipping(-5, -5, 1000, 1000);
    EXPECT_THAT(image.Clip(), ElementsAre(0, 0, 100, 50));
    image.SetClipping(10, 20, 30, 40);
    EXPECT_THAT(image.Clip(), ElementsAre(10, 20, 30, 40));
    image.SetClipping(200, 200, -3, -4);
    EXPECT_THAT(image.Clip(), ElementsAre(200, 200, -3, -4));
}

TEST_F(ImageMemory, ClippingOfAnImageWithoutASizeEndsAtZero)
{
    ClippedImage image(0, 50);
    image.SetClipping(1, 2, 30, 40);
    EXPECT_THAT(image.Clip(), ElementsAre(1, 2, 0, 0));
}

// ---- SetImageData

TEST_F(ImageMemory, DataIsPlacedByItsPositionAndRowBytes)
{
    const PImage image = MemoryImage(Color32Bit, 3, 3, {});
    EXPECT_EQ(image->GetImageBuffer(), nullptr);
    UInt32 data[] = {1, 2, 9, 3, 4, 9};
    image->SetImageData(data, 12, 1, 1, 2, 2, Color32Bit);
    EXPECT_THAT(Words(image), ElementsAre(0, 0, 0, 0, 1, 2, 0, 3, 4));
}

TEST_F(ImageMemory, DataAtNegativePositionsIsCut)
{
    const PImage image = MemoryImage(Color32Bit, 2, 2, {});
    UInt32 data[] = {1, 2, 3, 4};
    image->SetImageData(data, 8, -1, -1, 2, 2, Color32Bit);
    EXPECT_THAT(Words(image), ElementsAre(4, 0, 0, 0));
}

TEST_F(ImageMemory, DataBeyondTheImageIsCut)
{
    const PImage image = MemoryImage(Color32Bit, 2, 2, {});
    UInt32 data[] = {1, 2, 3, 4};
    image->SetImageData(data, 8, 1, 1, 2, 2, Color32Bit);
    EXPECT_THAT(Words(image), ElementsAre(0, 0, 0, 1));
    image->SetImageData(data, 8, 2, 0, 2, 2, Color32Bit);
    image->SetImageData(data, 8, 0, 0, -2, 2, Color32Bit);
    image->SetImageData(data, 8, -2, 0, 2, 2, Color32Bit);
    image->SetImageData(nullptr, 8, 0, 0, 2, 2, Color32Bit);
    EXPECT_THAT(Words(image), ElementsAre(0, 0, 0, 1));
}

TEST_F(ImageMemory, NoMoreOfARowIsReadThanItsBytes)
{
    const PImage image = MemoryImage(Color32Bit, 2, 2, {});
    const std::vector<UInt32> exact = {1, 3}; // two rows of one pixel
    image->SetImageData(const_cast<UInt32*>(exact.data()), 4, 0, 0, 2, 2, Color32Bit);
    EXPECT_THAT(Words(image), ElementsAre(1, 0, 3, 0));
    image->SetImageData(const_cast<UInt32*>(exact.data()), 0, 0, 0, 2, 2, Color32Bit);
    EXPECT_THAT(Words(image), ElementsAre(1, 0, 3, 0));
}

TEST_F(ImageMemory, WordsIntoByteStorageStayInTheirRow)
{
    const PImage image = MemoryImage(Color8Bit, 6, 2, std::vector<UInt8>(12, 0xee));
    UInt32 data[] = {0x01010101, 0x02020202};
    image->SetImageData(data, 4, 1, 0, 1, 2, Color32Bit);
    const std::vector<UInt8> bytes(image->GetImageBuffer(), image->GetImageBuffer() + 12);
    EXPECT_THAT(bytes, ElementsAre(0xee, 0xee, 0xee, 0xee, 1, 1, 0xee, 0xee, 0xee, 0xee, 2, 2));
}

TEST_F(ImageMemory, SurfaceTypeTakesNoData)
{
    const PImage image = MemoryImage(Color32Bit, 2, 2, {}, UseSystemMemory, TypeSurface);
    UInt32 data[] = {1, 2, 3, 4};
    image->SetImageData(data, 8, 0, 0, 2, 2, Color32Bit);
    EXPECT_EQ(image->GetImageBuffer(), nullptr);
}

TEST_F(ImageMemoryOn8Bit, BytesIntoAFrame)
{
    const PImage image = MemoryImage(Color8Bit, 3, 2, {1, 2, 3, 4, 5, 6}, UseFrameBuffer);
    UInt8 data[] = {11, 12, 13, 14};
    image->SetImageData(reinterpret_cast<UInt32*>(data), 2, 2, 0, 2, 2, Color8Bit);
    EXPECT_THAT(Painted(image, 3, 2), ElementsAre(1, 2, 11, 4, 5, 13));
}

// ---- ImageClear

TEST_F(ImageMemoryOn8Bit, ClearOfAFrameByIndex)
{
    const PImage image = MemoryImage(Color8Bit, 3, 2, {1, 2, 3, 4, 5, 6}, UseFrameBuffer);
    image->ImageClear(Color8Bit, 1, 0, 2, 1, 77, 0);
    EXPECT_THAT(Painted(image, 3, 2), ElementsAre(1, 77, 77, 4, 5, 6));
}

TEST_F(ImageMemory, ClearOfAFrameByColourHasRedHigh)
{
    const PImage image = MemoryImage(Color24Bit, 2, 1, {1, 2, 3, 4, 5, 6}, UseFrameBuffer);
    image->ImageClear(Color32Bit, 1, 0, 1, 1, 0x112233, 0x80);
    EXPECT_THAT(Painted(image, 2, 1), ElementsAre(0xff010203U, 0x80112233U));
}

TEST_F(ImageMemory, ClearLeavesMemoryAlone)
{
    const PImage image = MemoryImage(Color32Bit, 1, 1, {1, 2, 3, 4});
    image->ImageClear(Color32Bit, 0, 0, 1, 1, 0xffffff, 255);
    EXPECT_THAT(Words(image), ElementsAre(0x04010203U));
}

// ---- Pixels of every mode

/** Gives the view a palette in which an index is its colour's red. */
struct GivenPalette
{
    explicit GivenPalette(ColorMode mode) : view(zelCreateView(0, 64, 48, mode, false))
    {
        for (int i = 0; i < 256; ++i)
            table[i] = {static_cast<UInt8>(i), 0x20, 0x30, 255};
        view->SetPalette(PPalette(zelCreatePalette(table)));
    }
    ~GivenPalette() { view->SetPalette(nullptr); }
    PView view;
    PaletteEntry table[256] = {};
};

TEST_F(ImageMemory, Rgb565WidensToOpaque)
{
    // Low byte first: 0xf800 red, 0x07e0 green, 0x001f blue, 0x8410 a middle grey.
    for (const ImageBufferMode buffer : {UseFrameBuffer, UseSystemMemory}) {
        const PImage image =
            MemoryImage(Color16Bit, 4, 1, {0, 0xf8, 0xe0, 7, 0x1f, 0, 0x10, 0x84}, buffer);
        EXPECT_THAT(Painted(image, 4, 1),
                    ElementsAre(0xffff0000U, 0xff00ff00U, 0xff0000ffU, 0xff848284U));
    }
}

TEST_F(ImageMemory, TwentyFourBitBytesAreRedGreenBlue)
{
    for (const ImageBufferMode buffer : {UseFrameBuffer, UseSystemMemory}) {
        const PImage image = MemoryImage(Color24Bit, 2, 1, {1, 2, 3, 0xff, 0xfe, 0xfd}, buffer);
        EXPECT_THAT(Painted(image, 2, 1), ElementsAre(0xff010203U, 0xfffffefdU));
    }
}

TEST_F(ImageMemory, ThirtyTwoBitPixelsKeepTheirOpacity)
{
    const PImage image = MemoryImage(Color32Bit, 2, 1, {1, 2, 3, 4, 5, 6, 7, 255});
    EXPECT_THAT(Painted(image, 2, 1), ElementsAre(0x04010203U, 0xff050607U));
}

TEST_F(ImageMemory, IndicesTakeTheColoursOfTheViewsPalette)
{
    const GivenPalette given(Color32Bit);
    for (const ImageBufferMode buffer : {UseFrameBuffer, UseSystemMemory}) {
        EXPECT_THAT(Painted(MemoryImage(Color8Bit, 2, 1, {7, 200}, buffer), 2, 1),
                    ElementsAre(0xff072030U, 0xffc82030U));
        EXPECT_THAT(Painted(MemoryImage(Color4Bit, 3, 1, {0x1a, 0xf0}, buffer), 3, 1),
                    ElementsAre(0xff012030U, 0xff0a2030U, 0xff0f2030U));
    }
}

TEST_F(ImageMemory, IndicesTakeTheFixedPaletteWhenThereIsNoOther)
{
    // 0 transparent, 75 and 187 the opaque black and white corners of the cube, 188 no colour.
    for (const ImageBufferMode buffer : {UseFrameBuffer, UseSystemMemory}) {
        const std::vector<std::uint32_t> painted =
            Painted(MemoryImage(Color8Bit, 3, 1, {0, 187, 188}, buffer), 3, 1);
        EXPECT_EQ(painted[0] >> 24, 0U);
        EXPECT_EQ(painted[1], 0xffffffffU);
        EXPECT_EQ(painted[2], 0U);
    }
}

TEST_F(ImageMemoryOn8Bit, IndicesStay)
{
    for (const ImageBufferMode buffer : {UseFrameBuffer, UseSystemMemory}) {
        for (const BlendMode mode : {BlendSrcOver, BlendSrcCopy}) {
            EXPECT_THAT(Painted(MemoryImage(Color8Bit, 3, 1, {0, 7, 200}, buffer), 3, 1, mode),
                        ElementsAre(0, 7, 200));
            EXPECT_THAT(Painted(MemoryImage(Color4Bit, 3, 1, {0x1a, 0xf0}, buffer), 3, 1, mode),
                        ElementsAre(1, 10, 15));
        }
    }
}

TEST_F(ImageMemoryOn8Bit, IndicesInMemoryBlendByTableIn8BitMode)
{
    const PImage memory = MemoryImage(Color8Bit, 3, 1, {0, 10, 187});
    UInt8 blended = kGroundIndex;
    OSD_BlendPixels(&blended, 10);
    ASSERT_NE(blended, 10);
    EXPECT_THAT(Painted(memory, 3, 1, BlendSrcOver8BIT), ElementsAre(kGroundIndex, blended, 187));
    const PImage frame = MemoryImage(Color8Bit, 3, 1, {0, 10, 187}, UseFrameBuffer);
    EXPECT_THAT(Painted(frame, 3, 1, BlendSrcOver8BIT), ElementsAre(0, 10, 187));
}

// ---- 1 bit

MonoGlyphAttr Mono(Int32 rowbyte, Int32 bitoffset, Int32 hz, Int32 vz)
{
    return {rowbyte, bitoffset, 0x7fffffff, 0x7f000001, hz, vz};
}

constexpr std::uint32_t kSet = 0x7fffffff;
constexpr std::uint32_t kClear = 0x7f000001;

TEST_F(ImageMemory, BitsHaveTheHighestFirst)
{
    MonoGlyphAttr mono = Mono(1, 0, 1, 1);
    const PImage image = MemoryImage(Color1Bit, 8, 1, {0xb1}, UseSystemMemory, TypeImg, &mono);
    mono = {};
    EXPECT_THAT(Painted(image, 8, 1),
                ElementsAre(kSet, kClear, kSet, kSet, kClear, kClear, kClear, kSet));
}

TEST_F(ImageMemory, BitsAreMagnified)
{
    MonoGlyphAttr mono = Mono(1, 0, 3, 2);
    const PImage image =
        MemoryImage(Color1Bit, 8, 2, {0x80, 0x40}, UseSystemMemory, TypeImg, &mono);
    EXPECT_THAT(Painted(image, 4, 4),
                ElementsAre(kSet, kSet, kSet, kClear, kSet, kSet, kSet, kClear, kClear, kClear,
                            kClear, kSet, kClear, kClear, kClear, kSet));
    EXPECT_EQ(image->GetWidth(), 8);
    EXPECT_EQ(image->GetHeight(), 2);
}

TEST_F(ImageMemory, MagnificationBelowOneIsOne)
{
    MonoGlyphAttr mono = Mono(0, 0, 0, -4);
    const PImage image =
        MemoryImage(Color1Bit, 8, 2, {0x80, 0x40}, UseSystemMemory, TypeImg, &mono);
    EXPECT_THAT(Painted(image, 2, 2), ElementsAre(kSet, kClear, kClear, kSet));
}

TEST_F(ImageMemory, FirstBitAndRowLengthAreTheClients)
{
    MonoGlyphAttr mono = Mono(2, 3, 1, 1);
    const PImage image =
        MemoryImage(Color1Bit, 16, 2, {0x10, 0, 0x08, 0}, UseSystemMemory, TypeImg, &mono);
    EXPECT_THAT(Painted(image, 2, 2), ElementsAre(kSet, kClear, kClear, kSet));
}

TEST_F(ImageMemory, BitsThatAreNotThereAreClear)
{
    // Rows of 4 bytes in an image that has 1 for each: only the first row exists.
    MonoGlyphAttr mono = Mono(4, 6, 1, 1);
    const PImage image =
        MemoryImage(Color1Bit, 8, 4, {0xff, 0xff, 0xff, 0xff}, UseSystemMemory, TypeImg, &mono);
    EXPECT_THAT(Painted(image, 8, 2),
                ElementsAre(kSet, kSet, kSet, kSet, kSet, kSet, kSet, kSet, kClear, kClear, kClear,
                            kClear, kClear, kClear, kClear, kClear));
    mono = Mono(1, 6, 1, 1);
    const PImage cut = MemoryImage(Color1Bit, 8, 2, {0xff, 0xff}, UseSystemMemory, TypeImg, &mono);
    EXPECT_THAT(Painted(cut, 4, 1), ElementsAre(kSet, kSet, kClear, kClear));
    mono = Mono(1, -1, 1, 1);
    const PImage before = MemoryImage(Color1Bit, 8, 1, {0xff}, UseSystemMemory, TypeImg, &mono);
    EXPECT_THAT(Painted(before, 2, 1), ElementsAre(kClear, kSet));
}

TEST_F(ImageMemoryOn8Bit, BitsAreIndices)
{
    MonoGlyphAttr mono = {1, 0, 187, 4, 1, 1};
    const PImage image = MemoryImage(Color1Bit, 8, 1, {0xa0}, UseSystemMemory, TypeImg, &mono);
    for (const BlendMode mode : {BlendSrcOver, BlendSrcCopy})
        EXPECT_THAT(Painted(image, 4, 1, mode), ElementsAre(187, 4, 187, 4));
}

// ---- Parts and scratch surface

TEST_F(ImageMemory, PartsAreCutAtThePicture)
{
    const PCanvas canvas(zelCreateCanvas(5, 1, Color32Bit));
    for (const ImageBufferMode buffer : {UseFrameBuffer, UseSystemMemory}) {
        const PImage image = MemoryImage(Color24Bit, 2, 1, {0, 0, 1, 0, 0, 2}, buffer);
        Image* own = SideOf<Image>(static_cast<IImage*>(image));
        kestrin_test::SetPixels(SurfaceOf(canvas), ArgbImage(5, 1, kGroundColor));
        own->PaintToSurface(SurfaceOf(canvas), 0, 0, -2, 5, 5, -1, -2, BlendSrcOver);
        EXPECT_THAT(
            kestrin_test::PixelsOf(SurfaceOf(canvas)).pixels,
            ElementsAre(kGroundColor, 0xff000001U, 0xff000002U, kGroundColor, kGroundColor));
        // Beside the picture there is nothing to draw.
        own->PaintToSurface(SurfaceOf(canvas), 0, 3, 0, 2, 1, 2, 0, BlendSrcOver);
        own->PaintToSurface(SurfaceOf(canvas), 0, 3, 0, -2, 1, 0, 0, BlendSrcOver);
        EXPECT_EQ(kestrin_test::PixelsOf(SurfaceOf(canvas)).pixels[3], kGroundColor);
    }
}

TEST_F(ImageMemoryOn8Bit, CopiedIndicesAreCutAtTheSurface)
{
    const PCanvas canvas(zelCreateCanvas(3, 2, Color8Bit));
    const PImage image = MemoryImage(Color8Bit, 3, 2, {1, 2, 3, 4, 5, 6});
    Image* own = SideOf<Image>(static_cast<IImage*>(image));
    kestrin_test::SetPixels(SurfaceOf(canvas), ArgbImage(3, 2, kGroundIndex));
    own->PaintToSurface(SurfaceOf(canvas), 0, -1, 1, 3, 2, 0, 0, BlendSrcCopy);
    EXPECT_THAT(kestrin_test::PixelsOf(SurfaceOf(canvas)).pixels,
                ElementsAre(kGroundIndex, kGroundIndex, kGroundIndex, 2, 3, kGroundIndex));
    own->PaintToSurface(SurfaceOf(canvas), 0, 3, 0, 3, 2, 0, 0, BlendSrcCopy);
}

TEST_F(ImageMemory, ScratchSurfaceIsKept)
{
    const PCanvas canvas(zelCreateCanvas(8, 8, Color32Bit));
    const PImage image = MemoryImage(Color32Bit, 4, 4, std::vector<UInt8>(64, 0xff));
    Image* own = SideOf<Image>(static_cast<IImage*>(image));
    kestrin_test::CallLog log;
    kestrin_test::CallRecorder<IDirectFB> recorder(View::_dfb, log);
    recorder.Watch<&IDirectFB::CreateSurface>("CreateSurface");
    for (const MetricValue size : {4, 3, 4})
        own->PaintToSurface(SurfaceOf(canvas), 0, 0, 0, size, size, 0, 0, BlendSrcOver);
    EXPECT_THAT(log, ElementsAre("CreateSurface({flags 14, 4x4, ARGB}, out)"));
}

// ---- Conversion routine

int conversions;
void* seen_data;
UInt32 drawable[] = {0x80112233, 0xff445566};

void* Convert(IImage* image, void* data)
{
    ++conversions;
    seen_data = data;
    return image->GetWidth() == 2 ? drawable : nullptr;
}

TEST_F(ImageMemory, ConversionRoutineMakesThePixels)
{
    const UInt8 data[] = {1, 2, 3, 4, 5, 6, 7, 8};
    conversions = 0;
    const PImage surface(
        zelCreateImage(Color32Bit, 2, 1, data, UseFrameBuffer, TypeSurface, 8, Convert, nullptr));
    EXPECT_EQ(conversions, 0);
    EXPECT_THAT(Painted(surface, 2, 1), ElementsAre(0x80112233U, 0xff445566U));
    EXPECT_EQ(conversions, 1);
    EXPECT_EQ(seen_data, nullptr);

    const PImage kept(
        zelCreateImage(Color32Bit, 2, 1, data, UseFrameBuffer, TypeImg, 8, Convert, nullptr));
    EXPECT_THAT(Painted(kept, 2, 1), ElementsAre(0x80112233U, 0xff445566U));
    EXPECT_EQ(seen_data, kept->GetImageBuffer());

    const PImage none(zelCreateImage(Color32Bit, 3, 1, nullptr, UseFrameBuffer, TypeSurface, 0,
                                     Convert, nullptr));
    EXPECT_THAT(Painted(none, 2, 1), Each(kGroundColor));
}

// ---- PNG and JPEG

TEST_F(ImageMemory, PngFileIsUnpackedInItsOwnSize)
{
    const std::vector<UInt8> file = PngFile(2, 1, {1, 2, 3, 255, 9, 9, 9, 128});
    const PImage image = MemoryImage(Color32Bit, 50, 60, file, UseSystemMemory, TypePNG);
    EXPECT_EQ(image->GetWidth(), 2);
    EXPECT_EQ(image->GetHeight(), 1);
    EXPECT_EQ(image->GetImageType(), TypePNG);
    EXPECT_THAT(Words(image), ElementsAre(0xff010203U, 0x80090909U));
}

TEST_F(ImageMemory, JpegFileIsUnpackedOpaque)
{
    const PImage image =
        MemoryImage(Color32Bit, 0, 0, JpegFile(9, 7, 130), UseFrameBuffer, TypeJPG);
    EXPECT_EQ(image->GetWidth(), 9);
    EXPECT_EQ(image->GetHeight(), 7);
    EXPECT_THAT(Words(image), Each(0xff828282U));
    EXPECT_THAT(Painted(image, 9, 7), Each(0xff828282U));
}

TEST_F(ImageMemory, DataWithoutTheSignatureIsTakenAsPixels)
{
    for (const ImageType type : {TypePNG, TypeJPG})
        EXPECT_THAT(Words(MemoryImage(Color32Bit, 1, 1, {1, 2, 3, 4}, UseSystemMemory, type)),
                    ElementsAre(0x04010203U));
}

TEST_F(ImageMemory, FileOfTheOtherFormatIsTakenAsPixels)
{
    const std::vector<UInt8> file = PngFile(1, 1, {1, 2, 3, 255});
    const PImage image = MemoryImage(Color32Bit, 2, 1, file, UseSystemMemory, TypeJPG);
    EXPECT_EQ(image->GetWidth(), 2);
    EXPECT_EQ(Words(image)[0], 0x4789504eU);
}

TEST_F(ImageMemory, EveryTruncationOfAPngDrawsNothing)
{
    const std::vector<UInt8> file = PngFile(2, 1, {1, 2, 3, 255, 9, 9, 9, 128});
    // The last chunk is a mere end, which is not needed.
    for (std::size_t length = 8; length < file.size() - 12; ++length) {
        const std::vector<UInt8> cut(file.begin(),
                                     file.begin() + static_cast<std::ptrdiff_t>(length));
        const PImage image = MemoryImage(Color32Bit, 2, 1, cut, UseSystemMemory, TypePNG);
        EXPECT_EQ(image->GetImageBuffer(), nullptr) << length;
        EXPECT_THAT(Painted(image, 2, 1), Each(kGroundColor));
    }
}

TEST_F(ImageMemory, DamagedJpegHeaderDrawsNothing)
{
    std::vector<UInt8> file = JpegFile(9, 7, 130);
    file.resize(20);
    const PImage image = MemoryImage(Color32Bit, 9, 7, file, UseSystemMemory, TypeJPG);
    EXPECT_EQ(image->GetImageBuffer(), nullptr);
    EXPECT_THAT(Painted(image, 2, 1), Each(kGroundColor));
}

TEST_F(ImageMemory, PngThatPromisesTooMuchDrawsNothing)
{
    std::vector<UInt8> file = PngFile(2, 1, {1, 2, 3, 255, 9, 9, 9, 128});
    for (const std::size_t byte : {18, 22}) // width and height, the third byte of four
        file[byte] = 0x7f;
    const PImage image = MemoryImage(Color32Bit, 2, 1, file, UseSystemMemory, TypePNG);
    EXPECT_EQ(image->GetImageBuffer(), nullptr);
}

} // namespace
