#include "flow_place_p.h"

#include "flow_bidi_p.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>

namespace zelxxx {

namespace {

/** Positions stop here, far beyond what 16 bits can say. */
constexpr std::int64_t kFar = 1 << 24;

constexpr WChar kEllipsis = 0x2026;
const char16_t* const kDots = u"...";
const char16_t* const kHyphen = u"-";

/** What stays on a line without regard to the room there is. */
constexpr UInt16 kHanging = FlowCharacter::Continues | FlowCharacter::Blank;

Int32 Near(std::int64_t position)
{
    return static_cast<Int32>(std::clamp(position, -kFar, kFar));
}

/** Half, rounded down also below 0. */
Int32 Half(Int32 value)
{
    return value >> 1;
}

} // namespace

bool FlowBox::operator==(const FlowBox& other) const
{
    return width == other.width && height == other.height && left == other.left &&
           top == other.top && right == other.right && bottom == other.bottom &&
           format == other.format && molecule == other.molecule &&
           denominator == other.denominator && letter_space == other.letter_space &&
           line_height == other.line_height && balanced == other.balanced;
}

FlowPlacement::FlowPlacement(std::shared_ptr<const FlowText> laid_text, const FlowBox& in_box,
                             FlowMeter& meter)
    : text(std::move(laid_text)), box(in_box), cut(text->source.cut), _meter(&meter), _em(0),
      _slots(text->Count())
{
    const std::int64_t stretched = std::int64_t{text->source.size} * box.molecule;
    _em = box.denominator ? Near(stretched / box.denominator) : 0;
    BreakText();
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].top = Near(TopOf(rows.size()) + static_cast<std::int64_t>(i) * box.line_height);
    _meter = nullptr;
}

// ---- Measuring ------------------------------------------------------------------------------

Int32 FlowPlacement::ToPixels(std::int64_t pen) const
{
    constexpr std::int64_t most = std::numeric_limits<Int32>::max();
    const auto value = static_cast<Int32>(std::min(std::abs(pen), most));
    const Int32 pixels = text->source.font->NoScaleFontUnitsToPixelsInCalculate(value, box.molecule,
                                                                                box.denominator);
    // Beyond 31 bits the font's answer is unsigned.
    const Int32 near = pixels < 0 ? static_cast<Int32>(kFar) : Near(pixels);
    return pen < 0 ? -near : near;
}

Int32 FlowPlacement::ToPixels(std::int64_t pen, std::int64_t gap_count) const
{
    return Near(ToPixels(pen) + gap_count * box.letter_space);
}

/** Of begin <= i < end on a line of their own, blanks at the end left out; may be below 0. */
Int32 FlowPlacement::Width(UInt32 begin, UInt32 end) const
{
    end = text->Trim(begin, end);
    while (begin < end && text->characters[begin].glyph == 0)
        ++begin;
    if (begin == end)
        return 0;
    return ToPixels(text->pens[end - 1] + text->characters[end - 1].advance - text->pens[begin],
                    std::int64_t{text->gaps[end]} - text->gaps[begin + 1]);
}

/**
 * Whether begin <= i < end is too wide for a line: the engine leaves a glyph out whose picture
 * reaches over the right edge, so that counts, too.
 */
bool FlowPlacement::Exceeds(UInt32 begin, UInt32 end, Int32 width) const
{
    const Int32 needed = Width(begin, end);
    end = text->Trim(begin, end);
    if (needed > width || begin == end)
        return needed > width;
    // Only near the edge is it worth to look at the picture.
    if (needed + _em / 2 <= width)
        return false;
    const UInt32 rightmost = text->IsReversed(end - 1) ? begin : end - 1;
    const FlowCharacter& character = text->characters[rightmost];
    const FlowItem item = {rightmost, 0, character.glyph, false};
    return needed + std::max(0, InkOf(item).right - ToPixels(character.advance)) > width;
}

Int32 FlowPlacement::WidthOf(const std::u16string& added) const
{
    std::int64_t pen = 0;
    for (const char16_t glyph : added)
        pen += Advance(glyph);
    return ToPixels(pen, static_cast<std::int64_t>(added.size()) - 1);
}

Int32 FlowPlacement::Advance(WChar glyph) const
{
    return text->source.font->GetFTNoScaleCharMetricsX(glyph, text->source.size, FontRegular);
}

