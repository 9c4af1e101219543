/** The rows of a polygon, between working them out and filling them. */
#pragma once

#include "DlaUtils.h"

/**
 * One row: columns x_start to x_end, both included. A row without pixels ends just left of its
 * start, which wraps for column 0; one whose sides have changed places ends further left.
 */
struct S_HLINE
{
    U16BIT x_start;
    U16BIT x_end;
};

/** `length` rows from y_start down, all of them in the buffer. */
struct S_HLINE_LIST
{
    S32BIT length;
    S32BIT y_start;
    S_HLINE* hline;
};

/** Fills the rows that have pixels; these must lie in the buffer: ends the process otherwise. */
void FillHLines(const S_HLINE_LIST& rows, U32BIT colour);
