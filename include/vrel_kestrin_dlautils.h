/**
 * @file
 * Drawing primitives of interactive television: lines, rectangles, polygons and curves, straight
 * into a pixel buffer of the caller's, without DirectFB, blending or anti-aliasing.
 *
 * What is drawn is that of MHEG-5 (ISO/IEC 13522-5). Thin lines are Bresenham's, polygons are
 * clipped by Sutherland and Hodgman's algorithm, ellipses are traced by midpoints.
 *
 * There is one drawing context, the buffer last given to DLA_Init. A pixel is a 32-bit word and a
 * colour is the word to store: what its bytes mean is the buffer's affair. Pixel (x, y) is the word
 * x + y * width; (0, 0) is the top left one. Coordinates may lie anywhere: every primitive is
 * clipped to the buffer, and nothing outside it is ever written. Sums are 16 bits wide and wrap, so
 * keep shapes, with their outlines, between -32768 and 32767.
 *
 * Rectangles are half open: (x2, y2) is the first pixel that is not part of one. The box of an
 * ellipse is given by its top left pixel and its size. End points of lines are on them.
 *
 * Line widths are pixels. An even width reaches one pixel further to the left or top than to the
 * right or bottom. Width 0 draws no line. A joint of width 3 is a bar of three pixels.
 *
 * Angles count 1/64 degree, counter-clockwise on the screen from three o'clock; a full turn is
 * 23040. They are rounded to whole degrees, halves up.
 *
 * Results: every drawing function returns FALSE, and draws nothing, before the first successful
 * DLA_Init, and TRUE otherwise, also when there was nothing to draw.
 *
 * Ownership: the buffer is the caller's, and so are the points, which are not kept.
 *
 * Threads: one context and no lock, so all calls come from one thread at a time.
 */
#pragma once

#include "vrel_kestrin_datatype.h"

/**
 * @defgroup dla Drawing primitives
 * Lines, polygons and curves of interactive television, into a 32-bit buffer of the caller's.
 * @{
 */

typedef int16_t S16BIT;  /**< signed, 16 bits: a coordinate in pixels */
typedef uint16_t U16BIT; /**< unsigned, 16 bits: a size in pixels, or an angle */
typedef int32_t S32BIT;  /**< signed, 32 bits */
typedef uint32_t U32BIT; /**< unsigned, 32 bits: a pixel */
typedef uint8_t U8BIT;   /**< unsigned, 8 bits */
typedef U8BIT BOOLEAN;   /**< TRUE or FALSE */

#ifndef FALSE
/** The answer before a successful DLA_Init. */
#define FALSE 0
#endif
#ifndef TRUE
/** The answer when it was drawn, or there was nothing to draw. */
#define TRUE 1
#endif

/** A point of the buffer's plane, in pixels; it may lie outside the buffer. */
typedef struct point
{
    S16BIT x; /**< column, from the left */
    S16BIT y; /**< row, from the top */
} S_POINT;

/**
 * Chooses the buffer to draw into. It is not held: it must stay while anything draws.
 *
 * @param canvas  `width` * `height` words, rows directly after each other
 * @param width   pixels in a row, 1 to 65535; coordinates reach 32767
 * @param height  rows, likewise
 * @return FALSE, with the former buffer still in force, for a null buffer or a size of 0
 */
KESTRIN_EXPORT BOOLEAN DLA_Init(U32BIT* canvas, U16BIT width, U16BIT height);

/**
 * A line with both end points on it. From width 2 its ends are square, and a slanting line is drawn
 * as a filled quadrilateral.
 *
 * A thin line that leaves the buffer is drawn between the points where it does, rounded.
 *
 * @param x1, y1  one end
 * @param x2, y2  the other end
 * @param width   0 draws nothing
 * @param colour  the word to store
 * @return FALSE before DLA_Init
 */
KESTRIN_EXPORT BOOLEAN DLA_Line(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width,
                                U32BIT colour);

/**
 * A filled rectangle with an outline centred on its outermost pixels, with round corners. An empty
 * rectangle draws nothing at all.
 *
 * @param x1, y1       top left pixel
 * @param x2, y2       the first column and row that are not covered
 * @param width        of the outline; 0 leaves it out
 * @param fill_colour  always painted: there is no colour that means none
 * @param line_colour  of the outline
 * @return FALSE before DLA_Init
 */
