// Placeholder until textures land: keeps the library linking.
#include "CTextureManager.h"

#include "CTexture.h"

CTextureManager* CTextureManager::mInstance = 0;

CTextureManager::CTextureManager() {}
CTextureManager::~CTextureManager() {}

CTextureManager* CTextureManager::Instance()
{
    if (!mInstance)
        mInstance = new CTextureManager();
    return mInstance;
}

void CTextureManager::Destroy()
{
    delete mInstance;
    mInstance = 0;
}

boost::shared_ptr<CTexture> CTextureManager::get(const Glib::ustring&) { return boost::shared_ptr<CTexture>(); }
boost::shared_ptr<CTexture> CTextureManager::load(const Glib::ustring&, bool, bool, bool) { return boost::shared_ptr<CTexture>(); }
bool CTextureManager::unload(const Glib::ustring&) { return false; }
void CTextureManager::deleteAll() { mTextures.clear(); }
