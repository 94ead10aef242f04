#ifndef ZEPHRIN2D_TRECT2_H
#define ZEPHRIN2D_TRECT2_H

#include "tFixed.h"

/// An axis-aligned rectangle, y pointing up.
struct tRect2
{
    tFixed left;    ///< minimum x
    tFixed bottom;  ///< minimum y
    tFixed right;   ///< maximum x
    tFixed top;     ///< maximum y

    /// The overlap; inverted (left > right or bottom > top) when there is
    /// none, so test HasIntersection first.
    tRect2 FindIntersection(const tRect2& other) const;
    /// Inclusive: rectangles sharing only an edge or a corner intersect.
    bool HasIntersection(const tRect2& other) const;
};

#endif
