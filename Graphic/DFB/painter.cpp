#include "painter.h"

#include "canvas.h"
#include "font.h"
#include "image.h"
#include "tdebug.h"

#include <algorithm>

namespace zelxxx {

namespace {

constexpr UInt32 kFontScaleOne = 0x10000; // 1.0 in 16.16 fixed point
constexpr Int32 kMostGlyphPixels = 10000;
constexpr int kFirstFontSurfaceSide = 25;

const auto kBlitGlyph =
    static_cast<DFBSurfaceBlittingFlags>(DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_SRC_PREMULTIPLY |
                                         DSBLIT_DST_PREMULTIPLY | DSBLIT_DEMULTIPLY);

const auto kBlitImage =
    static_cast<DFBSurfaceBlittingFlags>(DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_BLEND_COLORALPHA);

/** Where the first of a row of tiles stands, at 0 or before it, for a grid with this origin. */
int FirstTile(int origin, int size)
{
    const int offset = origin % size;
    return offset > 0 ? offset - size : offset;
}

/** The DirectFB font for a size and style, always unscaled; null when there is none. */
IDirectFBFont* DirectFBFontOf(IFont* font, UInt16 font_size, FontStyle font_style)
{
    Font* own = SideOf<Font>(font);
    return own ? own->GetFont(font_size, static_cast<UInt16>(font_style), kFontScaleOne) : nullptr;
}

} // namespace

IDirectFBSurface* Painter::_font_surface = nullptr;
int Painter::_font_surface_width = -1;
int Painter::_font_surface_height = -1;

IPainter* zelCreatePainter(ICanvas* canvas)
{
    return new Painter(BaseOf(canvas));
}

Painter::Painter(CanvasBase* canvas)
    : _canvas(SideOf<ICanvas>(canvas)), _blend_mode(BlendSrcOver), _canvas_color_mode(Color32Bit),
      _canvas_width(0), _canvas_height(0), _offset_x(0), _offset_y(0), _clip_x1(0), _clip_y1(0),
      _clip_x2(0), _clip_y2(0), _glyph_limit(0), _glyph_limit_shifted(0), _left_blending(false),
      _canvas_surface(nullptr)
{
    if (!canvas)
        return;
    _canvas_surface = canvas->GetSurface();
    _canvas_color_mode = _canvas->GetColorMode();
    _canvas_width = _canvas->GetWidth();
    _canvas_height = _canvas->GetHeight();
    _clip_x2 = _canvas_width;
    _clip_y2 = _canvas_height;
    _glyph_limit = _glyph_limit_shifted = _clip_x2;
    // DirectFB's corners are inclusive, so this reaches a pixel beyond; DirectFB cuts it.
    const DFBRegion clip_rect = {0, 0, _canvas_width, _canvas_height};
    DFBCHECK(_canvas_surface->SetClip(_canvas_surface, &clip_rect));
}

void Painter::SetClipping(MetricValue left, MetricValue top, MetricValue right, MetricValue bottom)
{
    StoreClip(left, top, right, bottom);
    if (!_canvas_surface)
        return;
    const DFBRegion clip_rect = {_clip_x1, _clip_y1, _clip_x2, _clip_y2};
    _canvas_surface->SetClip(_canvas_surface, &clip_rect);
}

void Painter::SetSceneClipping(const DirtyRect& shown, const DirtyRect* seen)
{
    StoreClip(Wrap(shown.x1 - _offset_x), Wrap(shown.y1 - _offset_y), Wrap(shown.x2 - _offset_x),
              Wrap(shown.y2 - _offset_y));
    _glyph_limit = shown.x2;
    _glyph_limit_shifted = shown.x2 - _offset_x;
    if (!_canvas_surface)
        return;
    DFBRegion clip_rect = {_clip_x1, _clip_y1, _clip_x2, _clip_y2};
    if (seen) {
        // The corners are inclusive for DirectFB.
        clip_rect.x1 = std::max(clip_rect.x1, seen->x1 - _offset_x);
        clip_rect.y1 = std::max(clip_rect.y1, seen->y1 - _offset_y);
        clip_rect.x2 = std::min(clip_rect.x2, seen->x2 - _offset_x - 1);
        clip_rect.y2 = std::min(clip_rect.y2, seen->y2 - _offset_y - 1);
    }
    _canvas_surface->SetClip(_canvas_surface, &clip_rect);
}

void Painter::StoreClip(MetricValue left, MetricValue top, MetricValue right, MetricValue bottom)
{
    _clip_x1 = std::max<MetricValue>(0, left);
    _clip_y1 = std::max<MetricValue>(0, top);
    _clip_x2 = _canvas ? std::min(_canvas_width, right) : 0;
    _clip_y2 = _canvas ? std::min(_canvas_height, bottom) : 0;
    _glyph_limit = _glyph_limit_shifted = _clip_x2;
}

void Painter::SetOrigin(MetricValue x, MetricValue y)
{
    _offset_x = x;
    _offset_y = y;
}

void Painter::DrawFrame(MetricValue, MetricValue, MetricValue, MetricValue, MetricValue, ColorValue,
                        BlendValue, BlendMode)
{
}

Painter::Area Painter::Clip(MetricValue x, MetricValue y, MetricValue width,
                            MetricValue height) const
{
    const int l = Wrap(x - _offset_x);
    const int t = Wrap(y - _offset_y);
    return {std::max<int>(l, _clip_x1), std::max<int>(t, _clip_y1),
            std::min<int>(l + width, _clip_x2), std::min<int>(t + height, _clip_y2)};
}

void Painter::DrawRectangle(MetricValue left, MetricValue top, MetricValue width,
                            MetricValue height, ColorValue color, BlendValue blend,
                            BlendMode blend_mode, BlitFlag blit_flag, ColorValue dst_color)
{
    const Area area = Clip(left, top, width, height);
    if (blit_flag != NoBlit)
        FillColorKeyed(area, color, blit_flag, dst_color);
    else if (blend_mode == BlendSrcCopy)
        FillCopy(area, color, blend);
    else if (_blend_mode == BlendSrcOver8BIT)
        MHEG_displayRectangle(_canvas_surface, area.left, area.top, area.right - 1, area.bottom - 1,
                              static_cast<Int32>(color));
    else if (_blend_mode == BlendSrcOver && blend != 0 && !area.IsEmpty())
        FillSrcOver(area, color, blend);
}

/**
 * Fills under a destination colour key, in the colour set last and without a test for emptiness.
 * A 32-bit canvas takes the key from `color`, an 8-bit one from `dst_color`: clients rely on both.
 */
void Painter::FillColorKeyed(const Area& area, ColorValue color, BlitFlag blit_flag,
                             ColorValue dst_color)
{
    const int left = area.left;
    const int top = area.top;
    const int right = area.right;
    const int bottom = area.bottom;
    const DFBSurfaceBlittingFlags blitflag =
        blit_flag == Blit_SRC_COLORKEY ? DSBLIT_SRC_COLORKEY : DSBLIT_NOFX;
    if (_canvas_color_mode == Color8Bit)
        _canvas_surface->SetDstColorKeyIndex(_canvas_surface, dst_color);
    else
        _canvas_surface->SetDstColorKey(_canvas_surface, LowRed(color), LowGreen(color),
                                        LowBlue(color));
    _canvas_surface->SetBlittingFlags(_canvas_surface, blitflag);
    DFBCHECK(_canvas_surface->FillRectangle(_canvas_surface, left, top, right - left,
                                            bottom - top));
    _canvas_surface->SetBlittingFlags(_canvas_surface, DSBLIT_NOFX);
}

/** Replaces colour and opacity. Leaves the surface blending with the source rule. */
void Painter::FillCopy(Area area, ColorValue color, BlendValue blend)
{
    _left_blending = true;
    DFBCHECK(_canvas_surface->SetDrawingFlags(_canvas_surface, DSDRAW_BLEND));
    DFBCHECK(_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_SRC));
    if (_canvas_color_mode == Color8Bit) {
        DFBCHECK(_canvas_surface->SetColorIndex(_canvas_surface, color));
    } else {
        DFBCHECK(_canvas_surface->SetColor(_canvas_surface, (color & 0xff), (color & 0xff00) >> 8,
                                           (color & 0xff0000) >> 16, blend));
    }
    const int left = std::max(area.left, 0);
    const int top = std::max(area.top, 0);
    const int right = area.right;
    const int bottom = area.bottom;
    if (left < right && top < bottom) {
        DFBCHECK(_canvas_surface->FillRectangle(_canvas_surface, left, top, right - left,
                                                bottom - top));
    }
}

