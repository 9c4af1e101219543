#include "display_fixture.h"

#include "display_setup.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace kestrin_test {

using kestrin_display::ArgbImage;
using kestrin_display::LayerFacts;
using kestrin_display::LayerSnapshot;
using kestrin_display::PixelFormat;

TestDisplay::TestDisplay(int width, int height)
{
    std::string name = std::filesystem::temp_directory_path() / "kestrin-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("cannot make " + name + ": " + std::strerror(errno));
    _directory = name;
    _path = name + "/screen";

    _arguments = kestrin_display::ScreenFileArguments(_path, width, height);
    setenv("DFBARGS", _arguments.c_str(), 1);
}

TestDisplay::~TestDisplay()
{
    std::error_code ignored;
    std::filesystem::remove_all(_directory, ignored);
}

LayerFacts TestDisplay::Facts(int layer) const
{
    return Reader().Facts(layer);
}

ArgbImage TestDisplay::Shot(int layer) const
{
    return Reader().Snapshot(layer).image;
}

std::vector<std::uint8_t> TestDisplay::Indices(int layer) const
{
    const LayerSnapshot snapshot = Reader().Snapshot(layer);
    if (snapshot.facts.format != PixelFormat::Lut8)
        throw std::logic_error("layer " + std::to_string(layer) + " has no palette indices");

    std::vector<std::uint8_t> indices;
    indices.reserve(std::size_t{snapshot.facts.width} * snapshot.facts.height);
    for (std::size_t y = 0; y < snapshot.facts.height; y++) {
        const auto row =
            snapshot.bytes.begin() + static_cast<std::ptrdiff_t>(y * snapshot.facts.pitch);
        indices.insert(indices.end(), row, row + static_cast<std::ptrdiff_t>(snapshot.facts.width));
    }
    return indices;
}

} // namespace kestrin_test
