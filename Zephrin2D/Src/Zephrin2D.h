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
#include "CBillboard.h"
#include "CText.h"
#include "CGraphicPoints.h"

#include "tImageInfo.h"
#include "CTexture.h"
#include "CTexturePNG.h"
#include "CTextureManager.h"
#include "CTextureSheet.h"

#include "CDrawChunk.h"
#include "CTexturedChunk.h"
#include "CPointSpriteChunk.h"
#include "CDrawList.h"
#include "CDrawManager.h"

#include "CSprite.h"
#include "CSpriteCel.h"
#include "CBaseActor.h"
#include "CActor2D.h"
#include "CActorManager.h"

#include "CSceneLoaderJson.h"
#include "CSceneLoaderDset.h"
#include "DsetDump.h"
#include "CLoadReport.h"

#include "CAvatarCostume.h"
#include "Avatar2DPiece.h"

#endif
