/** Resource index files beside a font: whatever they say, only entries 1 and 2 open. */
#include "engine_display.h"
#include "fuzz_target.h"
#include "temp_directory.h"
#include "test_font.h"

#include <filesystem>

namespace kestrin_test {

std::vector<std::string> FuzzSeeds()
{
    return {"2\nfnt:a.ttf\nfnt:none.ttf\n",
            "1 font\r\nfnt:a.ttf:more\r\n",
            "3\nfnt:\nfont:a.ttf\nfnt:a.ttf\n",
            "65536\nfnt:a.ttf\n",
            "4294967295\nfnt:a.ttf\nno separator\n\n",
            "2\nfnt:" + std::string(1100, 'x') + "\nfnt:a.ttf\n",
            "0\n",
            "-1\nfnt:a.ttf\n"};
}

} // namespace kestrin_test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace zelxxx;
    static const kestrin_test::EngineDisplay engine(64, 48);
    static const kestrin_test::TempDirectory directory;
    static const bool linked = [] {
        std::filesystem::create_symlink(kestrin_test::kSans, directory.Path("a.ttf"));
        // The names of missing fonts are of no interest.
        return std::freopen("/dev/null", "w", stdout) != nullptr;
    }();
    FUZZ_REQUIRE(linked);
    const std::string path = directory.Write("index", {reinterpret_cast<const char*>(data), size});
    const PResource resource(zelOpenResource(path.c_str()));
    const bool digit = size > 0 && data[0] >= '0' && data[0] <= '9';
    FUZZ_REQUIRE(digit || !resource);
    if (!resource)
        return 0;
    for (const int index : {0, 1, 2, 3, 65535}) {
        bool download = false;
        IFont* font = resource->OpenFont(static_cast<ResIndex>(index), download);
        FUZZ_REQUIRE(!download && (!font || index == 1 || index == 2));
        FUZZ_REQUIRE(font == resource->OpenFont(static_cast<ResIndex>(index), download));
    }
    return 0;
}
