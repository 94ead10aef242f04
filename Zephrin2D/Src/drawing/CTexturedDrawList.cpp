#include "CTexturedDrawList.h"

#include "tIndexStream.h"

namespace {

const CChunkDrawList<tElementTexturedChunkPairEntryStruct, CTexturedChunk>::tMessages kMessages = {
    "Zephrin2D/Src/CTexturedDrawList",
    "CTexturedDrawList::add adding item with no TextureId",
    "CTexturedDrawList::bufferVertices 1 vertex count mismatch",
    "CTexturedDrawList::bufferVertices 2 vertex count mismatch",
};

} // namespace

// A billboard's entry is one of 48 bytes in the list's pool (see tChunkEntry).
static_assert(sizeof(tElementTexturedChunkPairEntryStruct) <= 2 * sizeof(boost::shared_ptr<int>) + 16,
              "entry grew");

CTexturedDrawList::CTexturedDrawList()
    : CChunkDrawList(kMessages, true), mIndexBuffers{0, 0}, mNextIndexBuffer(0), mBufferedIndexCount(0),
      mIndexBufferSizes{0, 0}
{
}

CTexturedDrawList::~CTexturedDrawList()
{
    deleteIndexBuffers();
}

void CTexturedDrawList::deleteIndexBuffers()
{
    for (int i = 0; i < 2; ++i)
        if (mIndexBuffers[i])
            glDeleteBuffers(1, &mIndexBuffers[i]);
    mIndexBuffers[0] = mIndexBuffers[1] = 0;
    mIndexBufferSizes[0] = mIndexBufferSizes[1] = 0;
}

bool CTexturedDrawList::streamEntry(tVertexStream& stream, tEntry& e)
{
    const tMatrix23 m = e.element->getMatrix();
    const std::vector<tVect3>& vertices = e.chunk->getVertices();
    const std::vector<tVect2>& coords = e.chunk->getTexCoords();
    e.dirty = false;
    e.texCoordsDirty = false;
    if (vertices.size() == e.vertexCount && coords.size() >= e.vertexCount && e.vertexCount <= tVertexStream::BLOCK) {
        stream.putTransformed(m, vertices.data(), coords.data(), e.vertexCount);
        return true;
    }
    // A chunk changed in place since it was accepted, or one larger than a block.
    const size_t have = std::min(vertices.size(), static_cast<size_t>(e.vertexCount));
    for (size_t i = 0; i < have; ++i)
        stream.put(m * vertices[i], i < coords.size() ? coords[i] : VECT2_0);
    for (size_t i = have; i < e.vertexCount; ++i)
        stream.put(VECT3_0, VECT2_0);
    return vertices.size() == e.vertexCount;
}

void CTexturedDrawList::markDirtyTexCoords(boost::shared_ptr<CGraphicElement> element,
                                           boost::shared_ptr<CDrawChunk> chunk)
{
    markDirty(element.get(), chunk.get(), true);
}

void CTexturedDrawList::shrink()
{
    CChunkDrawList::shrink();
    mBufferedIndexCount = 0;
    mIndexBufferSizes[0] = mIndexBufferSizes[1] = 0;
    mIndicesDirty = true;
}

void CTexturedDrawList::clear()
{
    CChunkDrawList::clear();
    mAlphaOrder.clear();
    deleteIndexBuffers();
    mBufferedIndexCount = 0;
}

template <class EntryAt>
size_t CTexturedDrawList::uploadIndices(size_t first, size_t last, size_t count, bool allocate, EntryAt entryAt,
                                        size_t padTo, size_t* allocated)
{
    size_t written = 0;
    bool countsMatch = true;
    bool inRange = true;
    {
        // An unknown count (a translucent depth) sizes the buffer by what is written.
        tIndexStream stream(allocate && count != UNKNOWN_COUNT ? count : 0, allocate ? mIndexCount : 0, padTo);
        for (size_t r = first; r < last; ++r) {
            tEntry* const e = entryAt(r);
            if (!e)
                continue;
            e->indexOffset = static_cast<uint16_t>(written);
            // A faded-out element draws nothing (it is in a translucent list, whose counts are unknown).
            if (e->cleared && count == UNKNOWN_COUNT)
                continue;
            const std::vector<uint16_t>& indices = e->chunk->getIndices();
            countsMatch = countsMatch && indices.size() == e->indexCount;
            const size_t have = std::min(indices.size(), static_cast<size_t>(e->indexCount));
            inRange = stream.putChunk(indices.data(), have, e->vertexOffset, e->vertexCount) && inRange;
            for (size_t i = have; i < e->indexCount; ++i)
                stream.put(e->vertexOffset);
            written += e->indexCount;
        }
        stream.flush();
        if (allocated)
            *allocated = stream.allocated();
    }
    // Called per depth in a translucent pass: the service is only called on a failure.
    if (!countsMatch || (written != count && count != UNKNOWN_COUNT))
        BaseUtils::Assert(false, kMessages.file, __LINE__,
                          allocate ? "CTexturedDrawList::bufferIndices 1 index count mismatch"
                                   : "CTexturedDrawList::bufferIndices 3 index count mismatch");
    if (!inRange)
        BaseUtils::Assert(false, kMessages.file, __LINE__,
                          "CTexturedDrawList::bufferIndices index past the chunk's vertices");
    return written;
}

