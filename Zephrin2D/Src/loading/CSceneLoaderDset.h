#ifndef ZEPHRIN2D_CSCENELOADERDSET_H
#define ZEPHRIN2D_CSCENELOADERDSET_H

#include "CGraphicElement.h"
#include "CSpriteCel.h"
#include "tDsetRecords.h"

#include <boost/shared_ptr.hpp>
#include <glibmm/ustring.h>
#include <map>
#include <vector>

class AvatarCostume;
class Avatar2DPiece;
class CBillboard;
class CDataset;
class CDrawChunk;
class CDsetReader;
class CSprite;
class CTexture;
class CTextureSheet;

/// Builds scene content from a binary dataset (".dsetBin" with its
/// ".relinkBin" companion).
///
/// The element path makes live elements (a sprite cel with billboard and
/// avatar-piece children); the chunk path, used for actors, flattens the
/// children into draw chunks merged at load time. Counts and pointers of a
/// record are checked against the loaded dataset before they are followed:
/// a record reaching outside it is refused with a message.
class CSceneLoaderDset
{
public:
    typedef CGraphicElement::tChunkList tChunkList;

    static const char* const dsetExtension;    ///< ".dsetBin"
    static const char* const relinkExtension;  ///< ".relinkBin"

    CSceneLoaderDset();
    virtual ~CSceneLoaderDset();

    void setCostume(AvatarCostume* costume);
    void setTextureSheet(CTextureSheet* sheet);
    void setDefaultPath(Glib::ustring path);

    /// Loads a dataset; data is its root record, null on failure. The
    /// returned reference keeps the dataset alive, and the loader checks
    /// records against it from then on.
    boost::shared_ptr<CDataset> LoadDset(Glib::ustring path, void*& data);

    void parseGraphicElementPortion(const tDsetGraphicElement* record, CGraphicElement* element);
    void parseColorPortion(const tDsetColor* record, tColor& color);

    // Element path.
    boost::shared_ptr<CBillboard> parseBillboard(const tDsetBillboard* record);
    boost::shared_ptr<Avatar2DPiece> parseAvatarPiece(const tDsetAvatarPiece* record);
    void parseBillboards(unsigned long count, const tDsetBillboard* records, CSprite* sprite);
    void parseAvatarPieces(unsigned long count, const tDsetAvatarPiece* records, CSprite* sprite);
    boost::shared_ptr<CSpriteCel> parseSpriteCel(const tDsetSpriteCel* record);

    // Chunk path.
    boost::shared_ptr<CDrawChunk> parseBillboardChunk(const tDsetBillboard* record);
    void parseBillboards(unsigned long count, const tDsetBillboard* records, tChunkList& chunks);
    void parseAvatarPieces(unsigned long count, const tDsetAvatarPiece* records, tChunkList& chunks);
    /// Returns false when the record reaches outside the dataset (nothing is then added).
    bool parseSpriteCel(const tDsetSpriteCel* record, unsigned short& duration, tOperationList& exitOperations,
                        tOperationList& enterOperations, tChunkList& chunks);
    /// Every chunk of element, placed by its transform, merged into or appended to chunks.
    void copyMergeChunks(boost::shared_ptr<CGraphicElement> element, tChunkList& chunks);
    /// Merges chunk (already in place) into the first chunk that takes it, else
    /// appends it; a chunk held elsewhere too is copied before it is merged into.
    void copyMergeChunk(boost::shared_ptr<CDrawChunk> chunk, tChunkList& chunks);
    void pushBackOperation(operation op, tOperationList& exitOperations, tOperationList& enterOperations);

    /// The checked view of the dataset last loaded (null before).
    const CDsetReader* getReader() const { return mReader.get(); }

private:
    CSceneLoaderDset(const CSceneLoaderDset&);
    CSceneLoaderDset& operator=(const CSceneLoaderDset&);

    const char* string(uint32_t pointer) const;
    /// The arrays a cel names, false (after a report) when one reaches outside the dataset.
    bool celArrays(const tDsetSpriteCel* record, const tDsetBillboard*& billboards, const tDsetAvatarPiece*& pieces,
                   const tDsetOperation*& operations) const;
    void loadBillboardTexture(CBillboard* billboard, uint32_t url);
    /// The image file default path + the name at url, loaded once per name
    /// (a dataset stores each once); null when it does not load.
    boost::shared_ptr<CTexture> fileTexture(uint32_t url);
    /// The chunk of a billboard showing a whole texture file, made without the
    /// billboard; null when the billboard's own path must run.
    boost::shared_ptr<CDrawChunk> directBillboardChunk(const tDsetBillboard* record);
    template <class T> const T* array(uint32_t pointer, uint32_t count) const;

    AvatarCostume* mCostume;
    CTextureSheet* mTextureSheet;
    Glib::ustring mDefaultPath;
    std::vector<boost::shared_ptr<CBillboard> > mBillboards;
    std::vector<boost::shared_ptr<CDrawChunk> > mBillboardChunks;
    std::vector<boost::shared_ptr<Avatar2DPiece> > mAvatarPieces;
    boost::shared_ptr<CDsetReader> mReader;
    /// Textures by image-name pointer: a dataset stores each name once.
    std::map<uint32_t, boost::shared_ptr<CTexture> > mTextures;
};

#endif
