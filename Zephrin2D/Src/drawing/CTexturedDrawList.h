#ifndef ZEPHRIN2D_CTEXTUREDDRAWLIST_H
#define ZEPHRIN2D_CTEXTUREDDRAWLIST_H

#include "CDrawList.h"

#include <GLES/gl.h>
#include <boost/weak_ptr.hpp>
#include <stdint.h>
#include <unordered_map>
#include <utility>
#include <vector>

class CTexturedChunk;

/// One (element, chunk) pair held by a textured draw list.
struct tElementTexturedChunkPairEntryStruct
{
    boost::shared_ptr<CGraphicElement> element;
    boost::shared_ptr<CTexturedChunk> chunk;
    uint16_t vertexOffset;
    uint16_t indexOffset;
    bool dirty;
    /// The texture coordinates must be re-uploaded too.
    bool texCoordsDirty;
    /// Counts as accepted; a chunk changed in place afterwards cannot overrun the buffers.
    uint16_t vertexCount;
    uint16_t indexCount;
    bool visible;
    /// Element z plus the chunk's first vertex z, as of the last buffering.
    int32_t depth;
    /// Acceptance order: equal depths draw in it.
    uint32_t order;
};

/// The draw list of the textured chunks of one GL texture.
///
/// Vertices are transformed on the CPU when they change and kept in vertex
/// buffers; an unchanged list draws with bound buffers only. An opaque list
/// draws in one call, front to back; a translucent one draws depth by depth,
/// back to front, as the draw manager interleaves it with the others. A list
/// holds at most 65535 vertices and 65535 indices: it refuses a chunk that
/// would take it past that.
class CTexturedDrawList : public CDrawList
{
public:
    typedef tElementTexturedChunkPairEntryStruct tEntry;

    CTexturedDrawList();
    ~CTexturedDrawList() override;

    bool add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    bool remove(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    bool show(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    bool hide(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    void markDirtyVertices(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override;
    /// The chunk's texture coordinates changed in place.
    void markDirtyTexCoords(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk);
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
    uint16_t getIndexCount() const { return mIndexCount; }
    uint16_t getHiddenIndexCount() const { return mHiddenIndexCount; }
    size_t getEntryCount() const { return mEntries.size(); }
    size_t getVisibleEntryCount() const { return mSortedEntries.size(); }
    size_t getHiddenEntryCount() const { return mHiddenEntries.size(); }

private:
    /// A weak reference with what sorting and lookups need without locking it.
    struct tEntryRef
    {
        boost::weak_ptr<tEntry> entry;
        const tEntry* key;
        int32_t depth;
        uint32_t order;
        uint16_t indexCount;
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
    void sortEntries(bool frontToBack);
    void uploadVertices(size_t firstEntry, bool allocate);
    void uploadDirtyVertices();
    void bufferIndices();
    /// Writes the indices of refs [first, last) into the bound element buffer; returns how many.
    size_t uploadIndices(size_t first, size_t last, size_t count, bool allocate);
    void bindAndDraw(GLuint indexBuffer, size_t count);

    bool mTranslucent;
    GLuint mVertexBuffer;
    uint16_t mBufferedVertexCount;
    uint16_t mVertexCount;
    uint32_t mTextureId;
    bool mVerticesDirty;
    GLuint mIndexBuffers[2];
    int mNextIndexBuffer;
    GLuint mTexCoordBuffer;
    uint16_t mBufferedIndexCount;
    uint16_t mIndexCount;
    uint16_t mHiddenIndexCount;
    bool mIndicesDirty;
    std::vector<boost::shared_ptr<tEntry> > mEntries;
    std::vector<tEntryRef> mSortedEntries;
    std::vector<tEntryRef> mHiddenEntries;
    size_t mAlphaCursor;

    bool mHasTexture;
    /// The sorted entries must be re-sorted (a depth, the membership or the direction changed).
    bool mOrderDirty;
    bool mSortedFrontToBack;
    /// Entries from this one on moved in the vertex buffer and are rewritten whole.
    size_t mRewriteFrom;
    uint32_t mNextOrder;
    std::unordered_map<tPairKey, boost::shared_ptr<tEntry>, tPairHash> mIndex;
    /// Entries and index nodes of removed pairs, kept for the next add so
    /// that a steady exchange of chunks (an actor changing cel) allocates nothing.
    std::vector<boost::shared_ptr<tEntry> > mSpareEntries;
    std::vector<std::unordered_map<tPairKey, boost::shared_ptr<tEntry>, tPairHash>::node_type> mSpareNodes;
};

#endif
