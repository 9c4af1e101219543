#include "quantise.h"

#include <libimagequant.h>

#include <algorithm>
#include <stdexcept>
#include <unordered_map>

namespace kestrin_tools {
namespace {

using kestrin_display::ArgbImage;

constexpr double display_gamma = 0; // the library's own choice, sRGB

template <class T, void (*destroy)(T*)>
struct Destroy
{
    void operator()(T* object) const { destroy(object); }
};
using Attributes = std::unique_ptr<liq_attr, Destroy<liq_attr, liq_attr_destroy>>;
using Histogram = std::unique_ptr<liq_histogram, Destroy<liq_histogram, liq_histogram_destroy>>;
using Picture = std::unique_ptr<liq_image, Destroy<liq_image, liq_image_destroy>>;
using Result = std::unique_ptr<liq_result, Destroy<liq_result, liq_result_destroy>>;

void Check(liq_error error)
{
    if (error != LIQ_OK)
        throw std::runtime_error("the reduction of colours failed with error " +
                                 std::to_string(error) + " of libimagequant");
}

template <class Object>
Object Made(Object object)
{
    if (!object)
        throw std::runtime_error("no memory for the reduction of colours");
    return object;
}

liq_color Colour(std::uint32_t argb)
{
    const auto channel = [=](unsigned shift) { return static_cast<unsigned char>(argb >> shift); };
    return {channel(16), channel(8), channel(0), channel(24)};
}

std::uint32_t Argb(const liq_color& colour)
{
    return std::uint32_t{colour.a} << 24 | std::uint32_t{colour.r} << 16 |
           std::uint32_t{colour.g} << 8 | colour.b;
}

/** Colours that cannot be seen are one. */
std::uint32_t Visible(std::uint32_t argb)
{
    return argb >> 24 == 0 ? 0 : argb;
}

void FillRow(liq_color row[], int y, int width, void* image)
{
    for (int x = 0; x < width; ++x)
        row[x] = Colour(static_cast<const ArgbImage*>(image)->At(x, y));
}

/** The library's view of a picture, which outlives it. */
Picture View(const Attributes& attributes, const ArgbImage& image)
{
    return Made(
        Picture(liq_image_create_custom(attributes.get(), FillRow, const_cast<ArgbImage*>(&image),
                                        image.width, image.height, display_gamma)));
}

std::uint32_t Distance(std::uint32_t a, std::uint32_t b)
{
    std::uint32_t sum = 0;
    for (const unsigned shift : {0U, 8U, 16U, 24U}) {
        const int difference =
            static_cast<int>(a >> shift & 0xff) - static_cast<int>(b >> shift & 0xff);
        sum += static_cast<std::uint32_t>(difference * difference);
    }
    return sum;
}

} // namespace

struct Quantiser::State
{
    Attributes attributes{Made(Attributes(liq_attr_create()))};
    Result result;
    std::vector<std::uint32_t> colours;                      ///< those that can be told apart
    std::unordered_map<std::uint32_t, std::uint8_t> indices; ///< of each of them, the lowest
    bool dither = false;
};

Quantiser::Quantiser(const Palette& palette, bool dither) : _state(std::make_unique<State>())
{
    _state->dither = dither;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const std::uint32_t colour = Visible(palette[i]);
        if (_state->indices.emplace(colour, static_cast<std::uint8_t>(i)).second)
            _state->colours.push_back(colour);
    }
    if (_state->colours.size() < 2)
        throw std::runtime_error("a palette of one colour leaves nothing to choose");

    // All colours are given, and none is left for the library to choose.
    const Histogram histogram = Made(Histogram(liq_histogram_create(_state->attributes.get())));
    Check(liq_set_max_colors(_state->attributes.get(), static_cast<int>(_state->colours.size())));
    std::vector<liq_histogram_entry> entries;
    for (const std::uint32_t colour : _state->colours) {
        Check(liq_histogram_add_fixed_color(histogram.get(), Colour(colour), display_gamma));
        entries.push_back({Colour(colour), 1});
    }
    // Without a colour that is in use, it refuses.
    Check(liq_histogram_add_colors(histogram.get(), _state->attributes.get(), entries.data(),
                                   static_cast<int>(entries.size()), display_gamma));
    liq_result* result = nullptr;
    Check(liq_histogram_quantize(histogram.get(), _state->attributes.get(), &result));
    _state->result.reset(result);
    Check(liq_set_dithering_level(result, dither ? 1.0F : 0.0F));
}

Quantiser::~Quantiser() = default;

std::vector<std::uint8_t> Quantiser::Map(const ArgbImage& image)
{
    const Picture picture = View(_state->attributes, image);
    std::vector<std::uint8_t> pixels(image.pixels.size());
    Check(liq_write_remapped_image(_state->result.get(), picture.get(), pixels.data(),
                                   pixels.size()));
    // The library has its own order of the colours, and rounds them.
    const liq_palette* palette = liq_get_palette(_state->result.get());
    std::vector<std::uint8_t> order(256);
    for (unsigned i = 0; i < palette->count; ++i) {
        const std::uint32_t wanted = Visible(Argb(palette->entries[i]));
        const auto nearest = std::min_element(_state->colours.begin(), _state->colours.end(),
                                              [=](std::uint32_t a, std::uint32_t b) {
                                                  return Distance(a, wanted) < Distance(b, wanted);
                                              });
        order[i] = _state->indices.at(*nearest);
    }
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = order[pixels[i]];
        const auto same = _state->indices.find(Visible(image.pixels[i]));
        if (!_state->dither && same != _state->indices.end())
            pixels[i] = same->second;
    }
    return pixels;
}

struct PaletteMaker::State
{
    Attributes attributes{Made(Attributes(liq_attr_create()))};
    Histogram histogram{Made(Histogram(liq_histogram_create(attributes.get())))};
};

PaletteMaker::PaletteMaker() : _state(std::make_unique<State>()) {}

PaletteMaker::~PaletteMaker() = default;

void PaletteMaker::Add(const ArgbImage& image)
{
    const Picture picture = View(_state->attributes, image);
    Check(
        liq_histogram_add_image(_state->histogram.get(), _state->attributes.get(), picture.get()));
}

Palette PaletteMaker::Make(int count)
{
    Check(liq_set_max_colors(_state->attributes.get(), count));
    Check(liq_histogram_add_fixed_color(_state->histogram.get(), Colour(0), display_gamma));
    liq_result* quantised = nullptr;
    Check(liq_histogram_quantize(_state->histogram.get(), _state->attributes.get(), &quantised));
    const Result result(quantised);
    const liq_palette* found = liq_get_palette(result.get());
    Palette palette = {};
    std::size_t next = 1;
    for (unsigned i = 0; i < found->count; ++i) {
        if (found->entries[i].a != 0 && next < palette.size())
            palette[next++] = Argb(found->entries[i]);
    }
    return palette;
}

} // namespace kestrin_tools
