#include "flow_draw_p.h"

#include "flow_ramp_p.h"

#include <algorithm>
#include <limits>

namespace zelxxx {

namespace {

constexpr Int32 kWidestOutline = 8;

/** Shapes of one em that reach further from their pens than this are cut at the box's edges. */
constexpr Int32 kReach = 4;

bool Fits16Bits(Int32 value)
{
    return value >= std::numeric_limits<Int16>::min() && value <= std::numeric_limits<Int16>::max();
}

} // namespace

FlowDrawing::FlowDrawing(IText* text, const FlowPlacement& placement, const FlowStyle& style,
                         const FlowColors& colors, bool indexed)
    : _text(text), _placement(placement), _style(style), _colors(colors),
      _indexed(indexed), _text_color{static_cast<ColorValue>(text->GetAttribute(AttrColor)), 255},
      _metrics(), _glyph_top(0), _cursor_top(0), _reach(0), _current(), _has_current(false)
{
    IFont* const font = placement.text->source.font;
    const UInt16 size = placement.text->source.size;
    font->GetFTFontMetrics(size, FontRegular, &_metrics);
    _cursor_top = (placement.box.line_height - _metrics.height) >> 1;
    // The metrics are the same for all fonts, and so is the baseline.
    const Int32 ascent = (size * _metrics.y_max + 255) >> 8;
    _glyph_top = _cursor_top + ascent - font->GetFTYOffsetTop(size);
    const std::int64_t stretch = std::max<std::int64_t>(
        1, placement.box.denominator ? placement.box.molecule / placement.box.denominator + 1 : 1);
    _reach = static_cast<Int32>(std::min<std::int64_t>(kReach * stretch * size, 1 << 24));
}

void FlowDrawing::Draw()
{
    // Everything below the text first, so that nothing falls on a character.
    if (_style.shadow_blend != 0) {
        const FlowColor shadow = {_style.shadow_color, _style.shadow_blend};
        DrawGlyphs(_style.shadow_x, _style.shadow_y, &shadow);
    }
    if (_style.outline_blend != 0 && _style.outline_width != 0)
        DrawOutline();
    DrawGlyphs(0, 0, nullptr);
    if (_text->GetAttribute(AttrTextFormat) & TextMarked)
        DrawMarks();
}

/** Copies on a circle; strokes are wide enough to fill it. */
void FlowDrawing::DrawOutline()
{
    const FlowColor outline = {_style.outline_color, _style.outline_blend};
    const Int32 width = std::min<Int32>(_style.outline_width, kWidestOutline);
    for (Int32 dy = -width; dy <= width; ++dy) {
        for (Int32 dx = -width; dx <= width; ++dx) {
            const Int32 distance = dx * dx + dy * dy;
            const bool inside = distance <= width * width + width;
            const bool within = distance <= (width - 1) * (width - 1) + (width - 1);
            if (inside && !within)
                DrawGlyphs(dx, dy, &outline);
        }
    }
}

void FlowDrawing::DrawGlyphs(Int32 dx, Int32 dy, const FlowColor* color)
{
    if (color)
        SetColor(*color);
    const auto size = static_cast<UInt8>(std::min<UInt16>(_placement.text->source.size, 255));
    for (const FlowRow& row : _placement.rows) {
        const Int32 y = row.top + _glyph_top + dy;
        if (!IsShown(row, dy) || !Fits16Bits(y))
            continue;
        for (UInt32 i = row.first_item; i < row.last_item; ++i) {
            const FlowItem& item = _placement.items[i];
            const Int32 x = item.x + dx;
            if (!IsShown(x) || !_placement.IsInk(item))
                continue;
            if (!color)
                SetColor(ColorOf(item));
            _text->AddCharInfo(static_cast<Int16>(x), static_cast<Int16>(y), size, item.glyph);
        }
    }
}

void FlowDrawing::DrawMarks()
{
    const FlowText& text = *_placement.text;
    UInt32 begin = _style.mark_begin;
    UInt32 end = _style.mark_end;
    if (begin >= end) {
        begin = static_cast<UInt32>(_text->GetAttribute(AttrCursorIndex));
        if (begin >= text.source.units.size()) {
            DrawEndMark();
            return;
        }
        end = begin + 1;
    }
    for (const FlowRow& row : _placement.rows) {
        if (!IsShown(row, 0))
            continue;
        for (UInt32 i = row.first_item; i < row.last_item; ++i) {
            const FlowItem& item = _placement.items[i];
            const UInt32 first = item.character;
            if (item.added || text.characters[first].Is(FlowCharacter::Continues))
                continue;
            UInt32 next = first + 1;
            while (next < text.Count() && text.characters[next].Is(FlowCharacter::Continues))
                ++next;
            if (_placement.UnitOf(first) < end && _placement.UnitOf(next) > begin)
                DrawMark(item.x, row, item.glyph, ColorOf(item));
        }
    }
}

void FlowDrawing::DrawMark(Int32 x, const FlowRow& row, WChar glyph, const FlowColor& color)
{
    const FlowColor mark =
        _style.mark_blend != 0 ? FlowColor{_style.mark_color, _style.mark_blend} : color;
    const Int32 y = row.top + _cursor_top;
    if (!IsShown(x) || !Fits16Bits(y))
        return;
    const UInt32 value =
        _indexed ? IndexOf(mark) : static_cast<UInt32>(mark.blend) << 24 | (mark.color & 0xffffff);
    _text->AddCursorInfo(static_cast<Int16>(x), static_cast<Int16>(y), glyph, value);
}

/** Under the place of the next character, as wide as a blank. */
void FlowDrawing::DrawEndMark()
{
    const auto length = static_cast<UInt32>(_placement.text->source.units.size());
    const FlowRect rect = _placement.RectOfUnit(length);
    if (rect.top == rect.bottom)
        return;
    FlowRow row = {};
    row.top = rect.top;
    const Int32 x = _placement.EndsReversed() ? rect.left - _placement.WidthOf(u" ") : rect.left;
    DrawMark(x, row, ' ', length == 0 ? _text_color : _colors.At(length - 1, _text_color));
}

void FlowDrawing::SetColor(const FlowColor& color)
{
    if (_has_current && color == _current)
        return;
    _has_current = true;
    _current = color;
    if (_indexed)
        _text->AddColorIndex(IndexOf(color));
    else
        _text->AddColorInfo(static_cast<UInt8>(color.color), static_cast<UInt8>(color.color >> 8),
                            static_cast<UInt8>(color.color >> 16), color.blend);
}

UInt8 FlowDrawing::IndexOf(const FlowColor& color) const
{
    if (color.color <= 255)
        return static_cast<UInt8>(color.color);
    return OSD_FindNearestColourIndex(static_cast<UInt32>(color.blend) << 24 |
                                      SwapRedAndBlue(color.color));
}

FlowColor FlowDrawing::ColorOf(const FlowItem& item) const
{
    return _colors.At(_placement.UnitOf(item.character), _text_color);
}

/** Whether anything of a row can be in the widget: what is not, is not drawn. */
bool FlowDrawing::IsShown(const FlowRow& row, Int32 dy) const
{
    const FlowBox& box = _placement.box;
    const Int32 top = row.top + dy;
    return top - _reach < box.height && top + box.line_height + _reach > 0;
}

bool FlowDrawing::IsShown(Int32 x) const
{
    return x < _placement.box.width + _reach && x > -_reach && Fits16Bits(x);
}

} // namespace zelxxx
