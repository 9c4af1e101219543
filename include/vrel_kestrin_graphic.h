/**
 * @file
 * Kestrin's interfaces and factories: what a client of the on-screen-display engine calls.
 *
 * A program calls zelInitialize once, makes a Scene, fills it with layers and widgets, and calls
 * zelUpdateScreen whenever it has changed something; the engine repaints what changed and shows it.
 *
 *     zelInitialize(1280, 720, Color32Bit);
 *     ZELObjPtr<IScene> scene(
 *         zelCreateScene(0, 1280, 720, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
 *     PLayer layer(zelCreateLayer(nullptr));
 *     scene->AddLayer(layer);
 *     ZELObjPtr<IWidget> box(zelCreateRectangle(nullptr));
 *     box->SetAttribute(AttrSpanX, 640);
 *     box->SetAttribute(AttrSpanY, 90);
 *     layer->AddWidget(box);
 *     zelUpdateScreen(true, false); // everything once, then zelUpdateScreen(false, false)
 *
 * The sections: start and update, surfaces and scenes, widgets, painting, text, images, colours,
 * errors. Each interface is followed by the factory of its objects.
 *
 * Ownership: every factory returns an object with a reference count of 0, to be held by a ZELObjPtr
 * or given to a holder (a layer holds its widgets, a widget its modifiers and its resource). What
 * is passed as a plain pointer without a remark is not held and must outlive its user. Interfaces
 * that the engine takes are objects of its own, except where a client's class is asked for.
 *
 * Threads: the engine has one. All calls come from the thread that calls zelUpdateScreen.
 *
 * Failures: no drawing operation returns an error. A failed DirectFB call is reported on standard
 * error, as source file, line and the call's text, and ends the process through DirectFBErrorFatal.
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

/**
 * @addtogroup objects
 * @{
 */
typedef ZELObjPtr<IView> PView;         /**< holds a view */
typedef ZELObjPtr<ICanvas> PCanvas;     /**< holds a canvas */
typedef ZELObjPtr<ILayer> PLayer;       /**< holds a layer */
typedef ZELObjPtr<IImage> PImage;       /**< holds an image */
typedef ZELObjPtr<IResource> PResource; /**< holds a resource */
typedef ZELObjPtr<IPalette> PPalette;   /**< holds a palette */
/** @} */

/**
 * @defgroup start Start, end and update
 * The display is taken once, updated as often as something changed, and given back.
 * @{
 */

/**
 * Brings DirectFB and the font engine up, on the first call: takes display layer 1 exclusively,
 * waiting for it without limit, sets its size, in 8-bit palette format (LUT8) for mode 8 and in
 * ARGB for every other mode, and shows it. Later calls only raise a count, whatever they ask for.
 * Every call starts the tick counter anew.
 *
 * @param OSDWidth, OSDHeight  size of the display layer in pixels. One that the layer does not
 *                             offer ends the process
 * @param mode                 a ColorMode: Color8Bit, or any other
 * @return true
 */
KESTRIN_EXPORT bool zelInitialize(UInt32 OSDWidth, UInt32 OSDHeight, UInt8 mode);
/**
 * zelInitialize without the debug category and the tick counter, which then starts when it is first
 * read.
 *
 * @param OSDWidth, OSDHeight  size of the display layer in pixels
 * @param mode                 a ColorMode: Color8Bit, or any other
 * @return true
 */
KESTRIN_EXPORT bool zelInitOSD(UInt32 OSDWidth, UInt32 OSDHeight, UInt8 mode);
/**
 * Releases the display, however often it was initialised, and says so in a line on standard output.
 * Call it after the last drawing: nothing may be drawn afterwards, but objects may still be
 * released. DirectFB itself stays up, and zelInitialize takes the layer again.
 */
KESTRIN_EXPORT void zelUninitialize();
/** The same as zelUninitialize. */
KESTRIN_EXPORT void zelReleaseOSD();

/**
 * Brings the screen up to date: IScene::Update of every scene, the newest first.
 *
 * @param force  repaint everything, not only what changed
 * @param wait   whether flipping scenes wait for their 20 ms, or are left out: see IScene::Update
 */
KESTRIN_EXPORT void zelUpdateScreen(bool force, bool wait);
/**
 * Divides the back buffer of scenes made afterwards into tiles, to save memory: the buffer is as
 * large as one of them. A count that is not positive or does not divide the scene's size is
 * replaced by 1 when a scene is made, and a single-buffer scene replaces both, for later ones, too.
 *
 * @param row_count  tiles from top to bottom; 1 at first
 * @param col_count  tiles from left to right; 1 at first
 */
KESTRIN_EXPORT void zelSetBackBufferSize(int row_count, int col_count);

/**
 * Milliseconds since zelInitialize.
 *
 * @return the count; 0 when the clock cannot be read, and once each time it would pass 32 bits
 *         (49.7 days) or the clock went back by more than a second: it starts anew then
 */
KESTRIN_EXPORT UInt32 zelGetTickCount();
/** For drawing beside the engine. @return DirectFB's main interface, not held; null before start */
KESTRIN_EXPORT IDirectFB* zelGetDFBHandle();
/** Where the display's pixels were at start-up. @return a physical address; 0 before the start */
KESTRIN_EXPORT unsigned long zelGetDFBPhyAddr();
/**
 * The surface another component draws subtitles into: 720 x 576 pixels, ARGB, transparent at first.
 * It is shown beneath the scene, stretched, whenever a frame of exactly 1280 x 720 is copied to the
 * display, and with no other.
 *
 * @return not held; null before the start and after the end
 */
KESTRIN_EXPORT IDirectFBSurface* zelGetSubtitleSurface();

/** @} */

/**
 * @defgroup surfaces Surfaces and scenes
 * Canvases off the screen, views on it, and scenes, which draw widgets through both.
 * @{
 */

