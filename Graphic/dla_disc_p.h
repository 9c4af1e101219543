/** Discs of one diameter: worked out once, drawn many times. */
#pragma once

#include "DlaUtils.h"

/** Centres of discs side by side, from x1 to x2, both included. */
struct DiscRun
{
    S32BIT x1;
    S32BIT x2;
    S32BIT y;
};

/**
 * A disc as the half-widths of its rows. Row k counts from 1, upward from the one above the centre
 * and downward from the one below:
 *
 *     odd width           even width
 *      -***-   k = 2       --**--   k = 2
 *      *****   k = 1       -****-   k = 1
 *      **c**   the centre  -***c-   k = 1: an even disc has its centre right of and below
 *      *****   k = 1       --**--   k = 2  its middle, and no centre row
 *      -***-   k = 2
 */
class Disc
{
public:
    explicit Disc(U16BIT width);
    ~Disc();
    Disc(const Disc&) = delete;
    Disc& operator=(const Disc&) = delete;

    /** Half the width, rounded down. */
    S32BIT Radius() const { return _r; }

    void Draw(S32BIT cx, S32BIT cy, U32BIT colour) const { Draw(DiscRun{cx, cx, cy}, colour); }

    /** Draws all discs of a run. */
    void Draw(const DiscRun& run, U32BIT colour) const;

    /** The same, given that those of another run have just been drawn and need not be again. */
    void DrawAfter(const DiscRun& drawn, const DiscRun& run, U32BIT colour) const;

private:
    struct Span
    {
        S32BIT left;
        S32BIT right; /**< not included */
    };

    void DrawInside(const DiscRun& run, S32BIT top, S32BIT bottom, U32BIT colour) const;
    void SetRow(S32BIT k, S32BIT half);
    Span SpanAt(const DiscRun& run, S32BIT row) const;

    static constexpr S32BIT kFew = 64;
    /** From here on looking at what has been drawn is faster than drawing it again. */
    static constexpr S32BIT kWide = 16;

    S32BIT _r;
    S32BIT _even;  /**< 1 for an even width */
    U16BIT* _half; /**< _r + 1 of them; that of the centre row is the first */
    U16BIT _few[kFew + 1];
};
