/**
 * Runs the tool: what it makes is what the engine shows, and bad input leaves no file.
 */
#include "engine_display.h"
#include "engine_palette.h"
#include "image_file.h"
#include "nrv2b_stream.h"
#include "png_file.h"
#include "tool_pictures.h"
#include "tool_test.h"
#include "whole_file.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using kestrin_display::ArgbImage;
using kestrin_test::EngineDisplay;
using kestrin_test::Gradient;
using kestrin_test::Outcome;
using kestrin_test::PaletteColours;
using kestrin_test::PlainImageFile;
using testing::AllOf;
using testing::HasSubstr;
using namespace kestrin_tools;

namespace {

constexpr std::size_t fixed_colours = 188;

class KestrinImage : public kestrin_test::ToolTest
{
protected:
    KestrinImage() : ToolTest(KESTRIN_IMAGE_TOOL) {}

    void Png(const std::string& name, const ArgbImage& image) const
    {
        WritePng(files.Path(name), image);
    }
    bool Exists(const std::string& name) const { return fs::exists(files.Path(name)); }
    /** Makes out.img and returns its frames. */
    IndexedImage Make(const std::string& arguments) const
    {
        const Outcome outcome = Run("make " + arguments + " out.img");
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        return ReadImage(files.Path("out.img"));
    }
};

// ---- make

TEST_F(KestrinImage, ColoursOfTheFixedPaletteStayExactly)
{
    const Palette fixed = FixedPalette();
    Png("all.png", PaletteColours(fixed, 47, 8, 0, fixed_colours));
    const IndexedImage image = Make("all.png");
    for (std::size_t i = 0; i < image.pixels.size(); ++i)
        ASSERT_EQ(image.pixels[i], i % fixed_colours) << i;

    ASSERT_EQ(Run("show out.img back.png").status, 0);
    EXPECT_EQ(ReadPng(files.Path("back.png")).pixels, ReadPng(files.Path("all.png")).pixels);
}

TEST_F(KestrinImage, PhotosTakeTheNearestColours)
{
    Png("photo.png", Gradient(64, 48));
    Make("photo.png");
    ASSERT_EQ(Run("show out.img back.png").status, 0);
    const ArgbImage back = ReadPng(files.Path("back.png"));
    const ArgbImage photo = Gradient(64, 48);
    const Palette fixed = FixedPalette();
    for (std::size_t i = 0; i < back.pixels.size(); ++i) {
        EXPECT_EQ(std::count(fixed.begin(), fixed.end(), back.pixels[i]), 1) << i;
        for (const unsigned shift : {0U, 8U, 16U}) {
            const int before = static_cast<int>(photo.pixels[i] >> shift & 0xff);
            const int after = static_cast<int>(back.pixels[i] >> shift & 0xff);
            // Blue has but three levels, and red five.
            ASSERT_LE(std::abs(before - after), 90) << i;
        }
    }
}

TEST_F(KestrinImage, DitheringMixesNearbyColours)
{
    // Half way between two greys of the palette.
    Png("grey.png", ArgbImage(32, 32, 0xFF404040));
    const std::vector<std::uint8_t> plain = Make("grey.png").pixels;
    const std::vector<std::uint8_t> mixed = Make("--dither grey.png").pixels;
    EXPECT_EQ(std::set<int>(plain.begin(), plain.end()).size(), 1u);
    const std::set<int> used(mixed.begin(), mixed.end());
    EXPECT_GE(used.size(), 2u);
    const Palette fixed = FixedPalette();
    double sum = 0;
    for (const std::uint8_t index : mixed)
        sum += fixed[index] >> 8 & 0xff;
    EXPECT_NEAR(sum / static_cast<double>(mixed.size()), 0x40, 8);
}

TEST_F(KestrinImage, PaletteFileIsFollowed)
{
    Palette palette = {};
    palette[9] = 0xFF112233;
    palette[200] = 0xFFF0E0D0;
    files.Write("two.pal", PackPalette(palette));
    ArgbImage picture(3, 1, 0xFF112233);
    picture.At(1, 0) = 0xFFFFF0E0;
    picture.At(2, 0) = 0x00ABCDEF;
    Png("a.png", picture);
    EXPECT_THAT(Make("--palette two.pal a.png").pixels, testing::ElementsAre(9, 200, 0));
    ASSERT_EQ(Run("show out.img --palette two.pal back.png").status, 0);
    EXPECT_THAT(ReadPng(files.Path("back.png")).pixels,
                testing::ElementsAre(0xFF112233, 0xFFF0E0D0, 0));
}

TEST_F(KestrinImage, OwnPaletteIsWrittenBesideAndExactForFewColours)
{
    ArgbImage first = Gradient(15, 10);
    first.At(3, 3) = 0;
    ArgbImage second(15, 10, 0x80204060);
    Png("1.png", first);
    Png("2.png", second);
    const IndexedImage image = Make("--own-palette 1.png 2.png");
    EXPECT_EQ(image.frames, 2);
    const Palette own = ReadPalette(files.Path("out.img.pal"));
    EXPECT_EQ(own[0], 0u);
    EXPECT_EQ(FrameOf(image, 0, own).pixels, first.pixels);
    EXPECT_EQ(FrameOf(image, 1, own).pixels, second.pixels);
    EXPECT_EQ(image.pixels[3 * 15 + 3], 0);
}

TEST_F(KestrinImage, OwnPaletteShowsPhotosBetterThanTheFixedOne)
{
    const ArgbImage photo = Gradient(100, 80);
    Png("photo.png", photo);
    const auto error = [&](const IndexedImage& image, const Palette& palette) {
        const ArgbImage shown = FrameOf(image, 0, palette);
        double sum = 0;
        for (std::size_t i = 0; i < shown.pixels.size(); ++i) {
            for (const unsigned shift : {0U, 8U, 16U})
                sum += std::abs(static_cast<int>(shown.pixels[i] >> shift & 0xff) -
                                static_cast<int>(photo.pixels[i] >> shift & 0xff));
        }
        return sum;
    };
    const double fixed = error(Make("photo.png"), FixedPalette());
    const IndexedImage own = Make("--own-palette photo.png");
    EXPECT_LT(error(own, ReadPalette(files.Path("out.img.pal"))), fixed / 2);
}

TEST_F(KestrinImage, TransparencyWithoutATransparentColourIsWarnedOf)
{
    Palette palette;
    palette.fill(0xFF101010);
    palette[7] = 0xFFE0E0E0;
    files.Write("opaque.pal", PackPalette(palette));
    Png("clear.png", ArgbImage(2, 2, 0));
    const Outcome outcome = Run("make --palette opaque.pal clear.png out.img");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("opaque.pal has no transparent colour"));
    Png("full.png", ArgbImage(2, 2, 0xFF101010));
    EXPECT_THAT(Run("make --palette opaque.pal full.png out.img").output,
                testing::Not(HasSubstr("warning")));
}

