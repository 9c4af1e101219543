/** Pictures of every kind of file, shown by sprites on both kinds of display. */
#include "vrel_kestrin_loader.h"

#include "engine_display.h"
#include "nrv2b_stream.h"
#include "picture_files.h"
#include "temp_directory.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using kestrin_test::Bytes;
using kestrin_test::EngineDisplay;
using kestrin_test::JpegFile;
using kestrin_test::PlainImageFile;
using kestrin_test::PngFile;
using kestrin_test::TempDirectory;
using testing::Each;
using testing::ElementsAre;
using namespace zelxxx;

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

std::string Text(const Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

/** Of one colour each, in the order of a palette file: opacity, red, green, blue. */
std::string PaletteFile(const std::vector<std::vector<UInt8>>& entries)
{
    std::string file;
    for (const std::vector<UInt8>& entry : entries)
        file.append(entry.begin(), entry.end());
    file.resize(1024);
    return file;
}

std::vector<UInt32> Words(const PImage& image)
{
    const auto* words = reinterpret_cast<UInt32*>(image->GetImageBuffer());
    return std::vector<UInt32>(words, words + image->GetWidth() * image->GetHeight());
}

std::vector<int> Indices(const PImage& image)
{
    const UInt8* indices = image->GetImageBuffer();
    return std::vector<int>(indices, indices + image->GetWidth() * image->GetHeight());
}

class Loader : public testing::Test
{
protected:
    /** Writes a file and opens it; the error, without the directory, when that fails. */
    std::string Open(const std::string& content, const char* name = "picture")
    {
        return loader->Open(directory.Write(name, content).c_str()) ? "" : Error();
    }
    std::string OpenPalette(const std::string& content)
    {
        return loader->OpenPalette(directory.Write("palette", content).c_str()) ? "" : Error();
    }
    /** The error, which begins with the directory's path. */
    std::string Error() const
    {
        const std::string error = loader->GetError();
        const std::string path = directory.Path("");
        EXPECT_EQ(error.compare(0, path.size(), path), 0) << error;
        return error.substr(path.size());
    }

    const TempDirectory directory;
    const ZELObjPtr<IImageLoader> loader{zelCreateImageLoader()};
};

// ---- What is read

TEST_F(Loader, PngKeepsItsSizeAndColors)
{
    ASSERT_EQ(Open(Text(PngFile(2, 1, {1, 2, 3, 255, 200, 100, 50, 255}))), "");
    EXPECT_EQ(loader->GetWidth(), 2);
    EXPECT_EQ(loader->GetHeight(), 1);
    EXPECT_EQ(loader->GetFrameCount(), 1);
    const PImage image(loader->CreateImage(Color32Bit, 0));
    EXPECT_EQ(image->GetWidth(), 2);
    EXPECT_EQ(image->GetHeight(), 1);
    EXPECT_EQ(image->GetFrameCount(), 1);
    EXPECT_THAT(Words(image), ElementsAre(0xff010203U, 0xffc86432U));
}

TEST_F(Loader, ColorsAreMultipliedByTheirOpacityFor32Bits)
{
    ASSERT_EQ(Open(Text(PngFile(3, 1, {200, 100, 50, 128, 9, 9, 9, 0, 255, 0, 1, 254}))), "");
    EXPECT_THAT(Words(loader->CreateImage(Color32Bit, 0)),
                ElementsAre(0x80643219U, 0U, 0xfefe0001U));
}

TEST_F(Loader, JpegIsOpaqueAndKeepsItsSize)
{
    for (const bool progressive : {false, true}) {
        Bytes rgb;
        for (int i = 0; i < 9 * 7; ++i)
            rgb.insert(rgb.end(), {200, 100, 50});
        ASSERT_EQ(Open(Text(JpegFile(9, 7, rgb, progressive))), "");
        const PImage image(loader->CreateImage(Color32Bit, 0));
        EXPECT_EQ(image->GetWidth(), 9);
        EXPECT_EQ(image->GetHeight(), 7);
        for (const UInt32 word : Words(image)) {
            EXPECT_EQ(word >> 24, 255U);
            EXPECT_NEAR(word >> 16 & 255, 200, 2);
            EXPECT_NEAR(word >> 8 & 255, 100, 2);
            EXPECT_NEAR(word & 255, 50, 2);
        }
    }
}

TEST_F(Loader, GreyJpegIsGrey)
{
    ASSERT_EQ(Open(Text(JpegFile(9, 7, 130))), "");
    EXPECT_THAT(Words(loader->CreateImage(Color32Bit, 0)), Each(0xff828282U));
}

TEST_F(Loader, ImageFileTakesTheColorsOfItsPaletteFile)
{
    ASSERT_EQ(OpenPalette(PaletteFile({{255, 1, 2, 3}, {128, 200, 100, 50}, {0, 9, 9, 9}})), "");
    ASSERT_EQ(Open(PlainImageFile(3, 1, 1, {"\0\1\2", 3})), "");
    EXPECT_THAT(Words(loader->CreateImage(Color32Bit, 0)),
                ElementsAre(0xff010203U, 0x80643219U, 0U));
}

TEST_F(Loader, EveryFrameIsAnImage)
{
    ASSERT_EQ(Open(PlainImageFile(1, 2, 3, "abcdef")), "");
    EXPECT_EQ(loader->GetFrameCount(), 3);
    for (const ColorMode mode : {Color8Bit, Color32Bit}) {
        EXPECT_THAT(Indices(loader->CreateImage(mode, 0)), ElementsAre('a', 'b'));
        EXPECT_THAT(Indices(loader->CreateImage(mode, 2)), ElementsAre('e', 'f'));
    }
    ASSERT_EQ(OpenPalette(std::string(1024, '\xff')), "");
    EXPECT_THAT(Words(loader->CreateImage(Color32Bit, 2)), Each(0xffffffffU));
}

TEST_F(Loader, WithoutAPaletteTheFixedOneIsMatched)
{
    ASSERT_EQ(Open(Text(PngFile(4, 1,
                                {128, 128, 128, 255, 64, 64, 64, 255, //
                                 255, 255, 255, 16, 255, 0, 0, 128}))),
              "");
    EXPECT_THAT(Indices(loader->CreateImage(Color8Bit, 0)), ElementsAre(120, 50, 0, 7));
}

TEST_F(Loader, GivenPaletteIsMatchedByWhatIsSeen)
{
    PaletteEntry entries[256] = {};
    entries[3] = {250, 0, 0, 255};
    entries[4] = {255, 0, 0, 128};
    entries[5] = {0, 0, 200, 255};
    entries[6] = {0, 0, 200, 255}; // of equal ones the first
    const PPalette palette(zelCreatePalette(entries));
    loader->SetDisplayPalette(palette);
    ASSERT_EQ(Open(Text(PngFile(5, 1, {240, 9,   9,   255, 240, 9,   9,   120, 9, 9, 210, 255, //
                                       250, 250, 250, 0,   250, 250, 250, 20}))),
              "");
    EXPECT_THAT(Indices(loader->CreateImage(Color8Bit, 0)), ElementsAre(3, 4, 5, 0, 0));
}

TEST_F(Loader, IndicesOfAPaletteFileAreMatchedToTheDisplays)
{
    PaletteEntry entries[256] = {};
    entries[9] = {1, 2, 3, 255};
    const PPalette palette(zelCreatePalette(entries));
    loader->SetDisplayPalette(palette);
    ASSERT_EQ(OpenPalette(PaletteFile({{255, 1, 2, 3}})), "");
    ASSERT_EQ(Open(PlainImageFile(2, 1, 1, {"\0\1", 2})), "");
    EXPECT_THAT(Indices(loader->CreateImage(Color8Bit, 0)), ElementsAre(9, 0));
    loader->OpenPalette(nullptr);
    EXPECT_THAT(Indices(loader->CreateImage(Color8Bit, 0)), ElementsAre(0, 1));
}

TEST_F(Loader, ImagesOutliveTheLoaderAndItsFile)
{
    PImage image;
    {
        const ZELObjPtr<IImageLoader> other(zelCreateImageLoader());
        const std::string path = directory.Write("p", Text(PngFile(1, 1, {1, 2, 3, 255})));
        ASSERT_TRUE(other->Open(path.c_str()));
        image = other->CreateImage(Color32Bit, 0);
        directory.Write("p", "");
    }
    EXPECT_THAT(Words(image), ElementsAre(0xff010203U));
}

// ---- What is refused, and why

TEST_F(Loader, MissingFileIsNamed)
{
    EXPECT_FALSE(loader->Open(directory.Path("none.png").c_str()));
    EXPECT_EQ(Error(), "none.png: No such file or directory");
    EXPECT_FALSE(loader->OpenPalette(directory.Path("none.pal").c_str()));
    EXPECT_EQ(Error(), "none.pal: No such file or directory");
}

TEST_F(Loader, WhatIsNoFileIsNotRead)
{
    EXPECT_FALSE(loader->Open(directory.Path("").c_str()));
    EXPECT_EQ(Error(), ": is not a regular file");
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(loader->Open(pipe.c_str()));
    EXPECT_EQ(Error(), "pipe: is not a regular file");
}

TEST_F(Loader, VeryLargeFileIsNotRead)
{
    const std::string path = directory.Write("large", "");
    ASSERT_EQ(truncate(path.c_str(), 67108865), 0);
    EXPECT_FALSE(loader->Open(path.c_str()));
    EXPECT_EQ(Error(), "large: has 67108865 bytes; 67108864 is the limit");
}

TEST_F(Loader, OtherFilesAreToldApart)
{
    const char reason[] = "is neither a PNG nor a JPEG nor an image file of 8 bits a pixel";
    EXPECT_EQ(Open("", "a"), std::string("a: ") + reason);
    EXPECT_EQ(Open("GIF89a, with more", "b.gif"), std::string("b.gif: ") + reason);
    EXPECT_EQ(Open(kestrin_test::ImageFile(2, 2, 4, 1, "abcdefgh"), "c"),
              std::string("c: ") + reason);
}

TEST_F(Loader, EveryTruncationIsAnError)
{
    for (const std::string& file :
         {Text(PngFile(2, 2, Bytes(16, 99))), Text(JpegFile(9, 7, 130)),
          Text(JpegFile(9, 7, Bytes(9 * 7 * 3, 77), true)), PlainImageFile(2, 2, 1, "abcd")}) {
        ASSERT_EQ(Open(file), "");
        for (std::size_t length = 0; length < file.size(); ++length) {
            // The end marker of a JPEG has two bytes and nothing to say.
            if (file[0] == '\xff' && length + 2 >= file.size())
                break;
            EXPECT_NE(Open(file.substr(0, length)), "") << length;
            EXPECT_EQ(loader->GetFrameCount(), 0);
        }
    }
}

TEST_F(Loader, DamageIsNamed)
{
    std::string png = Text(PngFile(2, 2, Bytes(16, 99)));
    EXPECT_EQ(Open(png.substr(0, 50)), "picture: the PNG is cut short");
    png[20] = 'x'; // in the header chunk
    EXPECT_THAT(Open(png), testing::StartsWith("picture: damaged PNG: "));
    const std::string jpeg = Text(JpegFile(9, 7, 130));
    EXPECT_EQ(Open(jpeg.substr(0, jpeg.size() - 6)),
              "picture: damaged JPEG: Premature end of JPEG file");
    EXPECT_EQ(Open(PlainImageFile(2, 2, 1, "abc")),
              "picture: the image file is damaged or cut short");
}

TEST_F(Loader, SizesAreCheckedBeforeRoomIsMade)
{
    std::string png = Text(PngFile(1, 1, {1, 2, 3, 4}));
    std::string jpeg = Text(JpegFile(9, 7, 130));
    // Height and width of the frame header stand five bytes behind its mark.
    const std::size_t frame = jpeg.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    jpeg.replace(frame + 5, 4, "\xff\x00\xff\x00", 4);
    EXPECT_EQ(Open(jpeg), "picture: has 65280 x 65280 pixels; the limits are 32767 a side and "
                          "67108864 in all");
    EXPECT_EQ(Open(kestrin_test::ImageFile(30000, 3000, 8, 1, "x")),
              "picture: has 30000 x 3000 pixels; the limits are 32767 a side and 67108864 in all");
    EXPECT_EQ(Open(kestrin_test::ImageFile(1000, 1000, 8, 68, "x")),
              "picture: has 68 frames of 1000 x 1000 pixels; the limits are 32767 a side and "
              "67108864 in all");
    EXPECT_EQ(Open(kestrin_test::ImageFile(0, 10, 8, 1, "x")), "picture: has no pixels");
    EXPECT_EQ(Open(kestrin_test::ImageFile(8000, 8000, 8, 1, "x")),
              "picture: the image file is damaged or cut short");
}

TEST_F(Loader, PaletteFileOfAnotherSizeIsAnErrorAndChangesNothing)
{
    ASSERT_EQ(OpenPalette(PaletteFile({{255, 1, 2, 3}})), "");
    EXPECT_EQ(OpenPalette("short"), "palette: has 5 bytes; a palette file has 1024");
    EXPECT_EQ(OpenPalette(std::string(1025, 'x')),
              "palette: has 1025 bytes; a palette file has 1024");
    ASSERT_EQ(Open(PlainImageFile(1, 1, 1, {"\0", 1})), "");
    EXPECT_THAT(Words(loader->CreateImage(Color32Bit, 0)), ElementsAre(0xff010203U));
}

TEST_F(Loader, FrameThatIsNotThereIsNamed)
{
    ASSERT_EQ(Open(PlainImageFile(1, 1, 2, "ab")), "");
    EXPECT_FALSE(loader->CreateImage(Color32Bit, 2));
    EXPECT_EQ(Error(), "picture: has no frame 2; there are 2");
    EXPECT_FALSE(loader->CreateImage(Color32Bit, -1));
    EXPECT_EQ(Error(), "picture: has no frame -1; there are 2");
}

TEST_F(Loader, WithoutAPictureThereIsNoImageAndTheReasonStays)
{
    EXPECT_STREQ(loader->GetError(), "");
    EXPECT_FALSE(loader->CreateImage(Color32Bit, 0));
    EXPECT_STREQ(loader->GetError(), "no picture has been opened");
    ASSERT_EQ(Open(PlainImageFile(1, 1, 1, "a")), "");
    EXPECT_NE(Open("nothing"), "");
    const std::string why = loader->GetError();
    EXPECT_FALSE(loader->CreateImage(Color32Bit, 0));
    EXPECT_EQ(loader->GetError(), why);
    EXPECT_EQ(loader->GetWidth(), 0);
    EXPECT_EQ(loader->GetHeight(), 0);
}

// ---- On the screen

/** A sprite over an opaque grey background. */
class LoaderOnScreen : public Loader
{
protected:
    explicit LoaderOnScreen(ColorMode mode) : engine(kWidth, kHeight, mode) {}

    void Show(IImage* image, ColorMode mode, BlendMode blend_mode, ColorValue background)
    {
        scene = zelCreateScene(0, kWidth, kHeight, mode, SceneUseDoubleBuffer, blend_mode);
        scene->SetBackgroundColor(background, 255);
        const PLayer layer(zelCreateLayer(nullptr));
        scene->AddLayer(layer);
        const ZELObjPtr<ISprite> sprite(zelCreateSprite(nullptr));
        sprite->SetImage(image);
        sprite->SetAttribute(AttrPosX, 5);
        sprite->SetAttribute(AttrPosY, 4);
        sprite->SetAttribute(AttrSpanX, 32);
        sprite->SetAttribute(AttrSpanY, 32);
        sprite->SetAttribute(AttrImageFormat, ImageAlignLeft | ImageAlignTop);
        layer->AddWidget(sprite);
        scene->Update(true, true);
    }

    EngineDisplay engine;
    ZELObjPtr<IScene> scene;
};

class LoaderOn32Bit : public LoaderOnScreen
{
protected:
    LoaderOn32Bit() : LoaderOnScreen(Color32Bit) {}
};

class LoaderOn8Bit : public LoaderOnScreen
{
protected:
    LoaderOn8Bit() : LoaderOnScreen(Color8Bit) {}
};

TEST_F(LoaderOn32Bit, HalfTransparentPngIsMixedWithWhatIsBehind)
{
    ASSERT_EQ(Open(Text(PngFile(3, 1, {200, 100, 50, 255, 255, 0, 0, 128, 9, 9, 9, 0}))), "");
    Show(loader->CreateImage(Color32Bit, 0), Color32Bit, BlendSrcOver, 0x808080);
    const auto shot = engine.Shot();
    EXPECT_EQ(shot.At(5, 4), 0xffc86432U);
    // 128 of 255 red over grey: half of both, a step of rounding aside.
    EXPECT_NEAR(shot.At(6, 4) >> 16 & 255, 191, 2);
    EXPECT_NEAR(shot.At(6, 4) >> 8 & 255, 64, 2);
    EXPECT_NEAR(shot.At(6, 4) & 255, 64, 2);
    EXPECT_NEAR(shot.At(7, 4) & 255, 128, 1);
    EXPECT_EQ(shot.At(4, 4), 0xff808080U);
}

TEST_F(LoaderOn32Bit, ImageFileShowsItsPalettesColors)
{
    ASSERT_EQ(OpenPalette(PaletteFile({{255, 1, 2, 3}, {255, 200, 100, 50}})), "");
    ASSERT_EQ(Open(PlainImageFile(1, 2, 2, {"\0\0\1\0", 4})), "");
    Show(loader->CreateImage(Color32Bit, 1), Color32Bit, BlendSrcOver, 0x808080);
    EXPECT_EQ(engine.Shot().At(5, 4), 0xffc86432U);
    EXPECT_EQ(engine.Shot().At(5, 5), 0xff010203U);
}

TEST_F(LoaderOn32Bit, ImageFileWithoutPaletteShowsTheFixedOne)
{
    ASSERT_EQ(Open(PlainImageFile(1, 1, 1, "\x32")), "");
    Show(loader->CreateImage(Color32Bit, 0), Color32Bit, BlendSrcOver, 0);
    EXPECT_EQ(engine.Shot().At(5, 4), 0xff555555U);
}

TEST_F(LoaderOn8Bit, PngIsBlendedByTableInThatMode)
{
    ASSERT_EQ(Open(Text(PngFile(3, 1, {64, 64, 64, 255, 255, 0, 0, 128, 9, 9, 9, 0}))), "");
    Show(loader->CreateImage(Color8Bit, 0), Color8Bit, BlendSrcOver8BIT, 187);
    const std::vector<std::uint8_t> indices = engine.Indices();
    const auto at = [&](int x) { return indices[static_cast<std::size_t>(4 * kWidth + x)]; };
    UInt8 blended = 187;
    OSD_BlendPixels(&blended, 7);
    EXPECT_NE(blended, 187);
    EXPECT_EQ(at(5), 50);
    EXPECT_EQ(at(6), blended);
    EXPECT_EQ(at(7), 187);
    EXPECT_EQ(at(4), 187);
}

TEST_F(LoaderOn8Bit, ThePaletteOfTheViewIsMatched)
{
    PaletteEntry entries[256] = {};
    entries[0] = {0, 0, 0, 255};
    entries[70] = {200, 100, 50, 255};
    entries[71] = {10, 20, 30, 255};
    const PPalette palette(zelCreatePalette(entries));
    const PView view(zelCreateView(0, kWidth, kHeight, Color8Bit, false));
    view->SetPalette(palette, 256, 256, 256);
    ASSERT_EQ(Open(Text(PngFile(2, 1, {201, 99, 52, 255, 11, 22, 33, 255}))), "");
    Show(loader->CreateImage(Color8Bit, 0), Color8Bit, BlendSrcOver, 0);
    const std::vector<std::uint8_t> indices = engine.Indices();
    EXPECT_EQ(indices[4 * kWidth + 5], 70);
    EXPECT_EQ(indices[4 * kWidth + 6], 71);
    EXPECT_EQ(engine.Shot().At(5, 4), 0xffc86432U);
}

} // namespace