KESTRIN_EXPORT BOOLEAN DLA_Rectangle(S16BIT x1, S16BIT y1, S16BIT x2, S16BIT y2, U16BIT width,
                                     U32BIT fill_colour, U32BIT line_colour);

/**
 * A frame along the inner edges of the whole buffer.
 *
 * @param width        of the frame, inwards; 0 draws nothing. Sides may be missing of one wider
 *                     than 32768, and of one wider than 1 on a buffer of more than 32768 a side
 * @param line_colour  the word to store
 * @return FALSE before DLA_Init
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
 * @param points       `num_points` points; null draws nothing
 * @param num_points   fewer than three draw nothing
 * @param width        of the outline, with round joins; 0 leaves it out
 * @param fill_colour  always painted
 * @param line_colour  of the outline
 * @return FALSE before DLA_Init
 */
KESTRIN_EXPORT BOOLEAN DLA_Polygon(S_POINT* points, U16BIT num_points, U16BIT width,
                                   U32BIT fill_colour, U32BIT line_colour);

/**
 * Connected lines with round joins and square ends.
 *
 * @param points      `num_points` points; null draws nothing
 * @param num_points  fewer than three draw nothing: for two points call DLA_Line
 * @param width       0 draws nothing
 * @param colour      the word to store
 * @return FALSE before DLA_Init
 */
KESTRIN_EXPORT BOOLEAN DLA_Polyline(S_POINT* points, U16BIT num_points, U16BIT width,
                                    U32BIT colour);

/**
 * The ellipse inscribed in a box, filled and outlined.
 *
 * Sums are 32 bits wide: where both radii are about 1000 or more they wrap, and the ellipse comes
 * out wrong or not at all. Arcs and sectors have no such limit.
 *
 * @param x, y         top left pixel of the box
 * @param w, h         its size; 0 draws nothing
 * @param width        of the outline, centred on the ellipse; 0 leaves it out
 * @param fill_colour  always painted
 * @param line_colour  of the outline
 * @return FALSE before DLA_Init
 */
KESTRIN_EXPORT BOOLEAN DLA_Ellipse(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT width,
                                   U32BIT fill_colour, U32BIT line_colour);

/**
 * A part of the outline of the ellipse inscribed in a box.
 *
 * @param x, y    top left pixel of the box
 * @param w, h    its size; 0 draws nothing
 * @param start   angle of the first end, 0 to 23039; others draw nothing
 * @param arc     extent from there, counter-clockwise, 1 to 23039; others draw nothing, and 1 draws
 *                the whole ellipse
 * @param width   of the line, centred on the ellipse; 0 draws nothing
 * @param colour  the word to store
 * @return FALSE before DLA_Init
 */
KESTRIN_EXPORT BOOLEAN DLA_Arc(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT start, U16BIT arc,
                               U16BIT width, U32BIT colour);

/**
 * A filled and outlined piece of the ellipse inscribed in a box, between the two radii at the ends
 * of an arc. A box one pixel wide or high is drawn as a rectangle.
 *
 * @param x, y         top left pixel of the box
 * @param w, h         its size; 0 draws nothing
 * @param start, arc   angles as for DLA_Arc
 * @param width        of the outline, which includes the radii, with round joins; 0 leaves it out
 * @param fill_colour  always painted
 * @param line_colour  of the outline
 * @return FALSE before DLA_Init
 */
KESTRIN_EXPORT BOOLEAN DLA_Sector(S16BIT x, S16BIT y, U16BIT w, U16BIT h, U16BIT start, U16BIT arc,
                                  U16BIT width, U32BIT fill_colour, U32BIT line_colour);

/**
 * Memory, to be given to MHEG5_FREE. Without memory the process ends.
 *
 * @param iSize  bytes
 * @return never null
 */
KESTRIN_EXPORT void* MHEG5_MALLOC(int iSize);
/** Frees memory. @param tPtr  what MHEG5_MALLOC returned; null is ignored */
KESTRIN_EXPORT void MHEG5_FREE(U8BIT* tPtr);

/** @} */