/** Blends a colour over the pixels; by colour and not by index also on an 8-bit canvas. */
void Painter::FillSrcOver(const Area& area, ColorValue color, BlendValue blend)
{
    const int left = area.left;
    const int top = area.top;
    const int right = area.right;
    const int bottom = area.bottom;
    DFBCHECK(_canvas_surface->SetDrawingFlags(_canvas_surface,
                                              (DFBSurfaceDrawingFlags)(DSDRAW_BLEND)));
    DFBCHECK(_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_SRC_OVER));
    DFBCHECK(_canvas_surface->SetColor(_canvas_surface, (color & 0xff), (color & 0xff00) >> 8,
                                       (color & 0xff0000) >> 16, blend));
    DFBCHECK(_canvas_surface->FillRectangle(_canvas_surface, left, top, right - left,
                                            bottom - top));
    DFBCHECK(_canvas_surface->SetDrawingFlags(_canvas_surface, DSDRAW_NOFX));
    DFBCHECK(_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_NONE));
}

void Painter::DrawImage(IImage* image, UInt16 frame, MetricValue x, MetricValue y,
                        MetricValue width, MetricValue height, MetricValue src_x, MetricValue src_y,
                        MetricValue src_width, MetricValue src_height, BlendValue blend,
                        BlendMode blend_mode)
{
    if (blend == 0 || !_canvas_surface || width <= 0 || height <= 0 || src_width <= 0 ||
        src_height <= 0)
        return;
    Image* own = SideOf<Image>(image);
    const Area area = Clip(x, y, width, height);
    if (!own || area.IsEmpty())
        return;
    const auto paint = [&] {
        own->PaintToSurface(_canvas_surface, frame, Wrap(area.left), Wrap(area.top),
                            Wrap(area.right - area.left), Wrap(area.bottom - area.top),
                            Wrap(src_x + area.left - Wrap(x - _offset_x)),
                            Wrap(src_y + area.top - Wrap(y - _offset_y)), _blend_mode);
    };
    if (blend_mode != BlendSrcOver) {
        const DFBSurfaceBlittingFlags blitflag = DSBLIT_NOFX;
        DFBCHECK(_canvas_surface->SetBlittingFlags(_canvas_surface, blitflag));
        paint();
        return;
    }
    const DFBSurfaceBlittingFlags blitflag = kBlitImage;
    DFBCHECK(_canvas_surface->SetBlittingFlags(_canvas_surface, blitflag));
    _canvas_surface->SetPorterDuff(_canvas_surface, DSPD_SRC_OVER);
    DFBCHECK(_canvas_surface->SetColor(_canvas_surface, 0, 0, 0, blend));
    paint();
    DFBCHECK(_canvas_surface->SetBlittingFlags(_canvas_surface, DSBLIT_NOFX));
}

