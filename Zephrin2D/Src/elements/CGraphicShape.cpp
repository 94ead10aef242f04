#include "CGraphicShape.h"

#include <BaseUtils.h>

#include <GLES/gl.h>
#include <algorithm>
#include <cstdlib>

namespace {
const char* const kFile = "Zephrin2D/Src/CGraphicShape";
}

CGraphicShape::CGraphicShape() : mVertexCount(0), mColorCount(0), mColorArrayOn(false) {}

void CGraphicShape::setVertexArray(int count, tVect2* src)
{
    BaseUtils::Assert(count >= 0, kFile, __LINE__, "CGraphicShape::setVertexArray negative count %d", count);
    if (count < 0)
        count = 0;
    boost::shared_array<tVect2> vertices(new tVect2[count]);
    mVertexCount = static_cast<unsigned int>(count);
    mVertices = vertices;
    if (src && count != 0)
        std::copy(src, src + count, mVertices.get());
}

tVect2* CGraphicShape::vertexAt(unsigned int n, const char* missing, const char* outOfBounds)
{
    BaseUtils::Assert(mVertices.get() != 0, kFile, __LINE__, "%s", missing);
    BaseUtils::Assert(n < mVertexCount, kFile, __LINE__, "%s", outOfBounds);
    // A deterministic stop where dereferencing the missing array would be undefined.
    if (!mVertices)
        abort();
    return n < mVertexCount ? &mVertices[n] : 0;
}

tVect2 CGraphicShape::getVertexN(unsigned int n)
{
    tVect2* v = vertexAt(n, "CGraphicShape::getVertexN null vertex pointer",
                         "CGraphicShape::getVertexN vertexIndex out of bounds");
    return v ? *v : VECT2_0;
}

void CGraphicShape::setVertexN(unsigned int n, tVect2 value)
{
    tVect2* v = vertexAt(n, "CGraphicShape::setVertexN null vertex pointer",
                         "CGraphicShape::setVertexN vertexIndex out of bounds");
    if (v)
        *v = value;
}

void CGraphicShape::moveVertexNBy(unsigned int n, tVect2 d)
{
    tVect2* v = vertexAt(n, "CGraphicShape::moveVertexNBy null vertex pointer",
                         "CGraphicShape::moveVertexNBy vertexIndex out of bounds");
    if (v)
        *v = *v + d;
}

void CGraphicShape::setColorArray(tColor* src)
{
    boost::shared_array<tColor> colors(new tColor[mVertexCount]());
    mColors = colors;
    mColorCount = mVertexCount;
    if (src && mVertexCount != 0)
        std::copy(src, src + mVertexCount, mColors.get());
}

// getColorN reports with the setColorN texts on purpose: both read the same.
tColor* CGraphicShape::colorAt(unsigned int n)
{
    BaseUtils::Assert(mColors.get() != 0, kFile, __LINE__, "CGraphicShape::setColorN null color pointer");
    // A colour array made before the vertex count grew is shorter than the count.
    BaseUtils::Assert(n < mVertexCount && n < mColorCount, kFile, __LINE__,
                      "CGraphicShape::setColorN colorIndex out of bounds");
    if (!mColors)
        abort();
    return n < mVertexCount && n < mColorCount ? &mColors[n] : 0;
}

tColor CGraphicShape::getColorN(unsigned int n)
{
    tColor* c = colorAt(n);
    return c ? *c : tColor{0, 0, 0, 0};
}

void CGraphicShape::setColorN(unsigned int n, tColor value)
{
    tColor* c = colorAt(n);
    if (c)
        *c = value;
}

void CGraphicShape::pushTransform()
{
    CGraphicElement::pushTransform();
    glVertexPointer(2, GL_FIXED, 0, mVertices.get());
    mColorArrayOn = false;
    if (mColors) {
        // GL would read a short colour array past its end: draw in one colour instead.
        BaseUtils::Assert(mColorCount >= mVertexCount, kFile, __LINE__,
                          "CGraphicShape::pushTransform color array shorter than vertex array");
        mColorArrayOn = mColorCount >= mVertexCount;
    }
    if (mColorArrayOn) {
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, mColors.get());
    }
    glDisable(GL_TEXTURE_2D);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
}

void CGraphicShape::popTransform()
{
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnable(GL_TEXTURE_2D);
    if (mColorArrayOn)
        glDisableClientState(GL_COLOR_ARRAY);
    mColorArrayOn = false;
    CGraphicElement::popTransform();
}

tRect2 CGraphicShape::getBounds(const tMatrix23& m) const
{
    tRect2 box = tRect2::Empty();
    for (unsigned int i = 0; mVertices && i < mVertexCount; ++i) {
        const tVect3 p = m * tVect3{mVertices[i].x, mVertices[i].y, ZERO_X};
        box.Include(tVect2{p.x, p.y});
    }
    return box;
}

void CGraphicShape::drawArrays(unsigned int primitive, unsigned int count)
{
    BaseUtils::Assert(count <= mVertexCount, kFile, __LINE__,
                      "CGraphicShape::draw %u vertices needed, %u given", count, mVertexCount);
    if (count > mVertexCount)
        count = mVertexCount;
    glDrawArrays(primitive, 0, static_cast<GLsizei>(count));
}