/** A surface that can be drawn on. Rectangles are left, top, width and height in pixels. */
class KESTRIN_EXPORT ICanvas : public IZELObject
{
public:
    /** The colour mode. @return as given at creation */
    virtual ColorMode GetColorMode() = 0;
    /** Width in pixels. @return as given at creation */
    virtual MetricValue GetWidth() = 0;
    /** Height in pixels. @return as given at creation */
    virtual MetricValue GetHeight() = 0;
    /**
     * Fills a rectangle with one colour, replacing what is there unless a painter left other
     * drawing flags. It is cut at the clip rectangle that a painter left, too.
     *
     * @param x, y   left and top
     * @param w, h   size, at least 1: DirectFB ends the process for less
     * @param color  0x00RRGGBB of a 32-bit canvas, else a palette index
     * @param blend  opacity written; not used with a palette index
     */
    virtual void Clear(MetricValue x, MetricValue y, MetricValue w, MetricValue h, ColorValue color,
                       BlendValue blend) = 0;
    /**
     * Copies a rectangle of another canvas, or of the display.
     *
     * @param x, y          where its left top corner goes; what does not fit is left out
     * @param canvas        the source, not null
     * @param src_x, src_y  left top corner in the source. A rectangle wholly outside it ends the
     *                      process
     * @param src_w, src_h  size; below 1 copies nothing
     */
    virtual void Copy(MetricValue x, MetricValue y, ICanvas* canvas, MetricValue src_x,
                      MetricValue src_y, MetricValue src_w, MetricValue src_h) = 0;
    /**
     * Records a blend mode. A scene gives its own to the painter of the next update; of other
     * canvases it has no effect.
     *
     * @param blend_mode  BlendSrcOver, or BlendSrcOver8BIT on the fixed 8-bit palette
     */
    virtual void SetBlendMode(BlendMode blend_mode) = 0;
};

/**
 * An off-screen surface in the display's pixel format. It is made after the start of the library.
 *
 * @param width, height  pixels, at least 1: DirectFB ends the process for less
 * @param color_mode     how colours are given. On an ARGB display it has to be Color32Bit: a
 *                       palette index ends the process there
 * @return null when it could not be made
 */
KESTRIN_EXPORT ICanvas* zelCreateCanvas(MetricValue width, MetricValue height,
                                        ColorMode color_mode);

/**
 * The visible surface of the display layer; all views of a process share it. A view may be made
 * before the start of the library, but is drawn on after it only.
 *
 * Clear ignores the rectangle and clears the whole surface, as far as the clip rectangle reaches
 * that a painter left, to a colour 0x00BBGGRR; an 8-bit display shows the nearest of its palette.
 * Copy presents what it copied, and composites the subtitle surface beneath a frame of exactly
 * 1280 x 720 pixels.
 */
class KESTRIN_EXPORT IView : public ICanvas
{
public:
    /**
     * Makes the layer opaque; nothing before the start.
     *
     * @param left, top, width, height  not used: the whole layer is shown
     */
    virtual void Show(MetricValue left, MetricValue top, MetricValue width, MetricValue height) = 0;
    /** Makes the layer transparent; nothing before the start. */
    virtual void Hide() = 0;
    /** Presents what was drawn. */
    virtual void Flip() = 0;
    /**
     * Records the current palette, holding it. The display is not changed.
     *
     * @param palette  null for none
     */
    virtual void SetPalette(IPalette* palette) = 0;
    /**
     * Loads a palette into an 8-bit display and records it. Factors are RatioValues: 256 keeps the
     * value; what passes 255 is 255.
     *
     * @param palette            held; null, recorded only, for none
     * @param brightness         factor of red, green and blue
     * @param blend_opaque       factor of the opacity of opaque entries
     * @param blend_transparent  factor of the opacity of all other entries
     */
    virtual void SetPalette(IPalette* palette, UInt16 brightness, UInt16 blend_opaque,
                            UInt16 blend_transparent) = 0;
    /**
     * Changes one entry of the display's palette; nothing until a palette has been loaded.
     *
     * @param color_index       the entry
     * @param red, green, blue  its colour
     * @param blending          its opacity
     */
    virtual void SetPaletteEntry(UInt8 color_index, UInt8 red, UInt8 green, UInt8 blue,
                                 BlendValue blending) = 0;
};

/**
 * A handle on the display.
 *
 * @param plane_index    recorded
 * @param width, height  pixels, recorded: drawing reaches the whole display
 * @param color_mode     recorded; give it the display's mode
 * @param flipping       accepted; flips work either way
 * @return never null
 */
KESTRIN_EXPORT IView* zelCreateView(UInt8 plane_index, MetricValue width, MetricValue height,
                                    ColorMode color_mode, bool flipping);

/**
 * A drawing area with a tree of widgets: the client's handle on the screen.
 *
 * Its size is as given at creation. Clear, Copy, Show, Hide, Flip and the palettes are those of the
 * view, which is the whole display.
 */
class KESTRIN_EXPORT IScene : public IView
{
public:
    /**
     * Colour and opacity behind all widgets, from the next repaint of each area on; transparent at
     * first. Force the first update: it paints no background outside the widgets otherwise.
     *
     * @param color     as Clear of the surface takes it that the scene paints into: through a back
     *                  buffer 0x00RRGGBB or a palette index, else 0x00BBGGRR
     * @param blending  opacity; not used with a palette index
     */
    virtual void SetBackgroundColor(ColorValue color, BlendValue blending) = 0;
    /** Adds and holds a layer, on top of those of its depth. @param layer  not null */
    virtual void AddLayer(ILayer* layer) = 0;
    /** Removes a layer at the next update. @param layer  as for ILayer::RemoveWidget */
    virtual void RemoveLayer(ILayer* layer) = 0;
    /**
     * Brings the screen up to date: removes widgets that are dying, applies modifiers, lays layers
     * out, and clears, paints and shows what changed. Returns at once when nothing did.
     *
     * @param force  repaint everything, not only what is marked changed
     * @param wait   less than 20 ms after a flipping scene was shown, this one or another, a
     *               flipping scene waits, busily, instead of skipping this update. Those of
     *               single-buffer scenes do not count
     */
    virtual void Update(bool force, bool wait) = 0;
    /** A disabled scene ignores Update, also when forced. @param enabled  true at first */
    virtual void Enable(bool enabled) = 0;
};

/**
 * A scene. It is made after the start of the library, and updated by zelUpdateScreen as long as it
 * lives; nobody but the client holds it.
 *
 * @param window_index   number of the plane, recorded by the view
 * @param width, height  pixels, at least 1
 * @param color_mode     the display's: Color8Bit or Color32Bit
 * @param options        SceneOption bits. Single-buffer scenes clear the whole view whatever is
 *                       dirty: force their updates
 * @param blend_mode     mode of the painter: BlendSrcOver8BIT on the fixed 8-bit palette, else
 *                       BlendSrcOver
 * @return never null
 */
KESTRIN_EXPORT IScene* zelCreateScene(UInt8 window_index, MetricValue width, MetricValue height,
                                      ColorMode color_mode, SceneOption options,
                                      BlendMode blend_mode);