Int32 FlowPlacement::Height() const
{
    return Near(static_cast<std::int64_t>(rows.size()) * box.line_height);
}

Int32 FlowPlacement::Width() const
{
    Int32 width = 0;
    for (const FlowRow& row : rows)
        width = std::max(width, row.right - row.left);
    return width;
}

// ---- Breaking -------------------------------------------------------------------------------

void FlowPlacement::BreakText()
{
    const Int32 fitting = (box.height - box.top - box.bottom) / box.line_height;
    const auto most = (box.format & TextEndEllipsis)
                          ? static_cast<std::size_t>(std::max(1, fitting))
                          : std::numeric_limits<std::size_t>::max();
    for (UInt32 begin = 0; begin < text->Count();) {
        UInt32 end = begin;
        while (end < text->Count() && !text->characters[end].Is(FlowCharacter::EndsLine))
            ++end;
        end = std::min(end + 1, text->Count());

        Broken broken = {{{begin, end}}, 0};
        if (box.format & TextWrap)
            broken = BreakSegment(begin, end, Room());
        if ((box.format & TextWrap) && box.balanced)
            broken = Balance(begin, end, std::move(broken));
        const bool more = end < text->Count();
        for (std::size_t i = 0; i < broken.ranges.size(); ++i) {
            const bool last = rows.size() + 1 == most;
            if (last && (more || i + 1 < broken.ranges.size())) {
                EndInEllipsis(broken.ranges[i].begin, end);
                cut = true;
                return;
            }
            AddRow(broken.ranges[i]);
        }
        begin = end;
    }
}

FlowPlacement::Broken FlowPlacement::BreakSegment(UInt32 begin, UInt32 end, Int32 width) const
{
    Broken broken = {{}, 0};
    while (begin < end) {
        bool is_cut = false;
        const UInt32 row_end = EndOfRow(begin, end, width, &is_cut);
        broken.ranges.push_back({begin, row_end});
        broken.cuts += is_cut ? 1 : 0;
        begin = row_end;
    }
    return broken;
}

/** As much as fits, up to a place where a break is allowed, or else at least one character. */
UInt32 FlowPlacement::EndOfRow(UInt32 begin, UInt32 end, Int32 width, bool* is_cut) const
{
    UInt32 allowed = begin;
    UInt32 possible = begin;
    for (UInt32 i = begin; i < end; ++i) {
        const FlowCharacter& character = text->characters[i];
        const bool drawn = character.glyph != 0 && !character.Is(FlowCharacter::Blank);
        if (drawn && Exceeds(begin, i + 1, width)) {
            *is_cut = allowed == begin;
            if (!*is_cut)
                return allowed;
            if (possible > begin)
                return possible;
            // Not even one character fits: it is shown all the same, with what belongs to it.
            for (++i; i < end && (text->characters[i].flags & kHanging) != 0;)
                ++i;
            return i;
        }
        if (i + 1 < end && !text->characters[i + 1].Is(FlowCharacter::Continues))
            possible = i + 1;
        if (character.Is(FlowCharacter::BreakAfter) &&
            (!character.Is(FlowCharacter::SoftHyphen) ||
             Width(begin, i + 1) + box.letter_space + WidthOf(kHyphen) <= width))
            allowed = i + 1;
    }
    return end;
}

/**
 * The narrowest width that needs no further line or cut makes the lines about equally long.
 */
FlowPlacement::Broken FlowPlacement::Balance(UInt32 begin, UInt32 end, Broken best) const
{
    Int32 enough = Room();
    for (Int32 too_narrow = 0; best.ranges.size() > 1 && enough - too_narrow > 1;) {
        const Int32 middle = Half(enough + too_narrow);
        Broken tried = BreakSegment(begin, end, middle);
        if (tried.ranges.size() > best.ranges.size() || tried.cuts > best.cuts) {
            too_narrow = middle;
        } else {
            enough = middle;
            best = std::move(tried);
        }
    }
    return best;
}

void FlowPlacement::AddRow(const Range& range)
{
    if ((box.format & TextEndEllipsis) && !(box.format & TextWrap) &&
        Exceeds(range.begin, range.end, Room())) {
        EndInEllipsis(range.begin, range.end);
        cut = true;
        return;
    }
    const bool broken = range.end < text->Count();
    const bool hyphen = broken && text->characters[range.end - 1].Is(FlowCharacter::SoftHyphen);
    Fill(range.begin, range.end, hyphen ? kHyphen : u"", false);
}

