/**
 * A display layer of the module: tells the screen file what DirectFB's layer core tells a panel.
 */
#pragma once

#include "directfb_core.h"
#include "screen_memory.h"

#include <cstdint>
#include <mutex>

namespace kestrin_display {

/** @return the screen file's name of a DirectFB format; None when layers do not take it */
PixelFormat FormatOf(DFBSurfacePixelFormat format);

/**
 * The driver data of one layer. The memory outlives it.
 *
 * DirectFB gives a layer that no program holds a desktop. It is shown until the first program takes
 * the layer for itself; afterwards the layer is off while no program has it, and the screen file
 * keeps the last picture for those who look at it after the program's end.
 */
class ScreenLayer
{
public:
    ScreenLayer(ScreenMemory& memory, std::uint32_t id) : _memory(memory), _id(id) {}

    ScreenLayer(const ScreenLayer&) = delete;
    ScreenLayer& operator=(const ScreenLayer&) = delete;

    /** What DirectFB's layer core calls; each function gets a ScreenLayer as driver data. */
    static const DisplayLayerFuncs functions;

    ScreenMemory& Memory() { return _memory; }
    std::uint32_t Id() const { return _id; }

    /**
     * Whether a surface of this layer is its desktop. DirectFB makes desktops while it starts, so a
     * layer's first surface is the one; without the option `init-layer` a layer has none.
     */
    bool IsDesktop(const CoreSurface& surface);

    /** @return whether pictures of the surface appear on the screen; switches the layer off if not
     */
    bool Shows(const CoreSurface& surface);

    /** Takes over what `updated` names. `front` is valid when it names the surface or its shape. */
    void Configure(const CoreLayerRegionConfig& config, CoreLayerRegionConfigFlags updated,
                   const CorePalette* palette, const CoreSurfaceBufferLock* front);

    /** Shows the buffer that was drawn. */
    void Flip(const CoreSurfaceBufferLock& front);

    /** Counts a finished picture in the front buffer. */
    void Update();

    /** Takes the layer off the screen. */
    void Hide();

private:
    void TakePalette(const CorePalette& palette);
    void Publish() { PublishFacts(_memory.Block(_id), _facts); }

    ScreenMemory& _memory;
    const std::uint32_t _id;
    std::mutex _mutex;
    LayerFacts _facts = {};
    FusionObjectID _desktop = 0; // the desktop's surface; 0 before there is one
    bool _program_seen = false;
};

} // namespace kestrin_display
