#include "display_fixture.h"

#include "display_setup.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <signal.h>
#include <unistd.h>

namespace kestrin_test {

using kestrin_display::ArgbImage;
using kestrin_display::LayerFacts;
using kestrin_display::LayerSnapshot;
using kestrin_display::PixelFormat;

namespace {

namespace fs = std::filesystem;

constexpr char prefix[] = "kestrin-display-"; // followed by the process id and a random part

// Death tests end without destructors: the next test clears away what dead processes left.
void RemoveLeftovers(const fs::path& directory)
{
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(directory, ignored)) {
        const std::string name = entry.path().filename();
        if (name.rfind(prefix, 0) != 0)
            continue;
        const long process = std::strtol(name.c_str() + std::strlen(prefix), nullptr, 10);
        if (process > 0 && kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH)
            fs::remove_all(entry.path(), ignored);
    }
}

} // namespace

TestDisplay::TestDisplay(int width, int height)
{
    const fs::path directory = fs::temp_directory_path();
    RemoveLeftovers(directory);

    std::string name = directory / (prefix + std::to_string(getpid()) + "-XXXXXX");
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
    fs::remove_all(_directory, ignored);
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
