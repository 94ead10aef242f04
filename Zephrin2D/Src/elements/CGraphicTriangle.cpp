#include "CGraphicTriangle.h"

#include <GLES/gl.h>

CGraphicTriangle::CGraphicTriangle() {}

void CGraphicTriangle::setVertexArray(tVect2* src) { CGraphicShape::setVertexArray(3, src); }

void CGraphicTriangle::draw(tColor* color)
{
    if (!mVisible)
        return;
    pushTransform();
    applyColor(color);
    drawArrays(GL_TRIANGLES, 3);
    popTransform();
}
