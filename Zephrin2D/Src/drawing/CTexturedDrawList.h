#ifndef ZEPHRIN2D_CTEXTUREDDRAWLIST_H
#define ZEPHRIN2D_CTEXTUREDDRAWLIST_H

#include "CChunkDrawList.h"
#include "CTexturedChunk.h"

/// One (element, chunk) pair held by a textured draw list.
struct tElementTexturedChunkPairEntryStruct : tChunkEntry<CTexturedChunk>
{
};

/// The draw list of the textured chunks of one GL texture.
///
/// Vertices are transformed on the CPU when they change and kept in vertex
/// buffers; an unchanged list draws with bound buffers only. An opaque list
/// draws in one call, front to back; a translucent one draws depth by depth,
/// back to front, as the draw manager interleaves it with the others. A list
/// holds at most 65535 vertices and 65535 indices: it refuses a chunk that
/// would take it past that.
class CTexturedDrawList : public CChunkDrawList<tElementTexturedChunkPairEntryStruct, CTexturedChunk>
{
public:
    CTexturedDrawList();
    ~CTexturedDrawList() override;

    /// The chunk's texture coordinates changed in place.
    void markDirtyTexCoords(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk);
    void shrink() override;
    void clear() override;
    void draw() override;
    int prepareAlphaDraw() override;
    int drawZDepth(int z) override;

    uint16_t getIndexCount() const { return mIndexCount; }
    uint16_t getHiddenIndexCount() const { return mHiddenIndexCount; }

private:
    bool streamEntry(tVertexStream& stream, tEntry& entry) override;
    size_t indexCountOf(const CTexturedChunk& chunk) const override { return chunk.getIndices().size(); }
    uint64_t fingerprintOf(const CTexturedChunk& chunk) const override
    {
        return hashed(chunk.getTexCoords(), CChunkDrawList::fingerprintOf(chunk));
    }
    void bufferIndices();
    static constexpr size_t UNKNOWN_COUNT = static_cast<size_t>(-1);
    /// Writes the indices of sorted entries [first, last), count of them or
    /// UNKNOWN_COUNT, into the bound element buffer; returns how many.
    /// entryAt(r) gives the entry of sorted reference r, or none. padTo and
    /// allocated: see tIndexStream.
    template <class EntryAt>
    size_t uploadIndices(size_t first, size_t last, size_t count, bool allocate, EntryAt entryAt,
                         size_t padTo = 0, size_t* allocated = nullptr);
    void bindAndDraw(GLuint indexBuffer, size_t count);
    void deleteIndexBuffers();

    GLuint mIndexBuffers[2];
    int mNextIndexBuffer;
    uint16_t mBufferedIndexCount;
    /// Indices each translucent index buffer was last sized for.
    size_t mIndexBufferSizes[2];
    /// A sorted reference's entry, and the end of the references at its depth.
    struct tAlphaStep
    {
        tEntry* entry;
        uint32_t depthEnd;
    };
    /// The translucent pass's entries in the order of the sorted references,
    /// taken when they were last sorted: the sorted references only change
    /// through what makes the next pass sort again, and entries never move.
    std::vector<tAlphaStep> mAlphaOrder;
    /// Whether mAlphaOrder stands for the sorted references.
    bool alphaOrderValid() const
    {
        return !mOrderDirty && !mSortedFrontToBack && mAlphaOrder.size() == mSortedEntries.size();
    }
};

#endif
