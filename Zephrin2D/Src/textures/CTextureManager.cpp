#include "CTextureManager.h"
#include "CLoadReport.h"

#include "CTexturePNG.h"

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
    if (mInstance)
        mInstance->deleteAll();
    delete mInstance;
    mInstance = 0;
}

boost::shared_ptr<CTexture> CTextureManager::get(const Glib::ustring& path)
{
    std::map<std::string, boost::weak_ptr<CTexture> >::iterator it = mTextures.find(path.collate_key());
    if (it == mTextures.end())
        return boost::shared_ptr<CTexture>();
    return it->second.lock();
}

boost::shared_ptr<CTexture> CTextureManager::load(const Glib::ustring& path, bool createGLTexture, bool keepRAMImage,
                                                  bool expandIndices)
{
    boost::shared_ptr<CTexture> texture = get(path);
    if (texture)
        return texture;
    const CLoadReport::tScope asked(path, false);
    texture.reset(new CTexturePNG(path, createGLTexture, keepRAMImage, expandIndices));
    if (!texture->inRAM && texture->glTextureId == 0)
        return boost::shared_ptr<CTexture>();
    mTextures[path.collate_key()] = texture;
    return texture;
}

bool CTextureManager::unload(const Glib::ustring& path)
{
    if (!get(path))
        return false;
    mTextures.erase(path.collate_key());
    return true;
}

void CTextureManager::deleteAll()
{
    mTextures.clear();
}
