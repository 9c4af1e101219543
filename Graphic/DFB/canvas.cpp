#include "canvas.h"

#include "tdebug.h"

namespace zelxxx {

ICanvas* zelCreateCanvas(MetricValue width, MetricValue height, ColorMode color_mode)
{
    Canvas* canvas = new Canvas(color_mode, width, height);
    if (canvas->IsAvailable())
        return canvas;
    delete canvas;
    return nullptr;
}

Canvas::Canvas(ColorMode color_mode, MetricValue width, MetricValue height)
    : _color_mode(color_mode), _width(width), _height(height), _blend_mode(BlendSrcOver),
      _back(nullptr)
{
    Initialize();
}

Canvas::~Canvas()
{
    Uninitialize();
}

void Canvas::Initialize()
{
    DFBSurfacePixelFormat format = DSPF_UNKNOWN;
    View::_primary->GetPixelFormat(View::_primary, &format);
    DFBSurfaceDescription dsc = {};
    dsc.flags =
        static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT | DSDESC_PIXELFORMAT);
    dsc.width = _width;
    dsc.height = _height;
    dsc.pixelformat = format;
    DFBCHECK(View::_dfb->CreateSurface(View::_dfb, &dsc, &_back));
    if (_back)
        View::SharePalette(_back);
}

void Canvas::Uninitialize()
{
    if (!_back)
        return;
    _back->Release(_back);
    _back = nullptr;
}

void Canvas::Clear(MetricValue x, MetricValue y, MetricValue w, MetricValue h, ColorValue color,
                   BlendValue blend)
{
    if (_color_mode == Color32Bit) {
        // 0x00RRGGBB here, unlike everywhere else that draws.
        DFBCHECK(_back->SetColor(_back, (color & 0xff0000) >> 16, (color & 0x00ff00) >> 8,
                                 color & 0x0000ff, (blend)));
    } else {
        DFBCHECK(_back->SetColorIndex(_back, color));
    }
    // Under whatever drawing flags a painter left.
    DFBCHECK(_back->FillRectangle(_back, x, y, w, h));
}

void Canvas::Copy(MetricValue x, MetricValue y, ICanvas* canvas, MetricValue src_x,
                  MetricValue src_y, MetricValue src_w, MetricValue src_h)
{
    IDirectFBSurface* back = BaseOf(canvas)->GetSurface();
    const DFBRectangle rect = {src_x, src_y, src_w, src_h};
    DFBCHECK(_back->Blit(_back, back, &rect, x, y));
}

} // namespace zelxxx
