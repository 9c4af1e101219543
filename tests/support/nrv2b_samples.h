/** Pixels of several kinds, and the NRV2B streams that UCL makes of them. */
#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace kestrin_test {

/** Pixels of one kind, the same for the same state of the engine. */
struct SampleKind
{
    const char* name;
    std::string (*make)(std::size_t size, std::mt19937_64& random);
};

std::string MakeText(std::size_t size, std::mt19937_64& random);
/** Rows that resemble one another at a distance, as logos do. */
std::string MakeLogo(std::size_t size, std::mt19937_64& random);
/** Flat areas and dithered slopes, as of a picture with few colours. */
std::string MakePicture(std::size_t size, std::mt19937_64& random);

/** One colour, text, noise, dots on one colour, logos and pictures. */
extern const SampleKind kSampleKinds[6];

/**
 * A stream of all the pixels.
 *
 * @param level  1 is fast, 10 is small
 * @throws std::runtime_error when UCL fails
 */
std::string Compressed(const std::string& pixels, int level);

} // namespace kestrin_test
