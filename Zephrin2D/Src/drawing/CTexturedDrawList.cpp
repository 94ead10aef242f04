#include "CTexturedDrawList.h"

#include "CGraphicElement.h"
#include "CTexturedChunk.h"
#include "tIndexStream.h"
#include "tVertexStream.h"

#include <BaseUtils.h>

#include <algorithm>

namespace {

const char* const kFile = "Zephrin2D/Src/CTexturedDrawList";
const size_t MAX_COUNT = 65535;
const size_t NONE = static_cast<size_t>(-1);
/// Spare entries and index nodes a list keeps at most.
const size_t MAX_SPARES = 1024;

int32_t depthOf(const tElementTexturedChunkPairEntryStruct& e)
{
    const std::vector<tVect3>& v = e.chunk->getVertices();
    const int32_t z = (e.element->getZ() + (v.empty() ? ZERO_X : v[0].z)).raw();
    // The largest value means "no more depths" to the draw manager.
    return z < CDrawList::NO_MORE_DEPTHS ? z : CDrawList::NO_MORE_DEPTHS - 1;
}

/// Writes one entry's vertices, transformed, into the stream; false when
/// the chunk no longer has the vertex count it was accepted with.
bool streamEntry(tVertexStream& stream, tElementTexturedChunkPairEntryStruct& e)
{
    const tMatrix23 m = e.element->getMatrix();
    const std::vector<tVect3>& vertices = e.chunk->getVertices();
    const std::vector<tVect2>& coords = e.chunk->getTexCoords();
    const size_t have = std::min(vertices.size(), static_cast<size_t>(e.vertexCount));
    for (size_t i = 0; i < have; ++i)
        stream.put(m * vertices[i], i < coords.size() ? coords[i] : VECT2_0);
    for (size_t i = have; i < e.vertexCount; ++i)
        stream.put(VECT3_0, VECT2_0);
    e.dirty = false;
    e.texCoordsDirty = false;
    return vertices.size() == e.vertexCount;
}

} // namespace

size_t CTexturedDrawList::tPairHash::operator()(const tPairKey& k) const
{
    const size_t a = reinterpret_cast<size_t>(k.first);
    const size_t b = reinterpret_cast<size_t>(k.second);
    return a ^ (b * 0x9E3779B97F4A7C15ull) ^ (b >> 7);
}

CTexturedDrawList::CTexturedDrawList()
    : mTranslucent(false), mVertexBuffer(0), mBufferedVertexCount(0), mVertexCount(0), mTextureId(0),
      mVerticesDirty(false), mIndexBuffers{0, 0}, mNextIndexBuffer(0), mTexCoordBuffer(0), mBufferedIndexCount(0),
      mIndexCount(0), mHiddenIndexCount(0), mIndicesDirty(false), mAlphaCursor(0), mHasTexture(false),
      mOrderDirty(false), mSortedFrontToBack(false), mRewriteFrom(NONE), mNextOrder(0)
{
}

CTexturedDrawList::~CTexturedDrawList()
{
    if (mVertexBuffer)
        glDeleteBuffers(1, &mVertexBuffer);
    if (mTexCoordBuffer)
        glDeleteBuffers(1, &mTexCoordBuffer);
    for (int i = 0; i < 2; ++i)
        if (mIndexBuffers[i])
            glDeleteBuffers(1, &mIndexBuffers[i]);
}

CTexturedDrawList::tEntryRef CTexturedDrawList::refTo(const boost::shared_ptr<tEntry>& entry)
{
    tEntryRef ref;
    ref.entry = entry;
    ref.key = entry.get();
    ref.depth = entry->depth;
    ref.order = entry->order;
    ref.indexCount = entry->indexCount;
    return ref;
}

bool CTexturedDrawList::eraseRef(std::vector<tEntryRef>& refs, const tEntry* key)
{
    for (size_t i = 0; i < refs.size(); ++i)
        if (refs[i].key == key) {
            refs.erase(refs.begin() + i);
            return true;
        }
    return false;
}

boost::shared_ptr<CTexturedDrawList::tEntry> CTexturedDrawList::find(const boost::shared_ptr<CGraphicElement>& element,
                                                                     const boost::shared_ptr<CDrawChunk>& chunk) const
{
    std::unordered_map<tPairKey, boost::shared_ptr<tEntry>, tPairHash>::const_iterator it =
        mIndex.find(tPairKey(element.get(), chunk.get()));
    return it == mIndex.end() ? boost::shared_ptr<tEntry>() : it->second;
}

bool CTexturedDrawList::holdsTexture(const boost::shared_ptr<CDrawChunk>& chunk) const
{
    const CTexturedChunk* textured = dynamic_cast<const CTexturedChunk*>(chunk.get());
    return textured && mHasTexture && textured->getTextureId() == mTextureId;
}