/** Adds a row of as much of begin <= i < end as fits before an ellipsis. */
void FlowPlacement::EndInEllipsis(UInt32 begin, UInt32 end)
{
    const FlowSource& source = text->source;
    const bool has = FlowText::HasGlyph(source.font, source.size, kEllipsis);
    const std::u16string dots = has ? std::u16string(1, kEllipsis) : kDots;
    const Int32 room = Room() - WidthOf(dots) - box.letter_space;
    UInt32 kept = begin;
    for (UInt32 i = begin; i < end && Width(begin, i + 1) <= room; ++i) {
        if (i + 1 == end || !text->characters[i + 1].Is(FlowCharacter::Continues))
            kept = i + 1;
    }
    Fill(begin, text->Trim(begin, kept), dots, true);
}

// ---- Filling rows ---------------------------------------------------------------------------

/** Adds a row of begin <= i < end and of glyphs behind it. */
void FlowPlacement::Fill(UInt32 begin, UInt32 end, const std::u16string& added, bool ellipsis)
{
    const auto first_item = static_cast<UInt32>(items.size());
    FlowRow row = {begin, end, first_item, first_item, 0, 0, 0, false, ellipsis};
    row.right_to_left = text->characters[begin].Is(FlowCharacter::RightToLeft);
    const std::vector<Piece> pieces = Arrange(row, added);
    const UInt32 content_end = added.empty() ? text->Trim(begin, end) : end;
    const auto is_content = [&](const Piece& piece) {
        return piece.glyph != 0 && (piece.added || piece.character < content_end);
    };
    const auto first = std::find_if(pieces.begin(), pieces.end(), is_content);
    const auto last = std::find_if(pieces.rbegin(), pieces.rend(), is_content);
    const Piece origin = first != pieces.end() ? *first : PieceAtEnd(row, pieces);
    const auto place = [&](std::int64_t pen, UInt32 gap_count) {
        return ToPixels(pen - origin.pen, std::int64_t{gap_count} - origin.gaps);
    };

    const auto index = static_cast<UInt32>(rows.size());
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const Piece& piece = pieces[i];
        const Int32 x = place(piece.pen, piece.gaps);
        if (piece.glyph != 0)
            items.push_back({piece.character, x, piece.glyph, piece.added});
        if (piece.added)
            continue;
        const Int32 next = i + 1 < pieces.size() ? place(pieces[i + 1].pen, pieces[i + 1].gaps)
                                                 : place(piece.pen + piece.advance, piece.gaps);
        _slots[piece.character] = {x, std::max(x, next), index};
    }
    row.last_item = static_cast<UInt32>(items.size());
    if (last != pieces.rend())
        row.right = std::max(0, place(last->pen + last->advance, last->gaps));
    MergeClusters(row);
    Move(row, Shift(row));
    rows.push_back(row);
}

/** Where a row without content begins: at the edge that its characters come from. */
FlowPlacement::Piece FlowPlacement::PieceAtEnd(const FlowRow& row, const std::vector<Piece>& pieces)
{
    Piece piece = row.right_to_left ? pieces.back() : pieces.front();
    if (row.right_to_left)
        piece.pen += piece.advance;
    return piece;
}

/** The row's characters and the added glyphs in visual order. */
std::vector<FlowPlacement::Piece> FlowPlacement::Arrange(const FlowRow& row,
                                                         const std::u16string& added) const
{
    std::vector<Piece> logical;
    logical.reserve(row.end - row.begin + added.size());
    std::vector<UInt32> types(text->types.begin() + row.begin, text->types.begin() + row.end);
    std::vector<signed char> levels(text->levels.begin() + row.begin,
                                    text->levels.begin() + row.end);
    for (UInt32 i = row.begin; i < row.end; ++i)
        logical.push_back({i, text->characters[i].glyph, false, text->characters[i].advance, 0, 0});
    // Dots go with the paragraph, a hyphen with its word.
    const auto paragraph = static_cast<signed char>(row.right_to_left ? 1 : 0);
    const signed char level = row.ellipsis || levels.empty() ? paragraph : levels.back();
    const UInt32 before = row.end > row.begin ? row.end - 1 : row.begin;
    for (const char16_t glyph : added) {
        logical.push_back({before, glyph, true, Advance(glyph), 0, 0});
        types.push_back(kNeutralType);
        levels.push_back(level);
    }
    std::vector<Piece> pieces;
    pieces.reserve(logical.size());
    for (const int i : VisualOrder(types, levels, row.right_to_left))
        pieces.push_back(logical[static_cast<std::size_t>(i)]);
    SetPens(pieces);
    return pieces;
}

