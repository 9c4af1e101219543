/** Which parts of a scene must be repainted. */
#pragma once

#include "tbase.h"

namespace zelxxx {

/** Receives dirty rectangles. */
class IDirtyRectHandler
{
public:
    virtual ~IDirtyRectHandler() {}
    virtual void HandleRect(const DirtyRect& dirty_rect) = 0;
};

/**
 * One horizontal band of the area, with the sorted x boundaries of its clean spans.
 *
 *     SpanX   0     10        20      100      SpanCount 4
 *             |clean|  dirty  | clean |
 *
 * Entries 2k and 2k + 1 begin (inclusive) and end (exclusive) the k-th clean span. Dirty is what
 * lies before the first span and in the gaps between spans. Every added rectangle is cut at the
 * width, so the last boundary of a band that has any is the width, and nothing right of the last
 * span is dirty. A band may hold empty clean spans: {width, width} is wholly dirty.
 */
struct DirtyRow
{
    static constexpr int kCapacity = 50;

    UInt16 RowHeight; /**< in pixels; the band's top is the sum of the heights above it */
    UInt16 SpanCount; /**< valid entries of SpanX, always even; 0: the whole band is dirty */
    UInt16 SpanX[kCapacity];
    DirtyRow* NextRow; /**< the band below */
};

/**
 * The dirty area of a scene, as a stack of bands from y = 0 down.
 *
 * Made for a few dozen rectangles per frame on a slow processor: a band is a fixed array, bands are
 * only split, never merged, until Clear takes them back for reuse, and a band that would need more
 * than 24 clean spans becomes dirty as a whole, so that one crowded band costs its neighbours no
 * detail.
 */
class DirtyManager
{
public:
    DirtyManager(UInt16 width, UInt16 height);
    ~DirtyManager();
    DirtyManager(const DirtyManager&) = delete;
    DirtyManager& operator=(const DirtyManager&) = delete;

    /** Makes everything clean. Keeps all band records for reuse. */
    void Clear();
    /** Makes everything dirty until the next Clear. */
    void Fill() { _filled = true; }
    /** Makes a rectangle dirty, cut at the area. */
    void Add(const DirtyRect& dirty_rect);
    /**
     * Whether `bound_rect` touches dirty pixels and `SearchRect` overlaps it. A bound that begins
     * left of 0 touches the dirty interval before the first clean span, also where that is empty.
     */
    bool Check(const DirtyRect& bound_rect, const DirtyRect& SearchRect) const;
    /**
     * Whether Check and Handle of this bound need be asked; false when their answer is nothing,
     * whatever the other rectangle is. Looks at the rectangle around all that was added.
     */
    bool MayTouch(const DirtyRect& bound_rect) const
    {
        if (_filled || bound_rect.x1 < 0)
            return true;
        return bound_rect.x1 < _right && bound_rect.x2 > _left && bound_rect.y1 < _bottom &&
               bound_rect.y2 > _top;
    }
    /**
     * Delivers the dirty area inside `bound_rect`, band by band from the top and left to right
     * within a band; pieces of neighbouring bands are not joined. When filled, delivers the bound.
     */
    void Handle(const DirtyRect& bound_rect, IDirtyRectHandler* handler) const;
    /** A spare or new record with the spans of `row`; the caller sets its height and successor. */
    DirtyRow* CloneRow(const DirtyRow* row);
    /** Frees every band; nothing is dirty then, and nothing is recorded, until Clear. */
    void DeleteRects();

    /** Whether the bands are as documented: their heights, counts, order and last boundary. */
    bool IsConsistent() const;

    const DirtyRow* GetFirstRow() const { return _rows; }
    const DirtyRow* GetFirstFreeRow() const { return _free; }

private:
    DirtyRow* NewRow();
    DirtyRow* SplitRow(DirtyRow* row, UInt16 upper_height);
    static void MarkSpan(DirtyRow* row, UInt16 x1, UInt16 x2);
    void Enclose(int x1, int y1, int x2, int y2);

    DirtyRow* _rows;
    DirtyRow* _free;
    UInt16 _width;
    UInt16 _height;
    bool _filled;
    Int32 _left, _top, _right, _bottom; /**< around all that is dirty in the bands */
};

} // namespace zelxxx
