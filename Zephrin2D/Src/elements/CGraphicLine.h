#ifndef ZEPHRIN2D_CGRAPHICLINE_H
#define ZEPHRIN2D_CGRAPHICLINE_H

#include "CGraphicShape.h"

/// A line segment between two vertices, of a given width in pixels.
class CGraphicLine : public CGraphicShape
{
public:
    CGraphicLine();

    /// The two end points, copied from src; (0, 0) each when src is null.
    void setVertexArray(tVect2* src);
    /// In pixels; 1.0 by default. Set again at every draw.
    void setLineWidth(tFixed width) { mLineWidth = width; }
    tFixed getLineWidth() const { return mLineWidth; }

    using CGraphicElement::draw;
    /// Draws at once; in color when given, else in the vertex or element colour.
    void draw(tColor* color) override;

private:
    tFixed mLineWidth;
};

#endif
