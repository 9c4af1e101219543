#include "screen_reader.h"

#include "pixel_bytes.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrin_display {
namespace {

using Clock = std::chrono::steady_clock;

// A writer holds the facts for less than a microsecond, and a picture is read in milliseconds.
constexpr auto patience = std::chrono::seconds(1);

// More layers than any display has: a larger number is damage.
constexpr std::uint32_t plausible_layers = 64;

bool SamePicture(const LayerFacts& a, const LayerFacts& b)
{
    return a.width == b.width && a.height == b.height && a.pitch == b.pitch &&
           a.format == b.format && a.offset == b.offset && a.flip_count == b.flip_count &&
           std::memcmp(a.palette, b.palette, sizeof(a.palette)) == 0;
}

/** Widens a channel of `bits` bits so that all ones become 255. */
std::uint32_t Widen(std::uint32_t value, unsigned bits)
{
    const std::uint32_t top = (1U << bits) - 1;
    return ((value & top) * 255 + top / 2) / top;
}

std::uint32_t Pack(std::uint32_t a, std::uint32_t r, std::uint32_t g, std::uint32_t b)
{
    return a << 24 | r << 16 | g << 8 | b;
}

std::uint32_t ConvertPixel(const LayerFacts& facts, const std::uint8_t* pixel)
{
    const std::uint32_t value = LoadPixel(pixel, BytesPerPixel(facts.format));

    switch (facts.format) {
    case PixelFormat::Lut8:
        return facts.palette[value];
    case PixelFormat::Argb:
        return value;
    case PixelFormat::Rgb32:
    case PixelFormat::Rgb24:
        return value | 0xff000000;
    case PixelFormat::Rgb16:
        return Pack(255, Widen(value >> 11, 5), Widen(value >> 5, 6), Widen(value, 5));
    case PixelFormat::Argb1555:
        return Pack(Widen(value >> 15, 1), Widen(value >> 10, 5), Widen(value >> 5, 5),
                    Widen(value, 5));
    case PixelFormat::Argb4444:
        return Pack(Widen(value >> 12, 4), Widen(value >> 8, 4), Widen(value >> 4, 4),
                    Widen(value, 4));
    case PixelFormat::None:
        break;
    }
    return 0;
}

} // namespace

ScreenReader::ScreenReader(const std::string& path)
    : _path(path), _file(open(path.c_str(), O_RDONLY | O_CLOEXEC))
{
    if (_file < 0)
        Fail(std::strerror(errno));

    // The destructor does not run for a constructor that throws.
    try {
        struct stat status = {};
        if (fstat(_file, &status) != 0 || !S_ISREG(status.st_mode))
            Fail("is not a regular file");
        ReadAt(0, &_header, sizeof(_header));
        if (std::memcmp(_header.magic, screen_file_magic, sizeof(screen_file_magic)) != 0)
            Fail("is not a screen file");
        if (_header.version != screen_file_version)
            Fail("has version " + std::to_string(_header.version) +
                 "; this program reads version " + std::to_string(screen_file_version));
        if (_header.layer_count == 0 || _header.layer_count > plausible_layers ||
            _header.memory_offset < LayerBlockOffset(_header.layer_count))
            Fail("is damaged: its header makes no sense");
    } catch (...) {
        close(_file);
        throw;
    }
}

ScreenReader::~ScreenReader()
{
    close(_file);
}

LayerFacts ScreenReader::Facts(int layer) const
{
    if (layer < 0 || layer >= LayerCount())
        Fail("has no layer " + std::to_string(layer) + "; its layers are 0 to " +
             std::to_string(LayerCount() - 1));

    const std::uint64_t block = LayerBlockOffset(static_cast<std::uint32_t>(layer));
    const auto deadline = Clock::now() + patience;
    do {
        std::uint32_t before = 0;
        std::uint32_t after = 0;
        LayerFacts facts;
        ReadAt(block + offsetof(LayerBlock, sequence), &before, sizeof(before));
        ReadAt(block + offsetof(LayerBlock, facts), &facts, sizeof(facts));
        std::atomic_thread_fence(std::memory_order_acquire);
        ReadAt(block + offsetof(LayerBlock, sequence), &after, sizeof(after));
        if (before == after && before % 2 == 0)
            return facts;
        std::this_thread::yield();
    } while (Clock::now() < deadline);

    Fail("stays locked: its program ended while it changed layer " + std::to_string(layer));
}

LayerSnapshot ScreenReader::Snapshot(int layer) const
{
    const auto deadline = Clock::now() + patience;
    LayerFacts facts = Facts(layer);
    do {
        CheckFacts(layer, facts);
        LayerSnapshot snapshot = {};
        snapshot.bytes.resize(std::size_t{facts.pitch} * facts.height);
        ReadAt(facts.offset, snapshot.bytes.data(), snapshot.bytes.size());

        // Drawing into the front buffer changes pixels as it does on a panel; another buffer,
        // palette or shape would make the bytes mean something else.
        const LayerFacts now = Facts(layer);
        if (SamePicture(facts, now)) {
            snapshot.facts = facts;
            snapshot.image = ConvertToArgb(facts, snapshot.bytes);
            return snapshot;
        }
        facts = now;
    } while (Clock::now() < deadline);

    Fail("changes layer " + std::to_string(layer) + " faster than it can be read");
}

void ScreenReader::ReadAt(std::uint64_t offset, void* data, std::size_t size) const
{
    auto* to = static_cast<std::uint8_t*>(data);
    while (size > 0) {
        const ssize_t got = pread(_file, to, size, static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            Fail(std::strerror(errno));
        if (got == 0)
            Fail("is truncated");
        to += got;
        offset += static_cast<std::uint64_t>(got);
        size -= static_cast<std::size_t>(got);
    }
}

void ScreenReader::CheckFacts(int layer, const LayerFacts& facts) const
{
    if (facts.format == PixelFormat::None)
        Fail("has no picture on layer " + std::to_string(layer) +
             ": no program has set the layer up yet");
    const std::uint32_t bytes_per_pixel = BytesPerPixel(facts.format);
    if (bytes_per_pixel == 0 || facts.width < 1 || facts.width > screen_side_limit ||
        facts.height < 1 || facts.height > screen_side_limit ||
        facts.pitch < facts.width * bytes_per_pixel ||
        facts.pitch > 2 * screen_side_limit * bytes_per_pixel || facts.opacity > 255 ||
        facts.offset < _header.memory_offset || facts.offset > INT64_MAX / 2)
        Fail("is damaged: the facts of layer " + std::to_string(layer) + " make no sense");
}

void ScreenReader::Fail(const std::string& reason) const
{
    throw ScreenError("screen file " + _path + ": " + reason);
}

ArgbImage ConvertToArgb(const LayerFacts& facts, const std::vector<std::uint8_t>& bytes)
{
    ArgbImage image(static_cast<int>(facts.width), static_cast<int>(facts.height));
    const std::size_t step = BytesPerPixel(facts.format);
    std::uint32_t* to = image.pixels.data();

    for (std::size_t y = 0; y < facts.height; y++) {
        const std::uint8_t* from = bytes.data() + y * facts.pitch;
        for (std::size_t x = 0; x < facts.width; x++)
            *to++ = ConvertPixel(facts, from + x * step);
    }
    return image;
}

} // namespace kestrin_display
