#ifndef ZEPHRIN2D_TMATRIX23_H
#define ZEPHRIN2D_TMATRIX23_H

#include "tVect.h"

/// A 2D affine transform with a depth offset:
/// x' = m00 x + m01 y + m02, y' = m10 x + m11 y + m12, z' = z + this->z.
struct tMatrix23
{
    tFixed m00, m01, m02;
    tFixed m10, m11, m12;
    tFixed z;

    /// The identity.
    tMatrix23();
    tMatrix23(tVect2 reg, tVect2 scale, tFixed rotation, tVect3 position);

    /// Moves reg to the origin, scales, rotates counter-clockwise by
    /// rotation degrees, then moves to position. Note the argument order.
    void setTransform(tVect2 reg, tVect2 scale, tFixed rotation, tVect3 position);
    /// Only the translation and depth of setTransform, for a new position or
    /// registration point under the rotation and scale the matrix was built with.
    void setPlacement(tVect2 reg, tVect3 position)
    {
        m02 = position.x - m00 * reg.x - m01 * reg.y;
        m12 = position.y - m11 * reg.y - m10 * reg.x;
        z = position.z;
    }

    /// Each product is rounded on its own before the sums.
    tVect3 operator*(const tVect3& v) const
    {
        return tVect3{m02 + m00 * v.x + m01 * v.y, m12 + m10 * v.x + m11 * v.y, v.z + z};
    }
};

#endif
