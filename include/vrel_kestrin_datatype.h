/**
 * @file
 * Scalar types, enumerations and small records that all of Kestrin's interfaces share.
 *
 * Geometry is 16 bit on purpose: sums of coordinates wrap to 16 bits, and every scale factor is
 * 8.8 fixed point, so that one frame's arithmetic costs a slow processor next to nothing. A value
 * times a factor is (value * factor) >> 8, rounded toward minus infinity; a factor of exactly 256
 * leaves it untouched. Two opacities combine as a * b / 255, rounded down.
 *
 * Colours come in two byte orders, which are not uniform: ICanvas::Clear of an off-screen canvas
 * reads 0x00RRGGBB, while a view's Clear and every drawing operation read red from the lowest byte,
 * 0x00BBGGRR. On an 8-bit display a colour is a palette index, 0 to 255.
 *
 * Nothing here owns anything, and there is nothing to fail.
 */
#pragma once

#include <stdint.h>

/**
 * @defgroup types Shared types
 * Numbers, enumerations and records of all interfaces: units, ranges and names of attributes.
 * @{
 */

#if defined(__GNUC__)
/** Marks what the shared library exports; everything else is hidden. */
#define KESTRIN_EXPORT __attribute__((visibility("default")))
#else
#define KESTRIN_EXPORT
#endif

/** DirectFB's main interface, for clients that draw beside the engine. */
typedef struct _IDirectFB IDirectFB;
/** A surface of DirectFB's. */
typedef struct _IDirectFBSurface IDirectFBSurface;

/** @} */

/**
 * The engine and its toolkit. Outside are only the drawing primitives (DLA_ and MHEG5_) and the
 * classes of the operating system (Vrel_).
 */