/** @} */

/**
 * @defgroup widgets Widgets
 * What a scene shows: layers, texts, sprites and rectangles, and what formats and modifies them.
 * @{
 */

/**
 * A widget: something with a position, a span and an opacity in a layer.
 *
 * Every widget answers these attributes, and its kind adds others.
 *
 *     AttrPosX, AttrPosY        position in the parent layer
 *     AttrOriginX, AttrOriginY  the point of the widget that stands there, 0 for its left top
 *                               corner
 *     AttrSpanX, AttrSpanY      size. The rectangle is half open: from the position less the
 *                               origin up to but not including that plus the span
 *     AttrPosZ                  depth, added to the layer's. The greater is painted later, and
 *                               equal ones in the order of the tree
 *     AttrScaleX, AttrScaleY    a layer's content and a sprite's image follow them; texts and
 *                               rectangles only keep them
 *     AttrBlend                 opacity, times that of all layers above
 *     AttrBlendMode             BlendSrcOver or BlendSrcCopy; repainted with the next other
 *                               change
 *
 * A layer's scale stretches the position, origin and span of the widgets in it, and its clip
 * rectangle cuts what is shown. Attributes may be set at any time; the screen follows at the next
 * update.
 */
class KESTRIN_EXPORT IWidget : public IDynamic
{
public:
    /** The layer the widget is in. @return not held; null if none */
    virtual ILayer* GetLayer() = 0;
    /**
     * Shows or hides the widget at the next update.
     *
     * @param visible  true at first. Layers pass it on to the layers in them
     */
    virtual void SetVisibility(bool visible) = 0;
    /**
     * Takes the widget out in two steps, so that a leaving animation can run in between.
     *
     * @param removing  true parks the widget: its layer keeps it even if asked to remove it. False
     *                  then releases it at the next update that looks for dying widgets, which
     *                  ILayer::RemoveWidget(null) asks for; without true before, nothing happens
     */
    virtual void SetRemoving(bool removing) = 0;
    /**
     * Chooses the edges of its layer that the widget follows.
     *
     * @param anchors  WidgetAnchor bits, left and top at first. Layers with anchors enabled apply
     *                 them
     */
    virtual void SetAnchors(UInt8 anchors) = 0;
    /**
     * Attaches and holds a modifier, last in order; it leaves the widget it was attached to. A
     * layer marks its children changed; other widgets nothing, so set an attribute of the modifier.
     *
     * @param modifier  not null; a Modifier
     */
    virtual void AddModifier(IModifier* modifier) = 0;
    /**
     * Detaches and releases a modifier. What it did stays on the screen until the widget is marked
     * changed, except in layers.
     *
     * @param modifier  null or a foreign one is ignored
     */
    virtual void RemoveModifier(IModifier* modifier) = 0;
};

/**
 * A container of widgets with a coordinate system, clip rectangle, opacity and background of its
 * own. Beside the widget's attributes it answers
 *
 *     AttrScrollX, AttrScrollY        how far the content is moved left and up; the clip rectangle
 *                                     stays
 *     AttrClipLeft, AttrClipTop       clip edges from the layer's left and top edge, write-only
 *     AttrClipRight, AttrClipBottom   clip edges from its scaled right and bottom edge, write-only:
 *                                     0 clips there, less within
 *     AttrBkgndColor, AttrBkgndBlend  colour, 0x00BBGGRR or a palette index, and opacity, times the
 *                                     layer's, of a fill of its span
 *
 * A new layer spans 10000 x 10000 pixels, so it clips nothing, and has a background opacity of 0.
 * Clip rectangles are cut by those of the layers above. Scales of nested layers combine, but their
 * content begins where it would unscaled.
 */
class KESTRIN_EXPORT ILayer : public IWidget
{
public:
    /**
     * Adds and holds a widget at the end, out of any other layer.
     *
     * @param widget  not null; one that is removed or about to be is normal again
     */
    virtual void AddWidget(IWidget* widget) = 0;
    /**
     * Adds or moves a widget relative to another one. Both are marked changed.
     *
     * @param widget            held; null only marks `widget_dest`, and nothing happens when both
     *                          are the same
     * @param widget_dest       a child of this layer, for InsertBefore and InsertBehind: null does
     *                          nothing then, and one that is not a child appends
     * @param instert_position  one of the four
     */
    virtual void InsertWidget(IWidget* widget, IWidget* widget_dest,
                              WidgetInstertPosition instert_position) = 0;
    /**
     * Removes and releases a widget: at the next update when the layer is in a scene, else at once.
     *
     * @param widget  null asks the scene to look for dying widgets at its next update
     */
    virtual void RemoveWidget(IWidget* widget) = 0;
    /**
     * Whether changes of AttrSpanX and AttrSpanY move anchored children. A child layer anchored top
     * and bottom passes vertical growth on to the horizontal anchors of its own children.
     *
     * @param enabled  false at first; applies to the layers in it, too
     */
    virtual void EnableAnchors(bool enabled) = 0;
    /**
     * Turns a point of this layer into scene coordinates. Scales are not applied.
     *
     * @param x, y  the point, changed in place; not null
     */
    virtual void LayerToScene(MetricValue* x, MetricValue* y) = 0;
    /**
     * Turns a scene point into layer coordinates: positions are subtracted and scrolls added, this
     * layer's and every ancestor's, and origins and scales are left out. For a layer with an origin
     * this is not the inverse of LayerToScene.
     *
     * @param x, y  the point, changed in place; not null
     */
    virtual void SceneToLayer(MetricValue* x, MetricValue* y) = 0;
};

/** A layer. @param resource  not used, may be null @return never null */
KESTRIN_EXPORT ILayer* zelCreateLayer(IResource* resource);

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
     * @param units   the text, UTF-16 code units in host order, valid during the call; null when
     *                there never was one
     * @param length  number of code units
     */
    virtual void Format(IText* text, PtrWChar units, UInt32 length) = 0;
    /**
     * In scenes of 8 bits only: turns a glyph's coverage into palette indices.
     *
     * @param char_metrics  the glyph; at most 255 x 255 pixels. Its buffer is null for a glyph the
     *                      font cache has no bitmap for
     * @param color         0x00BBGGRR of the last colour record, by the palette last given to a
     *                      view; white before one and without a palette
     * @param blend         opacity the glyph is to be drawn with
     * @param buffer        receives `height` rows of `width` palette indices; zero on entry, and a
     *                      zero leaves the pixel beneath unchanged
     */
    virtual void GetCharBuffer(const CharMetrics* char_metrics, ColorValue color, BlendValue blend,
                               PtrSChar buffer) = 0;
};

