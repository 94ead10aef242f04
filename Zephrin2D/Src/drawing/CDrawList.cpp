#include "CDrawList.h"

#include "CGraphicElement.h"

void CDrawList::markMoved(CGraphicElement& element, const boost::shared_ptr<CDrawChunk>& chunk)
{
    markDirtyVertices(element.shared_from_this(), chunk);
}

CDrawList::tRecolor CDrawList::recolorHeld(CGraphicElement& element, const boost::shared_ptr<CDrawChunk>& chunk)
{
    return recolor(element.shared_from_this(), chunk);
}
