#include "CPointSpriteDrawList.h"

#include "CGraphicElement.h"
#include "CPointSpriteChunk.h"
#include "tVertexStream.h"

#include <BaseUtils.h>

#include <GLES/glext.h>
#include <algorithm>

namespace {

const char* const kFile = "Zephrin2D/Src/CPointSpriteDrawList";
const size_t MAX_COUNT = 65535;
const size_t NONE = static_cast<size_t>(-1);

int32_t depthOf(const tElementPointSpriteChunkPairEntryStruct& e)
{
    const std::vector<tVect3>& v = e.chunk->getVertices();
    const int32_t z = (e.element->getZ() + (v.empty() ? ZERO_X : v[0].z)).raw();
    return z < CDrawList::NO_MORE_DEPTHS ? z : CDrawList::NO_MORE_DEPTHS - 1;
}

/// Writes one entry's points, transformed; false when the chunk no longer
/// has the point count it was accepted with.
bool streamEntry(tVertexStream& stream, tElementPointSpriteChunkPairEntryStruct& e)
{
    const tMatrix23 m = e.element->getMatrix();
    const std::vector<tVect3>& points = e.chunk->getVertices();
    const size_t have = std::min(points.size(), static_cast<size_t>(e.vertexCount));
    for (size_t i = 0; i < have; ++i)
        stream.put(m * points[i], VECT2_0);
    for (size_t i = have; i < e.vertexCount; ++i)
        stream.put(VECT3_0, VECT2_0);
    e.dirty = false;
    e.revision = e.chunk->getRevision();
    return points.size() == e.vertexCount;
}

/// Draws runs of neighbouring entries of one point size in one call each.
class tPointRuns
{
public:
    tPointRuns() : mFirst(0), mCount(0), mSize(ZERO_X), mSetSize(MINUS_ONE_X) {}
    ~tPointRuns() { flush(); }

    void put(const tElementPointSpriteChunkPairEntryStruct& e)
    {
        const tFixed size = e.chunk->getDrawnPointSize();
        if (mCount > 0 && (mFirst + mCount != e.vertexOffset || size != mSize))
            flush();
        if (mCount == 0) {
            mFirst = e.vertexOffset;
            mSize = size;
        }
        mCount += e.vertexCount;
    }
    void flush()
    {
        if (mCount == 0)
            return;
        if (mSize != mSetSize) {
            glPointSizex(mSize.raw());
            mSetSize = mSize;
        }
        glDrawArrays(GL_POINTS, static_cast<GLint>(mFirst), static_cast<GLsizei>(mCount));
        mCount = 0;
    }

private:
    size_t mFirst;
    size_t mCount;
    tFixed mSize;
    tFixed mSetSize;
};

} // namespace

size_t CPointSpriteDrawList::tPairHash::operator()(const tPairKey& k) const
{
    const size_t a = reinterpret_cast<size_t>(k.first);
    const size_t b = reinterpret_cast<size_t>(k.second);
    return a ^ (b * 0x9E3779B97F4A7C15ull) ^ (b >> 7);
}

CPointSpriteDrawList::CPointSpriteDrawList()
    : mTranslucent(false), mHasTexture(false), mTextureId(0), mVertexBuffer(0), mBufferedVertexCount(0),
      mVertexCount(0), mVerticesDirty(false), mAlphaCursor(0), mOrderDirty(false), mRewriteFrom(NONE), mNextOrder(0)
{
}

CPointSpriteDrawList::~CPointSpriteDrawList()
{
    if (mVertexBuffer)
        glDeleteBuffers(1, &mVertexBuffer);
}

CPointSpriteDrawList::tEntryRef CPointSpriteDrawList::refTo(const boost::shared_ptr<tEntry>& entry)
{
    tEntryRef ref;
    ref.entry = entry;
    ref.key = entry.get();
    ref.depth = entry->depth;
    ref.order = entry->order;
    return ref;
}

bool CPointSpriteDrawList::eraseRef(std::vector<tEntryRef>& refs, const tEntry* key)
{
    for (size_t i = 0; i < refs.size(); ++i)
        if (refs[i].key == key) {
            refs.erase(refs.begin() + i);
            return true;
        }
    return false;
}

boost::shared_ptr<CPointSpriteDrawList::tEntry> CPointSpriteDrawList::find(
    const boost::shared_ptr<CGraphicElement>& element, const boost::shared_ptr<CDrawChunk>& chunk) const
{
    std::unordered_map<tPairKey, boost::shared_ptr<tEntry>, tPairHash>::const_iterator it =
        mIndex.find(tPairKey(element.get(), chunk.get()));
    return it == mIndex.end() ? boost::shared_ptr<tEntry>() : it->second;
}

