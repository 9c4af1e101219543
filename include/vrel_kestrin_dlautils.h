/**
 * Drawing primitives of interactive television: lines, rectangles, polygons and curves, straight
 * into a pixel buffer of the caller's, without DirectFB, blending or anti-aliasing.
 *
 * There is one drawing context, the buffer last given to DLA_Init. A pixel is a 32-bit word and a
 * colour is the word to store: what its bytes mean is the buffer's affair. Pixel (x, y) is the word
 * x + y * width; (0, 0) is the top left one. Coordinates may lie anywhere: every primitive is
 * clipped to the buffer, and nothing outside it is ever written.
 *
 * Line widths are pixels. An even width reaches one pixel further to the left or top than to the
 * right or bottom. Width 0 draws no line.
 *
 * Angles count 1/64 degree, counter-clockwise on the screen from three o'clock; a full turn is
 * 23040. They are rounded to whole degrees.
 *
 * Results: every drawing function returns FALSE, and draws nothing, before the first successful
 * DLA_Init, and TRUE otherwise, also when there was nothing to draw.
 *
 * Threads: one context and no lock, so all calls come from one thread at a time.
 */
#pragma once

#include "vrel_kestrin_datatype.h"

typedef int16_t S16BIT;
typedef uint16_t U16BIT;
typedef int32_t S32BIT;
typedef uint32_t U32BIT;
typedef uint8_t U8BIT;
typedef U8BIT BOOLEAN; /**< TRUE or FALSE */

#ifndef FALSE
#define FALSE 0
#endif
#ifndef TRUE
#define TRUE 1
#endif

/** A point of the buffer's plane, in pixels; it may lie outside the buffer. */
typedef struct point
{
    S16BIT x;
    S16BIT y;
} S_POINT;

/**
 * Chooses the buffer to draw into. It is not held: it must stay while anything draws.
 *
 * @param canvas  `width` * `height` words, rows directly after each other
 * @return FALSE, with the former buffer still in force, for a null buffer or a size of 0
 */
KESTRIN_EXPORT BOOLEAN DLA_Init(U32BIT* canvas, U16BIT width, U16BIT height);

/**
 * A line with both end points on it. From width 2 its ends are square, and a slanting line is drawn
 * as a filled quadrilateral.
 */
KESTRIN_EXPORT BOOLEAN DLA_Line(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width,
                                U32BIT colour);

/**
 * A filled rectangle, up to but not including (x2, y2), with an outline along its outermost pixels.
 * An empty rectangle draws nothing at all. A width of 0 leaves the outline out; the fill is always
 * painted.
 */
KESTRIN_EXPORT BOOLEAN DLA_Rectangle(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width,
                                     U32BIT fill_colour, U32BIT line_colour);

/**
 * A frame of `width` pixels along the inner edges of the whole buffer. Sides may be missing of one
 * wider than 32768, and of one wider than 1 on a buffer of more than 32768 pixels a side.
 */
KESTRIN_EXPORT BOOLEAN DLA_Border(U16BIT width, U32BIT line_colour);

/**
 * A filled and outlined polygon, closed from the last point to the first. Left and top edges are
 * inside the fill, right and bottom edges outside, and so is the row of a single topmost point.
 *
 * The fill is right for polygons that have one left and one right side between their topmost and
 * bottommost points, as convex ones do. Of others each row gets the one span between the two sides,
 * or nothing where these have changed places.
 *
 * @param points  `num_points` points; null, or fewer than three, draws nothing
 */
KESTRIN_EXPORT BOOLEAN DLA_Polygon(S_POINT* points, U16BIT num_points, U16BIT width,
                                   U32BIT fill_colour, U32BIT line_colour);

/**
 * Connected lines with round joins and square ends.
 *
 * @param points  `num_points` points; null, or fewer than three, draws nothing: for two points call
 *                DLA_Line
 */
KESTRIN_EXPORT BOOLEAN DLA_Polyline(S_POINT* points, U16BIT num_points, U16BIT width,
                                    U32BIT colour);

/**
 * The ellipse inscribed in the box of `w` x `h` pixels at (x, y), filled and outlined. A size of 0
 * draws nothing.
 *
 * Sums are 32 bits wide: where both radii are about 1000 or more they wrap, and the ellipse comes
 * out wrong or not at all. Arcs and sectors have no such limit.
 */
KESTRIN_EXPORT BOOLEAN DLA_Ellipse(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT width,
                                   U32BIT fill_colour, U32BIT line_colour);

/**
 * A part of the outline of the ellipse inscribed in a box.
 *
 * @param start  angle of the first end, 0 to 23039
 * @param arc    extent from there, 1 to 23039; an extent of 1 draws the whole ellipse. Other
 * angles, and a size of 0, draw nothing
 */
KESTRIN_EXPORT BOOLEAN DLA_Arc(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT start, U16BIT arc,
                               U16BIT width, U32BIT colour);

/**
 * A filled and outlined piece of the ellipse inscribed in a box, between the two radii at the ends
 * of an arc. Angles as for DLA_Arc. A box one pixel wide or high is drawn as a rectangle.
 */
KESTRIN_EXPORT BOOLEAN DLA_Sector(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT start, U16BIT arc,
                                  U16BIT width, U32BIT fill_colour, U32BIT line_colour);

/** Memory of `iSize` bytes, never null: without memory the process ends. Free with MHEG5_FREE. */
KESTRIN_EXPORT void* MHEG5_MALLOC(int iSize);
/** Frees what MHEG5_MALLOC returned; null is ignored. */
KESTRIN_EXPORT void MHEG5_FREE(U8BIT* tPtr);
