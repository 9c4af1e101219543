/**
 * The drawing primitives a second time, for comparison with those of the library.
 *
 *     DlaModel model(64, 48, kBackground);
 *     model.Line({3, 4}, {50, 20}, 1, colour);
 *     // model.Picture() is what DLA_Line must have left in a buffer of 64 x 48
 *
 * Where the library steps along a shape with running error terms, the model asks of each pixel of
 * the picture whether it belongs to the shape: by inequalities for lines, by the edges that cross
 * the pixel's row for polygons, by the polynomial of the curve for discs and ellipses. It counts in
 * 64 bits; where the primitives pass 16 bits, or where the ellipse lets 32 bits wrap, it says so.
 *
 * Arcs and sectors are not here: their end points may differ by a pixel. TraceEllipse gives the
 * points that an arc chooses from.
 */
#pragma once

#include "argb_image.h"

#include <cstdint>
#include <vector>

namespace kestrin_test {

/** One step along the quarter right of and above an ellipse's centre. */
struct EllipseStep
{
    std::int64_t x, y; // offsets from the centre, before the shift of even sizes
    bool fills;        // whether the row between x and its mirror image is filled here
};

enum class EllipseArithmetic
{
    Wraps32, // as DLA_Ellipse: unsigned 32 bits, compared as signed
    Exact    // as DLA_Arc and DLA_Sector: 64 bits
};

/** Both regions of the trace, in order, for the radii of a box. One point if both are 0. */
std::vector<EllipseStep> TraceEllipse(std::int64_t rx, std::int64_t ry,
                                      EllipseArithmetic arithmetic);

/** Where the ellipse of a box of w x h pixels lies. */
struct EllipseBox
{
    EllipseBox(std::int16_t x, std::int16_t y, std::uint16_t w, std::uint16_t h);

    std::int64_t rx, ry;           // radii
    std::int16_t cx, cy;           // centre, of even boxes the pixel left of and above it
    std::int64_t shift_x, shift_y; // of the right and lower half: 1 for an even size
};

class DlaModel
{
public:
    struct Point
    {
        std::int16_t x, y;
    };

    DlaModel(int width, int height, std::uint32_t background) : _picture(width, height, background)
    {
    }

    const kestrin_display::ArgbImage& Picture() const { return _picture; }

    void Line(Point from, Point to, std::uint16_t width, std::uint32_t colour);
    void Rectangle(std::int16_t x1, std::int16_t y1, std::int16_t x2, std::int16_t y2,
                   std::uint16_t width, std::uint32_t fill, std::uint32_t line);
    void Border(std::uint16_t width, std::uint32_t colour);
    void Polyline(const std::vector<Point>& points, std::uint16_t width, std::uint32_t colour);
    void Polygon(const std::vector<Point>& points, std::uint16_t width, std::uint32_t fill,
                 std::uint32_t line);
    void Ellipse(std::int16_t x, std::int16_t y, std::uint16_t w, std::uint16_t h,
                 std::uint16_t width, std::uint32_t fill, std::uint32_t line);

    /** The round join of two segments. */
    void Disc(Point centre, std::uint16_t width, std::uint32_t colour);

private:
    template <typename Belongs>
    void Paint(std::int64_t x1, std::int64_t y1, std::int64_t x2, std::int64_t y2,
               std::uint32_t colour, Belongs belongs);
    void Box(std::int16_t x1, std::int16_t y1, std::int16_t x2, std::int16_t y2,
             std::uint32_t colour);
    void Join(Point from, Point to, std::uint16_t width, std::uint32_t colour);
    void ThinLine(Point from, Point to, std::uint32_t colour);
    void ThinLineInside(std::int64_t x1, std::int64_t y1, std::int64_t x2, std::int64_t y2,
                        std::uint32_t colour);
    void ThickLine(Point from, Point to, std::int64_t width, std::uint32_t colour);
    void FillPolygon(const std::vector<Point>& points, std::uint32_t colour);

    kestrin_display::ArgbImage _picture;
};

} // namespace kestrin_test