bool CPointSpriteDrawList::holdsTexture(const boost::shared_ptr<CDrawChunk>& chunk) const
{
    const CPointSpriteChunk* points = dynamic_cast<const CPointSpriteChunk*>(chunk.get());
    return points && mHasTexture && points->getTextureId() == mTextureId;
}

bool CPointSpriteDrawList::contains(boost::shared_ptr<CGraphicElement> element,
                                    boost::shared_ptr<CDrawChunk> chunk) const
{
    return static_cast<bool>(find(element, chunk));
}

bool CPointSpriteDrawList::add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    boost::shared_ptr<CPointSpriteChunk> points = boost::dynamic_pointer_cast<CPointSpriteChunk>(chunk);
    if (!element || !points)
        return false;
    if (mHasTexture && (points->getTextureId() != mTextureId || points->isTranslucent() != mTranslucent))
        return false;
    if (find(element, chunk))
        return true;
    const size_t count = points->getVertices().size();
    if (mVertexCount + count > MAX_COUNT)
        return false;
    if (!mHasTexture) {
        BaseUtils::Assert(points->getTextureId() != 0, kFile, __LINE__,
                          "CPointSpriteDrawList::add adding item with no TextureId");
        mTextureId = points->getTextureId();
        mTranslucent = points->isTranslucent();
        mHasTexture = true;
    }

    boost::shared_ptr<tEntry> entry(new tEntry());
    entry->element = element;
    entry->chunk = points;
    entry->vertexOffset = mVertexCount;
    entry->vertexCount = static_cast<uint16_t>(count);
    entry->dirty = true;
    entry->revision = points->getRevision();
    entry->visible = element->getVisibility();
    entry->depth = depthOf(*entry);
    entry->order = mNextOrder++;
    mEntries.push_back(entry);
    mIndex[tPairKey(element.get(), chunk.get())] = entry;
    mVertexCount = static_cast<uint16_t>(mVertexCount + count);
    if (entry->visible) {
        mSortedEntries.push_back(refTo(entry));
        mOrderDirty = true;
    } else {
        mHiddenEntries.push_back(refTo(entry));
    }
    chunk->setDrawList(weak_from_this());
    mVerticesDirty = true;
    return true;
}

bool CPointSpriteDrawList::remove(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    if (!holdsTexture(chunk))
        return false;
    boost::shared_ptr<tEntry> entry = find(element, chunk);
    if (!entry)
        return false;
    mVertexCount = static_cast<uint16_t>(mVertexCount - entry->vertexCount);
    eraseRef(entry->visible ? mSortedEntries : mHiddenEntries, entry.get());
    mIndex.erase(tPairKey(element.get(), chunk.get()));

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
    if (position < mEntries.size()) {
        mRewriteFrom = std::min(mRewriteFrom, position);
        mVerticesDirty = true;
    } else if (mRewriteFrom != NONE && mRewriteFrom >= mEntries.size()) {
        mRewriteFrom = NONE;
    }
    if (!chunkStillHeld && chunk->getDrawList().lock().get() == this)
        chunk->setDrawList(boost::weak_ptr<CDrawList>());
    return true;
}

bool CPointSpriteDrawList::setVisible(const boost::shared_ptr<CGraphicElement>& element,
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
    eraseRef(visible ? mHiddenEntries : mSortedEntries, entry.get());
    (visible ? mSortedEntries : mHiddenEntries).push_back(refTo(entry));
    mOrderDirty = mOrderDirty || visible;
    return true;
}

bool CPointSpriteDrawList::show(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    return setVisible(element, chunk, true);
}

bool CPointSpriteDrawList::hide(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    return setVisible(element, chunk, false);
}

void CPointSpriteDrawList::markDirtyVertices(boost::shared_ptr<CGraphicElement> element,
                                             boost::shared_ptr<CDrawChunk> chunk)
{
    boost::shared_ptr<tEntry> entry = find(element, chunk);
    if (!entry)
        return;
    entry->dirty = true;
    mVerticesDirty = true;
}

void CPointSpriteDrawList::shrink()
{
    mBufferedVertexCount = 0;
    mVerticesDirty = true;
}

void CPointSpriteDrawList::clear()
{
    for (size_t i = 0; i < mEntries.size(); ++i)
        if (mEntries[i]->chunk->getDrawList().lock().get() == this)
            mEntries[i]->chunk->setDrawList(boost::weak_ptr<CDrawList>());
    mEntries.clear();
    mIndex.clear();
    mSortedEntries.clear();
    mHiddenEntries.clear();
    mAlphaCursor = 0;
    mVertexCount = 0;
    mRewriteFrom = NONE;
    if (mVertexBuffer)
        glDeleteBuffers(1, &mVertexBuffer);
    mVertexBuffer = 0;
    mBufferedVertexCount = 0;
    mVerticesDirty = false;
}

