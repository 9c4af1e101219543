/**
 * Pictures laid over one another, as a television lays its layers over the video.
 */
#pragma once

#include "argb_image.h"

namespace kestrin_tools {

/** Multiplies a picture's alpha by the opacity of its layer, 0 to 255. */
void Fade(kestrin_display::ArgbImage& image, std::uint32_t opacity);

/**
 * Lays a picture over a background that is stretched to its size, without smoothing. Both may be
 * transparent; over an opaque background the result is opaque.
 */
void LayOver(kestrin_display::ArgbImage& image, const kestrin_display::ArgbImage& background);

} // namespace kestrin_tools