/**
 * A run of text in one font of a resource. The client's ITextFormater places each character, and
 * without one nothing is drawn. Beside the widget's attributes it answers
 *
 *     AttrFontIndex                   font of the resource; while it names none, as at first, a box
 *                                     of 0xFF00FF is shown
 *     AttrFontSize                    pixels; 16 at first
 *     AttrFontScalerMolecule,         horizontal stretch of the glyphs, 100 / 100 at first. Set
 *     AttrFontScalerDenominator       AttrFontSize as well: these alone repaint nothing
 *
 * and keeps these for the formatter: AttrColor, AttrTextFormat, AttrLineHeight, AttrLetterSpace,
 * AttrCursorIndex, and the reference sizes AttrOrgFontSize and AttrOrgLineHeight, which are meant
 * for a box of AttrOrgSpanX x AttrOrgSpanY.
 *
 * Characters are drawn at the widget's left top corner plus the offsets given. Their opacity is the
 * colour's times the widget's own AttrBlend: what a layer or a modifier fades does not reach them,
 * until the widget as a whole has an opacity of 0. Setting any attribute has the text laid out
 * anew.
 */
class KESTRIN_EXPORT IText : public IWidget
{
public:
    /**
     * Sets the text. One that cannot be decoded is empty.
     *
     * @param text      bytes in `encoding`, copied; null empties the text
     * @param length    number of bytes; an odd last byte of EncodingUnicode is dropped
     * @param encoding  EncodingUnicode takes UTF-16 code units in host order as they are
     * @param text_formater  the formatter from now on; null keeps the one before
     */
    virtual void SetText(PtrConstAny text, UInt32 length, TextEncoding encoding,
                         ITextFormater* text_formater) = 0;
    /**
     * From a formatter: draws the cursor line under a character, as wide as it and one pixel high,
     * at nine tenths of the line height of the font's metrics.
     *
     * @param x, y   offset of the line from the widget's top left corner, in pixels
     * @param ch     the character, for its width
     * @param color  0xAABBGGRR, or a palette index in a scene of 8 bits
     */
    virtual void AddCursorInfo(Int16 x, Int16 y, UInt16 ch, UInt32 color) = 0;
    /**
     * From a formatter in a scene of 32 bits: colour of the characters that follow, white before.
     *
     * @param r, g, b  the colour
     * @param a        its opacity
     */
    virtual void AddColorInfo(UInt8 r, UInt8 g, UInt8 b, UInt8 a) = 0;
    /**
     * From a formatter: draws a character. One without a glyph is drawn as a space, and one that
     * crosses the right edge of what is shown of the widget is left out whole.
     *
     * @param x, y  offset of the pen and of the line's top from the widget's top left corner
     * @param size  accepted and not used; the widget's font size applies
     * @param ch    UTF-16 code unit
     */
    virtual void AddCharInfo(Int16 x, Int16 y, UInt8 size, UInt16 ch) = 0;
    /**
     * From a formatter in a scene of 8 bits: colour of the characters that follow. They are drawn
     * in scenes of BlendSrcOver8BIT only.
     *
     * @param index  of the palette
     */
    virtual void AddColorIndex(UInt8 index) = 0;
    /** The font that AttrFontIndex names. @return owned by the resource; null if there is none */
    virtual IFont* GetFont() = 0;
    /**
     * Takes and holds another resource. The widget is not marked: set an attribute to repaint.
     *
     * @param os  null for none, which draws nothing
     */
    virtual void SwitchResource(IResource* os) = 0;
};

/** A text. @param resource  held; may be null until SwitchResource @return never null */
KESTRIN_EXPORT IText* zelCreateText(IResource* resource);

/**
 * A widget that shows one frame of an image, in its own size times its scale, cut at the widget's
 * span. Beside the widget's attributes it answers
 *
 *     AttrImageFrame   the frame, counted from 0; one that is not there shows nothing
 *     AttrImageFormat  ImageFormat bits: left goes before right, top before bottom, tiling before
 *                      all
 *     AttrImageIndex   a number for the client
 *
 * The painter does not scale: of a scaled sprite the place and the part shown follow the scale, the
 * pixels do not.
 */
class KESTRIN_EXPORT ISprite : public IWidget
{
public:
    /** Shows and holds an image. @param image  null for none */
    virtual void SetImage(IImage* image) = 0;
    /** Says that the image's pixels have changed. */
    virtual void UpdateImage() = 0;
};

/**
 * A sprite without an image.
 *
 * @param resource  held and not used. With one, the sprite shows a box of 0xFF00FF while it has no
 *                  image, with null nothing
 * @return never null
 */
KESTRIN_EXPORT ISprite* zelCreateSprite(IResource* resource);

/**
 * A filled rectangle with an optional border. Beside the widget's attributes it answers
 *
 *     AttrColor               of the fill, 0x00BBGGRR or a palette index
 *     AttrBorderWidth         pixels, inside the span; a border wider than the rectangle, and one
 *                             of 0 or less, is not drawn
 *     AttrBorderColor, AttrBorderBlend, AttrBorderBlendMode
 *                             of the border, which modifiers neither move nor fade. The last two
 *                             are repainted with the next other change
 *     AttrBlittingFlag, AttrDstColorKey
 *                             write-only: see IPainter::DrawRectangle. While the flag is set, the
 *                             part to be painted must not be empty
 *
 * @param resource  not used, may be null
 * @return never null
 */
KESTRIN_EXPORT IWidget* zelCreateRectangle(IResource* resource);

/**
 * Something attached to a widget or layer that rewrites attributes at each update. The kinds, and
 * the base of a client's own, are in vrel_kestrin_anim.h.
 */
class KESTRIN_EXPORT IModifier : public IDynamic
{
public:
    /** Switches the effect on or off. @param enabled  true at first */
    virtual void Enable(bool enabled) = 0;
};

/** @} */

/**
 * @defgroup painting Painting
 * How widgets draw on a canvas; clients may, too.
 * @{
 */

/**
 * Draws on a canvas. Colours have red in the lowest byte (0x00BBGGRR); where noted an 8-bit canvas
 * takes a palette index. All positions are in pixels, less the origin, cut at the clip rectangle.
 *
 * Drawing flags, rules and colours that an operation sets stay on the surface as they are noted
 * here; operations set what they need.
 */
