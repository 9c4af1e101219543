#include "nrv2b_samples.h"

#include <cstdint>
#include <stdexcept>

#include <ucl/ucl.h>

namespace kestrin_test {

namespace {

/** Less than `end`. Not a standard distribution: those differ between libraries. */
std::size_t Below(std::size_t end, std::mt19937_64& random)
{
    return static_cast<std::size_t>(random() % end);
}

std::string MakeFlat(std::size_t size, std::mt19937_64&)
{
    return std::string(size, '\x21');
}

std::string MakeNoise(std::size_t size, std::mt19937_64& random)
{
    std::string noise(size, '\0');
    for (char& byte : noise)
        byte = static_cast<char>(random());
    return noise;
}

std::string MakeNearlyEmpty(std::size_t size, std::mt19937_64& random)
{
    std::string pixels(size, '\0');
    for (std::size_t i = 0; i < size / 500 + 1 && size > 0; ++i)
        pixels[Below(size, random)] = '\x07';
    return pixels;
}

} // namespace

std::string MakeText(std::size_t size, std::mt19937_64& random)
{
    static const char* const words[] = {"the ", "news ", "weather ", "at ", "nine ", "\n"};
    std::string text;
    while (text.size() < size)
        text += words[Below(6, random)];
    text.resize(size);
    return text;
}

std::string MakeLogo(std::size_t size, std::mt19937_64& random)
{
    std::string pixels(size, '\0');
    const std::string row = MakeNoise(1500, random);
    for (std::size_t i = 0; i < size; ++i)
        pixels[i] = i / 1500 % 3 == 2 ? static_cast<char>(i) : row[i % 1500];
    return pixels;
}

std::string MakePicture(std::size_t size, std::mt19937_64& random)
{
    constexpr std::size_t kWidth = 320;
    std::string pixels(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t x = i % kWidth;
        const std::size_t y = i / kWidth;
        const bool flat = (x / 64 + y / 48) % 2 == 0;
        const std::size_t slope = (x + 2 * y) * 4 + (flat ? 0 : Below(64, random));
        pixels[i] = static_cast<char>(flat ? x / 64 * 16 : 53 + slope / 64 % 135);
    }
    return pixels;
}

const SampleKind kSampleKinds[6] = {{"Flat", MakeFlat},   {"Text", MakeText},
                                    {"Noise", MakeNoise}, {"NearlyEmpty", MakeNearlyEmpty},
                                    {"Logo", MakeLogo},   {"Picture", MakePicture}};

std::string Compressed(const std::string& pixels, int level)
{
    static const bool initialized = ucl_init() == UCL_E_OK;
    std::string stream(pixels.size() + pixels.size() / 8 + 256, '\0');
    ucl_uint length = 0;
    if (!initialized || ucl_nrv2b_99_compress(reinterpret_cast<const ucl_byte*>(pixels.data()),
                                              static_cast<ucl_uint>(pixels.size()),
                                              reinterpret_cast<ucl_byte*>(stream.data()), &length,
                                              nullptr, level, nullptr, nullptr) != UCL_E_OK)
        throw std::runtime_error("UCL does not compress");
    stream.resize(length);
    return stream;
}

} // namespace kestrin_test
