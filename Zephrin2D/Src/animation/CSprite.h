#ifndef ZEPHRIN2D_CSPRITE_H
#define ZEPHRIN2D_CSPRITE_H

#include "CGraphicElement.h"

#include <boost/shared_ptr.hpp>
#include <vector>

/// An element assembled from other elements.
///
/// A sprite owns no geometry of its own: attaching an element takes over its
/// chunks, baking the element's transform into them and merging them into
/// the sprite's chunks where the chunk types allow (same texture and kind).
/// The attached element itself is not kept. So a composed picture becomes
/// one element with few chunks, and the attach order is the drawing order
/// within a chunk type.
///
/// A sprite that is already registered with the draw manager follows at
/// once: replaced chunks leave their lists and new ones join. It must then
/// be held by a boost::shared_ptr.
class CSprite : public CGraphicElement
{
public:
    typedef std::vector<boost::shared_ptr<CGraphicElement> > tElementList;

    CSprite();
    virtual ~CSprite();

    /// Takes over child's chunks. An empty reference is reported and ignored.
    void attach(boost::shared_ptr<CGraphicElement> child);
    /// Attaches each element in order.
    void attach(const tElementList& children);

    /// Sprites draw through the draw manager only: this does nothing.
    virtual void draw(tColor* color);
};

#endif
