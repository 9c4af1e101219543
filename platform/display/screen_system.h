/**
 * Everything the module owns between DirectFB's start and shutdown.
 */
#pragma once

#include "directfb_core.h"
#include "screen_layer.h"
#include "screen_memory.h"

#include <array>
#include <memory>

namespace kestrin_display {

struct ScreenSystem
{
    std::unique_ptr<ScreenMemory> memory;
    std::array<std::unique_ptr<ScreenLayer>, screen_layer_count> layers; // use the memory
    CoreSurfacePool* pool = nullptr;
};

} // namespace kestrin_display
