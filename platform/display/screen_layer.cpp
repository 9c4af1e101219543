#include "screen_layer.h"

#include <algorithm>
#include <cstdio>

namespace kestrin_display {

PixelFormat FormatOf(DFBSurfacePixelFormat format)
{
    switch (format) {
    case DSPF_LUT8:
        return PixelFormat::Lut8;
    case DSPF_ARGB:
        return PixelFormat::Argb;
    case DSPF_RGB32:
        return PixelFormat::Rgb32;
    case DSPF_RGB24:
        return PixelFormat::Rgb24;
    case DSPF_RGB16:
        return PixelFormat::Rgb16;
    case DSPF_ARGB1555:
        return PixelFormat::Argb1555;
    case DSPF_ARGB4444:
        return PixelFormat::Argb4444;
    default:
        return PixelFormat::None;
    }
}

bool ScreenLayer::IsDesktop(const CoreSurface& surface)
{
    if (_desktop == 0 && dfb_config->layers[_id].init)
        _desktop = surface.object.id;
    return surface.object.id == _desktop;
}

bool ScreenLayer::Shows(const CoreSurface& surface)
{
    if (!IsDesktop(surface)) {
        _program_seen = true;
        return true;
    }
    if (_program_seen)
        Hide();
    return !_program_seen;
}

void ScreenLayer::Configure(const CoreLayerRegionConfig& config, CoreLayerRegionConfigFlags updated,
                            const CorePalette* palette, const CoreSurfaceBufferLock* front)
{
    std::lock_guard<std::mutex> guard(_mutex);

    // A palette change alone comes with the back buffer, some others with no buffer at all.
    if ((updated & (CLRCF_SURFACE | CLRCF_WIDTH | CLRCF_HEIGHT | CLRCF_FORMAT)) != 0) {
        _facts.width = static_cast<std::uint32_t>(config.width);
        _facts.height = static_cast<std::uint32_t>(config.height);
        _facts.format = FormatOf(config.format);
        _facts.pitch = front->pitch;
        _facts.offset = _memory.FileOffset(front->offset);
    }
    if ((updated & CLRCF_OPACITY) != 0)
        _facts.opacity = config.opacity;
    if ((updated & CLRCF_PALETTE) != 0 && palette != nullptr)
        TakePalette(*palette);
    _facts.shown = 1;
    Publish();
}

void ScreenLayer::Flip(const CoreSurfaceBufferLock& front)
{
    std::lock_guard<std::mutex> guard(_mutex);

    _facts.pitch = front.pitch;
    _facts.offset = _memory.FileOffset(front.offset);
    _facts.update_count++;
    _facts.flip_count++;
    Publish();
}

void ScreenLayer::Update()
{
    std::lock_guard<std::mutex> guard(_mutex);

    _facts.update_count++;
    Publish();
}

void ScreenLayer::Hide()
{
    std::lock_guard<std::mutex> guard(_mutex);

    _facts.shown = 0;
    Publish();
}

void ScreenLayer::TakePalette(const CorePalette& palette)
{
    const unsigned count = std::min(palette.num_entries, 256U);
    for (unsigned i = 0; i < count; i++) {
        const DFBColor& entry = palette.entries[i];
        _facts.palette[i] = std::uint32_t{entry.a} << 24 | std::uint32_t{entry.r} << 16 |
                            std::uint32_t{entry.g} << 8 | std::uint32_t{entry.b};
    }
}

namespace {

DFBResult InitLayer(CoreLayer*, void* driver_data, void*, DFBDisplayLayerDescription* description,
                    DFBDisplayLayerConfig* config, DFBColorAdjustment*)
{
    ScreenLayer& layer = *static_cast<ScreenLayer*>(driver_data);

    description->type = static_cast<DFBDisplayLayerTypeFlags>(DLTF_GRAPHICS | DLTF_STILL_PICTURE);
    description->caps = static_cast<DFBDisplayLayerCapabilities>(DLCAPS_SURFACE | DLCAPS_OPACITY |
                                                                 DLCAPS_ALPHACHANNEL);
    description->surface_caps = DSCAPS_VIDEOONLY;
    std::snprintf(description->name, DFB_DISPLAY_LAYER_DESC_NAME_LENGTH, "Screen file layer %u",
                  static_cast<unsigned>(layer.Id()));

    config->flags = static_cast<DFBDisplayLayerConfigFlags>(
        DLCONF_WIDTH | DLCONF_HEIGHT | DLCONF_PIXELFORMAT | DLCONF_BUFFERMODE | DLCONF_OPTIONS);
    config->width = static_cast<int>(layer.Memory().Width());
    config->height = static_cast<int>(layer.Memory().Height());
    config->pixelformat = DSPF_ARGB;
    config->buffermode = DLBM_FRONTONLY;
    config->options = DLOP_ALPHACHANNEL;
    return DFB_OK;
}

// The layer core may ask without wanting to know what failed.
DFBResult TestRegion(CoreLayer*, void*, void*, CoreLayerRegionConfig* config,
                     CoreLayerRegionConfigFlags* ret_failed)
{
    constexpr int limit = static_cast<int>(screen_side_limit);
    constexpr unsigned options = DLOP_ALPHACHANNEL | DLOP_OPACITY;
    unsigned failed = CLRCF_NONE;

    if (config->width < 1 || config->width > limit)
        failed |= CLRCF_WIDTH;
    if (config->height < 1 || config->height > limit)
        failed |= CLRCF_HEIGHT;
    if (FormatOf(config->format) == PixelFormat::None)
        failed |= CLRCF_FORMAT;
    if (config->buffermode != DLBM_FRONTONLY && config->buffermode != DLBM_BACKVIDEO &&
        config->buffermode != DLBM_BACKSYSTEM && config->buffermode != DLBM_TRIPLE)
        failed |= CLRCF_BUFFERMODE;
    if ((config->options & ~options) != 0)
        failed |= CLRCF_OPTIONS;

    if (ret_failed != nullptr)
        *ret_failed = static_cast<CoreLayerRegionConfigFlags>(failed);
    return failed == CLRCF_NONE ? DFB_OK : DFB_UNSUPPORTED;
}

DFBResult SetRegion(CoreLayer*, void* driver_data, void*, void*, CoreLayerRegionConfig* config,
                    CoreLayerRegionConfigFlags updated, CoreSurface* surface, CorePalette* palette,
                    CoreSurfaceBufferLock* left_lock, CoreSurfaceBufferLock*)
{
    ScreenLayer& layer = *static_cast<ScreenLayer*>(driver_data);
    if (surface != nullptr && layer.Shows(*surface))
        layer.Configure(*config, updated, palette, left_lock);
    return DFB_OK;
}

DFBResult RemoveRegion(CoreLayer*, void* driver_data, void*, void*)
{
    static_cast<ScreenLayer*>(driver_data)->Hide();
    return DFB_OK;
}

// The lock is on the buffer that becomes the front one.
DFBResult FlipRegion(CoreLayer*, void* driver_data, void*, void*, CoreSurface* surface,
                     DFBSurfaceFlipFlags, const DFBRegion*, CoreSurfaceBufferLock* left_lock,
                     const DFBRegion*, CoreSurfaceBufferLock*)
{
    ScreenLayer& layer = *static_cast<ScreenLayer*>(driver_data);
    const DFBResult result = dfb_surface_flip(surface, false);
    if (result == DFB_OK && layer.Shows(*surface))
        layer.Flip(*left_lock);
    return result;
}

DFBResult UpdateRegion(CoreLayer*, void* driver_data, void*, void*, CoreSurface* surface,
                       const DFBRegion*, CoreSurfaceBufferLock*, const DFBRegion*,
                       CoreSurfaceBufferLock*)
{
    ScreenLayer& layer = *static_cast<ScreenLayer*>(driver_data);
    if (layer.Shows(*surface))
        layer.Update();
    return DFB_OK;
}

DisplayLayerFuncs MakeFunctions()
{
    DisplayLayerFuncs functions = {};
    functions.InitLayer = InitLayer;
    functions.TestRegion = TestRegion;
    functions.SetRegion = SetRegion;
    functions.RemoveRegion = RemoveRegion;
    functions.FlipRegion = FlipRegion;
    functions.UpdateRegion = UpdateRegion;
    return functions;
}

} // namespace

const DisplayLayerFuncs ScreenLayer::functions = MakeFunctions();

} // namespace kestrin_display