class KESTRIN_EXPORT IPainter : public IZELObject
{
public:
    /**
     * Sets the clip rectangle, in canvas pixels, cut at the canvas; the whole canvas at first. The
     * origin does not apply. Glyphs may also show in the row and column just beyond.
     *
     * @param left, top      first column and row that are drawn
     * @param right, bottom  first column and row that are not
     */
    virtual void SetClipping(MetricValue left, MetricValue top, MetricValue right,
                             MetricValue bottom) = 0;
    /**
     * Moves the drawing space.
     *
     * @param x, y  its point that falls on the canvas's top left pixel; 0 at first
     */
    virtual void SetOrigin(MetricValue x, MetricValue y) = 0;
    /**
     * Reserved; draws nothing.
     *
     * @param left, top, width, height, thickness, color, blend, blend_mode  not used
     */
    virtual void DrawFrame(MetricValue left, MetricValue top, MetricValue width, MetricValue height,
                           MetricValue thickness, ColorValue color, BlendValue blend,
                           BlendMode blend_mode) = 0;
    /**
     * Fills a rectangle.
     *
     * In BlendSrcOver mode the colour is added whole to what its opacity leaves of the pixels
     * beneath: over nothing it is seen as it is, over a picture brighter than a mixture.
     *
     * @param left, top      its corner
     * @param width, height  its size; an empty rectangle draws nothing
     * @param color       a colour; in BlendSrcOver8BIT mode and when copied to an 8-bit canvas an
     *                    index
     * @param blend       its opacity; 0 draws nothing, except when copied. Not used with an index
     * @param blend_mode  BlendSrcCopy replaces the pixels, and leaves the surface blending by the
     *                    source rule. Anything else follows the painter's mode, where BlendSrcCopy
     *                    draws nothing
     * @param blit_flag   other than NoBlit: sets the destination colour key and fills, in the
     *                    colour and under the flags that were set last by whatever was drawn
     *                    before. What the clip rectangle leaves must not be empty then: DirectFB
     *                    ends the process
     * @param dst_color   the key's palette index on an 8-bit canvas; a 32-bit canvas takes `color`
     */
    virtual void DrawRectangle(MetricValue left, MetricValue top, MetricValue width,
                               MetricValue height, ColorValue color, BlendValue blend,
                               BlendMode blend_mode, BlitFlag blit_flag, ColorValue dst_color) = 0;
    /**
     * Draws a part of an image's frame, unscaled.
     *
     * @param image         one of the engine's; null draws nothing
     * @param frame         counted from 0; nothing is drawn for one that is not there
     * @param x, y          where the part goes
     * @param width, height  size of the part in pixels; below 1 draws nothing
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
     * @param image, frame        as for DrawImage
     * @param left, top           the rectangle's corner
     * @param width, height       its size
     * @param origin_x, origin_y  a corner of a tile, from the rectangle's top left corner
     * @param blend, blend_mode   as for DrawImage
     */
    virtual void DrawTexture(IImage* image, UInt16 frame, MetricValue left, MetricValue top,
                             MetricValue width, MetricValue height, MetricValue origin_x,
                             MetricValue origin_y, BlendValue blend, BlendMode blend_mode) = 0;
    /**
     * Draws one character with a DirectFB font. A font has room for 20 pairs of size and style;
     * further ones draw nothing.
     *
     * @param ch          the character; only its low byte counts
     * @param left, top   the corner of its box
     * @param font        of a font file: one in memory ends the process
     * @param font_size   height in pixels, at least 1: DirectFB ends the process for 0
     * @param font_style  not drawn
     * @param color       0x00BBGGRR, or a palette index in other modes than BlendSrcOver
     * @param blend       opacity; 0 draws nothing
     * @param blend_mode  BlendSrcOver; anything else needs an 8-bit canvas, or the process ends
     * @param font_scaler_molecule, font_scaler_denominator  not used
     */
    virtual void DrawChar(WChar ch, MetricValue left, MetricValue top, IFont* font,
                          UInt16 font_size, FontStyle font_style, ColorValue color,
                          BlendValue blend, BlendMode blend_mode, UInt32 font_scaler_molecule,
                          UInt32 font_scaler_denominator) = 0;
    /**
     * On an 8-bit canvas in BlendSrcOver8BIT mode: blends palette indices onto the pixels. A glyph
     * is dropped whole where `left` plus its width, less its bearing, passes the clip rectangle's
     * right edge; the origin is left out of that test, but for widgets of a scene.
     *
     * @param buffer        `height` rows of `width` palette indices of the glyph, without padding
     * @param char_metrics  size and bearings of the glyph
     * @param font, font_size  tell the baseline
     * @param left, top     pen and top of the text line
     * @param blend         0 draws nothing; not used otherwise
     */
    virtual void DrawCharBitmap(PtrSChar buffer, const CharMetrics* char_metrics, IFont* font,
                                UInt16 font_size, MetricValue left, MetricValue top,
                                BlendValue blend) = 0;
    /**
     * On a 32-bit canvas: draws a glyph's coverage in a colour. One that crosses the clip
     * rectangle's right edge is dropped whole, and so is one of more than 10000 pixels.
     *
     * @param char_metrics     the glyph; without a buffer nothing is drawn
     * @param font, font_size  tell the baseline
     * @param left, top        pen and top of the text line
     * @param color            0x00BBGGRR
     * @param blend            opacity of full coverage; 0 draws nothing
     */
    virtual void Draw32BitCharBitmap(const CharMetrics* char_metrics, IFont* font, UInt16 font_size,
                                     MetricValue left, MetricValue top, ColorValue color,
                                     BlendValue blend) = 0;
    /** The canvas's colour mode. @return Color32Bit without a canvas */
    virtual ColorMode GetColorMode() = 0;
    /** Sets the mode that operations follow. @param blend_mode  BlendSrcOver at first */
    virtual void SetBlendMode(BlendMode blend_mode) = 0;
    /**
     * Draws text with a DirectFB font, without kerning. Each value is handed to DirectFB as a glyph
     * index; the FreeType provider of DirectFB 1.7 takes it for a character code.
     *
     * @param str         `length` values
     * @param length      how many
     * @param left, top   the corner of the text
     * @param font, font_size, font_style  as for DrawChar
     * @param color       0x00BBGGRR, also on an 8-bit canvas
     * @param blend       opacity; 0 draws nothing
     * @param blend_mode  BlendSrcOver blends; anything else leaves the flags as they are
     * @param font_scaler  not used
     */
    virtual void DrawString(PtrConstWChar str, UInt32 length, MetricValue left, MetricValue top,
                            IFont* font, UInt16 font_size, FontStyle font_style, ColorValue color,
                            BlendValue blend, BlendMode blend_mode, UInt32 font_scaler) = 0;
};