TEST_F(KestrinImage, EveryLevelUnpacksToTheSame)
{
    Png("photo.png", Gradient(200, 150));
    const std::vector<std::uint8_t> pixels = Make("photo.png").pixels;
    const auto small = fs::file_size(files.Path("out.img"));
    EXPECT_EQ(Make("--level 1 photo.png").pixels, pixels);
    EXPECT_GE(fs::file_size(files.Path("out.img")), small);
}

TEST_F(KestrinImage, SmallestPicture)
{
    Png("dot.png", ArgbImage(1, 1, 0xFFFFFFFF));
    EXPECT_THAT(Make("dot.png").pixels, testing::ElementsAre(187));
}

TEST_F(KestrinImage, ManyFramesAreKeptInOrder)
{
    std::string names;
    for (int i = 0; i < 120; ++i) {
        const std::string name = std::to_string(i) + ".png";
        Png(name, ArgbImage(5, 3, FixedPalette()[static_cast<std::size_t>(i + 1)]));
        names += name + " ";
    }
    const IndexedImage image = Make(names);
    ASSERT_EQ(image.frames, 120);
    for (std::size_t i = 0; i < 120; ++i)
        EXPECT_EQ(image.pixels[i * 15 + 14], i + 1);
}

// ---- on the display

class KestrinImageOnDisplay : public KestrinImage
{
protected:
    /** Shows a frame at (3, 2) of an 8-bit display with a palette, and returns what is there. */
    std::vector<std::uint8_t> Shown(const std::string& file, int frame, const Palette& palette,
                                    int width, int height)
    {
        using namespace zelxxx;
        const EngineDisplay engine(80, 60, Color8Bit);
        const PImage image(zelCreateImage(files.Path(file).c_str()));
        if (!image)
            return {};
        EXPECT_EQ(image->GetWidth(), width);
        EXPECT_EQ(image->GetHeight(), height);
        const ZELObjPtr<IScene> scene(
            zelCreateScene(0, 80, 60, Color8Bit, SceneUseDoubleBuffer, BlendSrcOver8BIT));
        const ZELObjPtr<IPalette> colours(CreatePalette(palette));
        scene->SetPalette(colours, 256, 256, 256);
        const PLayer layer(zelCreateLayer(nullptr));
        scene->AddLayer(layer);
        const ZELObjPtr<ISprite> sprite(zelCreateSprite(nullptr));
        sprite->SetImage(image);
        sprite->SetAttribute(AttrPosX, 3);
        sprite->SetAttribute(AttrPosY, 2);
        sprite->SetAttribute(AttrSpanX, width);
        sprite->SetAttribute(AttrSpanY, height);
        sprite->SetAttribute(AttrImageFrame, frame);
        sprite->SetAttribute(AttrBlendMode, BlendSrcCopy);
        layer->AddWidget(sprite);
        zelUpdateScreen(true, false);

        const std::vector<std::uint8_t> screen = engine.Indices();
        std::vector<std::uint8_t> part;
        for (int y = 0; y < height; ++y) {
            const auto row = screen.begin() + (y + 2) * 80 + 3;
            part.insert(part.end(), row, row + width);
        }
        return part;
    }
    std::vector<std::uint8_t> FrameIn(const IndexedImage& image, int frame) const
    {
        const auto first =
            image.pixels.begin() + static_cast<std::ptrdiff_t>(image.FrameSize()) * frame;
        return {first, first + static_cast<std::ptrdiff_t>(image.FrameSize())};
    }
};

