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

std::string Text(const Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

class Loader : public testing::Test
{
protected:
    /** Writes a file and opens it; the error, without the directory, when that fails. */
    std::string Open(const std::string& content, const char* name = "picture")
    {
        return loader->Open(directory.Write(name, content).c_str()) ? "" : Error();
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

TEST_F(Loader, PngKeepsItsSizeAndColors)
{
    ASSERT_EQ(Open(Text(PngFile(2, 1, {1, 2, 3, 255, 200, 100, 50, 255}))), "");
    EXPECT_EQ(loader->GetWidth(), 2);
    EXPECT_EQ(loader->GetHeight(), 1);
    EXPECT_EQ(loader->GetFrameCount(), 1);
    const PImage image(loader->CreateImage(Color32Bit, 0));
    const auto* words = reinterpret_cast<UInt32*>(image->GetImageBuffer());
    EXPECT_THAT(std::vector<UInt32>(words, words + 2), ElementsAre(0xff010203U, 0xffc86432U));
}

} // namespace
