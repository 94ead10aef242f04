#ifndef ZEPHRIN2D_CGRAPHICCIRCLE_H
#define ZEPHRIN2D_CGRAPHICCIRCLE_H

#include "CGraphicShape.h"

/// A filled regular polygon centred on the local origin, drawn as a fan:
/// vertex 0 is the centre, the rim starts and ends at the top (0, radius).
///
/// Call setSides() and then setRadius(). For a radial gradient, call
/// setColorArray() after setSides(), then setColorN(0, centre) and
/// setOuterColor(rim).
class CGraphicCircle : public CGraphicShape
{
public:
    CGraphicCircle();

    /// Makes sides + 2 vertices, all at the centre, until setRadius() places them.
    void setSides(unsigned int sides);
    /// Places every vertex on a circle of radius r (in fixed point, no floating point).
    void setRadius(tFixed r);
    tFixed getRadius() const { return mRadius; }
    /// Colours every vertex but the centre; needs the colour array.
    void setOuterColor(tColor c);

    using CGraphicElement::draw;
    /// Draws at once; in color when given, else in the vertex or element colours.
    void draw(tColor* color) override;

private:
    tFixed mRadius;
};

#endif
