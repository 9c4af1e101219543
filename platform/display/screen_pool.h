/**
 * The surface pool of the layers: buffers in the screen file.
 *
 * Only surfaces of layers live here. Everything else stays in DirectFB's own memory pools, as on a
 * set-top box whose video memory serves nothing but the display.
 */
#pragma once

#include "directfb_core.h"

namespace kestrin_display {

/** What DirectFB's surface core calls; the pool is initialised with the ScreenSystem as its
 * context.
 */
extern const SurfacePoolFuncs screen_pool_functions;

} // namespace kestrin_display