void CTexturedDrawList::bufferIndices()
{
    if (!mIndexBuffers[0])
        glGenBuffers(mTranslucent ? 2 : 1, mIndexBuffers);
    mIndicesDirty = false;
    if (mIndexCount == 0)
        return;
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mIndexBuffers[0]);
    const bool grow = mBufferedIndexCount < mIndexCount;
    uploadIndices(0, mSortedEntries.size(), mIndexCount, grow, [this](size_t r) { return peekedEntry(r); });
    if (grow)
        mBufferedIndexCount = mIndexCount;
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void CTexturedDrawList::bindAndDraw(GLuint indexBuffer, size_t count)
{
    glColor4ub(255, 255, 255, 255);
    glBindTexture(GL_TEXTURE_2D, mTextureId);
    glBindBuffer(GL_ARRAY_BUFFER, mVertexBuffer);
    glVertexPointer(3, GL_FIXED, 0, 0);
    glBindBuffer(GL_ARRAY_BUFFER, mTexCoordBuffer);
    glTexCoordPointer(2, GL_FIXED, 0, 0);
    const bool colors = bindColors();
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indexBuffer);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(count), GL_UNSIGNED_SHORT, 0);
    if (colors)
        glDisableClientState(GL_COLOR_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void CTexturedDrawList::draw()
{
    if (mVerticesDirty)
        bufferVertices();
    if (mOrderDirty || !mSortedFrontToBack) {
        sortEntries(true);
        mIndicesDirty = true;
    }
    if (mIndicesDirty)
        bufferIndices();
    if (mIndexCount == 0)
        return;
    bindAndDraw(mIndexBuffers[0], mIndexCount);
}

int CTexturedDrawList::prepareAlphaDraw()
{
    if (mVerticesDirty)
        bufferVertices();
    if (mOrderDirty || mSortedFrontToBack || mAlphaOrder.size() != mSortedEntries.size()) {
        if (mOrderDirty || mSortedFrontToBack)
            sortEntries(false);
        const size_t n = mSortedEntries.size();
        mAlphaOrder.resize(n);
        for (size_t r = n; r-- > 0;) {
            mAlphaOrder[r].entry = peekedEntry(r);
            const bool last = r + 1 == n || mSortedEntries[r + 1].depth != mSortedEntries[r].depth;
            mAlphaOrder[r].depthEnd = static_cast<uint32_t>(last ? r + 1 : mAlphaOrder[r + 1].depthEnd);
        }
    }
    if (!mIndexBuffers[0])
        glGenBuffers(2, mIndexBuffers);
    else if (!mIndexBuffers[1])
        glGenBuffers(1, &mIndexBuffers[1]);
    mIndicesDirty = false;
    return startAlphaPass();
}

int CTexturedDrawList::drawZDepth(int z)
{
    const size_t first = std::min(mAlphaCursor, mSortedEntries.size());
    const bool prepared = alphaOrderValid();
    size_t last = first;
    if (prepared && first < mSortedEntries.size() && mSortedEntries[first].depth == z)
        last = mAlphaOrder[first].depthEnd;
    while (!prepared && last < mSortedEntries.size() && mSortedEntries[last].depth == z)
        ++last;
    if (last > first && mIndexBuffers[1]) {
        size_t& size = mIndexBufferSizes[mNextIndexBuffer];
        const GLuint buffer = mIndexBuffers[mNextIndexBuffer];
        mNextIndexBuffer ^= 1;
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
        // Without a pass prepared since the references last changed, the entries are looked up.
        size_t count;
        if (prepared) {
            const tAlphaStep* const order = mAlphaOrder.data();
            count = uploadIndices(first, last, UNKNOWN_COUNT, true, [order](size_t r) { return order[r].entry; }, size,
                                  &size);
        } else {
            count = uploadIndices(first, last, UNKNOWN_COUNT, true, [this](size_t r) { return peekedEntry(r); },
                                  size, &size);
        }
        if (count > 0)
            bindAndDraw(buffer, count);
        else
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    }
    mAlphaCursor = last;
    return last < mSortedEntries.size() ? mSortedEntries[last].depth : NO_MORE_DEPTHS;
}
