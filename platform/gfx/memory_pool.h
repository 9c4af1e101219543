/**
 * Ordinary memory for surfaces that the driver draws on.
 *
 * DirectFB's own pools of system memory serve the processor alone, so whatever a graphics driver
 * is to draw on would first be copied elsewhere. This pool serves both at the same addresses, with
 * the same pitches as DirectFB's own.
 */
#pragma once

#include "directfb_core.h"

namespace kestrin_gfx {

/** What DirectFB's surface core calls; the pool is initialised without a context. */
extern const SurfacePoolFuncs memory_pool_functions;

} // namespace kestrin_gfx