namespace zelxxx {

/**
 * @addtogroup types
 * @{
 */

typedef int8_t Int8;     /**< signed, 8 bits */
typedef uint8_t UInt8;   /**< unsigned, 8 bits */
typedef int16_t Int16;   /**< signed, 16 bits */
typedef uint16_t UInt16; /**< unsigned, 16 bits */
typedef int32_t Int32;   /**< signed, 32 bits */
typedef uint32_t UInt32; /**< unsigned, 32 bits */

typedef char SChar;      /**< a byte of text or of a bitmap */
typedef char TChar;      /**< a character of a file name, in the file system's encoding */
typedef UInt16 WChar;    /**< a UTF-16 code unit in the host's byte order */
typedef SChar* PtrSChar; /**< bytes that are written */
typedef const SChar* PtrConstSChar; /**< bytes that are read, ended by 0 where they are text */
typedef const TChar* PtrConstTChar; /**< a file name, ended by 0 */
typedef WChar* PtrWChar;            /**< code units that are written, with a length beside them */
typedef const WChar* PtrConstWChar; /**< code units that are read, with a length beside them */
typedef const void* PtrConstAny;    /**< data of a kind that other arguments tell */

typedef Int16 MetricValue;    /**< a coordinate, length or order value, in pixels; sums wrap */
typedef UInt16 RatioValue;    /**< a factor in 8.8 fixed point: 256 is 1.0 */
typedef UInt8 BlendValue;     /**< opacity: 0 transparent to 255 opaque */
typedef UInt32 ColorValue;    /**< a colour or, in 8-bit modes, a palette index */
typedef UInt8 BlendModeValue; /**< a BlendMode stored in one byte */
typedef Int32 AttrValue;      /**< the value of an attribute, narrowed to its field when stored */
typedef UInt16 ResIndex;      /**< number of a font in a resource, counted from 1 */

// The enumerations have a fixed width, so that every bit combination and value is a legal one.

/**
 * Bits per pixel. A display is 8 bit, of palette indices, for Color8Bit and 32 bit for every other
 * mode. A canvas has the display's format, whatever its mode. An image has pixels of its own mode,
 * which zelCreateImage describes.
 */
enum ColorMode : Int32
{
    Color1Bit = 1,   /**< of images: two colours of the client's */
    Color4Bit = 4,   /**< of images: the first 16 colours of a palette */
    Color8Bit = 8,   /**< palette indices */
    Color16Bit = 16, /**< of images: RGB565 */
    Color24Bit = 24, /**< of images: red, green and blue */
    Color32Bit = 32  /**< red, green, blue and opacity */
};

/** How drawn pixels meet what is there. */
enum BlendMode : Int32
{
    BlendSrcOver = 0,    /**< source over destination, by opacity */
    BlendSrcCopy = 1,    /**< colour and opacity replace the destination */
    BlendSrcOver8BIT = 2 /**< source over on the fixed 188-entry palette, by table */
};

/**
 * Colour keying of a rectangle's fill. A keyed fill sets the surface's destination colour key, and
 * fills in the colour that was set last by whatever was drawn before, not in its own.
 */
enum BlitFlag : Int32
{
    NoBlit = 0,            /**< an ordinary fill */
    Blit_SRC_COLORKEY = 8, /**< a keyed fill, with DirectFB's source key flag set meanwhile */
    Blit_DST_COLORKEY = 16 /**< a keyed fill with no flag set, as for every other value */
};

/**
 * Names of the attributes of widgets, layers and modifiers.
 *
 * A class answers those that its comment names; others are ignored when set and read as 0. Unless
 * said otherwise a value is a MetricValue in pixels, 0 at first. Of a modifier the same index is a
 * parameter of its own, which its class describes.
 */
enum AttrIndex : Int32
{
    AttrNone = 0,         /**< no attribute: ignored, reads as 0 */
    AttrPosX = 1,         /**< where the widget's origin stands in its layer */
    AttrPosY = 2,         /**< the same, downwards */
    AttrPosZ = 3,         /**< depth within the layer: the greater is painted later */
    AttrSpanX = 4,        /**< width; 10000 of a new layer */
    AttrOrgSpanX = 5,     /**< width that a text's reference sizes are for; 720 at first */
    AttrSpanY = 6,        /**< height; 10000 of a new layer */
    AttrOrgSpanY = 7,     /**< height that reference sizes are for; 576 at first */
    AttrOriginX = 8,      /**< the point of the widget, from its left edge, at its position */
    AttrOriginY = 9,      /**< the same, from its top edge */
    AttrScaleX = 10,      /**< RatioValue, 256 at first: horizontal scale, see IWidget */
    AttrScaleY = 11,      /**< RatioValue, 256 at first: vertical scale */
    AttrScrollX = 12,     /**< of a layer: how far its content is moved left */
    AttrScrollY = 13,     /**< of a layer: how far its content is moved up */
    AttrClipLeft = 14,    /**< of a layer, write-only: clip edge from its left edge */
    AttrClipTop = 15,     /**< of a layer, write-only: clip edge from its top edge */
    AttrClipRight = 16,   /**< of a layer, write-only: clip edge from its right edge */
    AttrClipBottom = 17,  /**< of a layer, write-only: clip edge from its bottom edge */
    AttrColor = 18,       /**< ColorValue of a rectangle's fill (0) or a text (0xFFFFFF) */
    AttrBlend = 19,       /**< BlendValue, 255 at first: opacity */
    AttrBlendMode = 20,   /**< BlendMode, one byte: how the widget is blended */
    AttrBkgndColor = 21,  /**< ColorValue of a layer's background */
    AttrBkgndBlend = 22,  /**< BlendValue of a layer's background; 0 at first, so none */
    AttrMiddleColor = 23, /**< reserved: no class answers it */
    AttrImageIndex = 24,  /**< of a sprite: ResIndex, a number for the client, not used */
    AttrImageFrame = 25,  /**< of a sprite: the frame shown, counted from 0; 16 bits count */
    AttrFontIndex = 26,   /**< of a text: ResIndex of its font, 1 or 2; 0, none, at first */
    AttrFontSize = 27,    /**< of a text: unsigned, 16 at first */
    AttrOrgFontSize = 28, /**< of a text: font size at the reference span; 16 at first */
    AttrFontScalerMolecule = 29, /**< of a text: 32 bits, numerator of the stretch; 100 at first */
    AttrFontScalerDenominator = 30, /**< of a text: 32 bits, its denominator; 100 at first */
    AttrFontStyle = 31,             /**< reserved: no class answers it */
    AttrLineHeight = 32,            /**< of a text, for its formatter: unsigned, 16 at first */
    AttrOrgLineHeight = 33,   /**< of a text: line height at the reference span; 16 at first */
    AttrTextFormat = 34,      /**< of a text, for its formatter: TextFormat bits */
    AttrImageFormat = 35,     /**< of a sprite: ImageFormat bits */
    AttrVariable1 = 36,       /**< reserved: no class answers it */
    AttrVariable2 = 37,       /**< reserved: no class answers it */
    AttrVariable3 = 38,       /**< reserved: no class answers it */
    AttrVariable4 = 39,       /**< reserved: no class answers it */
    AttrVariable5 = 40,       /**< reserved: no class answers it */
    AttrPercentage = 41,      /**< of MoveToModifier: RatioValue, the part of the way */
    AttrFocus = 42,           /**< of PerspectiveModifier: distance of the eye; 1000 at first */
    AttrBorderWidth = 43,     /**< of a rectangle: width of its border, inside its span */
    AttrBorderColor = 44,     /**< of a rectangle: ColorValue of its border */
    AttrBorderBlend = 45,     /**< of a rectangle: BlendValue of its border; 255 at first */
    AttrBorderBlendMode = 46, /**< of a rectangle: BlendMode of its border, one byte */
    AttrCursorIndex = 47,     /**< of a text, for its formatter: unsigned, a code unit */
    AttrLetterSpace = 48,     /**< of a text, for its formatter: 32 bits, between letters */
    AttrBlittingFlag = 49,    /**< of a rectangle, write-only: BlitFlag of its fill */
    AttrDstColorKey = 50      /**< of a rectangle, write-only: ColorValue, its colour key */
};

/** How a scene paints and presents; bits. */
enum SceneOption : Int32
{
    SceneUseDoubleBuffer = 0, /**< paint into a back buffer, copy what changed */
    SceneUseFlipping = 1,     /**< paint whole frames into the view and flip, at most every 20 ms */
    SceneUseDirtyRectangles = 2, /**< accepted; the update cycle always works by rectangles */
    SceneUseDirtyBuffer = 4,     /**< accepted, no effect */
    SceneUseSingleBuffer = 8     /**< paint straight into the view */
};

/** Style bits handed to font requests. A font looks as its file does: no style is drawn. */
enum FontStyle : Int32
{
    FontRegular = 0,    /**< what text widgets ask for */
    FontBold = 1,       /**< bold */
    FontItalic = 2,     /**< italic */
    FontBoldItalic = 3, /**< both */
    FontUnderline = 4,  /**< a line beneath */
    FontStrikeout = 8   /**< a line through the middle */
};

/**
 * Encodings of client text, and the character set that zelConvertToUnicode reads for each. Every
 * other value is read as UTF-8.
 */
enum TextEncoding : Int32
{
    EncodingASCII = 0,    /**< ASCII; a byte above 127 is invalid */
    EncodingUnicode = 1,  /**< 16-bit units in the host's byte order */
    EncodingBig5 = 2,     /**< Big5 */
    EncodingGB2312 = 3,   /**< GB 2312 in its EUC form */
    EncodingEUC_KR = 4,   /**< EUC-KR */
    EncodingEUC_JP = 5,   /**< EUC-JP */
    EncodingJIS = 6,      /**< 16-bit units, as EncodingUnicode: no JIS set is read */
    Encoding8859_1 = 7,   /**< ISO 8859-1, Western European */
    Encoding8859_2 = 8,   /**< ISO 8859-2, Central European */
    Encoding8859_3 = 9,   /**< ISO 8859-3, South European */
    Encoding8859_4 = 10,  /**< ISO 8859-4, North European */
    Encoding8859_5 = 11,  /**< ISO 8859-5, Cyrillic */
    Encoding8859_6 = 12,  /**< ISO 8859-6, Arabic */
    Encoding8859_7 = 13,  /**< ISO 8859-7, Greek */
    Encoding8859_8 = 14,  /**< ISO 8859-8, Hebrew */
    Encoding8859_9 = 15,  /**< ISO 8859-9, Turkish */
    Encoding8859_10 = 16, /**< read as UTF-8 */
    Encoding8859_11 = 17, /**< read as UTF-8 */
    Encoding8859_12 = 18, /**< read as UTF-8 */
    Encoding8859_13 = 19, /**< read as UTF-8 */
    Encoding8859_14 = 20, /**< read as UTF-8 */
    Encoding8859_15 = 21, /**< ISO 8859-15, Western European with the euro sign */
    Encoding8859_16 = 22, /**< read as UTF-8 */
    Encoding6937 = 23,    /**< ISO 6937, the Latin set of teletext and DVB */
    EncodingUTF8 = 24,    /**< UTF-8 */
    EncodingARIB24 = 25   /**< read as UTF-8 */
};

/**
 * Layout wishes a text widget carries for its formatter; bits. Centred where no bit says else. The
 * engine itself does nothing with them.
 */
enum TextFormat : Int32
{
    TextAlignCenter = 0,  /**< in the middle of both directions */
    TextAlignLeft = 1,    /**< at the left edge */
    TextAlignRight = 2,   /**< at the right edge */
    TextAlignTop = 4,     /**< at the top edge */
    TextAlignBottom = 8,  /**< at the bottom edge */
    TextWrap = 16,        /**< broken into lines at the widget's width */
    TextEndEllipsis = 32, /**< three dots for what does not fit */
    TextMarked = 64       /**< with a mark at AttrCursorIndex */
};

/** What the bytes of an image are. */
enum ImageType : Int32
{
    TypePNG = 0,    /**< of Color32Bit: a PNG file, or pixels; of all others: pixels */
    TypeJPG = 1,    /**< of Color32Bit: a JPEG file, or pixels; of all others: pixels */
    TypeImg = 2,    /**< pixels */
    TypeSurface = 3 /**< none: the client's routine makes the pixels when they are drawn */
};

/** Placement of an image in its sprite; bits. Centred where no bit says else. */
enum ImageFormat : Int32
{
    ImageAlignCenter = 0, /**< in the middle of both directions */
    ImageAlignLeft = 1,   /**< at the left edge, also when right is set */
    ImageAlignRight = 2,  /**< at the right edge */
    ImageAlignTop = 4,    /**< at the top edge, also when bottom is set */
    ImageAlignBottom = 8, /**< at the bottom edge */
    ImageAlignTiling = 16 /**< repeated over the sprite from its top left corner, whatever is set */
};

/** Where an image keeps its pixels. */
enum ImageBufferMode : Int32
{
    UseFrameBuffer = 0, /**< in a DirectFB surface, which draws fastest */
    UseSystemMemory = 1 /**< in plain memory, converted whenever they are drawn */
};

/**
 * Edges of its layer that a widget follows when the layer's span changes; bits. They count in
 * layers with anchors enabled only (ILayer::EnableAnchors).
 */
enum WidgetAnchor : Int32
{
    AnchorLeft = 1,  /**< the left edge, which does not move; with the right one it stretches */
    AnchorRight = 2, /**< the right edge: the widget moves along with it */
    AnchorTop = 4,   /**< the top edge, which does not move; with the bottom one it stretches */
    AnchorBottom = 8 /**< the bottom edge: the widget moves along with it */
};

/**
 * Where ILayer::InsertWidget puts a widget. The spelling is part of the interface. No other value
 * is to be used: a widget inserted so believes in its layer without standing in it.
 */
enum WidgetInstertPosition : Int32
{
    InsertFirst = 1,  /**< before all others, so painted first among those of its depth */
    InsertLast = 2,   /**< behind all others, so painted last */
    InsertBefore = 4, /**< just before the destination */
    InsertBehind = 8  /**< just behind the destination */
};

/**
 * A half-open rectangle of the scene graph: it covers x1 <= x < x2 and y1 <= y < y2, up to but not
 * including its right and bottom edges, and is empty when x2 <= x1 or y2 <= y1. The rectangle
 * {10, 5, 20, 15} holds the pixel (19, 14) and not the pixel (20, 14).
 */
struct DirtyRect
{
    Int16 x1; /**< left edge, in pixels of the scene; inclusive */
    Int16 y1; /**< top edge; inclusive */
    Int16 x2; /**< right edge; exclusive */
    Int16 y2; /**< bottom edge; exclusive */
};

/** Line metrics of a font at a size. All but `height` are constants of the library. */
struct FontMetrics
{
    Int32 x_min;               /**< always 40 */
    Int32 y_min;               /**< always 62 */
    Int32 x_max;               /**< always 271 */
    Int32 y_max;               /**< always 231 */
    UInt32 outline_resolution; /**< always 0 */
    UInt32 metrics_resolution; /**< always 1 */
    Int32 metrics_x_scale;     /**< always 0 */
    Int32 metrics_y_scale;     /**< always 0 */
    /** Line height in pixels: 62 / 256 and 231 / 256 of the size, each rounded up. */
    UInt16 height;
};

/** One rendered glyph. */
struct CharMetrics
{
    Int8 pix_mode;        /**< always 2: 8-bit coverage */
    Int32 width;          /**< bitmap width in pixels, and length of a row in bytes; 0 to 255 */
    Int32 height;         /**< bitmap rows; 0 to 255 */
    Int16 hori_bearing_x; /**< from the pen to the bitmap's left column, in pixels; -128 to 127 */
    Int16 bitmap_top;     /**< from the baseline up to the bitmap's top row, in pixels */
    /**
     * Coverage, 0 to 255, `height` rows of `width` bytes without padding. Owned by the font cache
     * and valid until the next request to any font; null when there is no bitmap.
     */
    UInt8* buffer;
};

/** One colour of a client's palette table, 4 bytes. A palette file has the opacity first. */
struct PaletteEntry
{
    UInt8 red;      /**< 0 to 255 */
    UInt8 green;    /**< 0 to 255 */
    UInt8 blue;     /**< 0 to 255 */
    UInt8 blending; /**< opacity: 0 transparent to 255 opaque */
};

/** @} */

} // namespace zelxxx
