/** Where the characters of a text go in a box. */
#pragma once

#include "flow_text_p.h"

#include <memory>
#include <string>
#include <vector>

namespace zelxxx {

/** What a widget and its style say about the place of a text. */
struct FlowBox
{
    Int32 width, height;            /**< of the widget */
    Int32 left, top, right, bottom; /**< kept free inside it */
    UInt32 format;                  /**< TextFormat bits, without TextMarked */
    UInt32 molecule, denominator;
    Int32 letter_space;
    Int32 line_height; /**< at least 1 */
    bool balanced;

    bool operator==(const FlowBox& other) const;
};

/** Something drawn, in the visual order of its line. */
struct FlowItem
{
    UInt32 character; /**< its number; of an added glyph that of the character before it */
    Int32 x;          /**< of the pen */
    WChar glyph;
    bool added; /**< a hyphen or an ellipsis, no character of the text */
};

struct FlowRow
{
    UInt32 begin, end;            /**< characters */
    UInt32 first_item, last_item; /**< half open */
    Int32 left, right;
    Int32 top;
    bool right_to_left;
    bool ellipsis;
};

/** A text in a box. Immutable. */
class FlowPlacement
{
public:
    FlowPlacement(std::shared_ptr<const FlowText> laid_text, const FlowBox& in_box,
                  FlowMeter& meter);

    FlowRect RectOfUnit(UInt32 unit) const;
    UInt32 UnitAt(Int32 x, Int32 y) const;
    FlowLine LineOf(UInt32 row) const;
    Int32 Width() const;
    Int32 Height() const;
    /** First code unit of a character; the text's length for its end. */
    UInt32 UnitOf(UInt32 character) const;
    /** Whether the next character would go to the left of the last one. */
    bool EndsReversed() const;
    bool IsInk(const FlowItem& item) const;
    /** Of glyphs side by side, without kerning. */
    Int32 WidthOf(const std::u16string& added) const;

    const std::shared_ptr<const FlowText> text;
    const FlowBox box;
    std::vector<FlowRow> rows;
    std::vector<FlowItem> items;
    bool cut;

private:
    /** A character's place; on no row if it was left out. */
    struct Slot
    {
        static constexpr UInt32 kNoRow = 0xffffffff;

        Int32 left = 0, right = 0;
        UInt32 row = kNoRow;
    };
    struct Range
    {
        UInt32 begin, end;
    };
    struct Broken
    {
        std::vector<Range> ranges;
        UInt32 cuts; /**< breaks where none is allowed */
    };
    /** One element of a row while it is put in order. */
    struct Piece
    {
        UInt32 character; /**< as in FlowItem */
        WChar glyph;
        bool added;
        Int32 advance;
        std::int64_t pen;
        UInt32 gaps; /**< letter spaces before it on its row */
    };

    Int32 ToPixels(std::int64_t pen) const;
    Int32 ToPixels(std::int64_t pen, std::int64_t gap_count) const;
    Int32 Width(UInt32 begin, UInt32 end) const;
    bool Exceeds(UInt32 begin, UInt32 end, Int32 width) const;
    Int32 Advance(WChar glyph) const;
    Int32 Room() const { return box.width - box.left - box.right; }

    void BreakText();
    Broken BreakSegment(UInt32 begin, UInt32 end, Int32 width) const;
    UInt32 EndOfRow(UInt32 begin, UInt32 end, Int32 width, bool* is_cut) const;
    Broken Balance(UInt32 begin, UInt32 end, Broken best) const;
    void AddRow(const Range& range);
    void EndInEllipsis(UInt32 begin, UInt32 end);

    void Fill(UInt32 begin, UInt32 end, const std::u16string& added, bool ellipsis);
    std::vector<Piece> Arrange(const FlowRow& row, const std::u16string& added) const;
    static Piece PieceAtEnd(const FlowRow& row, const std::vector<Piece>& pieces);
    void SetPens(std::vector<Piece>& pieces) const;
    bool HasGap(const Piece& left, const Piece& right) const;
    void MergeClusters(const FlowRow& row);

    Int32 LeftOf(Int32 width, bool right_to_left) const;
    Int32 TopOf(std::size_t count) const;
    Int32 Shift(const FlowRow& row) const;
    FlowMeter::Ink InkOf(const FlowItem& item) const;
    void Move(FlowRow& row, Int32 by);

    FlowRect EndRect() const;

    FlowMeter* _meter; /**< null once everything has its place */
    Int32 _em;         /**< width of the font's square, in pixels */
    std::vector<Slot> _slots;
};

} // namespace zelxxx
