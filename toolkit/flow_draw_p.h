/** Hands a text's glyphs to its widget. */
#pragma once

#include "flow_colors_p.h"
#include "flow_place_p.h"

namespace zelxxx {

/** Writes the records of one text into its widget, from the bottom to the top. */
class FlowDrawing
{
public:
    /** All of them outlive the object. */
    FlowDrawing(IText* text, const FlowPlacement& placement, const FlowStyle& style,
                const FlowColors& colors, bool indexed);

    void Draw();

private:
    void DrawOutline();
    /** Draws all glyphs at an offset, in one colour or, with null, each in its own. */
    void DrawGlyphs(Int32 dx, Int32 dy, const FlowColor* color);
    void DrawMarks();
    void DrawMark(Int32 x, const FlowRow& row, WChar glyph, const FlowColor& color);
    void DrawEndMark();
    void SetColor(const FlowColor& color);

    UInt8 IndexOf(const FlowColor& color) const;
    FlowColor ColorOf(const FlowItem& item) const;
    bool IsShown(const FlowRow& row, Int32 dy) const;
    bool IsShown(Int32 x) const;

    IText* const _text;
    const FlowPlacement& _placement;
    const FlowStyle& _style;
    const FlowColors& _colors;
    const bool _indexed;
    FlowColor _text_color;
    FontMetrics _metrics;
    Int32 _glyph_top;  /**< from a row's top to that of the font's line */
    Int32 _cursor_top; /**< from a row's top to that of the engine's line metrics */
    Int32 _reach;      /**< glyphs stay within this many pixels of their pens */
    FlowColor _current;
    bool _has_current;
};

} // namespace zelxxx
