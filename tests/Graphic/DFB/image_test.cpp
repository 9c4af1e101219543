/** Images from files: what is read, what is refused, and what their frames are. */
#include "DFB/image.h"

#include "DFB/palette.h"
#include "engine_display.h"
#include "image_support.h"
#include "nrv2b_stream.h"
#include "pixel_bytes.h"
#include "surface_of.h"
#include "surface_pixels.h"
#include "temp_directory.h"

#include <array>
#include <string>

#include <gtest/gtest.h>

using kestrin_display::LoadPixel;
using kestrin_test::EngineDisplay;
using kestrin_test::ImageFile;
using kestrin_test::Nrv2bStream;
using kestrin_test::PaintedOn;
using kestrin_test::PlainImageFile;
using kestrin_test::TempDirectory;
using zelxxx::BlendSrcOver;
using zelxxx::Color32Bit;
using zelxxx::Color8Bit;
using zelxxx::ColorMode;
using zelxxx::Image;
using zelxxx::PImage;
using zelxxx::zelCreateImage;

namespace {

/** A row of index 1, 2, 3, ... */
std::string Counting(std::size_t count, int first = 1)
{
    std::string pixels;
    for (std::size_t i = 0; i < count; ++i)
        pixels.push_back(static_cast<char>(first + static_cast<int>(i)));
    return pixels;
}

class ImageFileTest : public testing::Test
{
protected:
    explicit ImageFileTest(ColorMode mode = Color8Bit) : _engine(64, 48, mode), _mode(mode) {}

    /** The image of a file with this content; null for one without frames. */
    PImage Read(const std::string& content)
    {
        return zelCreateImage(_directory.Write("image", content).c_str());
    }
    bool HasFrames(const std::string& content)
    {
        const std::string name = _directory.Write("image", content);
        const zelxxx::ZELObjPtr<Image> image(new Image(name.c_str()));
        const PImage made(zelCreateImage(name.c_str()));
        EXPECT_EQ(image->IsAvailable(), static_cast<zelxxx::IImage*>(made) != nullptr);
        EXPECT_EQ(image->IsAvailable(), image->GetFrameCount() > 0);
        if (!image->IsAvailable()) {
            EXPECT_EQ(image->GetWidth(), 0);
            EXPECT_EQ(image->GetHeight(), 0);
        }
        return image->IsAvailable();
    }
    kestrin_display::ArgbImage Frame(const PImage& image, int frame)
    {
        return PaintedOn(_mode, image, frame, image->GetWidth(), image->GetHeight());
    }

    EngineDisplay _engine;
    ColorMode _mode;
    TempDirectory _directory;
};

class ImageFileOn32Bit : public ImageFileTest
{
protected:
    ImageFileOn32Bit() : ImageFileTest(Color32Bit) {}
};

TEST_F(ImageFileTest, HeaderWithAZeroYieldsNoFrames)
{
    const std::string stream = Nrv2bStream().Literals(Counting(6)).End().Bytes();
    EXPECT_TRUE(HasFrames(ImageFile(3, 2, 8, 1, stream)));
    EXPECT_FALSE(HasFrames(ImageFile(0, 2, 8, 1, stream)));
    EXPECT_FALSE(HasFrames(ImageFile(3, 0, 8, 1, stream)));
    EXPECT_FALSE(HasFrames(ImageFile(3, 2, 0, 1, stream)));
    EXPECT_FALSE(HasFrames(ImageFile(3, 2, 8, 0, stream)));
}

TEST_F(ImageFileTest, RowOfLessThanAByteYieldsNoFrames)
{
    EXPECT_FALSE(HasFrames(ImageFile(3, 2, 2, 1, Nrv2bStream().Literals("ab").End().Bytes())));
}

TEST_F(ImageFileTest, FileThatCannotBeReadYieldsNoFrames)
{
    EXPECT_FALSE(zelCreateImage(_directory.Path("missing").c_str()));
    EXPECT_FALSE(zelCreateImage(_directory.Path("").c_str()));
    EXPECT_FALSE(HasFrames(""));
    EXPECT_FALSE(HasFrames(ImageFile(3, 2, 8, 1, "")));
}

TEST_F(ImageFileTest, EveryTruncationYieldsNoFrames)
{
    const std::string file = PlainImageFile(3, 2, 1, Counting(6));
    ASSERT_TRUE(HasFrames(file));
    for (std::size_t length = 0; length < file.size(); ++length)
        EXPECT_FALSE(HasFrames(file.substr(0, length))) << length;
}

TEST_F(ImageFileTest, StreamThatHoldsLessThanTheHeaderSaysYieldsNoFrames)
{
    EXPECT_FALSE(HasFrames(PlainImageFile(3, 2, 1, Counting(5))));
    EXPECT_FALSE(HasFrames(PlainImageFile(3, 2, 2, Counting(6))));
}

TEST_F(ImageFileTest, StreamMayPassTheHeadersSizeByTheByteOfACopy)
{
    const std::string stream = Nrv2bStream().Literal(9).Copy(1, 6).End().Bytes();
    EXPECT_TRUE(HasFrames(ImageFile(3, 2, 8, 1, stream)));
    EXPECT_FALSE(HasFrames(PlainImageFile(3, 2, 1, Counting(7))));
}

TEST_F(ImageFileTest, LargestHeaderIsRefused)
{
    EXPECT_FALSE(HasFrames(PlainImageFile(0xffff, 0xffff, 0xffff, Counting(100))));
    const std::string bomb =
        Nrv2bStream().Literal(1).Copy(1, std::size_t{0x4000} * 0x4000).End().Bytes();
    EXPECT_FALSE(HasFrames(ImageFile(0x4000, 0x4000, 8, 2, bomb)));
}

TEST_F(ImageFileTest, BytesBehindTheStreamAreNotReached)
{
    EXPECT_TRUE(HasFrames(PlainImageFile(3, 2, 1, Counting(6)) + "more"));
}

TEST_F(ImageFileTest, ValuesOfAnImageFromAFile)
{
    const PImage image = Read(PlainImageFile(3, 2, 2, Counting(12)));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->GetWidth(), 3);
    EXPECT_EQ(image->GetHeight(), 2);
    EXPECT_EQ(image->GetFrameCount(), 2);
    EXPECT_EQ(image->GetImageType(), zelxxx::TypePNG); // the first of them: nothing sets it
    EXPECT_EQ(image->GetImageBuffer(), nullptr);
    EXPECT_EQ(image->GetFileSize(), 0);
    EXPECT_EQ(image->Hold(), 2);
    EXPECT_EQ(image->Release(), 1);
}