void FlowPlacement::SetPens(std::vector<Piece>& pieces) const
{
    std::int64_t pen = 0;
    UInt32 gap_count = 0;
    const Piece* before = nullptr;
    for (Piece& piece : pieces) {
        if (before && piece.glyph != 0) {
            const UInt32 first = std::min(before->character, piece.character);
            const UInt32 second = std::max(before->character, piece.character);
            if (!before->added && !piece.added && second - first == 1)
                pen += text->characters[first].kerning;
            gap_count += HasGap(*before, piece) ? 1 : 0;
        }
        piece.pen = pen;
        piece.gaps = gap_count;
        pen += piece.advance;
        if (piece.glyph != 0)
            before = &piece;
    }
}

/** Whether letter space goes between two pieces that stand side by side. */
bool FlowPlacement::HasGap(const Piece& left, const Piece& right) const
{
    if (left.added || right.added)
        return true;
    const std::vector<FlowCharacter>& characters = text->characters;
    if (characters[right.character].Is(FlowCharacter::Continues))
        return false;
    if (text->levels[left.character] != text->levels[right.character])
        return true;
    UInt32 later = std::max(left.character, right.character);
    while (later > 0 && characters[later].Is(FlowCharacter::Continues))
        --later;
    return characters[later].Is(FlowCharacter::GapBefore);
}

/** A character with its marks has one place; the parts of a ligature share it. */
void FlowPlacement::MergeClusters(const FlowRow& row)
{
    const std::vector<FlowCharacter>& characters = text->characters;
    for (UInt32 begin = row.begin, end = begin; begin < row.end; begin = end) {
        Slot whole = _slots[begin];
        Int32 parts = 1;
        for (++end; end < row.end && characters[end].Is(FlowCharacter::Continues); ++end) {
            whole.left = std::min(whole.left, _slots[end].left);
            whole.right = std::max(whole.right, _slots[end].right);
            parts += characters[end].Is(FlowCharacter::LigatureRest) ? 1 : 0;
        }
        if (end - begin == 1)
            continue;
        Int32 part = 0;
        const Int32 width = whole.right - whole.left;
        for (UInt32 i = begin; i < end; ++i) {
            part += characters[i].Is(FlowCharacter::LigatureRest) ? 1 : 0;
            const Int32 place = text->IsReversed(i) ? parts - 1 - part : part;
            _slots[i].left = whole.left + width * place / parts;
            _slots[i].right = whole.left + width * (place + 1) / parts;
        }
    }
}

// ---- Aligning -------------------------------------------------------------------------------

/** Left edge of a line of a width. */
Int32 FlowPlacement::LeftOf(Int32 width, bool right_to_left) const
{
    const Int32 right_aligned = box.width - box.right - width;
    if (box.format & TextAlignLeft)
        return box.left;
    if (box.format & TextAlignRight)
        return right_aligned;
    if (width > Room())
        return right_to_left ? right_aligned : box.left;
    return box.left + Half(Room() - width);
}

/** Top edge of so many lines. */
Int32 FlowPlacement::TopOf(std::size_t count) const
{
    const Int32 height = Near(static_cast<std::int64_t>(count) * box.line_height);
    const Int32 room = box.height - box.top - box.bottom;
    if (box.format & TextAlignTop)
        return box.top;
    if (box.format & TextAlignBottom)
        return box.height - box.bottom - height;
    return box.top + std::max(0, Half(room - height));
}

/**
 * How far a row has to go from 0. Ink that reaches out of the box beside the characters' advances
 * would be cut off: the row gives way as far as there is room on its other side.
 */
