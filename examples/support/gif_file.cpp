#include "gif_file.h"

#include <fcntl.h>
#include <gif_lib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace kestrin_examples {

namespace {

using kestrin_display::ArgbImage;

/** The palette's last entry stands for what the frame before shows. */
constexpr int kTransparent = 255;

/** 0xRRGGBB */
using Rgb = std::uint32_t;

constexpr unsigned kShifts[] = {16, 8, 0};

int Channel(Rgb color, unsigned shift)
{
    return static_cast<int>(color >> shift & 0xff);
}

/** A pixel over an opaque one. */
Rgb Over(std::uint32_t front, Rgb back)
{
    const int alpha = static_cast<int>(front >> 24);
    Rgb result = 0;
    for (const unsigned shift : kShifts) {
        const int sum = Channel(front, shift) * alpha + Channel(back, shift) * (255 - alpha);
        result |= static_cast<Rgb>((sum + 127) / 255) << shift;
    }
    return result;
}

/** A colour and how many pixels have it. */
struct Counted
{
    Rgb color;
    double count;
};

/** Colours that share an entry of the palette. */
class Group
{
public:
    using Iterator = std::vector<Counted>::iterator;

    Group(Iterator begin, Iterator end) : _begin(begin), _end(end)
    {
        double count = 0;
        for (auto at = begin; at != end; ++at)
            count += at->count;
        for (const unsigned shift : kShifts) {
            double sum = 0, squares = 0;
            for (auto at = begin; at != end; ++at) {
                const double value = Channel(at->color, shift);
                sum += at->count * value;
                squares += at->count * value * value;
            }
            const double mean = sum / count;
            _mean |= static_cast<Rgb>(std::lround(mean)) << shift;
            const double error = squares - sum * mean;
            if (error <= _error)
                continue;
            _error = error;
            _widest = shift;
            _middle = mean;
        }
    }

    /** How far the colours are from their mean, in the channel where they are farthest. */
    double Error() const { return _error; }
    Rgb Mean() const { return _mean; }
    Iterator begin() const { return _begin; }
    Iterator end() const { return _end; }

