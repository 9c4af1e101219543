#include "view.h"

#include "canvas.h"
#include "palette.h"
#include "tdebug.h"

#include <algorithm>
#include <cstdio>

namespace zelxxx {

namespace {

constexpr DFBDisplayLayerID kLayerId = 1; // layer 0 belongs to the video
constexpr int kPlaneOffset = 8;
constexpr int kSubtitleWidth = 720;
constexpr int kSubtitleHeight = 576;
// Only frames of exactly this size get the subtitle surface composited under them.
constexpr int kSubtitledFrameWidth = 1280;
constexpr int kSubtitledFrameHeight = 720;

/** A channel or opacity times an 8.8 factor, limited to 255. */
UInt8 ScaleChannel(UInt8 channel, UInt16 ratio)
{
    const auto scaled = static_cast<UInt16>((channel * ratio) >> 8);
    return static_cast<UInt8>(std::min<UInt16>(255, scaled));
}

} // namespace

IDirectFB* View::_dfb = nullptr;
IDirectFBDisplayLayer* View::_layer = nullptr;
IDirectFBSurface* View::_primary = nullptr;
IDirectFBSurface* View::_surface_subtitle = nullptr;
IDirectFBPalette* View::_palette = nullptr;
PPalette View::_current_palette;
int View::_init_count = 0;
unsigned long View::_phyaddr = 0;

IView* zelCreateView(UInt8 plane_index, MetricValue width, MetricValue height, ColorMode color_mode,
                     bool flipping)
{
    View* view = new View(plane_index, width, height, color_mode, flipping);
    if (view->IsAvailable())
        return view;
    delete view;
    return nullptr;
}

View::View(UInt8 plane_index, MetricValue width, MetricValue height, ColorMode color_mode, bool)
    : _color_mode(color_mode), _width(width), _height(height), _blend_mode(BlendSrcOver),
      _plane(plane_index + kPlaneOffset), _available(true)
{
}

void View::Clear(MetricValue, MetricValue, MetricValue, MetricValue, ColorValue color,
                 BlendValue blend)
{
    // The whole surface, and red from the lowest byte: the reverse of an off-screen canvas.
    _primary->Clear(_primary, LowRed(color), LowGreen(color), LowBlue(color), blend);
}

void View::Copy(MetricValue x, MetricValue y, ICanvas* canvas, MetricValue src_x, MetricValue src_y,
                MetricValue src_w, MetricValue src_h)
{
    IDirectFBSurface* back = BaseOf(canvas)->GetSurface();
    const DFBRectangle rect = {src_x, src_y, src_w, src_h};

    if (src_w == kSubtitledFrameWidth && src_h == kSubtitledFrameHeight && _surface_subtitle) {
        // The rule stays on the back buffer: whoever blends there next sets its own.
        const DFBRectangle frame = {x, y, kSubtitledFrameWidth, kSubtitledFrameHeight};
        back->SetBlittingFlags(back, DSBLIT_BLEND_ALPHACHANNEL);
        back->SetPorterDuff(back, DSPD_DST_OVER);
        back->SetClip(back, nullptr);
        back->StretchBlit(back, _surface_subtitle, nullptr, &frame);
        back->SetBlittingFlags(back, DSBLIT_NOFX);
    }

    DFBCHECK(_primary->Blit(_primary, back, &rect, x, y));
    DFBCHECK(_primary->Flip(_primary, NULL, DSFLIP_NONE)); // NOLINT: reports its own text
}

void View::Show(MetricValue, MetricValue, MetricValue, MetricValue)
{
    if (_layer)
        _layer->SetOpacity(_layer, 255);
}

void View::Hide()
{
    if (_layer)
        _layer->SetOpacity(_layer, 0);
}

void View::Flip()
{
    _primary->Flip(_primary, nullptr, DSFLIP_NONE);
}

void View::SetPalette(IPalette* palette)
{
    _current_palette = palette;
}

void View::SetPalette(IPalette* palette, UInt16 brightness, UInt16 blend_opaque,
                      UInt16 blend_transparent)
{
    if (_primary && palette) {
        // A display without a palette of its own answers none. An earlier reference is not given
        // back: clients reload palettes rarely, and DirectFB owns the object behind it.
        _palette = nullptr;
        _primary->GetPalette(_primary, &_palette);
        if (_palette) {
            const DFBColor* source = SideOf<Palette>(palette)->GetColors();
            DFBColor colors[Palette::kColorCount];
            for (int i = 0; i < Palette::kColorCount; ++i) {
                colors[i].r = ScaleChannel(source[i].r, brightness);
                colors[i].g = ScaleChannel(source[i].g, brightness);
                colors[i].b = ScaleChannel(source[i].b, brightness);
                colors[i].a = ScaleChannel(source[i].a,
                                           source[i].a == 255 ? blend_opaque : blend_transparent);
            }
            _palette->SetEntries(_palette, colors, Palette::kColorCount, 0);
            _primary->SetPalette(_primary, _palette);
        }
    }
    _current_palette = palette;
}

void View::SetPaletteEntry(UInt8 color_index, UInt8 red, UInt8 green, UInt8 blue,
                           BlendValue blending)
{
    if (!_palette)
        return;
    const DFBColor color = {blending, red, green, blue};
    _palette->SetEntries(_palette, &color, 1, color_index);
}

void View::DFBInitialize(UInt32 width, UInt32 height, UInt8 mode)
{
    if (_init_count > 0) {
        ++_init_count;
        return;
    }
    ++_init_count;
    KESTRIN_LOG(kLogInformation, "_init_count:%d\n", _init_count);

    if (!_dfb) {
        DFBCHECK(DirectFBInit(0, 0)); // NOLINT: reports its own text
        DFBCHECK(DirectFBCreate(&_dfb));
    }
    TakeLayer();
    ConfigureLayer(width, height, mode);

    _layer->GetSurface(_layer, &_primary);
    _layer->SetOpacity(_layer, 255);

    // The address is valid under a lock only; the pixels themselves are of no interest here.
    void* viraddr = nullptr;
    int pitch = 0;
    DFBCHECK(_primary->Lock(_primary, DSLF_READ, &viraddr, &pitch));
    DFBCHECK(_primary->GetPhysicalAddress(_primary, &_phyaddr));
    DFBCHECK(_primary->Unlock(_primary));

    CreateSubtitleSurface();
}

/** Asks for the layer until it is there, however long another process holds it. */
void View::TakeLayer()
{
    while (!_layer) {
        const DFBResult result = _dfb->GetDisplayLayer(_dfb, kLayerId, &_layer);
        if (result == DFB_OK)
            break;
        if (result == DFB_TEMPUNAVAIL)
            std::fputs("GetDisplayLayer temporarily failed, try again!", stderr);
        else
            ReportDfbFailure(__FILE__, __LINE__, "GetDisplayLayer", result);
    }
}

void View::ConfigureLayer(UInt32 width, UInt32 height, UInt8 mode)
{
    _layer->SetCooperativeLevel(_layer, DLSCL_EXCLUSIVE);
    DFBDisplayLayerConfig layer_config = {};
    _layer->GetConfiguration(_layer, &layer_config);
    layer_config.flags =
        static_cast<DFBDisplayLayerConfigFlags>(DLCONF_WIDTH | DLCONF_HEIGHT | DLCONF_PIXELFORMAT);
    layer_config.width = static_cast<int>(width);
    layer_config.height = static_cast<int>(height);
    layer_config.pixelformat = mode == Color8Bit ? DSPF_LUT8 : DSPF_ARGB;
    DFBCHECK(_layer->SetConfiguration(_layer, &layer_config));
}

void View::CreateSubtitleSurface()
{
    DFBSurfaceDescription dsc = {};
    dsc.flags =
        static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT | DSDESC_PIXELFORMAT);
    dsc.width = kSubtitleWidth;
    dsc.height = kSubtitleHeight;
    dsc.pixelformat = DSPF_ARGB;
    DFBCHECK(View::_dfb->CreateSurface(View::_dfb, &dsc, &_surface_subtitle));
    // DirectFB leaves new surfaces uninitialised; frames must not show that.
    if (_surface_subtitle)
        _surface_subtitle->Clear(_surface_subtitle, 0, 0, 0, 0);
}

void View::DFBUnInitialize()
{
    _init_count = 0;
    std::printf("Kestrin====>>>>, %s:%d, initCount=%d\n", __func__, __LINE__, _init_count);
    KESTRIN_LOG(kLogInformation, "_init_count:%d\n", _init_count);

    if (_surface_subtitle) {
        _surface_subtitle->Release(_surface_subtitle);
        _surface_subtitle = nullptr;
    }
    if (_palette) {
        _palette->Release(_palette);
        _palette = nullptr;
    }
    if (_primary) {
        _primary->Release(_primary);
        _primary = nullptr;
    }
    if (_layer) {
        _layer->Release(_layer);
        _layer = nullptr;
    }
}

void View::SharePalette(IDirectFBSurface* surface)
{
    IDirectFBPalette* palette = nullptr;
    if (_primary->GetPalette(_primary, &palette) != DFB_OK || !palette)
        return;
    surface->SetPalette(surface, palette);
    palette->Release(palette);
}

} // namespace zelxxx