bool CTexturedDrawList::contains(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) const
{
    return static_cast<bool>(find(element, chunk));
}

bool CTexturedDrawList::add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    boost::shared_ptr<CTexturedChunk> textured = boost::dynamic_pointer_cast<CTexturedChunk>(chunk);
    if (!element || !textured)
        return false;
    if (mHasTexture && (textured->getTextureId() != mTextureId || textured->isTranslucent() != mTranslucent))
        return false;
    if (find(element, chunk))
        return true;
    const size_t vertexCount = textured->getVertices().size();
    const size_t indexCount = textured->getIndices().size();
    if (mVertexCount + vertexCount > MAX_COUNT || mIndexCount + mHiddenIndexCount + indexCount > MAX_COUNT)
        return false;
    if (!mHasTexture) {
        BaseUtils::Assert(textured->getTextureId() != 0, kFile, __LINE__,
                          "CTexturedDrawList::add adding item with no TextureId");
        mTextureId = textured->getTextureId();
        mTranslucent = textured->isTranslucent();
        mHasTexture = true;
    }

    boost::shared_ptr<tEntry> entry;
    if (!mSpareEntries.empty()) {
        entry = mSpareEntries.back();
        mSpareEntries.pop_back();
    } else {
        entry.reset(new tEntry());
    }
    entry->element = element;
    entry->chunk = textured;
    entry->vertexOffset = mVertexCount;
    entry->indexOffset = 0;
    entry->dirty = true;
    entry->texCoordsDirty = true;
    entry->vertexCount = static_cast<uint16_t>(vertexCount);
    entry->indexCount = static_cast<uint16_t>(indexCount);
    entry->visible = element->getVisibility();
    entry->depth = depthOf(*entry);
    entry->order = mNextOrder++;
    mEntries.push_back(entry);
    if (!mSpareNodes.empty()) {
        mSpareNodes.back().key() = tPairKey(element.get(), chunk.get());
        mSpareNodes.back().mapped() = entry;
        mIndex.insert(std::move(mSpareNodes.back()));
        mSpareNodes.pop_back();
    } else {
        mIndex[tPairKey(element.get(), chunk.get())] = entry;
    }
    mVertexCount = static_cast<uint16_t>(mVertexCount + vertexCount);
    if (entry->visible) {
        mSortedEntries.push_back(refTo(entry));
        mIndexCount = static_cast<uint16_t>(mIndexCount + indexCount);
        mOrderDirty = true;
    } else {
        mHiddenEntries.push_back(refTo(entry));
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount + indexCount);
    }
    chunk->setDrawList(weak_from_this());
    mVerticesDirty = true;
    mIndicesDirty = true;
    return true;
}

bool CTexturedDrawList::remove(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    if (!holdsTexture(chunk))
        return false;
    boost::shared_ptr<tEntry> entry = find(element, chunk);
    if (!entry)
        return false;
    mVertexCount = static_cast<uint16_t>(mVertexCount - entry->vertexCount);
    if (entry->visible) {
        mIndexCount = static_cast<uint16_t>(mIndexCount - entry->indexCount);
        eraseRef(mSortedEntries, entry.get());
    } else {
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount - entry->indexCount);
        eraseRef(mHiddenEntries, entry.get());
    }
    if (mSpareNodes.size() < MAX_SPARES) {
        mSpareNodes.push_back(mIndex.extract(tPairKey(element.get(), chunk.get())));
        mSpareNodes.back().mapped().reset();
    } else {
        mIndex.erase(tPairKey(element.get(), chunk.get()));
    }

    // The entries after it close the gap: their vertices move down and are rewritten.
    bool chunkStillHeld = false;
    size_t position = NONE;
    for (size_t i = 0; i < mEntries.size(); ++i) {
        if (mEntries[i] == entry)
            position = i;
        else if (position != NONE)
            mEntries[i]->vertexOffset = static_cast<uint16_t>(mEntries[i]->vertexOffset - entry->vertexCount);
        if (mEntries[i] != entry && mEntries[i]->chunk == chunk)
            chunkStillHeld = true;
    }
    mEntries.erase(mEntries.begin() + position);
    if (entry.use_count() == 1 && mSpareEntries.size() < MAX_SPARES) {
        entry->element.reset();
        entry->chunk.reset();
        mSpareEntries.push_back(entry);
    }
    if (position < mEntries.size()) {
        mRewriteFrom = std::min(mRewriteFrom, position);
        mVerticesDirty = true;
    } else if (mRewriteFrom != NONE && mRewriteFrom >= mEntries.size()) {
        mRewriteFrom = NONE;
    }
    if (!chunkStillHeld && chunk->getDrawList().lock().get() == this)
        chunk->setDrawList(boost::weak_ptr<CDrawList>());
    mIndicesDirty = true;
    return true;
}

