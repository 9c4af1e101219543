#include "dla_ellipse_p.h"
#include "dla_span_p.h"

BOOLEAN DLA_Ellipse(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT width, U32BIT fill_colour,
                    U32BIT line_colour)
{
    if (!dla_info.init)
        return FALSE;
    if (w == 0 || h == 0)
        return TRUE;

    const EllipseBox box(x, y, w, h);
    TraceRows<U32BIT>(box, [&](S32BIT dx, S32BIT dy) {
        const S32BIT left = std::max(box.Left(dx), 0);
        const S32BIT right = std::min<S32BIT>(box.Right(dx) + 1, dla_info.width);
        if (left >= right)
            return;
        for (const S32BIT row : {box.Upper(dy), box.Lower(dy)})
            if (IsRow(row))
                FillWords(PixelAt(left, row), static_cast<std::size_t>(right - left), fill_colour);
    });
    if (width == 0)
        return TRUE;
    const Disc disc(width);
    OutlinePen pens[4] = {
        {disc, line_colour}, {disc, line_colour}, {disc, line_colour}, {disc, line_colour}};
    TraceOutline<U32BIT>(box, [&](S32BIT first, S32BIT last, S32BIT dy) {
        pens[0].Draw(box.Right(first), box.Right(last), box.Lower(dy));
        pens[1].Draw(box.Left(last), box.Left(first), box.Lower(dy));
        pens[2].Draw(box.Left(last), box.Left(first), box.Upper(dy));
        pens[3].Draw(box.Right(first), box.Right(last), box.Upper(dy));
    });
    return TRUE;
}
