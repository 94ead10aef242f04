#ifndef ZEPHRIN2D_CTEXTUREMANAGER_H
#define ZEPHRIN2D_CTEXTUREMANAGER_H

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <glibmm/ustring.h>
#include <map>
#include <string>

class CTexture;

/// Loads each image file once while anything still uses it.
///
/// Hands out shared textures and remembers them weakly by path (the path as
/// given: two spellings are two entries), so a texture dies with its last
/// user and a later load reads the file again.
class CTextureManager
{
public:
    static CTextureManager* Instance();
    static void Destroy();

    /// The live texture for path, or empty. Never loads.
    boost::shared_ptr<CTexture> get(const Glib::ustring& path);
    /// The live texture, else a new one from the PNG file (the flags go to
    /// CTexturePNG); empty when nothing could be loaded.
    boost::shared_ptr<CTexture> load(const Glib::ustring& path, bool createGLTexture, bool keepRAMImage,
                                     bool expandIndices);
    /// Forgets a live texture (its holders keep it); false when there is none.
    bool unload(const Glib::ustring& path);
    void deleteAll();

    size_t getEntryCount() const { return mTextures.size(); }

private:
    CTextureManager();
    ~CTextureManager();
    CTextureManager(const CTextureManager&);
    CTextureManager& operator=(const CTextureManager&);

    std::map<std::string, boost::weak_ptr<CTexture> > mTextures;
    static CTextureManager* mInstance;
};

#endif
