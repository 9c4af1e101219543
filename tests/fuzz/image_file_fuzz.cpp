/** Image files on a real display: made, drawn in part and as a whole, changed. */
#include "engine_display.h"
#include "fuzz_target.h"
#include "nrv2b_stream.h"

namespace {

/** Larger pictures are legal and slow: many runs of small ones find more. */
constexpr std::uint64_t kMostPixels = 1 << 16;
constexpr std::uint64_t kMostFrames = 16;
/** What the engine refuses whatever the stream holds. */
constexpr std::uint64_t kRefusedBytes = std::uint64_t{1} << 28;

std::uint64_t Number(const std::uint8_t* data)
{
    return data[0] | static_cast<std::uint64_t>(data[1]) << 8;
}

bool IsSlow(const std::uint8_t* data, std::size_t size)
{
    if (size < 8)
        return false;
    const std::uint64_t width = Number(data);
    const std::uint64_t height = Number(data + 2);
    const std::uint64_t frames = Number(data + 6);
    if ((Number(data + 4) * width >> 3) * height * frames > kRefusedBytes)
        return false;
    return width * height > kMostPixels || frames > kMostFrames;
}

} // namespace

namespace kestrin_test {

std::vector<std::string> FuzzSeeds()
{
    const std::string copies =
        Nrv2bStream().Literals("abcdef").Copy(3, 40).CopyAgain(9).Copy(1, 45).End().Bytes();
    return {PlainImageFile(2, 2, 1, "abcd"),
            PlainImageFile(3, 1, 4, "abcdefghijkl"),
            ImageFile(10, 10, 8, 1, copies),
            ImageFile(5, 10, 8, 2, copies),
            ImageFile(20, 10, 4, 1, copies),
            ImageFile(5, 5, 32, 1, copies),
            ImageFile(100, 1, 8, 1, copies),
            ImageFile(10, 0, 8, 1, copies),
            ImageFile(0xffff, 0xffff, 0xffff, 0xffff, copies)};
}

} // namespace kestrin_test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace zelxxx;
    static const kestrin_test::EngineDisplay engine(64, 48, Color8Bit);
    static const PCanvas canvas(zelCreateCanvas(64, 48, Color8Bit));
    static const ZELObjPtr<IPainter> painter(zelCreatePainter(canvas));
    if (IsSlow(data, size))
        return 0;
    const std::string path = kestrin_test::InMemoryFile(data, size);
    const PImage image(zelCreateImage(path.c_str()));
    if (!image)
        return 0;
    FUZZ_REQUIRE(size > 8 && image->GetWidth() == Number(data));
    FUZZ_REQUIRE(image->GetHeight() == Number(data + 2));
    FUZZ_REQUIRE(image->GetFrameCount() == static_cast<int>(Number(data + 6)));
    const auto width = static_cast<MetricValue>(image->GetWidth());
    const auto height = static_cast<MetricValue>(image->GetHeight());
    for (const int frame : {0, image->GetFrameCount() - 1, image->GetFrameCount()}) {
        const auto number = static_cast<UInt16>(frame);
        painter->DrawImage(image, number, -3, -2, width, height, 1, 1, 1, 1, 255, BlendSrcCopy);
        painter->DrawTexture(image, number, 0, 0, 40, 30, 3, 3, 255, BlendSrcCopy);
    }
    UInt32 pixels[4] = {};
    image->SetImageData(pixels, 4, -1, -1, 4, 4, Color8Bit);
    image->ImageClear(Color8Bit, 0, 0, 1, 1, 7, 255);
    return 0;
}
