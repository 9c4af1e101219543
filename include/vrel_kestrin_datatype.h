/**
 * Scalar types, enumerations and small records that all of Kestrin's interfaces share.
 *
 * Geometry is 16 bit on purpose: sums of coordinates wrap to 16 bits, and every scale factor is
 * 8.8 fixed point, so that one frame's arithmetic costs a slow processor next to nothing.
 *
 * Colours come in two byte orders, which are not uniform: ICanvas::Clear of an off-screen canvas
 * reads 0x00RRGGBB, while a view's Clear and every drawing operation read red from the lowest byte,
 * 0x00BBGGRR. On an 8-bit display a colour is a palette index, 0 to 255.
 */
#pragma once

#include <stdint.h>

#if defined(__GNUC__)
/** Marks what the shared library exports; everything else is hidden. */
#define KESTRIN_EXPORT __attribute__((visibility("default")))
#else
#define KESTRIN_EXPORT
#endif

/** DirectFB's main interface and surface, for clients that draw beside the engine. */
typedef struct _IDirectFB IDirectFB;
typedef struct _IDirectFBSurface IDirectFBSurface;

namespace zelxxx {

typedef int8_t Int8;
typedef uint8_t UInt8;
typedef int16_t Int16;
typedef uint16_t UInt16;
typedef int32_t Int32;
typedef uint32_t UInt32;

typedef char SChar;
typedef char TChar;   /**< a character of a file name, in the file system's encoding */
typedef UInt16 WChar; /**< a UTF-16 code unit in the host's byte order */
typedef SChar* PtrSChar;
typedef const SChar* PtrConstSChar;
typedef const TChar* PtrConstTChar;
typedef WChar* PtrWChar;
typedef const WChar* PtrConstWChar;
typedef const void* PtrConstAny;

typedef Int16 MetricValue;    /**< a coordinate, length or order value, in pixels */
typedef UInt16 RatioValue;    /**< a factor in 8.8 fixed point: 256 is 1.0 */
typedef UInt8 BlendValue;     /**< opacity: 0 transparent to 255 opaque */
typedef UInt32 ColorValue;    /**< a colour or, in 8-bit modes, a palette index */
typedef UInt8 BlendModeValue; /**< a BlendMode stored in one byte */
typedef Int32 AttrValue;      /**< the value of an attribute, narrowed to its field when stored */
typedef UInt16 ResIndex;      /**< number of a font in a resource, counted from 1 */

// The enumerations have a fixed width, so that every bit combination and value is a legal one.

/** Bits per pixel. A display is 8 bit (palette) or 32 bit (every other mode). */
enum ColorMode : Int32
{
    Color1Bit = 1,
    Color4Bit = 4,
    Color8Bit = 8,
    Color16Bit = 16,
    Color24Bit = 24,
    Color32Bit = 32
};

/** How drawn pixels meet what is there. */
enum BlendMode : Int32
{
    BlendSrcOver = 0,    /**< source over destination, by opacity */
    BlendSrcCopy = 1,    /**< colour and opacity replace the destination */
    BlendSrcOver8BIT = 2 /**< source over on the fixed 188-entry palette, by table */
};

/** Colour keying of a rectangle's fill. */
enum BlitFlag : Int32
{
    NoBlit = 0,
    Blit_SRC_COLORKEY = 8,
    Blit_DST_COLORKEY = 16
};

/** Names of the attributes of widgets, layers and modifiers. */
enum AttrIndex : Int32
{
    AttrNone = 0,
    AttrPosX = 1,
    AttrPosY = 2,
    AttrPosZ = 3,
    AttrSpanX = 4,
    AttrOrgSpanX = 5,
    AttrSpanY = 6,
    AttrOrgSpanY = 7,
    AttrOriginX = 8,
    AttrOriginY = 9,
    AttrScaleX = 10,
    AttrScaleY = 11,
    AttrScrollX = 12,
    AttrScrollY = 13,
    AttrClipLeft = 14,
    AttrClipTop = 15,
    AttrClipRight = 16,
    AttrClipBottom = 17,
    AttrColor = 18,
    AttrBlend = 19,
    AttrBlendMode = 20,
    AttrBkgndColor = 21,
    AttrBkgndBlend = 22,
    AttrMiddleColor = 23,
    AttrImageIndex = 24,
    AttrImageFrame = 25,
    AttrFontIndex = 26,
    AttrFontSize = 27,
    AttrOrgFontSize = 28,
    AttrFontScalerMolecule = 29,
    AttrFontScalerDenominator = 30,
    AttrFontStyle = 31,
    AttrLineHeight = 32,
    AttrOrgLineHeight = 33,
    AttrTextFormat = 34,
    AttrImageFormat = 35,
    AttrVariable1 = 36,
    AttrVariable2 = 37,
    AttrVariable3 = 38,
    AttrVariable4 = 39,
    AttrVariable5 = 40,
    AttrPercentage = 41,
    AttrFocus = 42,
    AttrBorderWidth = 43,
    AttrBorderColor = 44,
    AttrBorderBlend = 45,
    AttrBorderBlendMode = 46,
    AttrCursorIndex = 47,
    AttrLetterSpace = 48,
    AttrBlittingFlag = 49,
    AttrDstColorKey = 50
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

/** Style bits handed to font requests. */
enum FontStyle : Int32
{
    FontRegular = 0,
    FontBold = 1,
    FontItalic = 2,
    FontBoldItalic = 3,
    FontUnderline = 4,
    FontStrikeout = 8
};

/** Encodings of client text; zelConvertToUnicode lists the character set behind each. */
enum TextEncoding : Int32
{
    EncodingASCII = 0,
    EncodingUnicode = 1,
    EncodingBig5 = 2,
    EncodingGB2312 = 3,
    EncodingEUC_KR = 4,
    EncodingEUC_JP = 5,
    EncodingJIS = 6,
    Encoding8859_1 = 7,
    Encoding8859_2 = 8,
    Encoding8859_3 = 9,
    Encoding8859_4 = 10,
    Encoding8859_5 = 11,
    Encoding8859_6 = 12,
    Encoding8859_7 = 13,
    Encoding8859_8 = 14,
    Encoding8859_9 = 15,
    Encoding8859_10 = 16,
    Encoding8859_11 = 17,
    Encoding8859_12 = 18,
    Encoding8859_13 = 19,
    Encoding8859_14 = 20,
    Encoding8859_15 = 21,
    Encoding8859_16 = 22,
    Encoding6937 = 23,
    EncodingUTF8 = 24,
    EncodingARIB24 = 25
};

/** Layout wishes a text widget carries for its formatter; bits. Centred where no bit says else. */
enum TextFormat : Int32
{
    TextAlignCenter = 0,
    TextAlignLeft = 1,
    TextAlignRight = 2,
    TextAlignTop = 4,
    TextAlignBottom = 8,
    TextWrap = 16,
    TextEndEllipsis = 32,
    TextMarked = 64
};

/** Where an image's pixels come from. */
enum ImageType : Int32
{
    TypePNG = 0,
    TypeJPG = 1,
    TypeImg = 2,
    TypeSurface = 3
};

/** Placement of an image in its sprite; bits. Centred where no bit says else. */
enum ImageFormat : Int32
{
    ImageAlignCenter = 0,
    ImageAlignLeft = 1,
    ImageAlignRight = 2,
    ImageAlignTop = 4,
    ImageAlignBottom = 8,
    ImageAlignTiling = 16
};

/** Where an image keeps its pixels: a DirectFB surface or plain memory. */
enum ImageBufferMode : Int32
{
    UseFrameBuffer = 0,
    UseSystemMemory = 1
};

/** Edges of its layer that a widget follows when the layer's span changes; bits. */
enum WidgetAnchor : Int32
{
    AnchorLeft = 1,
    AnchorRight = 2,
    AnchorTop = 4,
    AnchorBottom = 8
};

/** Where ILayer::InsertWidget puts a widget. The spelling is part of the interface. */
enum WidgetInstertPosition : Int32
{
    InsertFirst = 1,
    InsertLast = 2,
    InsertBefore = 4,
    InsertBehind = 8
};

/**
 * A half-open rectangle of the scene graph: it covers x1 <= x < x2 and y1 <= y < y2, up to but not
 * including its right and bottom edges, and is empty when x2 <= x1 or y2 <= y1. The rectangle
 * {10, 5, 20, 15} holds the pixel (19, 14) and not the pixel (20, 14).
 */
struct DirtyRect
{
    Int16 x1, y1, x2, y2;
};

/** Line metrics of a font at a size. All but `height` are constants of the library. */
struct FontMetrics
{
    Int32 x_min, y_min, x_max, y_max;
    UInt32 outline_resolution;
    UInt32 metrics_resolution;
    Int32 metrics_x_scale;
    Int32 metrics_y_scale;
    UInt16 height; /**< line height in pixels */
};

/** One rendered glyph. */
struct CharMetrics
{
    Int8 pix_mode;        /**< always 2: 8-bit coverage */
    Int32 width;          /**< bitmap width in pixels, and length of a row in bytes */
    Int32 height;         /**< bitmap rows */
    Int16 hori_bearing_x; /**< from the pen to the bitmap's left column, in pixels */
    Int16 bitmap_top;     /**< from the baseline up to the bitmap's top row, in pixels */
    /**
     * Coverage, 0 to 255, `height` rows of `width` bytes without padding. Owned by the font cache
     * and valid until the next request to any font; null when there is no bitmap.
     */
    UInt8* buffer;
};

/** One colour of a client's palette table, 4 bytes. */
struct PaletteEntry
{
    UInt8 red, green, blue;
    UInt8 blending; /**< opacity: 0 transparent to 255 opaque */
};

} // namespace zelxxx