TEST_F(KestrinImageOnDisplay, FramesAreShownPixelForPixel)
{
    Png("1.png", Gradient(47, 31));
    Png("2.png", PaletteColours(FixedPalette(), 47, 31, 0, fixed_colours));
    const IndexedImage image = Make("1.png 2.png");
    EXPECT_EQ(Shown("out.img", 0, FixedPalette(), 47, 31), FrameIn(image, 0));
    EXPECT_EQ(Shown("out.img", 1, FixedPalette(), 47, 31), FrameIn(image, 1));
    EXPECT_NE(FrameIn(image, 0), FrameIn(image, 1));
}

TEST_F(KestrinImageOnDisplay, OwnPaletteShowsThePicturesColours)
{
    const ArgbImage picture = Gradient(15, 10);
    Png("a.png", picture);
    Make("--own-palette a.png");
    const Palette own = ReadPalette(files.Path("out.img.pal"));
    const std::vector<std::uint8_t> shown = Shown("out.img", 0, own, 15, 10);
    ASSERT_EQ(shown.size(), picture.pixels.size());
    for (std::size_t i = 0; i < shown.size(); ++i)
        EXPECT_EQ(own[shown[i]], picture.pixels[i]);
}

// ---- bad input of make

TEST_F(KestrinImage, MissingEmptyCutAndUnreadablePicturesLeaveNoFile)
{
    Png("good.png", Gradient(40, 40));
    const std::string whole = ReadWhole(files.Path("good.png"));
    files.Write("empty.png", "");
    files.Write("cut.png", whole.substr(0, whole.size() / 2));
    files.Write("text.png", "this is no picture");
    fs::create_directory(files.Path("directory"));
    for (const char* name : {"none.png", "empty.png", "cut.png", "text.png", "directory"}) {
        ExpectNoFile("make good.png " + std::string(name) + " out.img", std::string(name) + ": ");
        ExpectNoFile("make --own-palette " + std::string(name) + " out.img",
                     std::string(name) + ": ");
    }
}

TEST_F(KestrinImage, FramesOfOtherSizesLeaveNoFile)
{
    Png("a.png", ArgbImage(4, 3));
    Png("b.png", ArgbImage(3, 4));
    ExpectNoFile("make a.png b.png out.img",
                 "b.png: is 3 x 4 pixels and a.png is 4 x 3; make all frames one size");
}

TEST_F(KestrinImage, TooManyFramesLeaveNoFile)
{
    // Without a change of directory the list would not pass the shell's own limit.
    Png("a.png", ArgbImage(1, 1, 0xFF000000));
    files.Write("many", [] {
        std::string names;
        for (int i = 0; i < 65536; ++i)
            names += "a.png\n";
        return names + "out.img\n";
    }());
    const Outcome outcome = kestrin_test::RunCommand(
        "cd " + files.Path("") +
        " && xargs -a many -s 1000000 -x " KESTRIN_IMAGE_TOOL " make --level 1");
    EXPECT_THAT(outcome.output, HasSubstr("65536 pictures; an image file has at most 65535"));
    EXPECT_FALSE(Exists("out.img"));
}

TEST_F(KestrinImage, MorePixelsThanAreLoadedLeaveNoFile)
{
    Png("large.png", ArgbImage(16384, 1024));
    std::string names;
    for (int i = 0; i < 17; ++i)
        names += "large.png ";
    ExpectNoFile("make " + names + "out.img",
                 "17 frames of 16384 x 1024 pixels are more than the 268435456");
}

TEST_F(KestrinImage, APictureIsNotTakenForTheOutput)
{
    Png("a.png", ArgbImage(2, 2, 0xFFFFFFFF));
    Png("b.png", ArgbImage(2, 2, 0xFFFFFFFF));
    const std::string before = ReadWhole(files.Path("b.png"));
    ExpectNoFile("make a.png b.png", "name the image file to make last");
    ExpectNoFile("make a.png", "is the only name");
    fs::copy_file(files.Path("a.png"), files.Path("picture"));
    ExpectNoFile("make a.png picture picture", "is one of the pictures as well");
    EXPECT_EQ(ReadWhole(files.Path("b.png")), before);
}

