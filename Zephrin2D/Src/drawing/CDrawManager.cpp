// Placeholder until the draw path lands: keeps the library linking.
#include "CDrawManager.h"

CDrawManager* CDrawManager::mInstance = 0;

CDrawManager::CDrawManager() {}
CDrawManager::~CDrawManager() {}

CDrawManager* CDrawManager::Instance()
{
    if (!mInstance)
        mInstance = new CDrawManager();
    return mInstance;
}

void CDrawManager::Destroy()
{
    delete mInstance;
    mInstance = 0;
}

void CDrawManager::add(boost::shared_ptr<CGraphicElement>) {}
void CDrawManager::remove(boost::shared_ptr<CGraphicElement>) {}
void CDrawManager::add(boost::shared_ptr<CGraphicElement>, boost::shared_ptr<CDrawChunk>) {}
void CDrawManager::remove(boost::shared_ptr<CGraphicElement>, boost::shared_ptr<CDrawChunk>) {}
void CDrawManager::show(boost::shared_ptr<CGraphicElement>, boost::shared_ptr<CDrawChunk>) {}
void CDrawManager::hide(boost::shared_ptr<CGraphicElement>, boost::shared_ptr<CDrawChunk>) {}
void CDrawManager::addList(boost::shared_ptr<CDrawList>) {}
void CDrawManager::removeList(boost::shared_ptr<CDrawList>) {}
void CDrawManager::drawAll() {}
void CDrawManager::shrinkAll() {}
void CDrawManager::deleteAll() {}