void Painter::DrawTexture(IImage* image, UInt16 frame, MetricValue left, MetricValue top,
                          MetricValue width, MetricValue height, MetricValue origin_x,
                          MetricValue origin_y, BlendValue blend, BlendMode blend_mode)
{
    if (blend == 0 || !image)
        return;
    const int iw = image->GetWidth();
    const int ih = image->GetHeight();
    // Tiles without a size would never reach the other edge.
    if (iw == 0 || ih == 0)
        return;
    const int ox = FirstTile(origin_x, iw);
    const int oy = FirstTile(origin_y, ih);
    if (ox > width || oy > height)
        return;
    for (int ty = oy; ty <= height; ty += ih) {
        const int sy = std::max(-ty, 0);
        const int h = std::min(ty + ih, +height) - std::max(ty, 0);
        for (int tx = ox; tx <= width; tx += iw) {
            const int sx = std::max(-tx, 0);
            const int w = std::min(tx + iw, +width) - std::max(tx, 0);
            DrawImage(image, frame, Wrap(left + std::max(tx, 0)), Wrap(top + std::max(ty, 0)),
                      Wrap(w), Wrap(h), Wrap(sx), Wrap(sy), Wrap(w), Wrap(h), blend, blend_mode);
        }
    }
}

void Painter::DrawChar(WChar ch, MetricValue left, MetricValue top, IFont* font, UInt16 font_size,
                       FontStyle font_style, ColorValue color, BlendValue blend,
                       BlendMode blend_mode, UInt32, UInt32)
{
    if (blend == 0 || !_canvas_surface)
        return;
    IDirectFBFont* cur_font = DirectFBFontOf(font, font_size, font_style);
    if (!cur_font)
        return;
    _canvas_surface->SetFont(_canvas_surface, cur_font);
    const int x = Wrap(left - _offset_x);
    const int y = Wrap(top - _offset_y);
    const char text = static_cast<char>(ch); // DirectFB takes one byte of text here

    if (blend_mode != BlendSrcOver) {
        DFBCHECK(_canvas_surface->SetColorIndex(_canvas_surface, color));
    } else {
        DFBCHECK(_canvas_surface->SetDrawingFlags(_canvas_surface,
            (DFBSurfaceDrawingFlags)(DSDRAW_BLEND | DSDRAW_SRC_PREMULTIPLY)));
        DFBCHECK(_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_SRC_OVER));
        DFBCHECK(_canvas_surface->SetColor(_canvas_surface, (color & 0xff), (color & 0xff00) >> 8,
                                           (color & 0xff0000) >> 16, blend));
    }
    DFBCHECK(_canvas_surface->DrawString(_canvas_surface, &text, 1, x, y,
                                         (DFBSurfaceTextFlags)(DSTF_LEFT | DSTF_TOP)));
    if (blend_mode == BlendSrcOver) {
        DFBCHECK(_canvas_surface->SetDrawingFlags(_canvas_surface, DSDRAW_NOFX));
        DFBCHECK(_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_NONE));
    }
}

