#include "screen_file.h"

#include <cstdlib>

#include <unistd.h>

namespace kestrin_display {

const char* FormatName(PixelFormat format)
{
    switch (format) {
    case PixelFormat::None:
        return "none";
    case PixelFormat::Lut8:
        return "LUT8";
    case PixelFormat::Argb:
        return "ARGB";
    case PixelFormat::Rgb32:
        return "RGB32";
    case PixelFormat::Rgb24:
        return "RGB24";
    case PixelFormat::Rgb16:
        return "RGB16";
    case PixelFormat::Argb1555:
        return "ARGB1555";
    case PixelFormat::Argb4444:
        return "ARGB4444";
    }
    return "unknown";
}

void PublishFacts(LayerBlock& block, const LayerFacts& facts)
{
    const std::uint32_t sequence = block.sequence.load(std::memory_order_relaxed);

    block.sequence.store(sequence + 1, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_release);
    block.facts = facts;
    block.sequence.store(sequence + 2, std::memory_order_release);
}

std::string DefaultScreenFile()
{
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && *runtime != '\0')
        return std::string(runtime) + "/kestrin-screen";
    return "/tmp/kestrin-screen-" + std::to_string(getuid());
}

} // namespace kestrin_display
