#include "CGraphicLine.h"

#include <GLES/gl.h>

CGraphicLine::CGraphicLine() : mLineWidth(ONE_X) {}

void CGraphicLine::setVertexArray(tVect2* src) { CGraphicShape::setVertexArray(2, src); }

void CGraphicLine::draw(tColor* color)
{
    if (!mVisible)
        return;
    pushTransform();
    applyColor(color);
    glLineWidthx(mLineWidth.raw());
    drawArrays(GL_LINES, 2);
    popTransform();
}