void Painter::DrawString(PtrConstWChar str, UInt32 length, MetricValue left, MetricValue top,
                         IFont* font, UInt16 font_size, FontStyle font_style, ColorValue color,
                         BlendValue blend, BlendMode blend_mode, UInt32)
{
    if (blend == 0)
        return;
    IDirectFBFont* cur_font = DirectFBFontOf(font, font_size, font_style);
    if (!cur_font || !_canvas_surface)
        return;
    int x = Wrap(left - _offset_x);
    const int y = Wrap(top - _offset_y);

    DFBCHECK(_canvas_surface->SetFont(_canvas_surface, cur_font));
    DFBCHECK(_canvas_surface->SetColor(_canvas_surface, (color & 0xff), (color & 0xff00) >> 8,
                                       (color & 0xff0000) >> 16, blend));
    if (blend_mode == BlendSrcOver) {
        DFBCHECK(_canvas_surface->SetDrawingFlags(_canvas_surface,
            (DFBSurfaceDrawingFlags)(DSDRAW_BLEND | DSDRAW_SRC_PREMULTIPLY)));
        DFBCHECK(_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_SRC_OVER));
    }
    for (UInt32 i = 0; i < length; ++i) {
        const unsigned int glyphindex = str[i];
        DFBRectangle glyphrect = {};
        int glyphadvance = 0;
        DFBCHECK(cur_font->GetGlyphExtents(cur_font, glyphindex, &glyphrect, &glyphadvance));
        DFBCHECK(_canvas_surface->DrawGlyph(_canvas_surface, glyphindex, x, y,
                                            (DFBSurfaceTextFlags)(DSTF_LEFT | DSTF_TOP)));
        x += glyphadvance;
    }
    if (blend_mode == BlendSrcOver) {
        DFBCHECK(_canvas_surface->SetDrawingFlags(_canvas_surface, DSDRAW_NOFX));
        DFBCHECK(_canvas_surface->SetPorterDuff(_canvas_surface, DSPD_NONE));
    }
}

void Painter::DrawCharBitmap(PtrSChar buffer, const CharMetrics* char_metrics, IFont* font,
                             UInt16 font_size, MetricValue left, MetricValue top, BlendValue blend)
{
    const Int32 width = char_metrics->width;
    const Int32 height = char_metrics->height;
    if (!_canvas_surface || blend == 0 || width <= 0 || height <= 0)
        return;
    const Int32 top_offset = font->GetFTYOffsetTop(font_size);
    // Compared before the origin is subtracted; a glyph across the edge is dropped whole.
    if (static_cast<int64_t>(left) + width > _glyph_limit + char_metrics->hori_bearing_x)
        return;
    if (_blend_mode != BlendSrcOver8BIT)
        return;
    const Int32 x = Wrap(left - _offset_x + char_metrics->hori_bearing_x);
    const Int32 y = Wrap(top - _offset_y - char_metrics->bitmap_top + top_offset);
    MHEG_draw_bitmap(_canvas_surface, x, y, width, width, height, reinterpret_cast<UInt8*>(buffer),
                     0, 0);
}

