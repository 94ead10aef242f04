#ifndef ZEPHRIN2D_CGRAPHICTRIANGLE_H
#define ZEPHRIN2D_CGRAPHICTRIANGLE_H

#include "CGraphicShape.h"

/// A filled triangle; with a colour per vertex GL blends the colours across it.
class CGraphicTriangle : public CGraphicShape
{
public:
    CGraphicTriangle();

    /// The three corners, copied from src; (0, 0) each when src is null.
    void setVertexArray(tVect2* src);

    using CGraphicElement::draw;
    /// Draws at once; in color when given, else in the vertex or element colours.
    void draw(tColor* color) override;
};

#endif
