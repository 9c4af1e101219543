/** Pictures of every kind through the loader, made into images for both kinds of display. */
#include "fuzz_target.h"
#include "nrv2b_stream.h"
#include "picture_files.h"
#include "vrel_kestrin_loader.h"

namespace {

/** Larger pictures are legal and slow. */
constexpr int kMostPixels = 1 << 16;

std::string Text(const kestrin_test::Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

} // namespace

namespace kestrin_test {

std::vector<std::string> FuzzSeeds()
{
    const Bytes rgba = {1, 2, 3, 255, 200, 100, 50, 128, 9, 8, 7, 0, 255, 255, 255, 255};
    const Bytes rgb(10 * 9 * 3, 77);
    return {Text(PngFile(2, 2, rgba)),
            Text(PngFile(4, 1, rgba)),
            Text(JpegFile(9, 7, 130)),
            Text(JpegFile(10, 9, rgb, false)),
            Text(JpegFile(10, 9, rgb, true)),
            PlainImageFile(3, 1, 4, "abcdefghijkl"),
            ImageFile(10, 10, 8, 1, Nrv2bStream().Literal('a').Copy(1, 99).End().Bytes())};
}

} // namespace kestrin_test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace zelxxx;
    const std::string path = kestrin_test::InMemoryFile(data, size);
    const ZELObjPtr<IImageLoader> loader(zelCreateImageLoader());
    if (!loader->Open(path.c_str())) {
        FUZZ_REQUIRE(std::string(loader->GetError()).compare(0, path.size(), path) == 0);
        FUZZ_REQUIRE(loader->GetFrameCount() == 0 && !loader->CreateImage(Color32Bit, 0));
        return 0;
    }
    FUZZ_REQUIRE(loader->GetWidth() > 0 && loader->GetHeight() > 0 && loader->GetFrameCount() > 0);
    if (loader->GetWidth() * loader->GetHeight() > kMostPixels)
        return 0;
    for (const ColorMode mode : {Color8Bit, Color32Bit}) {
        const PImage image(loader->CreateImage(mode, loader->GetFrameCount() - 1));
        FUZZ_REQUIRE(image && image->GetImageBuffer());
        FUZZ_REQUIRE(image->GetWidth() == loader->GetWidth());
    }
    return 0;
}
