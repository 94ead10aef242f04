#ifndef ZEPHRIN2D_CGRAPHICSHAPE_H
#define ZEPHRIN2D_CGRAPHICSHAPE_H

#include "CGraphicElement.h"

#include <boost/shared_array.hpp>

/// The base of the untextured shapes: a vertex array in the element's local
/// space and an optional colour per vertex.
///
/// Shapes are drawn at once with draw(tColor*), one GL call each, outside the
/// draw manager; they contribute no chunks. Without a colour array a shape is
/// drawn in the element's colour. Give the vertices first, then the colours:
/// setColorArray() sizes the colour array to the current vertex count.
///
/// Indexed access reports a bad index through the assertion service and then
/// reads (0, 0) or writes nothing. Reaching an array that was never made is a
/// programming error that stops the program after the report.
class CGraphicShape : public CGraphicElement
{
public:
    CGraphicShape();

    /// count vertices: copies of src, or (0, 0) each when src is null. Keeps the colours.
    void setVertexArray(int count, tVect2* src);
    unsigned int getVertexCount() const { return mVertexCount; }
    tVect2 getVertexN(unsigned int n);
    void setVertexN(unsigned int n, tVect2 v);
    void moveVertexNBy(unsigned int n, tVect2 d);

    /// One colour per current vertex: copies of src, or transparent black when src is null.
    void setColorArray(tColor* src);
    tColor getColorN(unsigned int n);
    void setColorN(unsigned int n, tColor c);

    /// Applies the transform and points GL at the vertices (and colours), untextured.
    void pushTransform() override;
    /// Restores texturing and the texture-coordinate array.
    void popTransform() override;

    using CGraphicElement::getBounds;
    /// Around the vertex array (shapes have no chunks).
    tRect2 getBounds(const tMatrix23& transform) const override;

protected:
    /// glDrawArrays with at most as many vertices as the array holds.
    void drawArrays(unsigned int primitive, unsigned int count);

    unsigned int mVertexCount;
    boost::shared_array<tVect2> mVertices;
    boost::shared_array<tColor> mColors;

private:
    tVect2* vertexAt(unsigned int n, const char* missing, const char* outOfBounds);
    tColor* colorAt(unsigned int n);

    unsigned int mColorCount;
    bool mColorArrayOn;
};

#endif
