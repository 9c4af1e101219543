#include "DlaUtils.h"
#include "dla_disc_p.h"
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

/** The outermost pixels of the buffer, however large it is. */
void DrawThinFrame(U32BIT colour)
{
    const S32BIT width = dla_info.width;
    const S32BIT height = dla_info.height;
    FillBox(0, 0, width, 1, colour);
    FillBox(width - 1, 0, width, height, colour);
    FillBox(0, 0, 1, height, colour);
    FillBox(0, height - 1, width, height, colour);
}

} // namespace

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
    const Disc joint(width);
    for (int i = 0; i < 4; ++i) {
        const S_POINT& to = corners[i + 1];
        DrawLine(corners[i].x, corners[i].y, to.x, to.y, width, line_colour);
        if (width > 1)
            joint.Draw(to.x, to.y, line_colour);
    }
    return TRUE;
}

BOOLEAN DLA_Border(U16BIT width, U32BIT line_colour)
{
    if (!dla_info.init)
        return FALSE;
    if (width == 0)
        return TRUE;
    if (width == 1) {
        DrawThinFrame(line_colour);
        return TRUE;
    }
    // Corners wrap to 16 bits, so that not all sides of the widest borders and buffers are drawn.
    const auto right = static_cast<S16BIT>(dla_info.width - 1);
    const auto bottom = static_cast<S16BIT>(dla_info.height - 1);
    const auto inner_left = static_cast<S16BIT>(width - 1);
    const auto inner_right = static_cast<S16BIT>(dla_info.width - width);
    const auto inner_bottom = static_cast<S16BIT>(dla_info.height - width);
    FillSimpleRectangle(0, 0, right, inner_left, line_colour);
    FillSimpleRectangle(inner_right, 0, right, bottom, line_colour);
    FillSimpleRectangle(0, 0, inner_left, bottom, line_colour);
    FillSimpleRectangle(0, inner_bottom, right, bottom, line_colour);
    return TRUE;
}
