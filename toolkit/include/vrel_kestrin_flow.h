/**
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

/** No character: what FlowLayout::GetCharacterAt gives beside the text. */
enum : UInt32
{
    FlowNoCharacter = 0xffffffff
};

/** Which way the text of a paragraph runs. */
enum FlowDirection : Int32
{
    FlowAutomatic = 0,   /**< as its first letter does; from left to right without letters */
    FlowLeftToRight = 1, /**< whatever it is made of, as the other */
    FlowRightToLeft = 2
};

/** A half-open rectangle: it covers left <= x < right and top <= y < bottom. */
struct FlowRect
{
    Int32 left, top, right, bottom;
};

/** One line of a layout. */
struct FlowLine
{
    UInt32 begin, end; /**< its code units begin <= i < end, with the blanks and break at its end */
    FlowRect box;      /**< from the first to the last character's advance, without blanks at the
                            end; as high as a line */
    bool right_to_left; /**< direction of its paragraph */
    bool ellipsis;      /**< three dots stand at its end */
};

/** Colour of the code units begin <= i < end. Of runs that overlap the later one counts. */
struct FlowColorRun
{
    UInt32 begin, end;
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
    FlowStyle()
        : shadow_color(0), shadow_blend(0), shadow_x(0), shadow_y(0), outline_color(0),
          outline_blend(0), outline_width(0), mark_color(0), mark_blend(0), mark_begin(0),
          mark_end(0), direction(FlowAutomatic), balanced(false), korean_words(false),
          reference_sizes(false)
    {
    }

    // A copy of the text under it, and copies all around it. The box is smaller by as much as they
    // reach out of the text, so that they lie in it.
    ColorValue shadow_color;
    BlendValue shadow_blend; /**< opacity; 0 for no shadow, also on an 8-bit display */
    MetricValue shadow_x, shadow_y;
    ColorValue outline_color;
    BlendValue outline_blend; /**< opacity, as above; copies overlap, so better opaque */
    UInt8 outline_width;      /**< pixels, at most 8 */

    // What TextMarked marks: code units mark_begin <= i < mark_end, or, where these are equal, the
    // character at AttrCursorIndex; an index behind the text marks the place of the next character.
    ColorValue mark_color;
    BlendValue mark_blend; /**< opacity; 0 for the colour of the text */
    UInt32 mark_begin, mark_end;

    FlowDirection direction;
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

    UInt32 GetLineCount() const;
    /** A line, counted from 0; all zero for one that is not there. */
    FlowLine GetLine(UInt32 index) const;
    /** Width of the widest line. */
    Int32 GetWidth() const;
    /** Height of all lines. */
    Int32 GetHeight() const;
    /** Whether something was left out, for an ellipsis or as the rest of too long a text. */
    bool IsCut() const;

    /** First code unit of the character at a point, blanks at a line's end included. */
    UInt32 GetCharacterAt(Int32 x, Int32 y) const;
    /**
     * The character's part of its line, from its own place to that of the next; of a ligature an
     * equal share. Nothing wide for what draws nothing, and for the text's length, where the next
     * character would go. All zero for a character that was left out.
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
     * @param index  counted from 0; called for each line from top to bottom
     * @param count  lines of the widget; 0, with no line, for a widget that has become empty
     */
    virtual void HandleLine(IText* text, UInt32 index, UInt32 count, const FlowLine& line) = 0;
};

/** Lays out the text of one widget or of several. */
class KESTRIN_EXPORT FlowFormatter : public ITextFormater
{
public:
    /** For a display of the mode the engine was started with: Color8Bit, or any other for 32. */
    explicit FlowFormatter(ColorMode display_mode);
    ~FlowFormatter() override;
    FlowFormatter(const FlowFormatter&) = delete;
    FlowFormatter& operator=(const FlowFormatter&) = delete;

    // These apply to one widget, which is then drawn anew, or, with null, to all that have nothing
    // of their own; those are drawn as before until an attribute or their text is set.

    void SetStyle(const FlowStyle& style, IText* text = nullptr);
    /** Copies the runs. Code units of no run have AttrColor. */
    void SetColors(const FlowColorRun* runs, UInt32 count, IText* text = nullptr);
    /** The handler, null for none, is not held and outlives its use. */
    void SetLineHandler(IFlowLineHandler* handler, IText* text = nullptr);
    /** Takes back what was set for a widget. Call it for a widget that goes. */
    void Forget(IText* text);

    /**
     * Says what lies under the text on an 8-bit display: one opaque colour, 0x00BBGGRR. The edges
     * of glyphs then fade towards it in all steps that the fixed palette has; without, they are
     * semi-transparent.
     */
    void SetGround(ColorValue color);
    /** Takes SetGround back. */
    void ResetGround();

    /**
     * Lays a text out as it would be for the widget, without drawing: the widget's attributes apply
     * as they are, its own text does not matter. The parameters are those of IText::SetText.
     */
    FlowLayout LayOut(IText* text, PtrConstAny bytes, UInt32 length, TextEncoding encoding);

    /** Gives up all layouts and the fonts they hold. */
    void Clear();

    void Format(IText* text, PtrWChar units, UInt32 length) override;
    /**
     * Turns a glyph's coverage into the indices of the fixed palette that come nearest to the
     * colour at that opacity. A client palette other than the fixed one is not looked at.
     */
    void GetCharBuffer(const CharMetrics* char_metrics, ColorValue color, BlendValue blend,
                       PtrSChar buffer) override;

private:
    std::unique_ptr<FlowParts> _parts;
};

} // namespace zelxxx
