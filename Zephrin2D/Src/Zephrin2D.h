#ifndef ZEPHRIN2D_ZEPHRIN2D_H
#define ZEPHRIN2D_ZEPHRIN2D_H

// Everything a host program needs, in one include.

#include "tFixed.h"
#include "tVect.h"
#include "tRect2.h"
#include "tMatrix23.h"

#include "CGraphics2D.h"

#include "CGraphicElement.h"
#include "CGraphicShape.h"
#include "CGraphicPoint.h"
#include "CGraphicLine.h"
#include "CGraphicTriangle.h"
#include "CGraphicRectangle.h"
#include "CGraphicCircle.h"

#endif
