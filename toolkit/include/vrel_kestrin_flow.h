/**
 * @file
 * Ready-made text formatting: "this text, in this box, centred, wrapped, with an ellipsis".
 *
 *     FlowFormatter formatter(Color32Bit);
 *     text->SetAttribute(AttrTextFormat, TextWrap | TextEndEllipsis | TextAlignBottom);
 *     text->SetText(caption, length, EncodingUTF8, &formatter);
 *
 * The engine leaves all layout to a client's ITextFormater. FlowFormatter is one that lays out text
 * of any script that is drawn character by character: it breaks lines by Unicode's rules (UAX #14;
 * Thai, Lao, Khmer and Burmese by dictionary), puts right-to-left text in order (UAX #9), mirrors
 * brackets and joins Arabic letters by their presentation forms. What needs glyphs that have no
 * character code (Devanagari and its relatives) is not shaped.
 *
 * What a widget says is done: AttrTextFormat (where no bit says else: centred, in the middle),
 * AttrFontIndex, AttrFontSize, AttrFontScalerMolecule and AttrFontScalerDenominator,
 * AttrLineHeight (0 stands for the font's own), AttrLetterSpace, AttrColor, AttrCursorIndex,
 * AttrSpanX and AttrSpanY. Of contradicting bits left goes before right and top before bottom.
 * A new widget's AttrLineHeight is 16: set it for larger fonts, or their tops may be cut off.
 *
 *     TextWrap         lines are broken at the box's width; inside words only where nothing else
 *                      fits, never inside a character with its marks
 *     TextEndEllipsis  what does not fit is left out, and three dots stand in its place: at the end
 *                      of each line that is too wide and of the last line there is room for
 *     TextMarked       a line under the marked characters, by the engine's cursor records
 *
 * Lines end at line feed, carriage return, both together, vertical tab, form feed, and U+0085,
 * U+2028 and U+2029; a text that ends with one of them has no further line. A line's box is
 * AttrLineHeight high and has the baseline where the engine's font metrics have it, so that
 * different fonts stand on one line. A text that is taller than its box begins at the top if it is
 * to stand in the middle, and a line that is wider begins where it is read from if it is to be
 * centred. Blanks at a line's end take no room.
 *
 * A character beyond 16 bits shows as U+FFFD, once for both its code units, and so does a code unit
 * that is half of one. Control characters and marks of direction draw nothing. Of a text of more
 * than 65536 code units the rest is left out.
 *
 * Rectangles and points are pixels from the widget's top left corner. A character is named by its
 * first code unit; of one with marks, all units stand for the whole.
 *
 * Ownership: a formatter outlives the widgets that use it. It keeps layouts, so that none is made
 * twice for the same text, font and box, and holds the fonts they were made with: it has to be
 * destroyed, or Clear called, before zelUninitialize.
 *
 * Failures: none. Without a font or with a font size of 0 nothing is laid out.
 *
 * Threads: the engine's one; all calls come from the thread that updates the screen.
 */
#pragma once

#include "vrel_kestrin_graphic.h"

#include <memory>

