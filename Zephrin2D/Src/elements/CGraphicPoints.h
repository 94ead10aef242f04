#ifndef ZEPHRIN2D_CGRAPHICPOINTS_H
#define ZEPHRIN2D_CGRAPHICPOINTS_H

#include "CGraphicElement.h"

#include <glibmm/ustring.h>

class CPointSpriteChunk;

/// A cloud of point sprites: one copy of a small texture at each of a list
/// of points, for particle-like effects.
///
/// The points live in the element's one CPointSpriteChunk, in element space.
/// The point accessors write them in place, at no cost beyond the store; the
/// draw list notices and re-uploads the cloud for the next frame. Changing
/// the number of points or the texture swaps in a new chunk instead.
class CGraphicPoints : public CGraphicElement
{
public:
    CGraphicPoints();
    /// count points at the origin, drawn with the texture of the image file.
    CGraphicPoints(unsigned short count, const Glib::ustring& path);
    /// The copy has its own points (a copy of other's), so moving them leaves other alone.
    CGraphicPoints(const CGraphicPoints& other);
    /// As for every element, a registered target first withdraws its chunk.
    CGraphicPoints& operator=(const CGraphicPoints& other);

    /// Points kept keep their positions; new ones start at (0, 0, 0).
    void setNumberVertices(unsigned short count);
    unsigned short getNumberVertices();
    /// False (and the texture kept) when the file gives no texture.
    bool loadTexture(const Glib::ustring& path);

    /// (0, 0, 0) for a point past the end.
    tVect3 getVertexN(unsigned short n);
    /// Ignored for a point past the end.
    void setVertexN(unsigned short n, tVect3 v);
    void moveVertexNBy(unsigned int n, tVect3 d);

    /// Sprite size in pixels; 0 (the default) means the texture's width.
    void setPointSize(tFixed size);
    tFixed getPointSize();

    using CGraphicElement::draw;
    /// Draws the cloud at once, outside the draw manager; tinted by color or the element's colour.
    void draw(tColor* color) override;

private:
    boost::shared_ptr<CPointSpriteChunk> points();
    void replace(const boost::shared_ptr<CPointSpriteChunk>& next);
    bool inRange(unsigned int n);
};

#endif