/**
 * A painter.
 *
 * @param canvas  held. With null DrawImage and DrawTexture draw nothing, and no other drawing may
 *                be asked for
 * @return never null
 */
KESTRIN_EXPORT IPainter* zelCreatePainter(ICanvas* canvas);

/** @} */

/**
 * @defgroup text Fonts and encodings
 * Where fonts come from, what they measure, and how text becomes code units.
 * @{
 */

/**
 * Metrics and glyphs of a scalable font, by FreeType, for sizes in pixels. A character without a
 * glyph counts as a space; a file that is no font has glyphs without size and metrics of 0.
 *
 * Horizontal stretch is the ratio molecule / denominator; a denominator of 0 gives 0, and glyphs as
 * they are.
 */
class KESTRIN_EXPORT IFont : public IZELObject
{
public:
    /**
     * Line metrics: the same for every font at a size.
     *
     * @param font_size     pixels
     * @param font_style    not used
     * @param font_metrics  filled; not null
     */
    virtual void GetFTFontMetrics(UInt16 font_size, FontStyle font_style,
                                  FontMetrics* font_metrics) = 0;
    /**
     * Advance of a character, for the NoScale conversions.
     *
     * @param ch          UTF-16 code unit
     * @param font_size   pixels
     * @param font_style  not used
     * @return font units times the size; 0 when there is no glyph
     */
    virtual Int32 GetFTNoScaleCharMetricsX(WChar ch, UInt16 font_size, FontStyle font_style) = 0;
    /**
     * Kerning of a pair, for the NoScale conversions; text widgets apply none.
     *
     * @param left_character, right_character  UTF-16 code units
     * @param font_size                        pixels
     * @param font_style                       not used
     * @return font units times the size, negative where the pair moves together
     */
    virtual Int32 GetFTKerning(WChar left_character, WChar right_character, UInt16 font_size,
                               FontStyle font_style) = 0;
    /** From a line's top to its baseline. @param font_size  pixels @return pixels, rounded up */
    virtual Int32 GetFTYOffsetTop(UInt16 font_size) = 0;
    /** From the baseline to its bottom. @param font_size  pixels @return pixels, rounded up */
    virtual Int32 GetFTYOffsetBottom(UInt16 font_size) = 0;
    /**
     * How far glyphs reach left of the pen.
     *
     * @param font_size                                      pixels
     * @param font_scaler_molecule, font_scaler_denominator  stretch
     * @return pixels, rounded up. The division is unsigned: a huge number for a font whose glyphs
     *         all begin right of the pen
     */
    virtual Int32 GetFTXOffsetLeft(UInt16 font_size, UInt32 font_scaler_molecule,
                                   UInt32 font_scaler_denominator) = 0;
    /**
     * Renders a glyph. None is there of more than 255 pixels a side, or with a bearing or advance
     * that passes a signed byte.
     *
     * @param ch            UTF-16 code unit
     * @param font_size     pixels
     * @param font_style    not used
     * @param char_metrics  filled; not null. Its buffer stays valid until the next request to any
     *                      font
     * @param font_scaler_molecule, font_scaler_denominator  stretch
     */
    virtual void GetFTCharMetrics(WChar ch, UInt16 font_size, FontStyle font_style,
                                  CharMetrics* char_metrics, UInt32 font_scaler_molecule,
                                  UInt32 font_scaler_denominator) = 0;
    /**
     * Font units times size to pixels, for layout.
     *
     * @param val                                            font units times the size
     * @param font_scaler_molecule, font_scaler_denominator  stretch
     * @return pixels, rounded up. The last division is unsigned: values that are negative come out
     *         huge
     */
    virtual Int32 NoScaleFontUnitsToPixelsInCalculate(Int32 val, UInt32 font_scaler_molecule,
                                                      UInt32 font_scaler_denominator) = 0;
    /**
     * The same for drawing, where negative values stay negative.
     *
     * @param val                                            font units times the size
     * @param font_scaler_molecule, font_scaler_denominator  stretch
     * @return pixels; positive ones rounded up
     */
    virtual Int32 NoScaleFontUnitsToPixelsInDrawText(Int32 val, Int32 font_scaler_molecule,
                                                     Int32 font_scaler_denominator) = 0;
};

/** A set of fonts: at most two named by an index file, or one in memory. */
class KESTRIN_EXPORT IResource : public IZELObject
{
public:
    /**
     * Opens a font on first use and keeps it. A file that cannot be read is named on standard
     * output.
     *
     * @param index      1 or 2; anything else gives null. A memory font answers to both
     * @param bDownload  set to whether the font is a memory font, when the index is accepted
     * @return the font, owned by the resource: hold it to keep it longer. Null when the entry is
     *         missing, is not of a font or cannot be read. A file that is no font still gives one
     */
    virtual IFont* OpenFont(ResIndex index, bool& bDownload) = 0;
};

/**
 * Opens a resource index file: a line with the number of entries, then one line "fnt:FILE" for
 * each, FILE relative to the index file. Lines have at most 1023 bytes. Fonts are read when they
 * are first asked for.
 *
 * @param file_name  not null; its folder, with the slash, has fewer than 200 bytes
 * @return null when the file cannot be read or has no entries
 */
KESTRIN_EXPORT IResource* zelOpenResource(const char* file_name);
/**
 * A resource of one font in memory.
 *
 * @param font_name  a name for messages, of which 199 bytes are kept
 * @param con        the font file's bytes, not copied: they outlive the resource and its fonts
 * @param len        how many
 * @return never null
 */
KESTRIN_EXPORT IResource* zelOpenResource(const char* font_name, const char* con, int len);

/**
 * Converts bytes to UTF-16 code units in host order, without a byte-order mark, by iconv.
 * TextEncoding says which character sets there are.
 *
 * @param text            `length` bytes. 16-bit units are in host order; a byte-order mark before
 *                        them is taken off and obeyed
 * @param length          how many; an odd last byte of 16-bit units is incomplete input
 * @param encoding        of the bytes
 * @param unicode         receives the units; must hold 2 x `unicode_length` units, all of which are
 *                        zeroed first
 * @param unicode_length  half the room in code units; not positive gives 0
 * @return units written; 0 on invalid or incomplete input or when the room is too small. Each of
 *         these failures keeps a converter's memory
 */
