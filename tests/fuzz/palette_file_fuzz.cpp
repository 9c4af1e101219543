/** Palette files of any length: the bytes that are there count, the others are 0. */
#include "fuzz_target.h"
#include "vrel_kestrin_graphic.h"

namespace kestrin_test {

std::vector<std::string> FuzzSeeds()
{
    std::string whole;
    for (int i = 0; i < 1024; ++i)
        whole.push_back(static_cast<char>(i * 7));
    return {whole, whole + "more", whole.substr(0, 512), whole.substr(0, 7), ""};
}

} // namespace kestrin_test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string path = kestrin_test::InMemoryFile(data, size);
    const zelxxx::PPalette palette(zelxxx::zelCreatePalette(path.c_str()));
    FUZZ_REQUIRE(palette && palette->GetColorCount() == 256);
    const auto byte = [&](std::size_t offset) { return offset < size ? data[offset] : 0; };
    for (std::size_t i = 0; i < 256; ++i) {
        const auto index = static_cast<zelxxx::UInt8>(i);
        FUZZ_REQUIRE(palette->GetColorBlending(index) == byte(4 * i));
        FUZZ_REQUIRE(palette->GetColorRed(index) == byte(4 * i + 1));
        FUZZ_REQUIRE(palette->GetColorGreen(index) == byte(4 * i + 2));
        FUZZ_REQUIRE(palette->GetColorBlue(index) == byte(4 * i + 3));
    }
    return 0;
}
