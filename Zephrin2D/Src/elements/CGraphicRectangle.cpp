#include "CGraphicRectangle.h"

#include <GLES/gl.h>

CGraphicRectangle::CGraphicRectangle() {}

void CGraphicRectangle::setVertexArray(tVect2* src) { CGraphicShape::setVertexArray(4, src); }

void CGraphicRectangle::setWidthHeight(tVect2 size)
{
    if (mVertexCount == 0)
        setVertexArray(static_cast<tVect2*>(0));
    const tFixed hw = tFixed::fromRaw(size.x.raw() / 2);
    const tFixed hh = tFixed::fromRaw(size.y.raw() / 2);
    setVertexN(0, tVect2{-hw, -hh});
    setVertexN(1, tVect2{hw, -hh});
    setVertexN(2, tVect2{-hw, hh});
    setVertexN(3, tVect2{hw, hh});
}

void CGraphicRectangle::draw(tColor* color)
{
    if (!mVisible)
        return;
    pushTransform();
    applyColor(color);
    drawArrays(GL_TRIANGLE_STRIP, 4);
    popTransform();
}
