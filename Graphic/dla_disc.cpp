#include "dla_disc_p.h"
#include "dla_span_p.h"

Disc::Disc(U16BIT width) : _r(width >> 1), _even(width % 2 == 0 ? 1 : 0), _half(_few)
{
    const auto count = static_cast<std::size_t>(_r) + 1;
    if (_r > kFew)
        _half = static_cast<U16BIT*>(MHEG5_MALLOC(static_cast<int>(count * sizeof(U16BIT))));
    std::fill_n(_half, count, U16BIT{0});
    _half[0] = static_cast<U16BIT>(_r);

    S32BIT f = 1 - _r;
    S32BIT ddF_y = -2 * _r;
    S32BIT x = 0;
    for (S32BIT y = _r; y > x;) {
        if (f >= 0) {
            ddF_y += 2;
            f += ddF_y;
            --y;
        }
        ++x;
        f += 2 * x + 1;
        SetRow(y, x);
        SetRow(x, y);
    }
}

Disc::~Disc()
{
    if (_half != _few)
        MHEG5_FREE(reinterpret_cast<U8BIT*>(_half));
}

/** Widens a row; row 0 of an even disc is its first. */
void Disc::SetRow(S32BIT k, S32BIT half)
{
    U16BIT& row = _half[k == 0 ? _even : k];
    row = static_cast<U16BIT>(std::max<S32BIT>(row, half));
}

/**
 * The part of a row that is drawn. A disc's row of a single pixel, also where clipping has left no
 * more, is left out, but for the centre row of an odd disc. It is enough to look at a run as a
 * whole: any two neighbouring pixels of its row are also neighbours in the row of one of its discs.
 */
inline Disc::Span Disc::SpanAt(const DiscRun& run, S32BIT row) const
{
    const S32BIT down = row - run.y;
    const S32BIT k = down < 0 ? -down : down + _even;
    if (k > _r)
        return {0, 0};
    const S32BIT half = _half[k];
    if (half == 0 && k > 0)
        return {0, 0};
    const S32BIT left = std::max(run.x1 - half, 0);
    const S32BIT right = std::min<S32BIT>(run.x2 + half - _even + 1, dla_info.width);
    if (right - left < (k == 0 ? 1 : 2))
        return {0, 0};
    return {left, right};
}

/** Of a run that no column of is outside the buffer. */
inline void Disc::DrawInside(const DiscRun& run, S32BIT top, S32BIT bottom, U32BIT colour) const
{
    const S32BIT length = run.x2 - run.x1 + 1 - _even;
    U32BIT* row = PixelAt(run.x1, top);
    for (S32BIT down = top - run.y; down < bottom - run.y; ++down, row += dla_info.width) {
        const S32BIT half = _half[down < 0 ? -down : down + _even];
        if (half > 0 || down == 0)
            FillWords(row - half, static_cast<std::size_t>(length + 2 * half), colour);
    }
}

void Disc::Draw(const DiscRun& run, U32BIT colour) const
{
    const S32BIT top = std::max(run.y - _r, 0);
    const S32BIT bottom = std::min<S32BIT>(run.y + _r - _even + 1, dla_info.height);
    if (top >= bottom)
        return;
    if (run.x1 >= _r && run.x2 + _r < dla_info.width) {
        DrawInside(run, top, bottom, colour);
        return;
    }
    for (S32BIT row = top; row < bottom; ++row) {
        const Span span = SpanAt(run, row);
        FillWords(PixelAt(span.left, row), static_cast<std::size_t>(span.right - span.left),
                  colour);
    }
}

void Disc::DrawAfter(const DiscRun& drawn, const DiscRun& run, U32BIT colour) const
{
    if (_r < kWide) {
        Draw(run, colour);
        return;
    }
    const S32BIT end = std::min<S32BIT>(run.y + _r - _even + 1, dla_info.height);
    for (S32BIT row = std::max(run.y - _r, 0); row < end; ++row) {
        const Span span = SpanAt(run, row);
        const Span old = SpanAt(drawn, row);
        FillRow(row, span.left, std::min(span.right, old.left), colour);
        FillRow(row, std::max(span.left, old.right), span.right, colour);
    }
}

void FillCircle(S16BIT cx, S16BIT cy, U16BIT width, U32BIT colour)
{
    Disc(width).Draw(cx, cy, colour);
}
