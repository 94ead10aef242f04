#ifndef ZEPHRIN2D_CGRAPHICRECTANGLE_H
#define ZEPHRIN2D_CGRAPHICRECTANGLE_H

#include "CGraphicShape.h"

/// A filled quadrilateral of four vertices in triangle-strip order:
/// bottom left, bottom right, top left, top right.
class CGraphicRectangle : public CGraphicShape
{
public:
    CGraphicRectangle();

    /// The four corners in strip order, copied from src; (0, 0) each when src is null.
    void setVertexArray(tVect2* src);
    /// A size.x by size.y rectangle centred on the local origin, so its
    /// registration point is its centre. Odd raw sizes lose their last raw unit.
    void setWidthHeight(tVect2 size);

    using CGraphicElement::draw;
    /// Draws at once; in color when given, else in the vertex or element colours.
    void draw(tColor* color) override;
};

#endif