namespace zelxxx {

class FlowParts;
class FlowPlacement;

/**
 * @defgroup flow Text formatting
 * Wraps, aligns, orders and joins text of any script that is drawn character by character.
 * @{
 */

/** Values of a code unit's number that stand for none. */
enum : UInt32
{
    FlowNoCharacter = 0xffffffff /**< what FlowLayout::GetCharacterAt gives beside the text */
};

/** Which way the text of a paragraph runs. */
enum FlowDirection : Int32
{
    FlowAutomatic = 0,   /**< as its first letter does; from left to right without letters */
    FlowLeftToRight = 1, /**< from left to right, whatever it is made of */
    FlowRightToLeft = 2  /**< from right to left, whatever it is made of */
};

/** A half-open rectangle: it covers left <= x < right and top <= y < bottom. */
struct FlowRect
{
    Int32 left;   /**< first column in it */
    Int32 top;    /**< first row in it */
    Int32 right;  /**< first column beyond */
    Int32 bottom; /**< first row beyond */
};

/** One line of a layout. */
struct FlowLine
{
    UInt32 begin; /**< its first code unit */
    UInt32 end;   /**< the first one behind it; its end has the blanks and the break */
    FlowRect box; /**< from the first to the last character's advance, without blanks at the end; as
                       high as a line */
    bool right_to_left; /**< direction of its paragraph */
    bool ellipsis;      /**< three dots stand at its end */
};

/** Colour of the code units begin <= i < end. Of runs that overlap the later one counts. */
struct FlowColorRun
{
    UInt32 begin;     /**< first code unit */
    UInt32 end;       /**< the first one behind it; at or below `begin` there is no run */
    ColorValue color; /**< as FlowStyle says */
    BlendValue blend; /**< 255 opaque; not used on an 8-bit display */
};

/**
 * How a formatter draws beyond what the widget's attributes say. A new one asks for nothing.
 *
 * Colours are 0x00BBGGRR; on an 8-bit display they are palette indices, of which a value above 255
 * cannot be one and stands for the nearest entry of the fixed palette.
 */
struct FlowStyle
{
    /** No shadow, no outline, marks in the colour of the text, everything else off. */
    FlowStyle()
        : shadow_color(0), shadow_blend(0), shadow_x(0), shadow_y(0), outline_color(0),
          outline_blend(0), outline_width(0), mark_color(0), mark_blend(0), mark_begin(0),
          mark_end(0), direction(FlowAutomatic), balanced(false), korean_words(false),
          reference_sizes(false)
    {
    }

    /**
     * @name Shadow and outline
     * A copy of the text under it, and copies all around it. The box is smaller by as much as they
     * reach out of the text, so that they lie in it.
     * @{
     */
    ColorValue shadow_color;  /**< colour of the copy */
    BlendValue shadow_blend;  /**< opacity; 0 for no shadow, also on an 8-bit display */
    MetricValue shadow_x;     /**< pixels to the right; below 0 to the left */
    MetricValue shadow_y;     /**< pixels down; below 0 up */
    ColorValue outline_color; /**< colour of the copies */
    BlendValue outline_blend; /**< opacity, as above; copies overlap, so better opaque */
    UInt8 outline_width;      /**< pixels, at most 8 */
    /** @} */

    /**
     * @name Mark
     * What TextMarked marks: the code units from begin up to but not including end or, where these
     * are equal, the character at AttrCursorIndex; an index behind the text marks the place of the
     * next character.
     * @{
     */
    ColorValue mark_color; /**< colour of the line */
    BlendValue mark_blend; /**< opacity; 0 for the colour of the text */
    UInt32 mark_begin;     /**< first code unit marked */
    UInt32 mark_end;       /**< the first one behind it */
    /** @} */

    FlowDirection direction; /**< of every paragraph */
    bool balanced;     /**< lines broken by TextWrap are about equally long, not as long as fits */
    bool korean_words; /**< no breaks inside Korean words, as Unicode leaves to the writer */
    /**
     * Sizes come from AttrOrgFontSize and AttrOrgLineHeight, which are meant for a box of
     * AttrOrgSpanX x AttrOrgSpanY: they are scaled as the span is to that box, by the smaller of
     * the two ratios, and rounded to the nearest. What comes out is stored in the widget's
     * AttrFontSize and AttrLineHeight when it is formatted. A reference span of 0 has no effect.
     */
    bool reference_sizes;
};

/**
 * Where the characters of a text are. It stays what it is when text, widget or formatter change or
 * go.
 */
class KESTRIN_EXPORT FlowLayout
{
public:
    /** One without lines. */
    FlowLayout() {}

    /** How many lines there are. @return 0 when nothing could be laid out */
    UInt32 GetLineCount() const;
    /** A line. @param index  counted from 0 @return all zero for one that is not there */
    FlowLine GetLine(UInt32 index) const;
    /** Width of the widest line. @return pixels */
    Int32 GetWidth() const;
    /** Height of all lines. @return pixels */
    Int32 GetHeight() const;
    /** Whether something was left out. @return true for an ellipsis and of too long a text */
    bool IsCut() const;

