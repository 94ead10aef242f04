#include "tRect2.h"

static tFixed maxOf(tFixed a, tFixed b) { return a < b ? b : a; }
static tFixed minOf(tFixed a, tFixed b) { return a < b ? a : b; }

tRect2 tRect2::FindIntersection(const tRect2& other) const
{
    return tRect2{maxOf(left, other.left), maxOf(bottom, other.bottom),
                  minOf(right, other.right), minOf(top, other.top)};
}

bool tRect2::HasIntersection(const tRect2& other) const
{
    return left <= other.right && other.left <= right && bottom <= other.top && other.bottom <= top;
}
