/** A moving picture as a GIF file. */
#pragma once

#include "argb_image.h"

#include <string>
#include <vector>

namespace kestrin_examples {

struct GifFrame
{
    kestrin_display::ArgbImage image;
    int hundredths; ///< of a second that it is shown
};

/**
 * Writes frames of one size as a GIF that repeats for ever. All have one palette of 255 colours,
 * and each holds only what differs from the one before.
 *
 * @param backdrop  what the frames are laid over, 0xRRGGBB
 * @throws std::runtime_error if the file cannot be written; what is there of it is removed
 */
void WriteGif(const std::string& path, const std::vector<GifFrame>& frames, std::uint32_t backdrop);

} // namespace kestrin_examples
