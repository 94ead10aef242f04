#include "CGraphicCircle.h"

#include <GLES/gl.h>

CGraphicCircle::CGraphicCircle() : mRadius(ONE_X) {}

void CGraphicCircle::setSides(unsigned int sides)
{
    CGraphicShape::setVertexArray(static_cast<int>(sides + 2), 0);
}

void CGraphicCircle::setRadius(tFixed r)
{
    // Signed, so that a circle without sides (fewer than 2 vertices) fills nothing.
    const int64_t n = mVertexCount;
    const int64_t sides = n - 2;
    const int64_t step = sides != 0 ? DEGREES360_X.raw() / sides : 0;
    mRadius = r;
    setVertexN(0, VECT2_0);
    setVertexN(1, tVect2{ZERO_X, r});
    setVertexN(static_cast<unsigned int>(n - 1), tVect2{ZERO_X, r});
    const int64_t half = sides / 2 + 1;
    tFixed angle = tFixed::fromRaw(static_cast<int32_t>(step));
    for (int64_t j = 1; j + 1 <= half; ++j) {
        const tFixed x = sin(angle) * r;
        const tFixed y = cos(angle) * r;
        // Mirrored about the y axis, so both halves are exactly symmetric.
        setVertexN(static_cast<unsigned int>(j + 1), tVect2{-x, y});
        setVertexN(static_cast<unsigned int>(n - (j + 1)), tVect2{x, y});
        angle += tFixed::fromRaw(static_cast<int32_t>(step));
    }
}

void CGraphicCircle::setOuterColor(tColor c)
{
    for (unsigned int i = 1; i < mVertexCount; ++i)
        setColorN(i, c);
}

void CGraphicCircle::draw(tColor* color)
{
    if (!mVisible)
        return;
    pushTransform();
    applyColor(color);
    drawArrays(GL_TRIANGLE_FAN, mVertexCount);
    popTransform();
}