Int32 FlowPlacement::Shift(const FlowRow& row) const
{
    const Int32 left = LeftOf(row.right, row.right_to_left);
    if (row.right > Room())
        return left; // cut anyway
    Int32 ink_left = left;
    Int32 ink_right = left + row.right;
    for (UInt32 i = row.first_item; i < row.last_item; ++i) {
        if (IsInk(items[i])) {
            ink_left = left + InkOf(items[i]).left;
            break;
        }
    }
    for (UInt32 i = row.last_item; i-- > row.first_item;) {
        if (!IsInk(items[i]))
            continue;
        ink_right = std::max(ink_right, left + InkOf(items[i]).right);
        // Marks at the end come after the letter that they stand on.
        if (items[i].added || !text->characters[items[i].character].Is(FlowCharacter::Continues))
            break;
    }
    const Int32 free_left = ink_left - box.left;
    const Int32 free_right = box.width - box.right - ink_right;
    if (free_right < 0 && free_left > 0)
        return left - std::min(-free_right, free_left);
    if (free_left < 0 && free_right > 0)
        return left + std::min(-free_left, free_right);
    return left;
}

bool FlowPlacement::IsInk(const FlowItem& item) const
{
    return item.added || !text->characters[item.character].Is(FlowCharacter::Blank);
}

/** Columns of an item's picture, half open. */
FlowMeter::Ink FlowPlacement::InkOf(const FlowItem& item) const
{
    const FlowSource& source = text->source;
    const FlowMeter::Ink ink =
        _meter->InkOf(source.font, source.size, item.glyph, box.molecule, box.denominator);
    return {item.x + ink.left, item.x + ink.right};
}

void FlowPlacement::Move(FlowRow& row, Int32 by)
{
    row.left += by;
    row.right += by;
    for (UInt32 i = row.first_item; i < row.last_item; ++i)
        items[i].x += by;
    for (UInt32 i = row.begin; i < row.end; ++i) {
        _slots[i].left += by;
        _slots[i].right += by;
    }
}

// ---- Answers --------------------------------------------------------------------------------

FlowLine FlowPlacement::LineOf(UInt32 row) const
{
    if (row >= rows.size())
        return {};
    const FlowRow& at = rows[row];
    return {UnitOf(at.begin),
            UnitOf(at.end),
            {at.left, at.top, at.right, at.top + box.line_height},
            at.right_to_left,
            at.ellipsis};
}

UInt32 FlowPlacement::UnitOf(UInt32 character) const
{
    return character < text->Count() ? text->characters[character].source
                                     : static_cast<UInt32>(text->source.units.size());
}

UInt32 FlowPlacement::UnitAt(Int32 x, Int32 y) const
{
    if (rows.empty() || y < rows.front().top)
        return FlowNoCharacter;
    const Int32 row = (y - rows.front().top) / box.line_height;
    if (static_cast<std::size_t>(row) >= rows.size())
        return FlowNoCharacter;
    const FlowRow& at = rows[static_cast<std::size_t>(row)];
    for (UInt32 i = at.begin; i < at.end; ++i) {
        const FlowCharacter& character = text->characters[i];
        const bool names =
            !character.Is(FlowCharacter::Continues) || character.Is(FlowCharacter::LigatureRest);
        if (names && x >= _slots[i].left && x < _slots[i].right)
            return character.source;
    }
    return FlowNoCharacter;
}

FlowRect FlowPlacement::RectOfUnit(UInt32 unit) const
{
    const std::size_t length = text->source.units.size();
    if (unit >= length)
        return unit == length && !text->source.cut ? EndRect() : FlowRect{};
    const Slot& slot = _slots[text->of_unit[unit]];
    if (slot.row == Slot::kNoRow)
        return {};
    const Int32 top = rows[slot.row].top;
    return {slot.left, top, slot.right, top + box.line_height};
}

bool FlowPlacement::EndsReversed() const
{
    return text->Count() == 0 ? text->source.direction == FlowRightToLeft
                              : text->IsReversed(text->Count() - 1);
}

/** The place of a character to come. */
FlowRect FlowPlacement::EndRect() const
{
    if (text->Count() == 0) {
        const Int32 left = LeftOf(0, EndsReversed());
        return {left, TopOf(1), left, TopOf(1) + box.line_height};
    }
    FlowRect rect = RectOfUnit(UnitOf(text->Count() - 1));
    if (EndsReversed())
        rect.right = rect.left;
    else
        rect.left = rect.right;
    return rect;
}

} // namespace zelxxx
