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

void tRect2::Include(tVect2 p)
{
    if (p.x < left)
        left = p.x;
    if (p.x > right)
        right = p.x;
    if (p.y < bottom)
        bottom = p.y;
    if (p.y > top)
        top = p.y;
}

tRect2 tRect2::Union(const tRect2& other) const
{
    if (other.IsEmpty())
        return *this;
    if (IsEmpty())
        return other;
    tRect2 r = *this;
    r.Include(tVect2{other.left, other.bottom});
    r.Include(tVect2{other.right, other.top});
    return r;
}
