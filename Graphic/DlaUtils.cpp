#include "DlaUtils.h"
#include "dla_span_p.h"

#include <cstdlib>

#include "dla_assert_p.h"

DLA_INFO dla_info = {};

BOOLEAN DLA_Init(U32BIT* canvas, U16BIT width, U16BIT height)
{
    if (!canvas || width == 0 || height == 0)
        return FALSE;
    dla_info = {canvas, width, height, TRUE};
    return TRUE;
}

void* MHEG5_MALLOC(int iSize)
{
    void* memory = std::malloc(static_cast<std::size_t>(iSize));
    if (!memory)
        assert(0);
    return memory;
}

void MHEG5_FREE(U8BIT* tPtr)
{
    std::free(tPtr);
}

void PutPixel(S16BIT x, S16BIT y, U32BIT c)
{
    if (IsColumn(x) && IsRow(y))
        *PixelAt(x, y) = c;
}

void FillSimpleRectangle(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U32BIT colour)
{
    FillBox(x1, y1, x2 + 1, y2 + 1, colour);
}

namespace {

/** Fills a row of a disc, inclusive; one that is clipped to a single pixel is left out. */
void FillDiscRow(S32BIT y, S32BIT x1, S32BIT x2, U32BIT colour)
{
    x1 = std::max(x1, 0);
    x2 = std::min(x2, dla_info.width - 1);
    if (x1 < x2)
        FillRow(y, x1, x2 + 1, colour);
}

} // namespace

void FillCircle(S16BIT cx, S16BIT cy, U16BIT width, U32BIT colour)
{
    const S32BIT r = width >> 1;
    const S32BIT even = width % 2 == 0 ? 1 : 0;
    if (cx + r < 0 || cx - r >= dla_info.width || cy + r < 0 || cy - r >= dla_info.height)
        return;
    if (!even)
        FillRow(cy, cx - r, cx + r + 1, colour);
    if (width < 2)
        return;

    S32BIT f = 1 - r;
    S32BIT x = 0;
    S32BIT y = r;
    for (S32BIT ddF_y = -2 * r; y > x;) {
        if (f >= 0) {
            ddF_y += 2;
            f += ddF_y;
            --y;
        }
        ++x;
        f += 2 * x + 1;
        FillDiscRow(cy + y - even, cx - x, cx + x - even, colour);
        FillDiscRow(cy - y, cx - x, cx + x - even, colour);
        FillDiscRow(cy + x - even, cx - y, cx + y - even, colour);
        FillDiscRow(cy - x, cx - y, cx + y - even, colour);
    }
}

BOOLEAN DLA_Rectangle(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width, U32BIT fill_colour,
                      U32BIT line_colour)
{
    if (!dla_info.init)
        return FALSE;
    if (x1 >= x2 || y1 >= y2)
        return TRUE;

    const auto right = static_cast<S16BIT>(x2 - 1);
    const auto bottom = static_cast<S16BIT>(y2 - 1);
    FillSimpleRectangle(x1, y1, right, bottom, fill_colour);
    const S_POINT corners[] = {{x1, y1}, {right, y1}, {right, bottom}, {x1, bottom}, {x1, y1}};
    for (int i = 0; i < 4; ++i) {
        const S_POINT& to = corners[i + 1];
        DrawLine(corners[i].x, corners[i].y, to.x, to.y, width, line_colour);
        if (width > 1)
            FillCircle(to.x, to.y, width, line_colour);
    }
    return TRUE;
}

BOOLEAN DLA_Border(U16BIT width, U32BIT line_colour)
{
    if (!dla_info.init)
        return FALSE;
    if (width == 0)
        return TRUE;
    const S32BIT right = dla_info.width;
    const S32BIT bottom = dla_info.height;
    FillBox(0, 0, right, width, line_colour);
    FillBox(right - width, 0, right, bottom, line_colour);
    FillBox(0, 0, width, bottom, line_colour);
    FillBox(0, bottom - width, right, bottom, line_colour);
    return TRUE;
}