KESTRIN_EXPORT Int32 zelConvertToUnicode(PtrConstAny text, UInt32 length, TextEncoding encoding,
                                         PtrWChar unicode, Int32 unicode_length);

/** @} */

/**
 * @defgroup images Images
 * Pictures from image files and from memory.
 * @{
 */

/**
 * A picture with one or more frames, shown by a sprite or a painter.
 *
 * It comes from an image file (zelCreateImage of a name) or from a client's memory. Positions are
 * pixels, counted from the picture's top left corner.
 */
class KESTRIN_EXPORT IImage : public IZELObject
{
public:
    /** Width in pixels. @return as given at creation or read from the file */
    virtual UInt16 GetWidth() = 0;
    /** Height in pixels. @return as given at creation or read from the file */
    virtual UInt16 GetHeight() = 0;
    /** How many frames there are. @return those of the file; 1 of a picture from memory */
    virtual int GetFrameCount() = 0;
    /** The type given at creation. @return that; TypePNG for one from an image file */
    virtual ImageType GetImageType() = 0;
    /**
     * Fills a rectangle of the first frame; does nothing to a picture that is kept in memory. Call
     * ISprite::UpdateImage after.
     *
     * @param color_mode  how to take the colour, which must suit the frame: Color32Bit, or a
     *                    palette index for all others
     * @param x, y        left and top
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
     * @param imagedata  the pixel that goes to (x, y), not held; null does nothing
     * @param row_bytes  bytes from one of its rows to the next; no more of a row is read
     * @param x, y       position, may be negative
     * @param width, height  size of what is copied
     * @param colormode  Color8Bit for bytes, else words
     */
    virtual void SetImageData(UInt32* imagedata, UInt32 row_bytes, MetricValue x, MetricValue y,
                              MetricValue width, MetricValue height, ColorMode colormode) = 0;
    /**
     * The pixels kept in memory, rows without padding, in the picture's own mode, 32-bit ones as
     * words 0xAARRGGBB.
     *
     * @return owned by the image, valid as long as it; null when there are none
     */
    virtual UInt8* GetImageBuffer() = 0;
    /** Keeps a number for the client. @param nSize  the size of its data */
    virtual void SetFileSize(int nSize) = 0;
    /** The number kept. @return 0 at first */
    virtual int GetFileSize() = 0;
    /** Keeps a pair of numbers for the client. @param nLeft, nTop  an offset for drawing */
    virtual void SetAttribute(Int32 nLeft, Int32 nTop) = 0;
    /** The pair kept. @param nLeft, nTop  set to it; 0 at first */
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
    Int32 rowbyte;   /**< bytes from one row to the next; below 1: width / 8 */
    Int32 bitoffset; /**< bit of a row that is its first pixel; 0 is the first byte's highest */
    Int32 fgcolor;   /**< of set bits: 0xAARRGGBB, or a palette index on an 8-bit display */
    Int32 bgcolor;   /**< of clear bits */
    Int32 hz;        /**< horizontal magnification; below 1 counts as 1 */
    Int32 vz;        /**< vertical magnification; below 1 counts as 1 */
};

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
 * @return never null; a picture without pixels draws nothing
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
 * It is made after the start of the library.
 *
 * @param file_name  not null
 * @return null when no frame could be read: the file is missing or damaged, holds less than its
 *         header says, or unpacks to more than 256 megabytes
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
/** @} */

/**
 * @defgroup colours Palettes and colours
 * Palettes of 8-bit displays, and drawing on the fixed one of 188 colours, made for MHEG-5.
 *
 *     index      opacity  colours of the fixed palette
 *     0          0        transparent
 *     1 to 48    179      1 + blue + 2 x red + 8 x green, each by its level:
 *                         blue 0, 255; red 0, 85, 170, 255; green 0, 51, 102, 153, 204, 255
 *     49 to 52   255      greys 42, 85, 170, 212
 *     53 to 187  255      53 + blue + 3 x green + 27 x red, each by its level:
 *                         blue 0, 127, 255; green 0, 31, 63, 95, 127, 159, 191, 223, 255;
 *                         red 0, 63, 127, 191, 255
 * @{
 */

/** 256 colours of an 8-bit display. Immutable. */
class KESTRIN_EXPORT IPalette : public IZELObject
{
public:
    /** Number of entries. @return 256 */
    virtual int GetColorCount() = 0;
    /**
     * @name Channels of an entry
     * @{
     */
    /** Red. @param index  0 to 255, all of which are there @return 0 to 255 */
    virtual UInt8 GetColorRed(UInt8 index) = 0;
    /** Green. @param index  0 to 255 @return 0 to 255 */
    virtual UInt8 GetColorGreen(UInt8 index) = 0;
    /** Blue. @param index  0 to 255 @return 0 to 255 */
    virtual UInt8 GetColorBlue(UInt8 index) = 0;
    /** Opacity. @param index  0 to 255 @return 0 transparent to 255 opaque */
    virtual BlendValue GetColorBlending(UInt8 index) = 0;
    /** @} */
};

/**
 * A palette from a client's table.
 *
 * @param palette_entry  256 entries, copied; with null the colours are transparent black
 * @return never null
 */
KESTRIN_EXPORT IPalette* zelCreatePalette(PaletteEntry* palette_entry);
/** A palette of transparent black, for a plain nullptr. @return never null */
inline IPalette* zelCreatePalette(std::nullptr_t)
{
    return zelCreatePalette(static_cast<PaletteEntry*>(nullptr));
}
/**
 * A palette from a file: 256 records of 4 bytes, opacity (255 opaque), red, green and blue.
 *
 * @param file  not null. What it does not hold, also when it cannot be read, is transparent black
 * @return never null
 */
KESTRIN_EXPORT IPalette* zelCreatePalette(const char* file);
/** The palette last given to a view. @return empty if none */
KESTRIN_EXPORT ZELObjPtr<IPalette> zelGetCurrentPalette();

/**
 * @name Levels of the fixed palette
 * What a channel adds to an index.
 * @{
 */
