/**
 * Image files of the engine: palette indices of one or more frames, compressed.
 *
 * A file begins with width, height, bits per pixel (8) and number of frames, 16 bits each, low byte
 * first. The rest is one NRV2B stream with a byte for each pixel, frame after frame, row after row.
 */
#pragma once

#include "argb_image.h"
#include "palette_file.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrin_tools {

constexpr std::size_t image_header_size = 8;

/** A side is a coordinate of 16 bits with sign. */
constexpr int image_side_limit = 32767;
constexpr int image_frame_limit = 65535;

/** The engine loads nothing that unpacks to more bytes. */
extern const std::size_t image_size_limit;

/** An image file cannot be read or made; what() names it and the reason. */
class ImageFileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** Frames of one size. */
struct IndexedImage
{
    int width = 0;
    int height = 0;
    int frames = 0;
    std::vector<std::uint8_t> pixels; ///< palette indices of all frames

    std::size_t FrameSize() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
};

/** What an image file says of itself and how the engine would take it. */
struct ImageReport
{
    std::size_t size = 0; ///< bytes in the file
    int width = 0;
    int height = 0;
    int depth = 0; ///< bits per pixel
    int frames = 0;
    std::uint64_t unpacked = 0; ///< bytes of all frames, as the header has it
    IndexedImage image;         ///< empty when there is damage

    /** In words, each a sentence without its stop. The engine shows no damaged file, or a wrong
     * picture. */
    std::vector<std::string> damage;
    /** What is unusual and does no harm. */
    std::vector<std::string> notes;
};

/**
 * Looks at an image file, also a damaged one, by the engine's own decompressor. Throws
 * ImageFileError when there is none to read.
 */
ImageReport InspectImage(const std::string& path);

/** Reads a sound image file. */
IndexedImage ReadImage(const std::string& path);

/** One frame, counted from 0, in the colours of a palette. */
kestrin_display::ArgbImage FrameOf(const IndexedImage& image, int frame, const Palette& palette);

/**
 * The bytes of an image file.
 *
 * @param stream  the image's pixels as an NRV2B stream
 * @throws ImageFileError when the stream does not decode to the pixels, so that no compressor's
 *         mistake reaches a display
 */
std::string PackImage(const IndexedImage& image, const std::string& stream);

} // namespace kestrin_tools