    /** Parts the colours at their mean. Takes the error to be above 0. */
    std::pair<Group, Group> Split() const
    {
        const auto second = std::partition(_begin, _end, [this](const Counted& counted) {
            return Channel(counted.color, _widest) <= _middle;
        });
        return {Group(_begin, second), Group(second, _end)};
    }

private:
    Iterator _begin, _end;
    double _error = 0.001; // less is what sums of doubles leave over
    Rgb _mean = 0;
    unsigned _widest = 0;
    double _middle = 255;
};

/** Parts colours into as many groups as the palette has entries, the worst group first. */
std::vector<Group> GroupColors(std::vector<Counted>& colors)
{
    const auto better = [](const Group& a, const Group& b) { return a.Error() < b.Error(); };
    std::vector<Group> groups = {Group(colors.begin(), colors.end())};
    while (groups.size() < kTransparent) {
        const auto worst = std::max_element(groups.begin(), groups.end(), better);
        if (worst->Error() < 1)
            break;
        const auto [first, second] = worst->Split();
        *worst = first;
        groups.push_back(second);
    }
    return groups;
}

/** Frames one below the other, in palette indices. */
struct Quantized
{
    std::vector<GifByteType> indices;
    std::vector<GifColorType> palette = std::vector<GifColorType>(kTransparent + 1);
};

/** Chooses one palette for all frames: with one for each, still areas would flicker. */
Quantized Quantize(const std::vector<GifFrame>& frames, Rgb backdrop)
{
    std::unordered_map<Rgb, int> counts;
    for (const GifFrame& frame : frames) {
        for (const std::uint32_t pixel : frame.image.pixels)
            ++counts[Over(pixel, backdrop)];
    }
    std::vector<Counted> colors;
    for (const auto& [color, count] : counts)
        colors.push_back({color, static_cast<double>(count)});
    // The table's order is its own: with this one the same frames give the same file.
    std::sort(colors.begin(), colors.end(),
              [](const Counted& a, const Counted& b) { return a.color < b.color; });

    Quantized result;
    GifByteType index = 0;
    for (const Group& group : GroupColors(colors)) {
        for (const Counted& counted : group)
            counts[counted.color] = index;
        const auto channel = [&](unsigned shift) {
            return static_cast<GifByteType>(Channel(group.Mean(), shift));
        };
        result.palette[index++] = {channel(16), channel(8), channel(0)};
    }
    for (const GifFrame& frame : frames) {
        for (const std::uint32_t pixel : frame.image.pixels)
            result.indices.push_back(static_cast<GifByteType>(counts[Over(pixel, backdrop)]));
    }
    return result;
}

/** A half-open rectangle of a frame. */
struct Part
{
    int left, top, right, bottom;
};

/** The smallest part that holds all differences; a pixel if there are none. */
Part Changed(const GifByteType* now, const GifByteType* before, int width, int height)
{
    if (!before)
        return {0, 0, width, height};
    Part part = {width, height, 0, 0};
    for (int i = 0; i < width * height; ++i) {
        if (now[i] == before[i])
            continue;
        const int x = i % width;
        const int y = i / width;
        part = {std::min(part.left, x), std::min(part.top, y), std::max(part.right, x + 1),
                std::max(part.bottom, y + 1)};
    }
    return part.right > 0 ? part : Part{0, 0, 1, 1};
}

struct Closer
{
    void operator()(GifFileType* file) const { EGifCloseFile(file, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, Closer>;

void Check(int result, const GifFileType* gif)
{
    if (result != GIF_OK)
        throw std::runtime_error(GifErrorString(gif->Error));
}

void PutHeader(GifFileType* gif, const ArgbImage& image, const std::vector<GifColorType>& palette)
{
    const std::unique_ptr<ColorMapObject, void (*)(ColorMapObject*)> colors(
        GifMakeMapObject(static_cast<int>(palette.size()), palette.data()), GifFreeMapObject);
    if (!colors)
        throw std::bad_alloc();
    EGifSetGifVersion(gif, true);
    Check(EGifPutScreenDesc(gif, image.width, image.height, 8, 0, colors.get()), gif);

    // Repeat for ever: an application's extension that all viewers know.
    const GifByteType loop[] = {1, 0, 0};
    Check(EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE), gif);
    Check(EGifPutExtensionBlock(gif, 11, "NETSCAPE2.0"), gif);
    Check(EGifPutExtensionBlock(gif, sizeof loop, loop), gif);
    Check(EGifPutExtensionTrailer(gif), gif);
}

/** @param before  null for the first frame */
void PutFrame(GifFileType* gif, const GifByteType* now, const GifByteType* before,
              const GifFrame& frame)
{
    const int width = frame.image.width;
    const Part part = Changed(now, before, width, frame.image.height);
    const GraphicsControlBlock control = {DISPOSE_DO_NOT, false, frame.hundredths,
                                          before ? kTransparent : NO_TRANSPARENT_COLOR};
    GifByteType block[4];
    const auto size = static_cast<int>(EGifGCBToExtension(&control, block));
    Check(EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, size, block), gif);
    Check(EGifPutImageDesc(gif, part.left, part.top, part.right - part.left, part.bottom - part.top,
                           false, nullptr),
          gif);
    std::vector<GifByteType> row(static_cast<std::size_t>(part.right - part.left));
    for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x) {
            const int i = y * width + x;
            row[static_cast<std::size_t>(x - part.left)] =
                before && now[i] == before[i] ? kTransparent : now[i];
        }
        Check(EGifPutLine(gif, row.data(), part.right - part.left), gif);
    }
}

void PutAll(GifFileType* gif, const std::vector<GifFrame>& frames, Rgb backdrop)
{
    const Quantized quantized = Quantize(frames, backdrop);
    PutHeader(gif, frames[0].image, quantized.palette);
    const GifByteType* now = quantized.indices.data();
    const GifByteType* before = nullptr;
    for (const GifFrame& frame : frames) {
        PutFrame(gif, now, before, frame);
        before = now;
        now += frame.image.pixels.size();
    }
}

} // namespace

void WriteGif(const std::string& path, const std::vector<GifFrame>& frames, Rgb backdrop)
{
    int error = 0;
    // Opened here, since the GIF library would keep the file from everybody but its owner.
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0)
        throw std::runtime_error(path + ": " + std::strerror(errno));
    Gif gif(EGifOpenFileHandle(file, &error));
    if (!gif) {
        close(file);
        throw std::runtime_error(path + ": " + GifErrorString(error));
    }
    try {
        PutAll(gif.get(), frames, backdrop);
        if (EGifCloseFile(gif.release(), &error) != GIF_OK)
            throw std::runtime_error(GifErrorString(error));
    } catch (const std::exception& problem) {
        std::remove(path.c_str());
        throw std::runtime_error(path + ": " + problem.what());
    }
}

} // namespace kestrin_examples
