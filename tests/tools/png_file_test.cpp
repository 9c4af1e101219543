#include "png_file.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_tools::PngError;
using kestrin_tools::ReadPng;
using kestrin_tools::WritePng;
using testing::HasSubstr;

namespace {

class PngFile : public testing::Test
{
protected:
    ~PngFile() override { std::filesystem::remove(path); }

    std::string ReadFailure()
    {
        try {
            ReadPng(path);
        } catch (const PngError& error) {
            return error.what();
        }
        return "no failure";
    }

    const std::string path = testing::TempDir() + "/png-" + std::to_string(getpid()) + ".png";
};

TEST_F(PngFile, EveryPixelComesBack)
{
    ArgbImage image(67, 41);
    for (int y = 0; y < image.height; y++) {
        for (int x = 0; x < image.width; x++)
            image.At(x, y) = static_cast<std::uint32_t>(x) * 0x03000501U +
                             static_cast<std::uint32_t>(y) * 0x00070b0dU;
    }
    WritePng(path, image);

    const ArgbImage read = ReadPng(path);
    EXPECT_EQ(read.width, 67);
    EXPECT_EQ(read.height, 41);
    EXPECT_EQ(read.pixels, image.pixels);
}

TEST_F(PngFile, ColourOfTransparentPixelsIsKept)
{
    WritePng(path, ArgbImage(1, 1, 0x00123456));
    EXPECT_EQ(ReadPng(path).At(0, 0), 0x00123456U);
}

// A grey picture of one pixel, 8 bits, without alpha.
TEST_F(PngFile, GreyBecomesOpaqueColour)
{
    const unsigned char grey[] = {0x89, 'P', 'N',  'G',  0x0d, 0x0a, 0x1a, 0x0a, 0,    0, 0, 0x0d,
                                  'I',  'H', 'D',  'R',  0,    0,    0,    1,    0,    0, 0, 1,
                                  8,    0,   0,    0,    0,    0x3a, 0x7e, 0x9b, 0x55, 0, 0, 0,
                                  0x0a, 'I', 'D',  'A',  'T',  0x78, 0x9c, 0x63, 0x68, 0, 0, 0,
                                  0x82, 0,   0x81, 0x77, 0xcd, 0x72, 0xb6, 0,    0,    0, 0, 'I',
                                  'E',  'N', 'D',  0xae, 0x42, 0x60, 0x82};
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(grey), sizeof(grey));
    EXPECT_EQ(ReadPng(path).At(0, 0), 0xff808080U);
}

TEST_F(PngFile, MissingFileIsNamed)
{
    EXPECT_THAT(ReadFailure(), HasSubstr(path));
    EXPECT_THAT(ReadFailure(), HasSubstr("No such file"));
}

TEST_F(PngFile, OtherFilesAreRefused)
{
    std::ofstream(path) << "this is text, long enough to be looked at";
    EXPECT_THAT(ReadFailure(), HasSubstr(path + ": "));
    EXPECT_THAT(ReadFailure(), HasSubstr("PNG"));
}

TEST_F(PngFile, TruncatedFileIsRefused)
{
    ArgbImage image(64, 64);
    for (std::size_t i = 0; i < image.pixels.size(); i++)
        image.pixels[i] = static_cast<std::uint32_t>(i * 2654435761U);
    WritePng(path, image);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
    EXPECT_THROW(ReadPng(path), PngError);
}

TEST_F(PngFile, PicturesWithoutPixelsAreRefused)
{
    EXPECT_THROW(WritePng(path, ArgbImage()), PngError);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(PngFile, WritingIntoAMissingDirectoryIsReported)
{
    try {
        WritePng("/nowhere/at/all.png", ArgbImage(1, 1));
        FAIL();
    } catch (const PngError& error) {
        EXPECT_STREQ(error.what(), "/nowhere/at/all.png: No such file or directory");
    }
}

TEST_F(PngFile, FullDiskIsReported)
{
    ArgbImage image(256, 256);
    for (std::size_t i = 0; i < image.pixels.size(); i++)
        image.pixels[i] = static_cast<std::uint32_t>(i * 2654435761U);
    std::filesystem::create_symlink("/dev/full", path);
    EXPECT_THROW(WritePng(path, image), PngError);
}

} // namespace
