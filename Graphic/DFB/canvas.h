/** Off-screen drawing surface. */
#pragma once

#include "view.h"

#include <typeinfo>

namespace zelxxx {

/**
 * A surface in the display layer's own pixel format, whatever colour mode its creator names, so
 * that it copies to the screen without conversion. The colour mode decides only how Clear takes its
 * colour.
 */
class Canvas : public CanvasBase, public ZELObject<ICanvas, Canvas>
{
public:
    Canvas(ColorMode color_mode, MetricValue width, MetricValue height);
    ~Canvas() override;

    ColorMode GetColorMode() override { return _color_mode; }
    MetricValue GetWidth() override { return _width; }
    MetricValue GetHeight() override { return _height; }
    void Clear(MetricValue x, MetricValue y, MetricValue w, MetricValue h, ColorValue color,
               BlendValue blend) override;
    void Copy(MetricValue x, MetricValue y, ICanvas* canvas, MetricValue src_x, MetricValue src_y,
              MetricValue src_w, MetricValue src_h) override;
    void SetBlendMode(BlendMode blend_mode) override { _blend_mode = blend_mode; }

    bool IsAvailable() override { return _back != nullptr; }
    IDirectFBSurface* GetSurface() override { return _back; }

private:
    void Initialize();
    void Uninitialize();

    ColorMode _color_mode;
    MetricValue _width;
    MetricValue _height;
    [[maybe_unused]] BlendMode _blend_mode; /**< recorded; painters have a mode of their own */
    IDirectFBSurface* _back;
};

/** The engine's side of a canvas, null when it has none. Most canvases are off screen. */
inline CanvasBase* BaseOf(ICanvas* canvas)
{
    if (canvas && typeid(*canvas) == typeid(Canvas))
        return static_cast<Canvas*>(canvas);
    return SideOf<CanvasBase>(canvas);
}

} // namespace zelxxx
