#include "CPointSpriteDrawList.h"

#include <GLES/glext.h>

namespace {

const CChunkDrawList<tElementPointSpriteChunkPairEntryStruct, CPointSpriteChunk>::tMessages kMessages = {
    "Zephrin2D/Src/CPointSpriteDrawList",
    "CPointSpriteDrawList::add adding item with no TextureId",
    "CPointSpriteDrawList::bufferVertices vertex count mismatch",
    "CPointSpriteDrawList::bufferVertices vertex count mismatch",
};

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

CPointSpriteDrawList::CPointSpriteDrawList() : CChunkDrawList(kMessages, false)
{
}

bool CPointSpriteDrawList::streamEntry(tVertexStream& stream, tEntry& e)
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

void CPointSpriteDrawList::prepare()
{
    for (size_t i = 0; i < mEntries.size(); ++i) {
        tEntry& e = *mEntries[i];
        if (!e.parked && e.chunk->getRevision() != e.revision) {
            e.dirty = true;
            mVerticesDirty = true;
            scanAllDirty();
        }
    }
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
    purgeDeadRefs();
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
    if (mOrderDirty || mSortedFrontToBack)
        sortEntries(false);
    return startAlphaPass();
}

int CPointSpriteDrawList::drawZDepth(int z)
{
    size_t last = std::min(mAlphaCursor, mSortedEntries.size());
    if (last < mSortedEntries.size() && mSortedEntries[last].depth == z) {
        beginPoints();
        {
            tPointRuns runs;
            for (; last < mSortedEntries.size() && mSortedEntries[last].depth == z; ++last) {
                boost::shared_ptr<tEntry> held;
                tEntry* const e = liveEntry(last, held);
                if (e && e->vertexCount > 0)
                    runs.put(*e);
            }
        }
        endPoints();
    }
    mAlphaCursor = last;
    return last < mSortedEntries.size() ? mSortedEntries[last].depth : NO_MORE_DEPTHS;
}
