#ifndef ZEPHRIN2D_CGRAPHICPOINT_H
#define ZEPHRIN2D_CGRAPHICPOINT_H

#include "CGraphicShape.h"

/// A square point of a given size in pixels, centred on its one vertex.
class CGraphicPoint : public CGraphicShape
{
public:
    CGraphicPoint();

    /// The one vertex, copied from src; (0, 0) when src is null.
    void setVertexArray(tVect2* src);
    /// In pixels; 1.0 by default. Set again at every draw.
    void setPointSize(tFixed size) { mPointSize = size; }
    tFixed getPointSize() const { return mPointSize; }

    using CGraphicElement::draw;
    /// Draws at once; in color when given, else in the vertex or element colour.
    void draw(tColor* color) override;

private:
    tFixed mPointSize;
};

#endif
