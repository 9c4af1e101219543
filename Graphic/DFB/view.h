/** The display layer and its visible surface. */
#pragma once

#include "tbase.h"
#include "vrel_kestrin_graphic.h"

#include <directfb.h>

namespace zelxxx {

/** The surface behind every canvas and the view. */
class CanvasBase
{
public:
    virtual ~CanvasBase() {}
    virtual bool IsAvailable() = 0;
    /** The DirectFB surface with the canvas's pixels, not held. */
    virtual IDirectFBSurface* GetSurface() = 0;
};

/**
 * The engine's handle on the display. All DirectFB objects are static: a process has one main
 * interface, one layer, one primary surface, one subtitle surface and one hardware palette, however
 * many views there are; a view itself is only what its creator said of it.
 */
class View : public CanvasBase, public ZELObject<IView, View>
{
public:
    View(UInt8 plane_index, MetricValue width, MetricValue height, ColorMode color_mode,
         bool flipping);

    ColorMode GetColorMode() override { return _color_mode; }
    MetricValue GetWidth() override { return _width; }
    MetricValue GetHeight() override { return _height; }
    void Clear(MetricValue x, MetricValue y, MetricValue w, MetricValue h, ColorValue color,
               BlendValue blend) override;
    void Copy(MetricValue x, MetricValue y, ICanvas* canvas, MetricValue src_x, MetricValue src_y,
              MetricValue src_w, MetricValue src_h) override;
    void SetBlendMode(BlendMode blend_mode) override { _blend_mode = blend_mode; }
    void Show(MetricValue left, MetricValue top, MetricValue width, MetricValue height) override;
    void Hide() override;
    void Flip() override;
    void SetPalette(IPalette* palette) override;
    void SetPalette(IPalette* palette, UInt16 brightness, UInt16 blend_opaque,
                    UInt16 blend_transparent) override;
    void SetPaletteEntry(UInt8 color_index, UInt8 red, UInt8 green, UInt8 blue,
                         BlendValue blending) override;
    /** Reserved; returns at once. */
    virtual void WaitVSync() {}

    bool IsAvailable() override { return _available; }
    IDirectFBSurface* GetSurface() override { return _primary; }

    PPalette GetCurrentPalette() { return _current_palette; }

    /** Takes the display on the first call; later calls raise the count. */
    static void DFBInitialize(UInt32 width, UInt32 height, UInt8 mode);
    /** Releases the display at once and resets the count; the main interface stays. */
    static void DFBUnInitialize();
    /**
     * Gives an off-screen surface the primary surface's palette object on an 8-bit display,
     * so that palette indices copy unchanged between them.
     */
    static void SharePalette(IDirectFBSurface* surface);

    static IDirectFB* _dfb;
    static IDirectFBDisplayLayer* _layer;
    static IDirectFBSurface* _primary;
    static IDirectFBSurface* _surface_subtitle;
    static IDirectFBPalette* _palette;
    static PPalette _current_palette;
    static int _init_count;
    static unsigned long _phyaddr;

private:
    static void TakeLayer();
    static void ConfigureLayer(UInt32 width, UInt32 height, UInt8 mode);
    static void CreateSubtitleSurface();

    ColorMode _color_mode;
    MetricValue _width;
    MetricValue _height;
    [[maybe_unused]] BlendMode _blend_mode;
    [[maybe_unused]] int _plane;
    bool _available;
};

} // namespace zelxxx