    /**
     * Finds the character at a point, blanks at a line's end included.
     *
     * @param x, y  pixels from the widget's top left corner
     * @return its first code unit, or FlowNoCharacter
     */
    UInt32 GetCharacterAt(Int32 x, Int32 y) const;
    /**
     * The character's part of its line, from its own place to that of the next; of a ligature an
     * equal share. Nothing wide for what draws nothing, and for the text's length, where the next
     * character would go.
     *
     * @param unit  a code unit of the character
     * @return all zero for a character that was left out
     */
    FlowRect GetCharacterRect(UInt32 unit) const;

private:
    friend class FlowFormatter;
    std::shared_ptr<const FlowPlacement> _placement;
};

/** Is told where a formatter puts lines, to keep boxes behind them for instance. */
class KESTRIN_EXPORT IFlowLineHandler
{
public:
    virtual ~IFlowLineHandler() {}
    /**
     * A line of a widget that is being painted, whenever the widget was changed.
     *
     * The scene takes no notice of what is set now: place a box that depends on the line after the
     * update, or ask FlowFormatter::LayOut before.
     *
     * @param text   the widget
     * @param index  counted from 0; called for each line from top to bottom
     * @param count  lines of the widget; 0, with no line, for a widget that has become empty
     * @param line   where it is; valid during the call
     */
    virtual void HandleLine(IText* text, UInt32 index, UInt32 count, const FlowLine& line) = 0;
};

/** Lays out the text of one widget or of several. */
class KESTRIN_EXPORT FlowFormatter : public ITextFormater
{
public:
    /** No settings. @param display_mode  the engine's: Color8Bit, or any other for 32 bits */
    explicit FlowFormatter(ColorMode display_mode);
    ~FlowFormatter() override;
    FlowFormatter(const FlowFormatter&) = delete;
    FlowFormatter& operator=(const FlowFormatter&) = delete;

    /**
     * @name Settings
     * They apply to one widget, which is then drawn anew, or, with null, to all that have nothing
     * of their own; those are drawn as before until an attribute or their text is set.
     * @{
     */
    /** Sets the style. @param style  copied @param text  the widget, not held; null for all */
    void SetStyle(const FlowStyle& style, IText* text = nullptr);
    /**
     * Colours parts of the text. Code units of no run have AttrColor.
     *
     * @param runs   copied
     * @param count  how many; 0 for none
     * @param text   the widget, not held; null for all
     */
    void SetColors(const FlowColorRun* runs, UInt32 count, IText* text = nullptr);
    /**
     * Has lines told as they are drawn.
     *
     * @param handler  not held, outlives its use; null for none
     * @param text     the widget, not held; null for all
     */
    void SetLineHandler(IFlowLineHandler* handler, IText* text = nullptr);
    /** Takes back what was set for a widget. @param text  to be called for a widget that goes */
    void Forget(IText* text);
    /** @} */

    /**
     * Says what lies under the text on an 8-bit display: one opaque colour. The edges of glyphs
     * then fade towards it in all steps that the fixed palette has; without, they are
     * semi-transparent.
     *
     * @param color  0x00BBGGRR, not an index
     */
    void SetGround(ColorValue color);
    /** Takes SetGround back. */
    void ResetGround();

    /**
     * Lays a text out as it would be for the widget, without drawing: the widget's attributes apply
     * as they are, its own text does not matter.
     *
     * @param text      the widget; not null
     * @param bytes     in `encoding`; null for no text
     * @param length    number of bytes
     * @param encoding  as for IText::SetText
     * @return where everything is; without lines when there is no font or its size is 0
     */
    FlowLayout LayOut(IText* text, PtrConstAny bytes, UInt32 length, TextEncoding encoding);

    /** Gives up all layouts and the fonts they hold. */
    void Clear();

    void Format(IText* text, PtrWChar units, UInt32 length) override;
    /**
     * Turns a glyph's coverage into the indices of the fixed palette that come nearest to the
     * colour at that opacity. A client palette other than the fixed one is not looked at.
     *
     * @param char_metrics, color, blend, buffer  as the engine calls ITextFormater::GetCharBuffer
     */
    void GetCharBuffer(const CharMetrics* char_metrics, ColorValue color, BlendValue blend,
                       PtrSChar buffer) override;

private:
    std::unique_ptr<FlowParts> _parts;
};

/** @} */

} // namespace zelxxx