TEST_F(KestrinImage, BadPalettesLeaveNoFile)
{
    Png("a.png", ArgbImage(2, 2, 0xFFFFFFFF));
    files.Write("short.pal", "abc");
    files.Write("same.pal", std::string(1024, '\x7f'));
    ExpectNoFile("make --palette short.pal a.png out.img", "short.pal: no palette file: ");
    ExpectNoFile("make --palette none.pal a.png out.img", "none.pal: No such file");
    ExpectNoFile("make --palette same.pal a.png out.img", "same.pal: all its colours are the same");
}

TEST_F(KestrinImage, UnwritableOutputLeavesTheOldFile)
{
    Png("a.png", ArgbImage(2, 2, 0xFFFFFFFF));
    ExpectNoFile("make a.png none/out.img", "none/out.img: No such file");
    fs::create_directory(files.Path("out.img"));
    ExpectNoFile("make a.png out.img", "out.img: is there already and no file");
    // The palette cannot be written, so the image is not either.
    fs::create_directory(files.Path("other.img.pal"));
    files.Write("other.img", "old");
    ExpectNoFile("make --own-palette a.png other.img", "other.img.pal: is there already");
    EXPECT_EQ(ReadWhole(files.Path("other.img")), "old");
}

// ---- show and info

TEST_F(KestrinImage, ShowOfWhatIsNotThereLeavesNoFile)
{
    files.Write("good", PlainImageFile(2, 1, 3, "abcdef"));
    files.Write("bad", PlainImageFile(2, 1, 3, "abcde"));
    files.Write("short.pal", "abc");
    EXPECT_EQ(Run("show good --frame 2 last.png").status, 0);
    EXPECT_EQ(ReadPng(files.Path("last.png")).At(1, 0), FixedPalette()['f']);
    ExpectNoFile("show good --frame 3 out.png", "good: has no frame 3; its frames are 0 to 2");
    ExpectNoFile("show bad out.png", "bad: no image file, or damaged: the compressed pixels end");
    ExpectNoFile("show none out.png", "none: No such file");
    ExpectNoFile("show good --palette short.pal out.png", "short.pal: no palette file");
    ExpectNoFile("show good none/out.png", "none/out.png: No such file");
}

TEST_F(KestrinImage, InfoTellsSizeFramesAndRatio)
{
    files.Write("good", PlainImageFile(2, 1, 3, "abcdef"));
    const Outcome outcome = Run("info good");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("size    2 x 1 pixels, 8 bits per pixel\n"));
    EXPECT_THAT(outcome.output, HasSubstr("frames  3\n"));
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex("packed  [0-9]+ bytes of 6, [0-9]+\\.[0-9] %"));
    EXPECT_THAT(outcome.output, HasSubstr("damage  none\n"));
}

TEST_F(KestrinImage, InfoNamesDamageAndEndsWithOne)
{
    files.Write("cut", PlainImageFile(2, 1, 3, "abcdef").substr(0, 14));
    files.Write("empty", "");
    files.Write("zero", PlainImageFile(0, 1, 0, "a"));
    files.Write("more", PlainImageFile(1, 1, 1, "a") + "x");
    const auto expect = [&](const std::string& name, int status, const std::string& text) {
        const Outcome outcome = Run("info " + name);
        EXPECT_EQ(outcome.status, status) << name;
        EXPECT_THAT(outcome.output, HasSubstr(text));
    };
    expect("cut", 1, "damage  the file ends before the end marker");
    expect("empty", 1, "damage  the header is cut short");
    expect("zero", 1, "damage  the width is 0\n  damage  the number of frames is 0\n");
    expect("more", 0, "note    1 byte behind the end marker");
    expect("none", 1, "kestrin-image: none: No such file");
    expect(".", 1, "kestrin-image: .: Is a directory");
}

TEST_F(KestrinImage, HelpHasExamplesAndExitCodes)
{
    EXPECT_THAT(Run("--help").output, AllOf(HasSubstr("Usage: kestrin-image"), HasSubstr("2 for")));
    for (const char* command : {"make", "show", "info"}) {
        const Outcome outcome = Run(std::string(command) + " --help");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.output, HasSubstr("\n  kestrin-image " + std::string(command)));
    }
    for (const char* wrong : {"", "make", "show a", "info", "make --level 0 a b",
                              "show a b --frame x", "make --own-palette --palette p a b"})
        EXPECT_EQ(Run(wrong).status, 2) << wrong;
}

} // namespace
