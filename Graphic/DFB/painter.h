/** Draws on a canvas. */
#pragma once

#include "view.h"

namespace zelxxx {

/**
 * Draws on one canvas through DirectFB. The origin is subtracted from every drawing coordinate, and
 * the clip rectangle, in canvas pixels, cuts what is drawn.
 *
 * Drawing state stays on the surface between calls as each operation leaves it. Every operation
 * sets what it needs, but for the colour-key fill, which takes the colour set last.
 */
class Painter : public ZELObject<IPainter, Painter>
{
public:
    /** Holds the canvas; null is allowed and draws nothing. */
    explicit Painter(CanvasBase* canvas);

    void SetClipping(MetricValue left, MetricValue top, MetricValue right,
                     MetricValue bottom) override;
    void SetOrigin(MetricValue x, MetricValue y) override;
    void DrawFrame(MetricValue left, MetricValue top, MetricValue width, MetricValue height,
                   MetricValue thickness, ColorValue color, BlendValue blend,
                   BlendMode blend_mode) override;
    void DrawRectangle(MetricValue left, MetricValue top, MetricValue width, MetricValue height,
                       ColorValue color, BlendValue blend, BlendMode blend_mode, BlitFlag blit_flag,
                       ColorValue dst_color) override;
    void DrawImage(IImage* image, UInt16 frame, MetricValue x, MetricValue y, MetricValue width,
                   MetricValue height, MetricValue src_x, MetricValue src_y, MetricValue src_width,
                   MetricValue src_height, BlendValue blend, BlendMode blend_mode) override;
    void DrawTexture(IImage* image, UInt16 frame, MetricValue left, MetricValue top,
                     MetricValue width, MetricValue height, MetricValue origin_x,
                     MetricValue origin_y, BlendValue blend, BlendMode blend_mode) override;
    void DrawChar(WChar ch, MetricValue left, MetricValue top, IFont* font, UInt16 font_size,
                  FontStyle font_style, ColorValue color, BlendValue blend, BlendMode blend_mode,
                  UInt32 font_scaler_molecule, UInt32 font_scaler_denominator) override;
    void DrawCharBitmap(PtrSChar buffer, const CharMetrics* char_metrics, IFont* font,
                        UInt16 font_size, MetricValue left, MetricValue top,
                        BlendValue blend) override;
    void Draw32BitCharBitmap(const CharMetrics* char_metrics, IFont* font, UInt16 font_size,
                             MetricValue left, MetricValue top, ColorValue color,
                             BlendValue blend) override;
    ColorMode GetColorMode() override { return _canvas_color_mode; }
    void SetBlendMode(BlendMode blend_mode) override { _blend_mode = blend_mode; }
    void DrawString(PtrConstWChar str, UInt32 length, MetricValue left, MetricValue top,
                    IFont* font, UInt16 font_size, FontStyle font_style, ColorValue color,
                    BlendValue blend, BlendMode blend_mode, UInt32 font_scaler) override;

    /**
     * Clips to a rectangle of the drawing space, less the origin. A glyph is dropped at this
     * rectangle's right edge and not at the canvas's, so that a scene painted in several tiles
     * drops the glyphs it drops in one.
     *
     * @param seen  what of it, and of the row and column beyond that the surface's clip takes in,
     *              is to be seen: the surface draws nothing else. Every operation makes the calls
     *              that it makes for all of `shown`, which null stands for
     */
    void SetSceneClipping(const DirtyRect& shown, const DirtyRect* seen = nullptr);
    /** Whether a fill has left the surface blending, so that the next clear may blend, too. */
    bool HasLeftBlending() const { return _left_blending; }

    /**
     * The scratch surface of Draw32BitCharBitmap, at least this large: one per process, which only
     * grows.
     */
    static IDirectFBSurface* GetFontSurface(int width, int height);
    /** Frees the scratch surface. Its recorded size stays. */
    static void ReleaseFontSurface();

private:
    /** A rectangle in canvas pixels, right and bottom exclusive; may be empty. */
    struct Area
    {
        int left, top, right, bottom;
        bool IsEmpty() const { return left >= right || top >= bottom; }
    };

    void StoreClip(MetricValue left, MetricValue top, MetricValue right, MetricValue bottom);
    Area Clip(MetricValue x, MetricValue y, MetricValue width, MetricValue height) const;
    void FillColorKeyed(const Area& area, ColorValue color, BlitFlag blit_flag,
                        ColorValue dst_color);
    void FillCopy(Area area, ColorValue color, BlendValue blend);
    void FillSrcOver(const Area& area, ColorValue color, BlendValue blend);
    static bool WriteGlyph(IDirectFBSurface* img_surf, const CharMetrics& glyph, ColorValue color,
                           BlendValue blend);

    PCanvas _canvas;
    BlendMode _blend_mode;
    ColorMode _canvas_color_mode;
    MetricValue _canvas_width, _canvas_height;
    MetricValue _offset_x, _offset_y;
    MetricValue _clip_x1, _clip_y1; /**< inclusive */
    MetricValue _clip_x2, _clip_y2; /**< exclusive */
    /** Right edges beyond which glyphs are dropped, before and after the origin is subtracted. */
    Int32 _glyph_limit, _glyph_limit_shifted;
    bool _left_blending;
    IDirectFBSurface* _canvas_surface; /**< the canvas holds it */

    static IDirectFBSurface* _font_surface;
    static int _font_surface_width; /**< -1: never created */
    static int _font_surface_height;
};

} // namespace zelxxx