void CPointSpriteDrawList::checkRevisions()
{
    for (size_t i = 0; i < mEntries.size(); ++i) {
        tEntry& e = *mEntries[i];
        if (e.chunk->getRevision() != e.revision) {
            e.dirty = true;
            mVerticesDirty = true;
        }
    }
}

void CPointSpriteDrawList::bufferVertices()
{
    if (!mVertexBuffer)
        glGenBuffers(1, &mVertexBuffer);
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

void CPointSpriteDrawList::uploadVertices(size_t firstEntry, bool allocate)
{
    bool countsMatch = true;
    {
        tVertexStream stream(mVertexBuffer, 0);
        if (allocate)
            stream.allocate(mVertexCount);
        stream.seek(firstEntry < mEntries.size() ? mEntries[firstEntry]->vertexOffset : mVertexCount, false);
        for (size_t i = firstEntry; i < mEntries.size(); ++i) {
            tEntry& e = *mEntries[i];
            countsMatch = streamEntry(stream, e) && countsMatch;
            const int32_t depth = depthOf(e);
            if (depth != e.depth) {
                e.depth = depth;
                mOrderDirty = mOrderDirty || e.visible;
            }
        }
    }
    BaseUtils::Assert(countsMatch, kFile, __LINE__, "CPointSpriteDrawList::bufferVertices vertex count mismatch");
}

void CPointSpriteDrawList::uploadDirtyVertices()
{
    bool countsMatch = true;
    {
        tVertexStream stream(mVertexBuffer, 0);
        for (size_t i = 0; i < mEntries.size(); ++i) {
            tEntry& e = *mEntries[i];
            if (!e.dirty)
                continue;
            stream.seek(e.vertexOffset, false);
            countsMatch = streamEntry(stream, e) && countsMatch;
            const int32_t depth = depthOf(e);
            if (depth != e.depth) {
                e.depth = depth;
                mOrderDirty = mOrderDirty || e.visible;
            }
        }
    }
    BaseUtils::Assert(countsMatch, kFile, __LINE__, "CPointSpriteDrawList::bufferVertices vertex count mismatch");
}

void CPointSpriteDrawList::sortEntries()
{
    for (size_t i = 0; i < mSortedEntries.size(); ++i) {
        boost::shared_ptr<tEntry> e = mSortedEntries[i].entry.lock();
        if (e) {
            mSortedEntries[i].depth = e->depth;
            mSortedEntries[i].order = e->order;
        }
    }
    std::sort(mSortedEntries.begin(), mSortedEntries.end(), [](const tEntryRef& a, const tEntryRef& b) {
        return a.depth != b.depth ? a.depth < b.depth : a.order < b.order;
    });
    mOrderDirty = false;
}

void CPointSpriteDrawList::prepare()
{
    checkRevisions();
    if (mVerticesDirty)
        bufferVertices();
}

void CPointSpriteDrawList::beginPoints()
{
    glColor4ub(255, 255, 255, 255);
    glBindTexture(GL_TEXTURE_2D, mTextureId);
    glEnable(GL_POINT_SPRITE_OES);
    glTexEnvi(GL_POINT_SPRITE_OES, GL_COORD_REPLACE_OES, GL_TRUE);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, mVertexBuffer);
    glVertexPointer(3, GL_FIXED, 0, 0);
}

void CPointSpriteDrawList::endPoints()
{
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexEnvi(GL_POINT_SPRITE_OES, GL_COORD_REPLACE_OES, GL_FALSE);
    glDisable(GL_POINT_SPRITE_OES);
    glPointSizex(ONE_X.raw());
}

void CPointSpriteDrawList::draw()
{
    prepare();
    if (mSortedEntries.empty())
        return;
    beginPoints();
    {
        tPointRuns runs;
        for (size_t i = 0; i < mEntries.size(); ++i)
            if (mEntries[i]->visible && mEntries[i]->vertexCount > 0)
                runs.put(*mEntries[i]);
    }
    endPoints();
}

int CPointSpriteDrawList::prepareAlphaDraw()
{
    prepare();
    if (mOrderDirty)
        sortEntries();
    mAlphaCursor = 0;
    return mSortedEntries.empty() ? NO_MORE_DEPTHS : mSortedEntries[0].depth;
}

int CPointSpriteDrawList::drawZDepth(int z)
{
    size_t last = std::min(mAlphaCursor, mSortedEntries.size());
    if (last < mSortedEntries.size() && mSortedEntries[last].depth == z) {
        beginPoints();
        {
            tPointRuns runs;
            for (; last < mSortedEntries.size() && mSortedEntries[last].depth == z; ++last) {
                boost::shared_ptr<tEntry> e = mSortedEntries[last].entry.lock();
                if (e && e->vertexCount > 0)
                    runs.put(*e);
            }
        }
        endPoints();
    }
    mAlphaCursor = last;
    return last < mSortedEntries.size() ? mSortedEntries[last].depth : NO_MORE_DEPTHS;
}
