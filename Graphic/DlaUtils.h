/**
 * The drawing context and what all primitives are made of: pixels, rectangles, discs, lines and
 * filled polygons.
 *
 * Coordinates are 16 bit where a primitive hands them to another, and sums that pass the range wrap
 * there; within a primitive they are 32 bit and clipped. Rectangles are inclusive at all sides
 * unless they are called half-open.
 */
#pragma once

#include "vrel_kestrin_dlautils.h"

/** Where everything is drawn; all zero until the first DLA_Init. */
struct DLA_INFO
{
    U32BIT* screen; /**< pixel (0, 0); the caller's */
    U16BIT width;   /**< pixels in a row, and from one row to the next */
    U16BIT height;
    BOOLEAN init;
};
extern DLA_INFO dla_info;

/** Sets a pixel, if it is in the buffer. */
void PutPixel(S16BIT x, S16BIT y, U32BIT c);

/** Fills the part of a rectangle that is in the buffer. */
void FillSimpleRectangle(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U32BIT colour);

/**
 * Fills a disc of diameter `width`, for round joins. It is not quite round: of its rows those that
 * clipping leaves a single pixel of are missing, but for the centre row of an odd width.
 */
void FillCircle(S16BIT cx, S16BIT cy, U16BIT width, U32BIT colour);

/** Draws a line of one pixel that lies in the buffer as a whole: ends the process otherwise. */
void DrawThinLine(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U32BIT colour);

/** Draws the part of a line that is in the buffer. Its ends are square. */
void DrawLine(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width, U32BIT colour);

/** Fills a polygon as DLA_Polygon does; `points` is not null unless there are none. */
void FillPolygon(const S_POINT* points, U16BIT num_points, U32BIT colour);
