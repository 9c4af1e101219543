/**
 * DirectFB's internal headers for its modules, the display and the graphics driver.
 *
 * They are written for C and lack linkage declarations. core/coretypes.h holds C++ overloads and
 * therefore stays outside the block; it goes first because the others rely on it.
 */
#pragma once

#include <core/coretypes.h>

extern "C" {
#include <directfb.h>

#include <direct/messages.h>
#include <direct/modules.h>

#include <core/core.h>
#include <core/gfxcard.h>
#include <core/layers.h>
#include <core/palette.h>
#include <core/screens.h>
#include <core/state.h>
#include <core/surface.h>
#include <core/surface_allocation.h>
#include <core/surface_buffer.h>
#include <core/surface_pool.h>
#include <core/system.h>
#include <misc/conf.h>
}