/** Grey level. @param v  0 to 255 @return 0 to 3, a quarter of the range each */
KESTRIN_EXPORT UInt8 GetNearestGrey(UInt8 v);
/** Red of an opaque colour. @param v  0 to 255 @return 27 x level, 0 to 108 */
KESTRIN_EXPORT UInt8 GetNearestRed(UInt8 v);
/** Green of an opaque colour. @param v  0 to 255 @return 3 x level, 0 to 24 */
KESTRIN_EXPORT UInt8 GetNearestGreen(UInt8 v);
/** Blue of an opaque colour. @param v  0 to 255 @return level, 0 to 2 */
KESTRIN_EXPORT UInt8 GetNearestBlue(UInt8 v);
/** Red of a semi-transparent colour. @param v  0 to 255 @return 2 x level, 0 to 6 */
KESTRIN_EXPORT UInt8 GetNearestSemiRed(UInt8 v);
/** Green of a semi-transparent colour. @param v  0 to 255 @return 8 x level, 0 to 40 */
KESTRIN_EXPORT UInt8 GetNearestSemiGreen(UInt8 v);
/** Blue of a semi-transparent colour. @param v  0 to 255 @return level, 0 or 1 */
KESTRIN_EXPORT UInt8 GetNearestSemiBlue(UInt8 v);
/** @} */

/**
 * Finds a colour in the fixed palette.
 *
 * @param colour  0xAARRGGBB. An alpha from 231 counts as opaque, one below 25 as transparent
 * @return index, 0 to 187
 */
KESTRIN_EXPORT UInt8 OSD_FindNearestColourIndex(UInt32 colour);
/**
 * Blends a colour of the fixed palette over a pixel, by table.
 *
 * @param pixel   an index of it, replaced by the one that shows `colour` over it; not null
 * @param colour  index; 0 changes nothing, and from 49, or over a pixel below 49, it replaces
 */
KESTRIN_EXPORT void OSD_BlendPixels(UInt8* pixel, UInt8 colour);
/**
 * Blends a colour of the fixed palette over a rectangle of an 8-bit surface.
 *
 * @param dest_surf  null draws nothing
 * @param x1, y1     top left pixel; below 0 draws nothing
 * @param x2, y2     bottom right pixel, which is drawn as well: it must lie in the surface. One
 *                   left of or above the other draws nothing
 * @param color      index; 0 draws nothing, and 49 to 187 are filled, cut at the surface's clip
 */
KESTRIN_EXPORT void MHEG_displayRectangle(IDirectFBSurface* dest_surf, Int32 x1, Int32 y1, Int32 x2,
                                          Int32 y2, Int32 color);
/**
 * Blends a bitmap of palette indices onto an 8-bit surface, cut at the surface. Index 0 leaves the
 * pixel unchanged.
 *
 * @param dest_surf      not null, not locked
 * @param X, Y           where the part drawn goes
 * @param row_byte       bytes from one source row to the next
 * @param width, height  of the part drawn
 * @param src_img        the bitmap, one byte a pixel
 * @param SrcX, SrcY     where the part drawn begins in it
 */
KESTRIN_EXPORT void MHEG_draw_bitmap(IDirectFBSurface* dest_surf, Int32 X, Int32 Y, Int32 row_byte,
                                     Int32 width, Int32 height, UInt8* src_img, Int32 SrcX,
                                     Int32 SrcY);
/**
 * The same from another 8-bit surface, cut at both.
 *
 * @param dest_surf      not null, not locked
 * @param X, Y           where the part drawn goes
 * @param width, height  of the part drawn
 * @param src_surf       not null, not locked, not `dest_surf`
 * @param SrcX, SrcY     where the part drawn begins in it
 */
KESTRIN_EXPORT void MHEG_draw_bitmap(IDirectFBSurface* dest_surf, Int32 X, Int32 Y, Int32 width,
                                     Int32 height, IDirectFBSurface* src_surf, Int32 SrcX,
                                     Int32 SrcY);

/** @} */

/**
 * @defgroup errors Errors, for clients
 * Classes a client may throw and report. The engine itself throws none.
 * @{
 */

/**
 * Text sink of error reports. It discards what it gets: a hook for debugging builds of the library.
 *
 * @param text  ended by 0, not null
 */
KESTRIN_EXPORT void zelDebugMessage(PtrConstSChar text);
/** The same with a number. @param number  handed on as a signed decimal */
KESTRIN_EXPORT void zelDebugMessage(Int32 number);
/** The same with a number. @param number  handed on as an unsigned decimal */
KESTRIN_EXPORT void zelDebugMessage(UInt32 number);

/** An error a client may throw and report. */
class KESTRIN_EXPORT Error
{
public:
    virtual ~Error() {}
    /** Hands the message to zelDebugMessage, piece by piece, without a line end. */
    virtual void Output() const = 0;
};

/** Says "out of memory". */
class KESTRIN_EXPORT EOutOfMemory : public Error
{
public:
    void Output() const override;
};

/** Says "failed to open file: " and the file's name. */
class KESTRIN_EXPORT EFileFailure : public Error
{
public:
    /** Of a file. @param file_name  not copied: it outlives the error */
    explicit EFileFailure(const char* file_name) : _file_name(file_name) {}
    void Output() const override;

private:
    const char* _file_name;
};

/** Says "failed to load resource object with index " and the index. */
class KESTRIN_EXPORT EResourceFailure : public Error
{
public:
    /** Of an entry of a resource. @param res_index  its number */
    explicit EResourceFailure(unsigned short res_index) : _res_index(res_index) {}
    void Output() const override;

private:
    Int32 _res_index;
};

/** Says "graphic engine returned error code ", the code, and when. */
class KESTRIN_EXPORT EGraphicFailure : public Error
{
public:
    /** What was being done. Other values add nothing to the message, like General. */
    enum ErrorType
    {
        General = 0,    /**< nothing is added */
        Allocation = 1, /**< " when allocating resource" */
        CreateFont = 2  /**< " when creating font" */
    };

    /**
     * Of a call of the graphics engine.
     *
     * @param error_code  its result, a DFBResult for instance
     * @param error_type  what was being done
     */
    EGraphicFailure(int error_code, ErrorType error_type)
        : _error_code(error_code), _error_type(error_type)
    {
    }
    void Output() const override;

private:
    Int32 _error_code;
    ErrorType _error_type;
};

/** Reports an error: calls its Output. Neither throws nor ends the process. @param error  what */
KESTRIN_EXPORT void zelError(const Error& error);

/** The engine's category in the platform's debug log; null until the first zelInitialize. */
extern KESTRIN_EXPORT ::vrel_debug_category* kestrin_debug;

/** @} */

} // namespace zelxxx