void Painter::Draw32BitCharBitmap(const CharMetrics* char_metrics, IFont* font, UInt16 font_size,
                                  MetricValue left, MetricValue top, ColorValue color,
                                  BlendValue blend)
{
    const Int32 width = char_metrics->width;
    const Int32 height = char_metrics->height;
    const int64_t pixels = static_cast<int64_t>(width) * height;
    if (pixels == 0 || pixels > kMostGlyphPixels || height < 1)
        return;
    if (!_canvas_surface || blend == 0 || width <= 0 || !char_metrics->buffer)
        return;
    const int new_left = Wrap(left - _offset_x + char_metrics->hori_bearing_x);
    const Int32 top_offset = font->GetFTYOffsetTop(font_size);
    if (new_left + width > _glyph_limit_shifted)
        return;
    const int new_top = Wrap(top - _offset_y - char_metrics->bitmap_top + top_offset);

    IDirectFBSurface* img_surf = GetFontSurface(width, height);
    if (!WriteGlyph(img_surf, *char_metrics, color, blend))
        return;
    const DFBRectangle rect = {0, 0, width, height};
    _canvas_surface->SetBlittingFlags(_canvas_surface, kBlitGlyph);
    _canvas_surface->SetPorterDuff(_canvas_surface, DSPD_SRC_OVER);
    DFBCHECK(_canvas_surface->Blit(_canvas_surface, img_surf, &rect, new_left, new_top));
    _canvas_surface->SetBlittingFlags(_canvas_surface, DSBLIT_NOFX);
}

/**
 * Turns a glyph's coverage into ARGB pixels on the scratch surface; false when its rows have no
 * room for them, as on an 8-bit display.
 */
bool Painter::WriteGlyph(IDirectFBSurface* img_surf, const CharMetrics& glyph, ColorValue color,
                         BlendValue blend)
{
    void* surf_data = nullptr;
    int ret_pitch = 0;
    DFBCHECK(img_surf->Lock(img_surf, DSLF_WRITE, &surf_data, &ret_pitch));
    const bool fits = surf_data && 4 * glyph.width <= ret_pitch;
    if (fits) {
        const UInt32 rgb = static_cast<UInt32>(LowRed(color)) << 16 |
                           static_cast<UInt32>(LowGreen(color)) << 8 | LowBlue(color);
        const Int32 width = glyph.width;
        const UInt8* coverage = glyph.buffer;
        auto* row = static_cast<UInt8*>(surf_data);
        for (Int32 y = 0; y < glyph.height; ++y, row += ret_pitch, coverage += width) {
            auto* pixels = reinterpret_cast<UInt32*>(row);
            for (Int32 x = 0; x < width; ++x)
                pixels[x] = static_cast<UInt32>(CombineBlends(coverage[x], blend)) << 24 | rgb;
        }
    }
    DFBCHECK(img_surf->Unlock(img_surf));
    return fits;
}

IDirectFBSurface* Painter::GetFontSurface(int width, int height)
{
    if (_font_surface && _font_surface_width >= width && _font_surface_height >= height)
        return _font_surface;
    ReleaseFontSurface();
    DFBSurfacePixelFormat format = DSPF_UNKNOWN;
    View::_primary->GetPixelFormat(View::_primary, &format);
    if (_font_surface_width == -1 || _font_surface_height == -1) {
        _font_surface_width = kFirstFontSurfaceSide;
        _font_surface_height = kFirstFontSurfaceSide;
    }
    _font_surface_width = std::max(_font_surface_width, width);
    _font_surface_height = std::max(_font_surface_height, height);

    DFBSurfaceDescription dsc = {};
    dsc.flags =
        static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT | DSDESC_PIXELFORMAT);
    dsc.width = _font_surface_width;
    dsc.height = _font_surface_height;
    dsc.pixelformat = format;
    DFBCHECK(View::_dfb->CreateSurface(View::_dfb, &dsc, &_font_surface));
    View::SharePalette(_font_surface);
    DFBCHECK(_font_surface->SetDrawingFlags(_font_surface,
        (DFBSurfaceDrawingFlags)(DSDRAW_BLEND | DSDRAW_SRC_PREMULTIPLY)));
    DFBCHECK(_font_surface->SetSrcColorKey(_font_surface, 0, 0, 0));
    return _font_surface;
}

void Painter::ReleaseFontSurface()
{
    if (!_font_surface)
        return;
    _font_surface->Release(_font_surface);
    _font_surface = nullptr;
}

} // namespace zelxxx
