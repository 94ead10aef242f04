#ifndef ZEPHRIN2D_CPOINTSPRITEDRAWLIST_H
#define ZEPHRIN2D_CPOINTSPRITEDRAWLIST_H

#include "CDrawList.h"

#include <GLES/gl.h>
#include <boost/weak_ptr.hpp>
#include <stdint.h>
#include <unordered_map>
#include <utility>
#include <vector>

class CPointSpriteChunk;

/// One (element, chunk) pair held by a point-sprite draw list.
struct tElementPointSpriteChunkPairEntryStruct
{
    boost::shared_ptr<CGraphicElement> element;
    boost::shared_ptr<CPointSpriteChunk> chunk;
    uint16_t vertexOffset;
    /// Points as accepted; a chunk resized in place cannot overrun the buffer.
    uint16_t vertexCount;
    bool dirty;
    /// The chunk's revision when its points were last uploaded.
    uint32_t revision;
    bool visible;
    /// Element z plus the chunk's first point z, as of the last buffering.
    int32_t depth;
    uint32_t order;
};

/// The draw list of the point-sprite chunks of one GL texture.
///
/// Points are transformed by their element's matrix on the CPU and kept in
/// one vertex buffer, re-uploaded for a chunk only when its element moved or
/// its points were written (its revision changed). Each chunk is drawn with
/// glDrawArrays(GL_POINTS) at its own point size, neighbours of equal size
/// in one call, with GL_POINT_SPRITE_OES and coordinate replacement on. An
/// opaque list draws in acceptance order; a translucent one depth by depth,
/// back to front, interleaved with the other translucent lists. At most
/// 65535 points per list.
class CPointSpriteDrawList : public CDrawList
{
public:
    typedef tElementPointSpriteChunkPairEntryStruct tEntry;

    CPointSpriteDrawList();
    ~CPointSpriteDrawList() override;

    bool add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    bool remove(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    bool show(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    bool hide(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    void markDirtyVertices(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    void shrink() override;
    void clear() override;
    void bufferVertices() override;
    void draw() override;
    int prepareAlphaDraw() override;
    int drawZDepth(int z) override;
    bool empty() override { return mEntries.empty(); }
    bool isTranslucent() const override { return mTranslucent; }
    bool contains(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) const override;

    uint32_t getTextureId() const { return mTextureId; }
    uint16_t getVertexCount() const { return mVertexCount; }
    size_t getEntryCount() const { return mEntries.size(); }
    size_t getVisibleEntryCount() const { return mSortedEntries.size(); }
    size_t getHiddenEntryCount() const { return mHiddenEntries.size(); }

private:
    struct tEntryRef
    {
        boost::weak_ptr<tEntry> entry;
        const tEntry* key;
        int32_t depth;
        uint32_t order;
    };
    typedef std::pair<const void*, const void*> tPairKey;
    struct tPairHash
    {
        size_t operator()(const tPairKey& k) const;
    };

    boost::shared_ptr<tEntry> find(const boost::shared_ptr<CGraphicElement>& element,
                                   const boost::shared_ptr<CDrawChunk>& chunk) const;
    bool holdsTexture(const boost::shared_ptr<CDrawChunk>& chunk) const;
    bool setVisible(const boost::shared_ptr<CGraphicElement>& element, const boost::shared_ptr<CDrawChunk>& chunk,
                    bool visible);
    static tEntryRef refTo(const boost::shared_ptr<tEntry>& entry);
    static bool eraseRef(std::vector<tEntryRef>& refs, const tEntry* key);
    /// Flags the entries whose points were written in place since their upload.
    void checkRevisions();
    void prepare();
    void uploadVertices(size_t firstEntry, bool allocate);
    void uploadDirtyVertices();
    void sortEntries();
    void beginPoints();
    void endPoints();

    bool mTranslucent;
    bool mHasTexture;
    uint32_t mTextureId;
    GLuint mVertexBuffer;
    uint16_t mBufferedVertexCount;
    uint16_t mVertexCount;
    bool mVerticesDirty;
    std::vector<boost::shared_ptr<tEntry> > mEntries;
    std::vector<tEntryRef> mSortedEntries;
    std::vector<tEntryRef> mHiddenEntries;
    size_t mAlphaCursor;
    bool mOrderDirty;
    size_t mRewriteFrom;
    uint32_t mNextOrder;
    std::unordered_map<tPairKey, boost::shared_ptr<tEntry>, tPairHash> mIndex;
};

#endif
