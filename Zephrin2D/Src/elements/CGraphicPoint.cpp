#include "CGraphicPoint.h"

#include <GLES/gl.h>

CGraphicPoint::CGraphicPoint() : mPointSize(ONE_X) {}

void CGraphicPoint::setVertexArray(tVect2* src) { CGraphicShape::setVertexArray(1, src); }

void CGraphicPoint::draw(tColor* color)
{
    if (!mVisible)
        return;
    pushTransform();
    applyColor(color);
    glPointSizex(mPointSize.raw());
    drawArrays(GL_POINTS, 1);
    popTransform();
}
