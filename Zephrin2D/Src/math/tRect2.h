#ifndef ZEPHRIN2D_TRECT2_H
#define ZEPHRIN2D_TRECT2_H

#include "tVect.h"

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

    /// The rectangle around nothing: left > right, so IsEmpty() is true.
    static tRect2 Empty() { return tRect2{MAX_X, MAX_X, MIN_X, MIN_X}; }
    bool IsEmpty() const { return left > right || bottom > top; }
    /// Grows to take in p.
    void Include(tVect2 p);
    /// The smallest rectangle around both (either may be empty).
    tRect2 Union(const tRect2& other) const;
    /// Left and bottom edges inside, right and top outside, so that tiles
    /// side by side never both contain a point.
    bool Contains(tVect2 p) const { return p.x >= left && p.x < right && p.y >= bottom && p.y < top; }
};

#endif