bool CTexturedDrawList::setVisible(const boost::shared_ptr<CGraphicElement>& element,
                                   const boost::shared_ptr<CDrawChunk>& chunk, bool visible)
{
    if (!holdsTexture(chunk))
        return false;
    boost::shared_ptr<tEntry> entry = find(element, chunk);
    if (!entry)
        return false;
    if (entry->visible == visible)
        return true;
    entry->visible = visible;
    if (visible) {
        eraseRef(mHiddenEntries, entry.get());
        mSortedEntries.push_back(refTo(entry));
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount - entry->indexCount);
        mIndexCount = static_cast<uint16_t>(mIndexCount + entry->indexCount);
        mOrderDirty = true;
    } else {
        eraseRef(mSortedEntries, entry.get());
        mHiddenEntries.push_back(refTo(entry));
        mIndexCount = static_cast<uint16_t>(mIndexCount - entry->indexCount);
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount + entry->indexCount);
    }
    mIndicesDirty = true;
    return true;
}

bool CTexturedDrawList::show(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    return setVisible(element, chunk, true);
}

bool CTexturedDrawList::hide(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    return setVisible(element, chunk, false);
}

void CTexturedDrawList::markDirtyVertices(boost::shared_ptr<CGraphicElement> element,
                                          boost::shared_ptr<CDrawChunk> chunk)
{
    boost::shared_ptr<tEntry> entry = find(element, chunk);
    if (!entry)
        return;
    entry->dirty = true;
    mVerticesDirty = true;
}

void CTexturedDrawList::markDirtyTexCoords(boost::shared_ptr<CGraphicElement> element,
                                           boost::shared_ptr<CDrawChunk> chunk)
{
    boost::shared_ptr<tEntry> entry = find(element, chunk);
    if (!entry)
        return;
    entry->dirty = true;
    entry->texCoordsDirty = true;
    mVerticesDirty = true;
}

void CTexturedDrawList::shrink()
{
    mBufferedVertexCount = 0;
    mBufferedIndexCount = 0;
    mVerticesDirty = true;
    mIndicesDirty = true;
}

void CTexturedDrawList::clear()
{
    for (size_t i = 0; i < mEntries.size(); ++i)
        if (mEntries[i]->chunk->getDrawList().lock().get() == this)
            mEntries[i]->chunk->setDrawList(boost::weak_ptr<CDrawList>());
    mEntries.clear();
    mIndex.clear();
    mSpareEntries.clear();
    mSpareNodes.clear();
    mSortedEntries.clear();
    mHiddenEntries.clear();
    mAlphaCursor = 0;
    mVertexCount = 0;
    mIndexCount = 0;
    mHiddenIndexCount = 0;
    mRewriteFrom = NONE;
    if (mVertexBuffer)
        glDeleteBuffers(1, &mVertexBuffer);
    if (mTexCoordBuffer)
        glDeleteBuffers(1, &mTexCoordBuffer);
    for (int i = 0; i < 2; ++i)
        if (mIndexBuffers[i])
            glDeleteBuffers(1, &mIndexBuffers[i]);
    mVertexBuffer = 0;
    mTexCoordBuffer = 0;
    mIndexBuffers[0] = mIndexBuffers[1] = 0;
    mBufferedVertexCount = 0;
    mBufferedIndexCount = 0;
    mVerticesDirty = false;
    mIndicesDirty = false;
}