TEST_F(ImageFileTest, NumbersOfTheHeaderHaveTheLowByteFirst)
{
    const PImage image = Read(PlainImageFile(300, 2, 1, std::string(600, 'x')));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->GetWidth(), 300);
}

TEST_F(ImageFileTest, FramesFollowOneAnotherRowByRow)
{
    const PImage image = Read(PlainImageFile(3, 2, 2, Counting(12)));
    ASSERT_TRUE(image);
    for (int frame = 0; frame < 2; ++frame) {
        const kestrin_display::ArgbImage drawn = Frame(image, frame);
        for (int y = 0; y < 2; ++y) {
            for (int x = 0; x < 3; ++x)
                EXPECT_EQ(drawn.At(x, y), 1U + 6 * frame + 3 * y + x) << x << ' ' << y;
        }
    }
}

TEST_F(ImageFileTest, FrameThatIsNotThereDrawsNothing)
{
    const PImage image = Read(PlainImageFile(3, 2, 2, Counting(12)));
    ASSERT_TRUE(image);
    for (int frame : {2, 0xffff})
        EXPECT_EQ(Frame(image, frame).At(0, 0), kestrin_test::kGroundIndex) << frame;
}

TEST_F(ImageFileTest, IndicesStayWhatTheyAreWhenThePaletteChanges)
{
    const PImage image = Read(PlainImageFile(3, 2, 1, Counting(6)));
    ASSERT_TRUE(image);
    std::array<zelxxx::PaletteEntry, 256> table = {};
    table.fill({255, 255, 255, 255});
    const zelxxx::PPalette white(zelxxx::zelCreatePalette(table.data()));
    const zelxxx::PView view(zelxxx::zelCreateView(0, 64, 48, Color8Bit, false));
    view->SetPalette(white, 256, 256, 256);
    EXPECT_EQ(Frame(image, 0).At(2, 1), 6U);
}

TEST_F(ImageFileTest, RowsOfLessThanEightBitsStillFollowByTheWidth)
{
    // A frame of 4 x 2 pixels of 4 bits is 4 bytes, of which the rows take 4 each.
    const PImage image =
        Read(ImageFile(4, 2, 4, 2, Nrv2bStream().Literals(Counting(8)).End().Bytes()));
    ASSERT_TRUE(image);
    EXPECT_EQ(Frame(image, 0).At(3, 1), 8U);
    EXPECT_EQ(Frame(image, 1).At(0, 0), 5U);
    EXPECT_EQ(Frame(image, 1).At(0, 1), 0U); // behind the last frame
}

TEST_F(ImageFileTest, FramesOfMoreThanEightBitsAreReadToTheirWidth)
{
    const PImage image =
        Read(ImageFile(2, 2, 16, 2, Nrv2bStream().Literals(Counting(16)).End().Bytes()));
    ASSERT_TRUE(image);
    EXPECT_EQ(Frame(image, 0).At(1, 1), 4U);
    EXPECT_EQ(Frame(image, 1).At(0, 0), 9U);
}

TEST_F(ImageFileOn32Bit, BytesOfARowAreTakenForWordsAndTheRestIsZero)
{
    const PImage image = Read(PlainImageFile(6, 2, 1, Counting(12)));
    ASSERT_TRUE(image);
    const kestrin_display::ArgbImage drawn = Frame(image, 0);
    EXPECT_EQ(drawn.At(0, 0), LoadPixel("\x01\x02\x03\x04", 4));
    EXPECT_EQ(drawn.At(1, 0), LoadPixel("\x05\x06\x00\x00", 4));
    EXPECT_EQ(drawn.At(0, 1), LoadPixel("\x07\x08\x09\x0a", 4));
    EXPECT_EQ(drawn.At(1, 1), LoadPixel("\x0b\x0c\x00\x00", 4));
    for (int x = 2; x < 6; ++x)
        EXPECT_EQ(drawn.At(x, 0), 0U) << x;
}

TEST_F(ImageFileTest, PaletteFromAFile)
{
    const std::string name = _directory.Write("palette", std::string("\x80\x10\x20\x30", 4));
    const zelxxx::PPalette palette(zelxxx::zelCreatePalette(name.c_str()));
    EXPECT_EQ(palette->GetColorBlending(0), 0x80);
    EXPECT_EQ(palette->GetColorRed(0), 0x10);
    EXPECT_EQ(palette->GetColorBlue(0), 0x30);
    EXPECT_EQ(palette->GetColorRed(1), 0);
    const zelxxx::PPalette none(
        zelxxx::zelCreatePalette(static_cast<const char*>(_directory.Path("missing").c_str())));
    EXPECT_EQ(none->GetColorCount(), 256);
}

} // namespace
