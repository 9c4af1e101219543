#include "gfx_renderers.h"

#include "display_fixture.h"
#include "pixel_bytes.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrin_test {

namespace {

constexpr std::size_t most_words = std::size_t{64} << 20;

void Require(DFBResult result)
{
    if (result != DFB_OK)
        throw std::runtime_error(DirectFBErrorString(result));
}

const char* OptionsOf(Renderer renderer)
{
    switch (renderer) {
    case Renderer::Software:
        return ",no-hardware,software";
    case Renderer::Driver:
        return ",hardware,software";
    default:
        return ",hardware,no-software";
    }
}

/** Memory that a child process fills for its parent. */
class SharedWords
{
public:
    SharedWords()
        : _memory(mmap(nullptr, most_words * 4, PROT_READ | PROT_WRITE,
                       MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))
    {
        if (_memory == MAP_FAILED)
            throw std::bad_alloc();
    }
    ~SharedWords() { munmap(_memory, most_words * 4); }
    SharedWords(const SharedWords&) = delete;
    SharedWords& operator=(const SharedWords&) = delete;

    std::uint32_t* Begin() const { return static_cast<std::uint32_t*>(_memory); }

private:
    void* _memory;
};

/** Locks a surface and visits its pixels row by row, as (address, bytes, x, y). */
template <class Visit>
void VisitPixels(IDirectFBSurface* surface, DFBSurfaceLockFlags access, Visit visit)
{
    DFBSurfacePixelFormat format = DSPF_UNKNOWN;
    int width = 0;
    int height = 0;
    void* data = nullptr;
    int pitch = 0;
    Require(surface->GetPixelFormat(surface, &format));
    Require(surface->GetSize(surface, &width, &height));
    Require(surface->Lock(surface, access, &data, &pitch));
    const std::size_t bytes = DFB_BYTES_PER_PIXEL(format);
    for (int y = 0; y < height; ++y) {
        auto* row = static_cast<std::uint8_t*>(data) + std::ptrdiff_t{y} * pitch;
        for (int x = 0; x < width; ++x)
            visit(row + static_cast<std::size_t>(x) * bytes, bytes, x, y);
    }
    Require(surface->Unlock(surface));
}

/** The first word tells how many follow. */
void DrawHere(Renderer renderer, const Scene& scene, std::uint32_t* words)
{
    const TestDisplay display(64, 48);
    const std::string arguments = display.Arguments() + OptionsOf(renderer);
    setenv("DFBARGS", arguments.c_str(), 1);
    IDirectFB* dfb = nullptr;
    Require(DirectFBInit(nullptr, nullptr));
    Require(DirectFBCreate(&dfb));
    Studio studio(dfb, words + 1, most_words - 1);
    scene(studio);
    words[0] = static_cast<std::uint32_t>(studio.Shown());
}

} // namespace

Studio::Studio(IDirectFB* dfb, std::uint32_t* words, std::size_t room)
    : _dfb(dfb), _words(words), _room(room)
{
}

IDirectFBSurface* Studio::Make(int width, int height, DFBSurfacePixelFormat format)
{
    DFBSurfaceDescription description = {};
    description.flags =
        static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT | DSDESC_PIXELFORMAT);
    description.width = width;
    description.height = height;
    description.pixelformat = format;
    IDirectFBSurface* surface = nullptr;
    Require(_dfb->CreateSurface(_dfb, &description, &surface));
    Write(surface, [](int, int) { return 0; });
    return surface;
}

void Studio::Write(IDirectFBSurface* surface,
                   const std::function<std::uint32_t(int x, int y)>& pixel)
{
    VisitPixels(surface, DSLF_WRITE, [&](std::uint8_t* address, std::size_t bytes, int x, int y) {
        kestrin_display::StorePixel(address, pixel(x, y), bytes);
    });
}

void Studio::SetColors(IDirectFBSurface* surface,
                       const std::function<std::uint32_t(int index)>& color)
{
    IDirectFBPalette* palette = nullptr;
    Require(surface->GetPalette(surface, &palette));
    std::vector<DFBColor> colors;
    for (int i = 0; i < 256; ++i) {
        const std::uint32_t value = color(i);
        colors.push_back({static_cast<u8>(value >> 24), static_cast<u8>(value >> 16),
                          static_cast<u8>(value >> 8), static_cast<u8>(value)});
    }
    Require(palette->SetEntries(palette, colors.data(), 256, 0));
    palette->Release(palette);
}

void Studio::Show(IDirectFBSurface* surface)
{
    VisitPixels(surface, DSLF_READ, [&](std::uint8_t* address, std::size_t bytes, int, int) {
        Show(kestrin_display::LoadPixel(address, bytes));
    });
}

void Studio::Show(std::uint32_t number)
{
    if (_shown == _room)
        throw std::length_error("the scene shows too much");
    _words[_shown++] = number;
}

std::vector<std::uint32_t> Drawn(Renderer renderer, const Scene& scene)
{
    const SharedWords shared;
    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("cannot fork");
    if (child == 0) {
        // What the parent has is its own to clear away.
        int status = 1;
        try {
            DrawHere(renderer, scene, shared.Begin());
            status = 0;
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s\n", error.what());
        }
        _exit(status);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error("a renderer ended with status " + std::to_string(status));
    const std::uint32_t* words = shared.Begin();
    return {words + 1, words + 1 + words[0]};
}

testing::AssertionResult SameDrawn(const std::vector<std::uint32_t>& actual,
                                   const std::vector<std::uint32_t>& expected)
{
    if (actual.size() != expected.size())
        return testing::AssertionFailure()
               << actual.size() << " words were drawn instead of " << expected.size();
    if (std::all_of(expected.begin(), expected.end(), [](std::uint32_t word) { return word == 0; }))
        return testing::AssertionFailure() << "nothing was drawn at all";
    std::size_t different = 0;
    std::size_t first = 0;
    for (std::size_t i = expected.size(); i-- > 0;) {
        if (actual[i] != expected[i]) {
            ++different;
            first = i;
        }
    }
    if (different == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << different << " of " << expected.size() << " words differ, the first at " << first
           << std::hex << std::showbase << ": " << actual[first] << " instead of "
           << expected[first];
}

testing::AssertionResult DriverDrawsTheSame(const Scene& scene)
{
    return SameDrawn(Drawn(Renderer::DriverAlone, scene), Drawn(Renderer::Software, scene));
}

} // namespace kestrin_test
