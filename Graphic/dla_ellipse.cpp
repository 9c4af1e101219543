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
        FillRow(box.Upper(dy), box.Left(dx), box.Right(dx) + 1, fill_colour);
        FillRow(box.Lower(dy), box.Left(dx), box.Right(dx) + 1, fill_colour);
    });
    const OutlinePen pen(width, line_colour);
    TraceOutline<U32BIT>(box, [&](S32BIT dx, S32BIT dy) {
        pen.Draw(box.Right(dx), box.Lower(dy));
        pen.Draw(box.Left(dx), box.Lower(dy));
        pen.Draw(box.Left(dx), box.Upper(dy));
        pen.Draw(box.Right(dx), box.Upper(dy));
    });
    return TRUE;
}
