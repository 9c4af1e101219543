/**
 * Image files as the tools read them: every kind of damage is named, and what is sound is what the
 * engine's own decompressor gives.
 */
#include "image_file.h"

#include "nrv2b_stream.h"
#include "temp_directory.h"

#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::ImageFile;
using kestrin_test::Nrv2bStream;
using kestrin_test::PlainImageFile;
using kestrin_test::TempDirectory;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using namespace kestrin_tools;

namespace {

class ToolImageFile : public testing::Test
{
protected:
    ImageReport Report(const std::string& content) const
    {
        return InspectImage(files.Write("image", content));
    }
    /** The only damage of a file; its pixels are not there then. */
    std::string Damage(const std::string& content) const
    {
        const ImageReport report = Report(content);
        EXPECT_THAT(report.image.pixels, IsEmpty());
        EXPECT_EQ(report.damage.size(), 1u);
        return report.damage.empty() ? std::string() : report.damage.front();
    }

    const TempDirectory files;
};

TEST_F(ToolImageFile, SoundFileHasItsFrames)
{
    const ImageReport report = Report(PlainImageFile(2, 1, 3, "abcdef"));
    EXPECT_THAT(report.damage, IsEmpty());
    EXPECT_THAT(report.notes, IsEmpty());
    EXPECT_EQ(report.width, 2);
    EXPECT_EQ(report.height, 1);
    EXPECT_EQ(report.depth, 8);
    EXPECT_EQ(report.frames, 3);
    EXPECT_EQ(report.unpacked, 6u);
    EXPECT_THAT(report.image.pixels, ElementsAre('a', 'b', 'c', 'd', 'e', 'f'));

    Palette palette = {};
    palette['c'] = 0x80FF0000;
    palette['d'] = 0xFF00FF00;
    const kestrin_display::ArgbImage frame = FrameOf(report.image, 1, palette);
    EXPECT_EQ(frame.width, 2);
    EXPECT_EQ(frame.height, 1);
    EXPECT_THAT(frame.pixels, ElementsAre(0x80FF0000, 0xFF00FF00));
}

TEST_F(ToolImageFile, HeaderCutShort)
{
    for (const std::size_t size : {0, 1, 7}) {
        EXPECT_EQ(Damage(PlainImageFile(1, 1, 1, "a").substr(0, size)),
                  "the header is cut short: it takes 8 bytes and the file has " +
                      std::to_string(size));
    }
}

TEST_F(ToolImageFile, NumbersOfTheHeaderThatAreZero)
{
    const std::string stream = Nrv2bStream().Literals("ab").End().Bytes();
    EXPECT_EQ(Damage(ImageFile(0, 1, 8, 1, stream)), "the width is 0");
    EXPECT_EQ(Damage(ImageFile(1, 0, 8, 1, stream)), "the height is 0");
    EXPECT_EQ(Damage(ImageFile(1, 1, 0, 1, stream)), "the number of bits per pixel is 0");
    EXPECT_EQ(Damage(ImageFile(1, 1, 8, 0, stream)), "the number of frames is 0");
    EXPECT_THAT(Report(ImageFile(0, 0, 0, 0, stream)).damage, testing::SizeIs(4));
}

TEST_F(ToolImageFile, RowWithoutAByte)
{
    EXPECT_THAT(Report(ImageFile(7, 1, 1, 1, "")).damage.front(),
                "a row of 7 pixels of 1 bits has not one byte");
}

TEST_F(ToolImageFile, OtherDepthThanBytes)
{
    const std::string pixels = Nrv2bStream().Literals("abcd").End().Bytes();
    EXPECT_THAT(Damage(ImageFile(2, 1, 16, 1, pixels)), HasSubstr("it has 16 bits per pixel"));
    EXPECT_THAT(Damage(ImageFile(8, 1, 4, 1, pixels)), HasSubstr("it has 4 bits per pixel"));
}

TEST_F(ToolImageFile, LargerThanIsLoaded)
{
    EXPECT_THAT(Damage(ImageFile(16384, 16384, 8, 2, "")),
                HasSubstr("would unpack to 536870912 bytes, more than the 268435456"));
    EXPECT_THAT(Damage(ImageFile(16384, 16384, 8, 1, "")), HasSubstr("cut short"));
}

TEST_F(ToolImageFile, SideBeyondTheCoordinates)
{
    Nrv2bStream stream;
    stream.Literal('a').Copy(1, 32767).End();
    EXPECT_THAT(Damage(ImageFile(32768, 1, 8, 1, stream.Bytes())), HasSubstr("has 32768 pixels"));
    EXPECT_THAT(Damage(ImageFile(1, 32768, 8, 1, stream.Bytes())), HasSubstr("has 32768 pixels"));
}

TEST_F(ToolImageFile, EveryTruncationIsNamed)
{
    const std::string whole =
        ImageFile(2, 4, 8, 1, Nrv2bStream().Literals("abc").Copy(3, 4).Literal('x').End().Bytes());
    ASSERT_THAT(Report(whole).damage, IsEmpty());
    for (std::size_t size = image_header_size; size < whole.size(); ++size)
        EXPECT_THAT(Damage(whole.substr(0, size)),
                    StartsWith("the file ends before the end marker of its compressed pixels: it "
                               "is cut short"))
            << size;
}

TEST_F(ToolImageFile, MorePixelsThanTheHeaderSays)
{
    EXPECT_EQ(Damage(PlainImageFile(2, 1, 1, "abc")),
              "a pixel too many after 3 bytes of the compressed pixels, 2 bytes of the picture: "
              "there is more than the header says");
}

TEST_F(ToolImageFile, FewerPixelsThanTheHeaderSays)
{
    EXPECT_EQ(Damage(PlainImageFile(2, 2, 2, "abc")),
              "the compressed pixels end after 3 bytes where the header promises 8");
}

TEST_F(ToolImageFile, RepetitionsOutsideThePicture)
{
    const auto file = [](Nrv2bStream stream) {
        return ImageFile(4, 1, 8, 1, stream.End().Byte(0).Byte(0).Byte(0).Bytes());
    };
    EXPECT_THAT(Damage(file(Nrv2bStream().Literal('a').Copy(1, 6))),
                StartsWith("a repetition beyond the end of the picture after "));
    EXPECT_THAT(Damage(file(Nrv2bStream().Literal('a').Copy(1, 500))),
                StartsWith("a repetition beyond the end of the picture after "));
    EXPECT_THAT(Damage(file(Nrv2bStream().Literal('a').Copy(2, 3))),
                StartsWith("a repetition of what is before the start of the picture after "));
}

TEST_F(ToolImageFile, BitsThatAreNoCode)
{
    Nrv2bStream stream;
    stream.Literal('a').Bit(0).Number(0x1000003);
    for (int i = 0; i < 10; ++i)
        stream.Byte(0);
    EXPECT_THAT(Damage(ImageFile(4, 1, 8, 1, stream.Bytes())),
                StartsWith("bits that are no code after "));
}

TEST_F(ToolImageFile, ByteTooManyAndBytesBehindTheEndAreNotes)
{
    const ImageReport more =
        Report(ImageFile(5, 1, 8, 1, Nrv2bStream().Literal('a').Copy(1, 5).End().Bytes()));
    EXPECT_THAT(more.damage, IsEmpty());
    EXPECT_THAT(more.notes,
                ElementsAre("the compressed pixels have one byte more than the header says"));
    EXPECT_THAT(more.image.pixels, ElementsAre('a', 'a', 'a', 'a', 'a'));

    const ImageReport behind = Report(PlainImageFile(1, 1, 1, "a") + "xyz");
    EXPECT_THAT(behind.damage, IsEmpty());
    EXPECT_THAT(behind.notes, ElementsAre("3 bytes behind the end marker are not read"));
}

TEST_F(ToolImageFile, MissingFileAndDirectoryAreErrorsThatNameThem)
{
    for (const std::string& path : {files.Path("none"), files.Path("")}) {
        try {
            InspectImage(path);
            ADD_FAILURE() << path;
        } catch (const ImageFileError& error) {
            EXPECT_THAT(error.what(), StartsWith(path + ": "));
        }
    }
}

TEST_F(ToolImageFile, ReadImageNamesFileAndDamage)
{
    EXPECT_EQ(ReadImage(files.Write("good", PlainImageFile(1, 1, 1, "a"))).frames, 1);
    try {
        ReadImage(files.Write("bad", PlainImageFile(1, 0, 1, "a")));
        ADD_FAILURE();
    } catch (const ImageFileError& error) {
        EXPECT_THAT(error.what(), HasSubstr("/bad: no image file, or damaged: the height is 0"));
    }
}

TEST_F(ToolImageFile, PackedImageIsReadBack)
{
    IndexedImage image = {300, 2, 1, std::vector<std::uint8_t>(600)};
    std::iota(image.pixels.begin(), image.pixels.end(), std::uint8_t{0});
    const std::string text(image.pixels.begin(), image.pixels.end());
    const std::string file = PackImage(image, Nrv2bStream().Literals(text).End().Bytes());
    EXPECT_EQ(file, PlainImageFile(300, 2, 1, text));
    EXPECT_EQ(Report(file).image.pixels, image.pixels);
}

TEST_F(ToolImageFile, StreamOfAnotherPictureIsNotPacked)
{
    const IndexedImage image = {2, 1, 1, {'a', 'b'}};
    EXPECT_NO_THROW(PackImage(image, Nrv2bStream().Literals("ab").End().Bytes()));
    for (const std::string& stream :
         {Nrv2bStream().Literals("ac").End().Bytes(), Nrv2bStream().Literals("a").End().Bytes(),
          Nrv2bStream().Literals("abc").End().Bytes(), Nrv2bStream().Literals("ab").Bytes(),
          Nrv2bStream().Literals("ab").End().Byte(0).Bytes(), std::string()})
        EXPECT_THROW(PackImage(image, stream), ImageFileError);
}

} // namespace
