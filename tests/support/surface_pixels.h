/** What stands on a DirectFB surface. */
#pragma once

#include "argb_image.h"

#include <directfb.h>

namespace kestrin_test {

/** The pixels of an ARGB surface, or the palette indices of an LUT8 one. Throws for others. */
kestrin_display::ArgbImage PixelsOf(IDirectFBSurface* surface);

/** Writes pixels or palette indices, whatever clip and drawing state the surface has. */
void SetPixels(IDirectFBSurface* surface, const kestrin_display::ArgbImage& image);

/** Cuts out a part. */
kestrin_display::ArgbImage PartOf(const kestrin_display::ArgbImage& image, int x, int y, int width,
                                  int height);

} // namespace kestrin_test
