#include "dirty.h"

#include <algorithm>
#include <cassert>

namespace zelxxx {

namespace {

void DeleteRows(DirtyRow* row)
{
    while (row) {
        DirtyRow* next = row->NextRow;
        delete row;
        row = next;
    }
}

bool Overlap(const DirtyRect& bound, const DirtyRect& search)
{
    return search.y1 < bound.y2 && bound.y1 < search.y2 && search.x1 < bound.x2 &&
           search.x2 > bound.x1;
}

/** Whether the x range of `bound` meets the band's dirty intervals. */
bool RowIsTouched(const DirtyRow& row, const DirtyRect& bound)
{
    if (row.SpanCount == 0 || bound.x1 < row.SpanX[0])
        return true;
    for (int gap = 1; gap + 1 < row.SpanCount && row.SpanX[gap] < bound.x2; gap += 2) {
        if (bound.x1 < row.SpanX[gap + 1])
            return true;
    }
    return false;
}

void Deliver(IDirtyRectHandler* handler, int x1, int y1, int x2, int y2)
{
    const DirtyRect rect = {static_cast<Int16>(x1), static_cast<Int16>(y1), static_cast<Int16>(x2),
                            static_cast<Int16>(y2)};
    handler->HandleRect(rect);
}

/** Delivers the band's dirty intervals inside `bound`, between two rows of pixels. */
void DeliverRow(const DirtyRow& row, const DirtyRect& bound, int y1, int y2,
                IDirtyRectHandler* handler)
{
    if (row.SpanCount == 0) {
        Deliver(handler, bound.x1, y1, bound.x2, y2);
        return;
    }
    const int first_end = std::min<int>(bound.x2, row.SpanX[0]);
    if (bound.x1 < first_end)
        Deliver(handler, bound.x1, y1, first_end, y2);
    for (int gap = 1; gap + 1 < row.SpanCount && row.SpanX[gap] < bound.x2; gap += 2) {
        if (bound.x1 < row.SpanX[gap + 1]) {
            Deliver(handler, std::max<int>(bound.x1, row.SpanX[gap]), y1,
                    std::min<int>(bound.x2, row.SpanX[gap + 1]), y2);
        }
    }
}

} // namespace

DirtyManager::DirtyManager(UInt16 width, UInt16 height)
    : _rows(nullptr), _free(nullptr), _width(width), _height(height), _filled(false)
{
    Clear();
}

DirtyManager::~DirtyManager()
{
    DeleteRows(_rows);
    DeleteRows(_free);
}

void DirtyManager::Clear()
{
    if (!_rows) {
        _rows = NewRow();
        _rows->NextRow = nullptr;
    }
    if (DirtyRow* spare = _rows->NextRow) {
        DirtyRow* last = spare;
        while (last->NextRow)
            last = last->NextRow;
        last->NextRow = _free;
        _free = spare;
    }
    _rows->RowHeight = _height;
    _rows->SpanCount = 2;
    _rows->SpanX[0] = 0;
    _rows->SpanX[1] = _width;
    _rows->NextRow = nullptr;
    _filled = false;
    _left = _top = INT16_MAX;
    _right = _bottom = 0;
}

void DirtyManager::Add(const DirtyRect& dirty_rect)
{
    if (_filled)
        return;
    const int x1 = std::max<int>(dirty_rect.x1, 0);
    const int x2 = std::min<int>(dirty_rect.x2, _width);
    const int y1 = std::max<int>(dirty_rect.y1, 0);
    const int y2 = std::min<int>(dirty_rect.y2, _height);
    if (x2 <= x1 || y1 >= y2)
        return;

    Enclose(x1, y1, x2, y2);
    int top = 0;
    for (DirtyRow* row = _rows; row && top < dirty_rect.y2; row = row->NextRow) {
        const int bottom = top + row->RowHeight;
        if (row->SpanCount != 0 && y1 < bottom && top < y2) {
            if (top < y1) {
                row = SplitRow(row, static_cast<UInt16>(y1 - top));
                top = y1;
            }
            if (bottom > y2)
                SplitRow(row, static_cast<UInt16>(y2 - top));
            MarkSpan(row, static_cast<UInt16>(x1), static_cast<UInt16>(x2));
            // Every bound meets a band without clean spans, also an empty one.
            if (row->SpanCount == 0)
                Enclose(INT16_MIN - 1, y1, INT16_MAX + 1, y2);
        }
        top += row->RowHeight;
    }
    assert(IsConsistent());
}

bool DirtyManager::Check(const DirtyRect& bound_rect, const DirtyRect& SearchRect) const
{
    if (!Overlap(bound_rect, SearchRect))
        return false;
    if (_filled)
        return true;
    int top = 0;
    for (const DirtyRow* row = _rows; row && top < bound_rect.y2; row = row->NextRow) {
        const int bottom = top + row->RowHeight;
        if (bound_rect.y1 < bottom && RowIsTouched(*row, bound_rect))
            return true;
        top = bottom;
    }
    return false;
}

void DirtyManager::Handle(const DirtyRect& bound_rect, IDirtyRectHandler* handler) const
{
    if (_filled) {
        handler->HandleRect(bound_rect);
        return;
    }
    int top = 0;
    for (const DirtyRow* row = _rows; row && top < bound_rect.y2; row = row->NextRow) {
        const int bottom = top + row->RowHeight;
        if (bound_rect.y1 < bottom) {
            DeliverRow(*row, bound_rect, std::max<int>(top, bound_rect.y1),
                       std::min<int>(bound_rect.y2, bottom), handler);
        }
        top = bottom;
    }
}

DirtyRow* DirtyManager::CloneRow(const DirtyRow* row)
{
    DirtyRow* clone = NewRow();
    clone->SpanCount = row->SpanCount;
    std::copy_n(row->SpanX, row->SpanCount, clone->SpanX);
    return clone;
}

void DirtyManager::DeleteRects()
{
    DeleteRows(_rows);
    _rows = nullptr;
}

bool DirtyManager::IsConsistent() const
{
    int height = 0;
    for (const DirtyRow* row = _rows; row; row = row->NextRow) {
        height += row->RowHeight;
        if (row->SpanCount % 2 != 0 || row->SpanCount > DirtyRow::kCapacity)
            return false;
        if (!std::is_sorted(row->SpanX, row->SpanX + row->SpanCount))
            return false;
        if (row->SpanCount != 0 && row->SpanX[row->SpanCount - 1] != _width)
            return false;
    }
    return !_rows || height == _height;
}

void DirtyManager::Enclose(int x1, int y1, int x2, int y2)
{
    _left = std::min(_left, x1);
    _top = std::min(_top, y1);
    _right = std::max(_right, x2);
    _bottom = std::max(_bottom, y2);
}

/** A record from the spare list, or a new one. Its contents are unset. */
DirtyRow* DirtyManager::NewRow()
{
    if (!_free)
        return new DirtyRow;
    DirtyRow* row = _free;
    _free = row->NextRow;
    return row;
}

/** Cuts a band in two and returns the lower one. */
DirtyRow* DirtyManager::SplitRow(DirtyRow* row, UInt16 upper_height)
{
    DirtyRow* lower = CloneRow(row);
    lower->RowHeight = static_cast<UInt16>(row->RowHeight - upper_height);
    lower->NextRow = row->NextRow;
    row->RowHeight = upper_height;
    row->NextRow = lower;
    return lower;
}

/** Takes [x1, x2) out of a band's clean spans. */
void DirtyManager::MarkSpan(DirtyRow* row, UInt16 x1, UInt16 x2)
{
    UInt16* const begin = row->SpanX;
    UInt16* const end = begin + row->SpanCount;
    // Boundaries inside the range go away.
    UInt16* const first = std::lower_bound(begin, end, x1);
    UInt16* const last = std::lower_bound(first, end, x2);
    // An odd position lies inside a clean span: the range cuts the span there.
    UInt16 cuts[2];
    int cut_count = 0;
    if ((first - begin) % 2 != 0)
        cuts[cut_count++] = x1;
    if ((last - begin) % 2 != 0)
        cuts[cut_count++] = x2;

    const auto removed = static_cast<int>(last - first);
    const int count = row->SpanCount - removed + cut_count;
    if (cut_count > removed && count >= DirtyRow::kCapacity) {
        row->SpanCount = 0;
        return;
    }
    if (cut_count > removed)
        std::move_backward(last, end, end + (cut_count - removed));
    else
        std::move(last, end, first + cut_count);
    std::copy_n(cuts, cut_count, first);
    row->SpanCount = static_cast<UInt16>(count);
}

} // namespace zelxxx
