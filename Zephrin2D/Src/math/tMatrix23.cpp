#include "tMatrix23.h"

tMatrix23::tMatrix23() : m00(ONE_X), m01(), m02(), m10(), m11(ONE_X), m12(), z() {}

tMatrix23::tMatrix23(tVect2 reg, tVect2 scale, tFixed rotation, tVect3 position)
    : m00(), m01(), m02(), m10(), m11(), m12(), z()
{
    setTransform(reg, scale, rotation, position);
}

void tMatrix23::setTransform(tVect2 reg, tVect2 scale, tFixed rotation, tVect3 position)
{
    const tFixed s = sin(rotation);
    const tFixed c = cos(rotation);
    m00 = c * scale.x;
    m01 = -(s * scale.y);
    m10 = s * scale.x;
    m11 = c * scale.y;
    setPlacement(reg, position);
}