void CTexturedDrawList::bufferVertices()
{
    if (!mVertexBuffer) {
        glGenBuffers(1, &mVertexBuffer);
        glGenBuffers(1, &mTexCoordBuffer);
    }
    if (mBufferedVertexCount < mVertexCount) {
        uploadVertices(0, true);
        mBufferedVertexCount = mVertexCount;
    } else {
        if (mRewriteFrom < mEntries.size())
            uploadVertices(mRewriteFrom, false);
        uploadDirtyVertices();
    }
    mRewriteFrom = NONE;
    mVerticesDirty = false;
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void CTexturedDrawList::uploadVertices(size_t firstEntry, bool allocate)
{
    size_t expected = 0;
    size_t written = 0;
    bool countsMatch = true;
    {
        tVertexStream stream(mVertexBuffer, mTexCoordBuffer);
        const size_t start = firstEntry < mEntries.size() ? mEntries[firstEntry]->vertexOffset : mVertexCount;
        expected = mVertexCount - start;
        if (allocate)
            stream.allocate(mVertexCount);
        stream.seek(start, true);
        for (size_t i = firstEntry; i < mEntries.size(); ++i) {
            tEntry& e = *mEntries[i];
            countsMatch = streamEntry(stream, e) && countsMatch;
            written += e.vertexCount;
            const int32_t depth = depthOf(e);
            if (depth != e.depth) {
                e.depth = depth;
                mOrderDirty = mOrderDirty || e.visible;
            }
        }
    }
    BaseUtils::Assert(countsMatch && written == expected, kFile, __LINE__,
                      "CTexturedDrawList::bufferVertices 1 vertex count mismatch");
}

void CTexturedDrawList::uploadDirtyVertices()
{
    bool countsMatch = true;
    {
        tVertexStream stream(mVertexBuffer, mTexCoordBuffer);
        for (size_t i = 0; i < mEntries.size(); ++i) {
            tEntry& e = *mEntries[i];
            if (!e.dirty)
                continue;
            stream.seek(e.vertexOffset, e.texCoordsDirty);
            countsMatch = streamEntry(stream, e) && countsMatch;
            const int32_t depth = depthOf(e);
            if (depth != e.depth) {
                e.depth = depth;
                mOrderDirty = mOrderDirty || e.visible;
            }
        }
    }
    BaseUtils::Assert(countsMatch, kFile, __LINE__, "CTexturedDrawList::bufferVertices 2 vertex count mismatch");
}

void CTexturedDrawList::sortEntries(bool frontToBack)
{
    for (size_t i = 0; i < mSortedEntries.size(); ++i) {
        boost::shared_ptr<tEntry> e = mSortedEntries[i].entry.lock();
        if (e) {
            mSortedEntries[i].depth = e->depth;
            mSortedEntries[i].order = e->order;
        }
    }
    if (frontToBack)
        std::sort(mSortedEntries.begin(), mSortedEntries.end(), [](const tEntryRef& a, const tEntryRef& b) {
            return a.depth != b.depth ? a.depth > b.depth : a.order < b.order;
        });
    else
        std::sort(mSortedEntries.begin(), mSortedEntries.end(), [](const tEntryRef& a, const tEntryRef& b) {
            return a.depth != b.depth ? a.depth < b.depth : a.order < b.order;
        });
    mOrderDirty = false;
    mSortedFrontToBack = frontToBack;
}

size_t CTexturedDrawList::uploadIndices(size_t first, size_t last, size_t count, bool allocate)
{
    size_t written = 0;
    bool countsMatch = true;
    bool inRange = true;
    {
        tIndexStream stream(allocate ? count : 0);
        for (size_t r = first; r < last; ++r) {
            boost::shared_ptr<tEntry> e = mSortedEntries[r].entry.lock();
            if (!e)
                continue;
            e->indexOffset = static_cast<uint16_t>(written);
            const std::vector<uint16_t>& indices = e->chunk->getIndices();
            countsMatch = countsMatch && indices.size() == e->indexCount;
            const size_t have = std::min(indices.size(), static_cast<size_t>(e->indexCount));
            for (size_t i = 0; i < have; ++i) {
                uint16_t index = indices[i];
                if (index >= e->vertexCount) {
                    inRange = false;
                    index = 0;
                }
                stream.put(static_cast<uint16_t>(index + e->vertexOffset));
            }
            for (size_t i = have; i < e->indexCount; ++i)
                stream.put(e->vertexOffset);
            written += e->indexCount;
        }
    }
    BaseUtils::Assert(countsMatch && written == count, kFile, __LINE__,
                      allocate ? "CTexturedDrawList::bufferIndices 1 index count mismatch"
                               : "CTexturedDrawList::bufferIndices 3 index count mismatch");
    BaseUtils::Assert(inRange, kFile, __LINE__, "CTexturedDrawList::bufferIndices index past the chunk's vertices");
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
    uploadIndices(0, mSortedEntries.size(), mIndexCount, grow);
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
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indexBuffer);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(count), GL_UNSIGNED_SHORT, 0);
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
    if (mOrderDirty || mSortedFrontToBack)
        sortEntries(false);
    if (!mIndexBuffers[0])
        glGenBuffers(2, mIndexBuffers);
    else if (!mIndexBuffers[1])
        glGenBuffers(1, &mIndexBuffers[1]);
    mIndicesDirty = false;
    mAlphaCursor = 0;
    return mSortedEntries.empty() ? NO_MORE_DEPTHS : mSortedEntries[0].depth;
}

int CTexturedDrawList::drawZDepth(int z)
{
    const size_t first = std::min(mAlphaCursor, mSortedEntries.size());
    size_t last = first;
    size_t count = 0;
    while (last < mSortedEntries.size() && mSortedEntries[last].depth == z)
        count += mSortedEntries[last++].indexCount;
    if (count > 0 && mIndexBuffers[1]) {
        const GLuint buffer = mIndexBuffers[mNextIndexBuffer];
        mNextIndexBuffer ^= 1;
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
        uploadIndices(first, last, count, true);
        bindAndDraw(buffer, count);
    }
    mAlphaCursor = last;
    return last < mSortedEntries.size() ? mSortedEntries[last].depth : NO_MORE_DEPTHS;
}
