/**
 * Kestrin's interfaces and factories: what a client of the on-screen-display engine calls.
 *
 * A program calls zelInitialize once, makes a Scene, fills it with layers and widgets, and calls
 * zelUpdateScreen whenever it has changed something; the engine repaints what changed and shows it.
 *
 * Ownership: every factory returns an object with a reference count of 0, to be held by a ZELObjPtr
 * or given to a holder (a layer holds its widgets, a widget its modifiers and its resource). What
 * is passed as a plain pointer without a remark is not held and must outlive its user.
 *
 * Threads: the engine has one. All calls come from the thread that calls zelUpdateScreen.
 *
 * Failures: no drawing operation returns an error. A failed DirectFB call is reported on standard
 * error and ends the process through DirectFBErrorFatal.
 */
#pragma once

#include "vrel_kestrin_obj.h"

#include <cstddef>

/** A category of the platform's debug log. */
struct vrel_debug_category;

namespace zelxxx {

class ICanvas;
class IFont;
class IImage;
class ILayer;
class IModifier;
class IPalette;
class IPainter;
class IResource;
class IScene;
class ISprite;
class IText;
class IView;
class IWidget;

typedef ZELObjPtr<IView> PView;
typedef ZELObjPtr<ICanvas> PCanvas;
typedef ZELObjPtr<ILayer> PLayer;
typedef ZELObjPtr<IImage> PImage;
typedef ZELObjPtr<IResource> PResource;
typedef ZELObjPtr<IPalette> PPalette;

// ---- Scene graph ----------------------------------------------------------------------------

/**
 * A widget: something with a position, a span and an opacity in a layer.
 *
 * Every widget answers AttrPosX, AttrPosY, AttrPosZ, AttrSpanX, AttrSpanY, AttrOriginX,
 * AttrOriginY, AttrScaleX, AttrScaleY, AttrBlend and AttrBlendMode; its kind adds others.
 * Positions are pixels in the parent layer; the point (OriginX, OriginY) of the widget stands at
 * (PosX, PosY); PosZ is the depth within the layer, greater is nearer.
 */
class KESTRIN_EXPORT IWidget : public IDynamic
{
public:
    /** The layer the widget is in, not held; null if none. */
    virtual ILayer* GetLayer() = 0;
    /** Shows or hides the widget at the next update. A widget starts visible. */
    virtual void SetVisibility(bool visible) = 0;
    /**
     * Takes the widget out in two steps, so that a leaving animation can run in between: true parks
     * the widget (its layer keeps it even if asked to remove it), false then releases it at the
     * next update that looks for dying widgets (ILayer::RemoveWidget(null) asks for one).
     */
    virtual void SetRemoving(bool removing) = 0;
    /** WidgetAnchor bits; left and top at first. Layers with anchors enabled apply them. */
    virtual void SetAnchors(UInt8 anchors) = 0;
    /** Attaches and holds a modifier, last in order; it leaves the widget it was attached to. */
    virtual void AddModifier(IModifier* modifier) = 0;
    /** Detaches and releases a modifier; null or a foreign one is ignored. */
    virtual void RemoveModifier(IModifier* modifier) = 0;
};

/**
 * A container of widgets with a coordinate system, clip rectangle, opacity and background of its
 * own. It also answers AttrScrollX, AttrScrollY, AttrBkgndColor and AttrBkgndBlend, and accepts
 * AttrClipLeft to AttrClipBottom, which read as 0: left and top are relative to the layer's left
 * and top edge, right and bottom to its scaled right and bottom edge. A new layer spans 10000 x
 * 10000 pixels, so it clips nothing.
 */
class KESTRIN_EXPORT ILayer : public IWidget
{
public:
    /** Adds and holds a widget at the end, out of any other layer. Not null. */
    virtual void AddWidget(IWidget* widget) = 0;
    /**
     * Adds or moves a widget relative to `widget_dest`, a child of this layer (first and last
     * ignore it). Both are marked changed. A destination that is not a child appends.
     */
    virtual void InsertWidget(IWidget* widget, IWidget* widget_dest,
                              WidgetInstertPosition instert_position) = 0;
    /**
     * Removes a widget: at the next update when the layer is in a scene, else at once. Null asks
     * the scene to look for dying widgets at its next update.
     */
    virtual void RemoveWidget(IWidget* widget) = 0;
    /** Whether changes of this layer's span move anchored children; applies to nested layers too.
     */
    virtual void EnableAnchors(bool enabled) = 0;
    /** Turns a point of this layer into scene coordinates, in place. Scales are not applied. */
    virtual void LayerToScene(MetricValue* x, MetricValue* y) = 0;
    /**
     * Turns a scene point into layer coordinates, in place: positions are subtracted and scrolls
     * added, this layer's and every ancestor's, and origins and scales are left out. For a layer
     * with an origin this is not the inverse of LayerToScene.
     */
    virtual void SceneToLayer(MetricValue* x, MetricValue* y) = 0;
};

/**
 * Lays out a text widget's text. A client's own class; the widget calls it while it paints, only
 * when something about the text changed. Not reference counted: it outlives the widgets using it.
 */
class KESTRIN_EXPORT ITextFormater
{
public:
    virtual ~ITextFormater() {}
    /**
     * Places the text by calling the widget's Add... operations, in drawing order.
     *
     * @param text    the widget
     * @param units   the text, `length` UTF-16 code units in host order; null when there is none
     * @param length  number of code units
     */
    virtual void Format(IText* text, PtrWChar units, UInt32 length) = 0;
    /**
     * On 8-bit displays only: turns a glyph's coverage into palette indices.
     *
     * @param char_metrics  the glyph; at most 255 x 255 pixels. Its buffer is null for a glyph the
     *                      font cache has no bitmap for
     * @param color         0x00BBGGRR of the last colour record
     * @param blend         opacity the glyph is to be drawn with
     * @param buffer        receives `height` rows of `width` palette indices; zero on entry, and a
     *                      zero leaves the pixel beneath unchanged
     */
    virtual void GetCharBuffer(const CharMetrics* char_metrics, ColorValue color, BlendValue blend,
                               PtrSChar buffer) = 0;
};

/**
 * A run of text in one font of a resource. The client's ITextFormater places each character.
 * Beside the widget's attributes it answers AttrOrgSpanX, AttrOrgSpanY, AttrColor, AttrFontIndex,
 * AttrFontSize (pixels), AttrOrgFontSize, AttrFontScalerMolecule and AttrFontScalerDenominator
 * (horizontal stretch, 100 / 100), AttrLineHeight, AttrOrgLineHeight, AttrTextFormat,
 * AttrCursorIndex and AttrLetterSpace.
 */
class KESTRIN_EXPORT IText : public IWidget
{
public:
    /**
     * Sets the text.
     *
     * @param text      bytes in `encoding`, copied; null empties the text
     * @param length    number of bytes; an odd last byte of EncodingUnicode is dropped
     * @param encoding  EncodingUnicode takes UTF-16 code units in host order as they are
     * @param text_formater  the formatter from now on; null keeps the one before
     */
    virtual void SetText(PtrConstAny text, UInt32 length, TextEncoding encoding,
                         ITextFormater* text_formater) = 0;
    /**
     * From a formatter: draws the cursor line under a character, at nine tenths of the line height.
     *
     * @param x, y   offset from the widget's top left corner, in pixels
     * @param ch     the character, for its width
     * @param color  0xAABBGGRR, or a palette index on an 8-bit display
     */
    virtual void AddCursorInfo(Int16 x, Int16 y, UInt16 ch, UInt32 color) = 0;
    /** From a formatter on a 32-bit display: colour and opacity of the characters that follow. */
    virtual void AddColorInfo(UInt8 r, UInt8 g, UInt8 b, UInt8 a) = 0;
    /**
     * From a formatter: draws a character.
     *
     * @param x, y  offset of the pen and of the line's top from the widget's top left corner
     * @param size  accepted and not used; the widget's font size applies
     * @param ch    UTF-16 code unit
     */
    virtual void AddCharInfo(Int16 x, Int16 y, UInt8 size, UInt16 ch) = 0;
    /** From a formatter on an 8-bit display: palette index of the characters that follow. */
    virtual void AddColorIndex(UInt8 index) = 0;
    /** The font that AttrFontIndex names, owned by the resource; null if there is none. */
    virtual IFont* GetFont() = 0;
    /** Takes and holds another resource. The widget is not marked: set an attribute to repaint. */
    virtual void SwitchResource(IResource* os) = 0;
};

/** A widget that shows one frame of an image. */
class KESTRIN_EXPORT ISprite : public IWidget
{
public:
    /** Shows and holds an image; null shows none. */
    virtual void SetImage(IImage* image) = 0;
    /** Says that the image's pixels have changed. */
    virtual void UpdateImage() = 0;
};

/** Something attached to a widget or layer that rewrites attributes at each update. */
class KESTRIN_EXPORT IModifier : public IDynamic
{
public:
    /** Switches the effect on or off; on at first. */
    virtual void Enable(bool enabled) = 0;
};

// ---- Surfaces -------------------------------------------------------------------------------

/** A surface that can be drawn on. */
class KESTRIN_EXPORT ICanvas : public IZELObject
{
public:
    /** The colour mode given at creation. */
    virtual ColorMode GetColorMode() = 0;
    /** Width in pixels, as given at creation. */
    virtual MetricValue GetWidth() = 0;
    /** Height in pixels, as given at creation. */
    virtual MetricValue GetHeight() = 0;
    /**
     * Fills a rectangle (left, top, width, height; pixels) with one colour, replacing what is there
     * unless a painter left other drawing flags.
     *
     * @param color  0x00RRGGBB of a 32-bit canvas, else a palette index
     * @param blend  opacity written; not used with a palette index
     */
    virtual void Clear(MetricValue x, MetricValue y, MetricValue w, MetricValue h, ColorValue color,
                       BlendValue blend) = 0;
    /** Copies a rectangle (left, top, width, height) of another canvas to (x, y). Not null. */
    virtual void Copy(MetricValue x, MetricValue y, ICanvas* canvas, MetricValue src_x,
                      MetricValue src_y, MetricValue src_w, MetricValue src_h) = 0;
    /** Records a blend mode. */
    virtual void SetBlendMode(BlendMode blend_mode) = 0;
};

/** The visible surface of the display layer; all views of a process share it. */
class KESTRIN_EXPORT IView : public ICanvas
{
public:
    /** Makes the layer opaque. The rectangle is not used. */
    virtual void Show(MetricValue left, MetricValue top, MetricValue width, MetricValue height) = 0;
    /** Makes the layer transparent. */
    virtual void Hide() = 0;
    /** Presents what was drawn. */
    virtual void Flip() = 0;
    /** Records the current palette, holding it; null empties. The display is not changed. */
    virtual void SetPalette(IPalette* palette) = 0;
    /**
     * Loads a palette into an 8-bit display and records it.
     *
     * @param brightness         8.8 factor of red, green and blue: 256 keeps them
     * @param blend_opaque       8.8 factor of the opacity of opaque entries
     * @param blend_transparent  8.8 factor of the opacity of all other entries
     */
    virtual void SetPalette(IPalette* palette, UInt16 brightness, UInt16 blend_opaque,
                            UInt16 blend_transparent) = 0;
    /** Changes one entry of the display's palette, once a palette has been loaded. */
    virtual void SetPaletteEntry(UInt8 color_index, UInt8 red, UInt8 green, UInt8 blue,
                                 BlendValue blending) = 0;
};

/** A drawing area with a tree of widgets: the client's handle on the screen. */
class KESTRIN_EXPORT IScene : public IView
{
public:
    /** Colour and opacity behind all widgets, from the next repaint of each area on. */
    virtual void SetBackgroundColor(ColorValue color, BlendValue blending) = 0;
    /** Adds a layer on top of those there. Not null. */
    virtual void AddLayer(ILayer* layer) = 0;
    /** Removes a layer at the next update. */
    virtual void RemoveLayer(ILayer* layer) = 0;
    /**
     * Brings the screen up to date.
     *
     * @param force  repaint everything, not only what changed
     * @param wait   a flipping scene that was shown less than 20 ms ago waits instead of skipping
     */
    virtual void Update(bool force, bool wait) = 0;
    /** A disabled scene ignores Update, also when forced. */
    virtual void Enable(bool enabled) = 0;
};

/**
 * Draws on a canvas. Colours have red in the lowest byte (0x00BBGGRR); on an 8-bit canvas a colour
 * is a palette index. All positions are in pixels, less the origin, cut at the clip rectangle.
 */
class KESTRIN_EXPORT IPainter : public IZELObject
{
public:
    /** Clip rectangle in canvas pixels, half open; cut at the canvas. The origin does not apply. */
    virtual void SetClipping(MetricValue left, MetricValue top, MetricValue right,
                             MetricValue bottom) = 0;
    /** The point of the drawing space that falls on the canvas's top left pixel. */
    virtual void SetOrigin(MetricValue x, MetricValue y) = 0;
    /** Reserved; draws nothing. */
    virtual void DrawFrame(MetricValue left, MetricValue top, MetricValue width, MetricValue height,
                           MetricValue thickness, ColorValue color, BlendValue blend,
                           BlendMode blend_mode) = 0;
    /**
     * Fills a rectangle.
     *
     * @param blend_mode  BlendSrcCopy replaces the pixels; anything else follows the painter's mode
     * @param blit_flag   other than NoBlit: fill under a destination colour key
     * @param dst_color   the key's palette index on an 8-bit canvas; a 32-bit canvas takes `color`
     */
    virtual void DrawRectangle(MetricValue left, MetricValue top, MetricValue width,
                               MetricValue height, ColorValue color, BlendValue blend,
                               BlendMode blend_mode, BlitFlag blit_flag, ColorValue dst_color) = 0;
    /**
     * Draws a part of an image's frame, unscaled. The image is one of the engine's.
     *
     * @param frame         counted from 0; nothing is drawn for one that is not there
     * @param x, y          where the part goes
     * @param width, height  size of the part in pixels
     * @param src_x, src_y  its place in the picture
     * @param src_width, src_height  must be above 0, and have no other effect
     * @param blend         opacity; 0 draws nothing
     * @param blend_mode    BlendSrcOver blends: the picture's colours, which count as premultiplied
     *                      by their opacity, plus what the opacity, times `blend`, lets through.
     *                      Anything else replaces the pixels, whatever `blend` is
     */
    virtual void DrawImage(IImage* image, UInt16 frame, MetricValue x, MetricValue y,
                           MetricValue width, MetricValue height, MetricValue src_x,
                           MetricValue src_y, MetricValue src_width, MetricValue src_height,
                           BlendValue blend, BlendMode blend_mode) = 0;
    /**
     * Tiles an image over a rectangle. Nothing is drawn for an image of size 0.
     *
     * @param origin_x, origin_y  offset of the tiles' grid from the rectangle's top left corner
     */
    virtual void DrawTexture(IImage* image, UInt16 frame, MetricValue left, MetricValue top,
                             MetricValue width, MetricValue height, MetricValue origin_x,
                             MetricValue origin_y, BlendValue blend, BlendMode blend_mode) = 0;
    /**
     * Draws one character (the low byte of `ch`) with a DirectFB font, its box's top left corner at
     * (left, top). The scalers are accepted and not used.
     */
    virtual void DrawChar(WChar ch, MetricValue left, MetricValue top, IFont* font,
                          UInt16 font_size, FontStyle font_style, ColorValue color,
                          BlendValue blend, BlendMode blend_mode, UInt32 font_scaler_molecule,
                          UInt32 font_scaler_denominator) = 0;
    /**
     * On an 8-bit canvas in BlendSrcOver8BIT mode: blends palette indices onto the pixels.
     *
     * @param buffer        `height` rows of `width` palette indices of the glyph
     * @param char_metrics  size and bearings of the glyph
     * @param left, top     pen and top of the text line
     * @param blend         0 draws nothing; not used otherwise
     */
    virtual void DrawCharBitmap(PtrSChar buffer, const CharMetrics* char_metrics, IFont* font,
                                UInt16 font_size, MetricValue left, MetricValue top,
                                BlendValue blend) = 0;
    /** Draws a glyph's coverage in a colour; at most 10000 pixels, else nothing. */
    virtual void Draw32BitCharBitmap(const CharMetrics* char_metrics, IFont* font, UInt16 font_size,
                                     MetricValue left, MetricValue top, ColorValue color,
                                     BlendValue blend) = 0;
    /** The canvas's colour mode; Color32Bit without a canvas. */
    virtual ColorMode GetColorMode() = 0;
    /** The mode of operations that follow the painter's mode; BlendSrcOver at first. */
    virtual void SetBlendMode(BlendMode blend_mode) = 0;
    /**
     * Draws `length` values of `str` with a DirectFB font, without kerning. Each is handed to
     * DirectFB as a glyph index; the FreeType provider of DirectFB 1.7 takes it for a character
     * code.
     */
    virtual void DrawString(PtrConstWChar str, UInt32 length, MetricValue left, MetricValue top,
                            IFont* font, UInt16 font_size, FontStyle font_style, ColorValue color,
                            BlendValue blend, BlendMode blend_mode, UInt32 font_scaler) = 0;
};

// ---- Fonts, palettes, images, resources -------------------------------------------------------

/**
 * Metrics and glyphs of a scalable font at a size in pixels. A character without a glyph counts as
 * a space. Horizontal stretch is the ratio molecule / denominator. Styles are not used.
 */
class KESTRIN_EXPORT IFont : public IZELObject
{
public:
    /** Line metrics: the same for every font at a size. */
    virtual void GetFTFontMetrics(UInt16 font_size, FontStyle font_style,
                                  FontMetrics* font_metrics) = 0;
    /** Advance of a character in font units times the size; 0 when there is no glyph. */
    virtual Int32 GetFTNoScaleCharMetricsX(WChar ch, UInt16 font_size, FontStyle font_style) = 0;
    /** Kerning of a pair in font units times the size. */
    virtual Int32 GetFTKerning(WChar left_character, WChar right_character, UInt16 font_size,
                               FontStyle font_style) = 0;
    /** From the top of a line to its baseline, in pixels. */
    virtual Int32 GetFTYOffsetTop(UInt16 font_size) = 0;
    /** From the baseline to the bottom of a line, in pixels. */
    virtual Int32 GetFTYOffsetBottom(UInt16 font_size) = 0;
    /** How far glyphs reach left of the pen, in pixels. */
    virtual Int32 GetFTXOffsetLeft(UInt16 font_size, UInt32 font_scaler_molecule,
                                   UInt32 font_scaler_denominator) = 0;
    /** Renders a glyph; the record's buffer stays valid until the next request to any font. */
    virtual void GetFTCharMetrics(WChar ch, UInt16 font_size, FontStyle font_style,
                                  CharMetrics* char_metrics, UInt32 font_scaler_molecule,
                                  UInt32 font_scaler_denominator) = 0;
    /** Font units times size to pixels, rounded up; for layout. Unsigned last division. */
    virtual Int32 NoScaleFontUnitsToPixelsInCalculate(Int32 val, UInt32 font_scaler_molecule,
                                                      UInt32 font_scaler_denominator) = 0;
    /** The same for drawing, where negative values stay negative. */
    virtual Int32 NoScaleFontUnitsToPixelsInDrawText(Int32 val, Int32 font_scaler_molecule,
                                                     Int32 font_scaler_denominator) = 0;
};

/**
 * A picture with one or more frames, shown by a sprite or a painter.
 *
 * It comes from an image file (zelCreateImage of a name) or from a client's memory. Positions are
 * pixels, counted from the picture's top left corner.
 */
class KESTRIN_EXPORT IImage : public IZELObject
{
public:
    /** Width in pixels, as given at creation or read from the file. */
    virtual UInt16 GetWidth() = 0;
    /** Height in pixels. */
    virtual UInt16 GetHeight() = 0;
    /** Frames of the file; 1 of a picture from memory. */
    virtual int GetFrameCount() = 0;
    /** The type given at creation; TypePNG, the first of them, for one from an image file. */
    virtual ImageType GetImageType() = 0;
    /**
     * Fills a rectangle of the first frame; does nothing to a picture that is kept in memory.
     *
     * @param color_mode  how to take the colour, which must suit the frame: Color32Bit, or a
     *                    palette index for all others
     * @param w, h        at least 1: DirectFB ends the process for less
     * @param color       0x00RRGGBB, red high, or a palette index
     * @param blend       opacity; not used with a palette index. Frames of a file are blended
     *                    onto, others are overwritten
     */
    virtual void ImageClear(ColorMode color_mode, MetricValue x, MetricValue y, MetricValue w,
                            MetricValue h, ColorValue color, BlendValue blend) = 0;
    /**
     * Copies pixels into the first frame, or into memory where the picture is kept there (it gets
     * memory if it has none); does nothing to a TypeSurface. Nothing is converted: the pixels are
     * bytes on 8-bit displays and in 8-bit memory, words 0xAARRGGBB on 32-bit displays and in
     * 32-bit memory. What lies outside the picture is left out. Call ISprite::UpdateImage after.
     *
     * @param imagedata  the pixel that goes to (x, y), not held
     * @param row_bytes  bytes from one of its rows to the next; no more of a row is read
     * @param x, y       position, may be negative
     * @param colormode  Color8Bit for bytes, else words
     */
    virtual void SetImageData(UInt32* imagedata, UInt32 row_bytes, MetricValue x, MetricValue y,
                              MetricValue width, MetricValue height, ColorMode colormode) = 0;
    /**
     * The pixels kept in memory, rows without padding, in the picture's own mode, 32-bit ones as
     * words 0xAARRGGBB. Owned by the image, valid as long as it. Null when there are none.
     */
    virtual UInt8* GetImageBuffer() = 0;
    /** Keeps a number for the client: the size of its data. */
    virtual void SetFileSize(int nSize) = 0;
    virtual int GetFileSize() = 0;
    /** Keeps a pair of numbers for the client, an offset for drawing; 0 at first. */
    virtual void SetAttribute(Int32 nLeft, Int32 nTop) = 0;
    virtual void GetAttribute(Int32& nLeft, Int32& nTop) = 0;
};

#ifndef DWORD
/** A count of bytes. A client's own definition, made before, must have 32 bits as well. */
typedef UInt32 DWORD;
#endif

/**
 * A client's routine that makes an image's pixels, called whenever the image is drawn.
 *
 * @param image  the image
 * @param data   its IImage::GetImageBuffer; null for TypeSurface
 * @return pixels of the whole picture in the image's colour mode, rows without padding, 32-bit ones
 *         as words 0xAARRGGBB; not held, to stay until the next call. Null draws nothing
 */
typedef void* (*Convert2DrawableRoutine_t)(IImage* image, void* data);

/**
 * How 1-bit pixels are drawn: from each row `hz` columns a bit and `vz` rows, so that the picture
 * that a painter draws has `hz` x `vz` times as many pixels as IImage::GetWidth and
 * IImage::GetHeight say. Bits that are not there count as clear.
 */
struct MonoGlyphAttr
{
    Int32 rowbyte; /**< bytes from one row to the next; below 1: width / 8 */
    Int32
        bitoffset; /**< bit of a row that is its first pixel; 0 is the highest of the first byte */
    Int32 fgcolor; /**< of set bits: 0xAARRGGBB, or a palette index on an 8-bit display */
    Int32 bgcolor; /**< of clear bits */
    Int32 hz;      /**< horizontal magnification; below 1 counts as 1 */
    Int32 vz;      /**< vertical magnification; below 1 counts as 1 */
};

/** 256 colours of an 8-bit display. Immutable. */
class KESTRIN_EXPORT IPalette : public IZELObject
{
public:
    /** Always 256. */
    virtual int GetColorCount() = 0;
    virtual UInt8 GetColorRed(UInt8 index) = 0;
    virtual UInt8 GetColorGreen(UInt8 index) = 0;
    virtual UInt8 GetColorBlue(UInt8 index) = 0;
    /** Opacity of an entry: 255 opaque. */
    virtual BlendValue GetColorBlending(UInt8 index) = 0;
};

/** A set of fonts: at most two named by an index file, or one in memory. */
class KESTRIN_EXPORT IResource : public IZELObject
{
public:
    /**
     * Opens a font on first use and keeps it; the resource owns it.
     *
     * @param index      1 or 2; anything else gives null. A memory font answers to both
     * @param bDownload  set to whether the font is a memory font, when the index is accepted
     * @return the font; null when the entry is missing, no font or unreadable
     */
    virtual IFont* OpenFont(ResIndex index, bool& bDownload) = 0;
};

// ---- Library entry ----------------------------------------------------------------------------

/**
 * Brings DirectFB and the font engine up, on the first call: takes display layer 1 exclusively at
 * the given size, in 8-bit palette format for mode 8 (Color8Bit) and in ARGB for every other mode,
 * and shows it. Later calls only raise a count. Also starts the tick counter anew.
 *
 * @param OSDWidth, OSDHeight  size of the display layer in pixels
 * @param mode                 a ColorMode
 * @return true
 */
KESTRIN_EXPORT bool zelInitialize(UInt32 OSDWidth, UInt32 OSDHeight, UInt8 mode);
/** zelInitialize without the debug category and the tick counter. */
KESTRIN_EXPORT bool zelInitOSD(UInt32 OSDWidth, UInt32 OSDHeight, UInt8 mode);
/** Releases the display, however often it was initialised. Call after the last drawing. */
KESTRIN_EXPORT void zelUninitialize();
/** The same as zelUninitialize. */
KESTRIN_EXPORT void zelReleaseOSD();
/**
 * Milliseconds since zelInitialize. 0 when the clock cannot be read, and once each time the count
 * would pass 32 bits (49.7 days) or the clock went back by more than a second: it starts anew then.
 */
KESTRIN_EXPORT UInt32 zelGetTickCount();
/** DirectFB's main interface, for drawing beside the engine; not held. Null before the start. */
KESTRIN_EXPORT IDirectFB* zelGetDFBHandle();
/** Physical address of the display's pixels at start-up; 0 before. */
KESTRIN_EXPORT unsigned long zelGetDFBPhyAddr();
/**
 * The 720 x 576 ARGB surface another component draws subtitles into; not held. It is shown beneath
 * the scene whenever a frame of exactly 1280 x 720 is copied to the display.
 */
KESTRIN_EXPORT IDirectFBSurface* zelGetSubtitleSurface();
/** The palette last given to a view; empty if none. */
KESTRIN_EXPORT ZELObjPtr<IPalette> zelGetCurrentPalette();

// ---- Factories: each returns an object with a count of 0 ----------------------------------------

/**
 * A handle on the display.
 *
 * @param plane_index  recorded
 * @param flipping     accepted; flips work either way
 */
KESTRIN_EXPORT IView* zelCreateView(UInt8 plane_index, MetricValue width, MetricValue height,
                                    ColorMode color_mode, bool flipping);
/** An off-screen surface in the display's pixel format; null when it could not be made. */
KESTRIN_EXPORT ICanvas* zelCreateCanvas(MetricValue width, MetricValue height,
                                        ColorMode color_mode);
/** A painter that holds the canvas. Null draws nothing and must only be asked its colour mode. */
KESTRIN_EXPORT IPainter* zelCreatePainter(ICanvas* canvas);
/** A palette of 256 entries, copied. With null the colours are unset. */
KESTRIN_EXPORT IPalette* zelCreatePalette(PaletteEntry* palette_entry);
/** A palette without colours. */
inline IPalette* zelCreatePalette(std::nullptr_t)
{
    return zelCreatePalette(static_cast<PaletteEntry*>(nullptr));
}
/**
 * A palette from a file: 256 records of 4 bytes, opacity (255 opaque), red, green and blue. What
 * the file does not hold, also when it cannot be read, is transparent black. Never null.
 */
KESTRIN_EXPORT IPalette* zelCreatePalette(const char* file);
/**
 * A picture from a client's memory. It is made after the start of the library.
 *
 * With TypeSurface nothing is copied and `pCvt` makes the pixels. Of every other type `data` is
 * copied and need not stay, rows without padding; what a sprite of it looks like:
 *
 *     mode    a pixel in `data`              32-bit display          8-bit display
 *     1       a bit, the highest first,      fgcolor, bgcolor as     the same as indices
 *             width / 8 bytes a row          0xAARRGGBB
 *     4       half a byte, the high one      its palette colour      the index
 *             first, (width + 1) / 2 a row
 *     8       a byte                         its palette colour      the index
 *     16      2 bytes, low one first,        opaque                  nearest of the palette
 *             RGB565
 *     24      bytes R, G, B                  opaque                  nearest of the palette
 *     32      bytes R, G, B, A               with its opacity        nearest of the palette
 *
 * Colours of 4- and 8-bit pixels on a 32-bit display are those of the palette last given to a view,
 * or of the fixed 188-entry palette; a picture in the frame buffer takes them when it is made, one
 * in memory whenever it is drawn. In BlendSrcOver8BIT mode indices in memory blend by table.
 *
 * @param color_mode     bits per pixel
 * @param width, height  pixels; below 0 counts as 0. Of PNG and JPEG files the file's own
 * @param data           the pixels; null leaves them to SetImageData, transparent or index 0
 * @param image_buffer_mode  UseFrameBuffer keeps 4-, 8-, 16- and 24-bit pixels in a surface, which
 *                       draws fastest; everything else is kept in memory, converted when drawn
 * @param image_type     for Color32Bit: TypePNG and TypeJPG say that `data` may be a file of that
 *                       format. It is unpacked if it begins like one, and else taken as pixels; a
 *                       damaged one draws nothing
 * @param datasize       bytes at `data`; read for TypePNG and TypeJPG only
 * @param pCvt           makes the pixels to draw; null draws `data`
 * @param pAttr          how to draw 1-bit pixels, copied; null as if all were 0
 */
KESTRIN_EXPORT IImage* zelCreateImage(ColorMode color_mode, MetricValue width, MetricValue height,
                                      PtrConstAny data, ImageBufferMode image_buffer_mode,
                                      ImageType image_type, DWORD datasize,
                                      Convert2DrawableRoutine_t pCvt, MonoGlyphAttr* pAttr);
/**
 * A picture from an image file, whose integers have 16 bits, low byte first:
 *
 *     offset 0  width in pixels
 *            2  height in pixels
 *            4  bits per pixel: 8
 *            6  number of frames
 *            8  palette indices, a byte each, frame after frame, row after row, all of them
 *               compressed as one NRV2B stream (the byte-wise one of the UCL library)
 *
 * Image files are made for 8-bit displays. There a frame's pixels are indices of the display's
 * palette. On a 32-bit display the bytes of a row are taken for words, four pixels for one, and the
 * rest of the row is transparent: draw into such a picture with ImageClear and SetImageData only.
 *
 * Null when no frame could be read: the file is missing or damaged, holds less than its header
 * says, or unpacks to more than 256 megabytes. It is made after the start of the library.
 */
KESTRIN_EXPORT IImage* zelCreateImage(const char* file_name);
/**
 * Unpacks what follows the 8-byte header of an image file, for programs that want the pixels and
 * not a picture to draw. Needs no start of the library.
 *
 * @param stream, stream_size  the NRV2B stream and how many bytes there are of it
 * @param pixels               receives the bytes; null to count them only, before room is made
 * @param room                 bytes that `pixels` has room for. A stream that holds more is damaged
 * @return bytes unpacked; 0 for a stream that is damaged or cut short, which may have written some
 */
KESTRIN_EXPORT std::size_t zelDecodeImageData(PtrConstAny stream, std::size_t stream_size,
                                              void* pixels, std::size_t room);
/**
 * A scene.
 *
 * @param window_index   number of the plane, recorded by the view
 * @param width, height  pixels
 * @param options        SceneOption bits
 * @param blend_mode     mode of the painter: BlendSrcOver8BIT on the fixed 8-bit palette, else
 *                       BlendSrcOver
 */
KESTRIN_EXPORT IScene* zelCreateScene(UInt8 window_index, MetricValue width, MetricValue height,
                                      ColorMode color_mode, SceneOption options,
                                      BlendMode blend_mode);
/** A layer; the resource is not used and may be null. */
KESTRIN_EXPORT ILayer* zelCreateLayer(IResource* resource);
/** A text that holds the resource, which may be null until SwitchResource. */
KESTRIN_EXPORT IText* zelCreateText(IResource* resource);
/**
 * A sprite that holds the resource, which is not used but may not be null if the sprite is to show
 * a magenta box while it has no image. It shows a frame of its image in its own size times its
 * scale, cut at its span. Beside the widget's attributes it answers AttrImageIndex (a number for
 * the client), AttrImageFrame (counted from 0) and AttrImageFormat (ImageFormat bits: left goes
 * before right, top before bottom, tiling before all). The painter does not scale: of a scaled
 * sprite the place and the part shown follow the scale, the pixels do not.
 */
KESTRIN_EXPORT ISprite* zelCreateSprite(IResource* resource);
/**
 * A filled rectangle with an optional border. Beside the widget's attributes it answers AttrColor,
 * AttrBorderWidth (pixels, inside the span), AttrBorderColor, AttrBorderBlend and
 * AttrBorderBlendMode, and accepts AttrBlittingFlag and AttrDstColorKey. The resource is not used.
 */
KESTRIN_EXPORT IWidget* zelCreateRectangle(IResource* resource);
/**
 * Opens a resource index file: a line with the number of entries, then one line "fnt:FILE" for
 * each, FILE relative to the index file. Null when it cannot be read or has no entries.
 */
KESTRIN_EXPORT IResource* zelOpenResource(const char* file_name);
/**
 * A resource of one font in memory.
 *
 * @param font_name  a name for messages
 * @param con, len   the font file's bytes, not copied: they outlive the resource and its fonts
 */
KESTRIN_EXPORT IResource* zelOpenResource(const char* font_name, const char* con, int len);

// ---- Updating -----------------------------------------------------------------------------------

/** IScene::Update of every scene, the newest first. */
KESTRIN_EXPORT void zelUpdateScreen(bool force, bool wait);
/**
 * Divides the back buffer of scenes made afterwards into tiles to save memory; rows first. A count
 * that is not positive or does not divide the scene's size is replaced by 1 when a scene is made.
 */
KESTRIN_EXPORT void zelSetBackBufferSize(int row_count, int col_count);

// ---- Text encodings
// -------------------------------------------------------------------------------

/**
 * Converts bytes to UTF-16 code units in host order, without a byte-order mark.
 *
 * The character sets are ASCII, Big5, GB2312, EUC-KR, EUC-JP, ISO 8859-1 to -9 and -15, ISO 6937
 * and UTF-8. EncodingUnicode and EncodingJIS take 16-bit units in host order; a byte-order mark
 * before them is taken off and obeyed. ISO 8859-10 to -14 and -16, ARIB and unknown values are read
 * as UTF-8.
 *
 * @param text            `length` bytes
 * @param unicode         receives the units; must hold 2 x `unicode_length` units, all of which are
 *                        zeroed first
 * @param unicode_length  half the room in code units; not positive gives 0
 * @return units written; 0 on invalid or incomplete input or when the room is too small
 */
KESTRIN_EXPORT Int32 zelConvertToUnicode(PtrConstAny text, UInt32 length, TextEncoding encoding,
                                         PtrWChar unicode, Int32 unicode_length);

// ---- Colours of the fixed 188-entry palette
// ---------------------------------------------------------

/** Grey level 0 to 3 nearest below. */
KESTRIN_EXPORT UInt8 GetNearestGrey(UInt8 v);
/** Share of an opaque colour's palette index: 27 x red level. */
KESTRIN_EXPORT UInt8 GetNearestRed(UInt8 v);
/** 3 x green level. */
KESTRIN_EXPORT UInt8 GetNearestGreen(UInt8 v);
/** Blue level. */
KESTRIN_EXPORT UInt8 GetNearestBlue(UInt8 v);
/** Share of a semi-transparent colour's palette index: 2 x red level. */
KESTRIN_EXPORT UInt8 GetNearestSemiRed(UInt8 v);
/** 8 x green level. */
KESTRIN_EXPORT UInt8 GetNearestSemiGreen(UInt8 v);
/** Blue level. */
KESTRIN_EXPORT UInt8 GetNearestSemiBlue(UInt8 v);
/** Palette index nearest to 0xAARRGGBB, alpha 255 opaque. */
KESTRIN_EXPORT UInt8 OSD_FindNearestColourIndex(UInt32 colour);
/** Replaces the palette index at `pixel` by the one that shows `colour` over it. */
KESTRIN_EXPORT void OSD_BlendPixels(UInt8* pixel, UInt8 colour);
/**
 * Blends palette colour `color` over a rectangle of an 8-bit surface. The corners are inclusive and
 * must lie in the surface; a negative x1 or y1, an empty rectangle and colour 0 draw nothing.
 */
KESTRIN_EXPORT void MHEG_displayRectangle(IDirectFBSurface* dest_surf, Int32 x1, Int32 y1, Int32 x2,
                                          Int32 y2, Int32 color);
/**
 * Blends a bitmap of palette indices onto an 8-bit surface at (X, Y), cut at the surface. Index 0
 * leaves the pixel unchanged.
 *
 * @param row_byte    bytes from one source row to the next
 * @param src_img     the bitmap; the part drawn begins at (SrcX, SrcY)
 */
KESTRIN_EXPORT void MHEG_draw_bitmap(IDirectFBSurface* dest_surf, Int32 X, Int32 Y, Int32 row_byte,
                                     Int32 width, Int32 height, UInt8* src_img, Int32 SrcX,
                                     Int32 SrcY);
/** The same from another 8-bit surface, cut at both. */
KESTRIN_EXPORT void MHEG_draw_bitmap(IDirectFBSurface* dest_surf, Int32 X, Int32 Y, Int32 width,
                                     Int32 height, IDirectFBSurface* src_surf, Int32 SrcX,
                                     Int32 SrcY);

// ---- Errors, for clients
// --------------------------------------------------------------------------

/**
 * Text sink of error reports. It discards what it gets: a hook for debugging builds of the library.
 * Numbers are formatted first.
 */
KESTRIN_EXPORT void zelDebugMessage(PtrConstSChar text);
KESTRIN_EXPORT void zelDebugMessage(Int32 number);
KESTRIN_EXPORT void zelDebugMessage(UInt32 number);

/** An error a client may throw and report. The engine itself throws none. */
class KESTRIN_EXPORT Error
{
public:
    virtual ~Error() {}
    /** Hands the message to zelDebugMessage, piece by piece, without a line end. */
    virtual void Output() const = 0;
};

class KESTRIN_EXPORT EOutOfMemory : public Error
{
public:
    void Output() const override;
};

class KESTRIN_EXPORT EFileFailure : public Error
{
public:
    /** The name is not copied. */
    explicit EFileFailure(const char* file_name) : _file_name(file_name) {}
    void Output() const override;

private:
    const char* _file_name;
};

class KESTRIN_EXPORT EResourceFailure : public Error
{
public:
    explicit EResourceFailure(unsigned short res_index) : _res_index(res_index) {}
    void Output() const override;

private:
    Int32 _res_index;
};

class KESTRIN_EXPORT EGraphicFailure : public Error
{
public:
    enum ErrorType
    {
        General = 0,
        Allocation = 1,
        CreateFont = 2
    };

    EGraphicFailure(int error_code, ErrorType error_type)
        : _error_code(error_code), _error_type(error_type)
    {
    }
    void Output() const override;

private:
    Int32 _error_code;
    ErrorType _error_type;
};

/** Reports an error: calls its Output. Neither throws nor ends the process. */
KESTRIN_EXPORT void zelError(const Error& error);

/** The engine's category in the platform's debug log; null until the first zelInitialize. */
extern KESTRIN_EXPORT ::vrel_debug_category* kestrin_debug;

} // namespace zelxxx
