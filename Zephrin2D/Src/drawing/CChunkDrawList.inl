// Member definitions of the CChunkDrawList template, included by its header.

template <class Entry, class Chunk>
int32_t CChunkDrawList<Entry, Chunk>::depthOf(const tEntry& e)
{
    const std::vector<tVect3>& v = e.chunk->getVertices();
    const int32_t z = (e.element->getZ() + (v.empty() ? ZERO_X : v[0].z)).raw();
    // The largest value means "no more depths" to the draw manager.
    return z < NO_MORE_DEPTHS ? z : NO_MORE_DEPTHS - 1;
}

template <class Entry, class Chunk>
typename CChunkDrawList<Entry, Chunk>::tEntryRef
CChunkDrawList<Entry, Chunk>::refTo(const boost::shared_ptr<tEntry>& entry)
{
    tEntryRef ref;
    ref.entry = entry;
    ref.depth = entry->depth;
    ref.order = entry->order;
    return ref;
}

template <class Entry, class Chunk>
typename CChunkDrawList<Entry, Chunk>::tEntryRef
CChunkDrawList<Entry, Chunk>::takeRef(std::vector<tEntryRef>& refs, const tEntry& entry)
{
    for (size_t i = 0; i < refs.size(); ++i)
        if (refs[i].order == entry.order) {
            const tEntryRef ref = refs[i];
            refs.erase(refs.begin() + i);
            return ref;
        }
    return tEntryRef();
}

template <class Entry, class Chunk>
uint32_t CChunkDrawList<Entry, Chunk>::nextOrder()
{
    if (mNextOrder >= ORDER_LIMIT) {
        // The entries are in acceptance order: their positions are their new orders.
        for (size_t i = 0; i < mEntries.size(); ++i)
            mEntries[i]->order = static_cast<uint32_t>(i);
        std::vector<tEntryRef>* const refs[2] = {&mSortedEntries, &mHiddenEntries};
        for (int r = 0; r < 2; ++r)
            for (size_t i = 0; i < refs[r]->size(); ++i)
                if (boost::shared_ptr<tEntry> e = (*refs[r])[i].entry.lock())
                    (*refs[r])[i].order = e->order;
        mNextOrder = static_cast<uint32_t>(mEntries.size());
    }
    return mNextOrder++;
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::holdsTexture(const boost::shared_ptr<CDrawChunk>& chunk) const
{
    const Chunk* typed = dynamic_cast<const Chunk*>(chunk.get());
    return typed && mHasTexture && typed->getTextureId() == mTextureId;
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::restream(tVertexStream& stream, tEntry& e)
{
    const bool countMatches = streamEntry(stream, e);
    const int32_t depth = depthOf(e);
    if (depth != e.depth) {
        e.depth = depth;
        mOrderDirty = mOrderDirty || e.visible;
    }
    return countMatches;
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    boost::shared_ptr<Chunk> typed = boost::dynamic_pointer_cast<Chunk>(chunk);
    if (!element || !typed)
        return false;
    const bool translucent = typed->isTranslucentFor(*element);
    if (mHasTexture && (typed->getTextureId() != mTextureId || translucent != mTranslucent))
        return false;
    if (find(element, chunk))
        return true;
    const size_t vertexCount = typed->getVertices().size();
    const size_t indexCount = indexCountOf(*typed);
    if (mVertexCount + vertexCount > MAX_COUNT || mIndexCount + mHiddenIndexCount + indexCount > MAX_COUNT ||
        mPool.fullAt(tIndex::MAX_SLOT))
        return false;
    if (!mHasTexture) {
        BaseUtils::Assert(typed->getTextureId() != 0, mMessages.file, __LINE__, mMessages.noTexture);
        mTextureId = typed->getTextureId();
        mTranslucent = translucent;
        mHasTexture = true;
    }

    const tSlot slot = mPool.take();
    boost::shared_ptr<tEntry> entry = mPool.shared(slot);
    entry->element = element;
    entry->chunk = typed;
    entry->vertexOffset = mVertexCount;
    entry->indexOffset = 0;
    entry->dirty = true;
    entry->texCoordsDirty = true;
    entry->vertexCount = static_cast<uint16_t>(vertexCount);
    entry->indexCount = static_cast<uint16_t>(indexCount);
    entry->visible = element->getVisibility();
    entry->depth = depthOf(*entry);
    entry->order = nextOrder();
    entry->tinted = false;
    entry->cleared = false;
    entry->colorDirty = false;
    takeColor(*entry);
    entryAdded(*entry);
    mIndex.insert(slot);
    chunk->setListSlot(static_cast<uint16_t>(slot));
    mVertexCount = static_cast<uint16_t>(mVertexCount + vertexCount);
    if (entry->visible) {
        reserveOneMore(mSortedEntries);
        mSortedEntries.push_back(refTo(entry));
        mIndexCount = static_cast<uint16_t>(mIndexCount + indexCount);
        mOrderDirty = true;
    } else {
        reserveOneMore(mHiddenEntries);
        mHiddenEntries.push_back(refTo(entry));
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount + indexCount);
    }
    reserveOneMore(mEntries);
    mEntries.push_back(std::move(entry));
    chunk->setDrawList(weak_from_this());
    mVerticesDirty = true;
    mIndicesDirty = true;
    return true;
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::remove(boost::shared_ptr<CGraphicElement> element,
                                          boost::shared_ptr<CDrawChunk> chunk)
{
    if (!holdsTexture(chunk))
        return false;
    const tSlot slot = mIndex.find(element.get(), chunk.get());
    if (slot == tIndex::NOT_FOUND)
        return false;
    tEntry* const found = &mPool[slot];
    mVertexCount = static_cast<uint16_t>(mVertexCount - found->vertexCount);
    if (found->tinted)
        --mTintedCount;
    mIndex.erase(element.get(), chunk.get());

    // The entries after it close the gap: their vertices move down and are rewritten.
    bool chunkStillHeld = false;
    size_t position = NONE;
    for (size_t i = 0; i < mEntries.size(); ++i) {
        if (mEntries[i].get() == found)
            position = i;
        else if (position != NONE)
            mEntries[i]->vertexOffset = static_cast<uint16_t>(mEntries[i]->vertexOffset - found->vertexCount);
        if (mEntries[i].get() != found && mEntries[i]->chunk == chunk)
            chunkStillHeld = true;
    }
    mEntries.erase(mEntries.begin() + position);
    if (found->visible) {
        mIndexCount = static_cast<uint16_t>(mIndexCount - found->indexCount);
        takeRef(mSortedEntries, *found);
    } else {
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount - found->indexCount);
        takeRef(mHiddenEntries, *found);
    }
    found->element.reset();
    found->chunk.reset();
    mPool.release(slot);
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

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::setVisible(const boost::shared_ptr<CGraphicElement>& element,
                                              const boost::shared_ptr<CDrawChunk>& chunk, bool visible)
{
    if (!holdsTexture(chunk))
        return false;
    tEntry* const entry = find(element, chunk);
    if (!entry)
        return false;
    if (entry->visible == visible)
        return true;
    entry->visible = visible;
    if (visible) {
        reserveOneMore(mSortedEntries);
        mSortedEntries.push_back(takeRef(mHiddenEntries, *entry));
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount - entry->indexCount);
        mIndexCount = static_cast<uint16_t>(mIndexCount + entry->indexCount);
        mOrderDirty = true;
    } else {
        reserveOneMore(mHiddenEntries);
        mHiddenEntries.push_back(takeRef(mSortedEntries, *entry));
        mIndexCount = static_cast<uint16_t>(mIndexCount - entry->indexCount);
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount + entry->indexCount);
    }
    mIndicesDirty = true;
    return true;
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::markDirty(const CGraphicElement* element, CDrawChunk* chunk, bool texCoords)
{
    tEntry* const entry = find(element, chunk);
    if (!entry)
        return;
    entry->dirty = true;
    entry->texCoordsDirty = entry->texCoordsDirty || texCoords;
    mVerticesDirty = true;
}

template <class Entry, class Chunk>
tColor CChunkDrawList<Entry, Chunk>::colorOf(const tEntry& e)
{
    return e.tinted ? e.element->getBatchedColor() : tColor{255, 255, 255, 255};
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::takeColor(tEntry& e)
{
    bool tinted = false;
    bool cleared = false;
    if (mTexCoords && e.element->drawsColor()) {
        const tColor c = e.element->getBatchedColor();
        tinted = (c.r & c.g & c.b & c.a) != 255;
        cleared = c.a == 0;
    }
    if (tinted != e.tinted) {
        if (!tinted)
            --mTintedCount;
        else if (mTintedCount++ == 0)
            mColorsValid = false;
    }
    e.tinted = tinted;
    e.cleared = cleared;
    if (mTintedCount > 0) {
        e.colorDirty = true;
        mVerticesDirty = true;
    }
}

template <class Entry, class Chunk>
CDrawList::tRecolor CChunkDrawList<Entry, Chunk>::recolor(const boost::shared_ptr<CGraphicElement>& element,
                                                           const boost::shared_ptr<CDrawChunk>& chunk)
{
    tEntry* const entry = find(element, chunk);
    if (!entry)
        return NOT_HELD;
    if (entry->chunk->isTranslucentFor(*element) != mTranslucent)
        return MISPLACED;
    takeColor(*entry);
    return RECOLORED;
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::recolorAll(tPairs& misplaced)
{
    for (size_t i = 0; i < mEntries.size(); ++i) {
        tEntry& e = *mEntries[i];
        if (e.chunk->isTranslucentFor(*e.element) != mTranslucent)
            misplaced.push_back(std::make_pair(e.element, boost::shared_ptr<CDrawChunk>(e.chunk)));
        else
            takeColor(e);
    }
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::bindColors()
{
    if (mTintedCount == 0 || !mColorsValid)
        return false;
    glEnableClientState(GL_COLOR_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, mColorBuffer);
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, 0);
    return true;
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::clear()
{
    for (size_t i = 0; i < mEntries.size(); ++i)
        if (mEntries[i]->chunk->getDrawList().lock().get() == this)
            mEntries[i]->chunk->setDrawList(boost::weak_ptr<CDrawList>());
    mEntries.clear();
    mIndex.clear();
    mPool.clear();
    mSortedEntries.clear();
    mHiddenEntries.clear();
    mAlphaCursor = 0;
    mVertexCount = 0;
    mIndexCount = 0;
    mHiddenIndexCount = 0;
    mTintedCount = 0;
    mColorsValid = false;
    mRewriteFrom = NONE;
    deleteVertexBuffers();
    mBufferedVertexCount = 0;
    mVerticesDirty = false;
    mIndicesDirty = false;
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::deleteVertexBuffers()
{
    if (mVertexBuffer)
        glDeleteBuffers(1, &mVertexBuffer);
    if (mTexCoordBuffer)
        glDeleteBuffers(1, &mTexCoordBuffer);
    if (mColorBuffer)
        glDeleteBuffers(1, &mColorBuffer);
    mVertexBuffer = 0;
    mTexCoordBuffer = 0;
    mColorBuffer = 0;
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::bufferVertices()
{
    if (!mVertexBuffer) {
        glGenBuffers(1, &mVertexBuffer);
        if (mTexCoords)
            glGenBuffers(1, &mTexCoordBuffer);
    }
    const bool colors = mTintedCount > 0;
    if (colors && !mColorBuffer)
        glGenBuffers(1, &mColorBuffer);
    if (mBufferedVertexCount < mVertexCount) {
        uploadVertices(0, true, colors);
        mBufferedVertexCount = mVertexCount;
    } else {
        if (colors && !mColorsValid)
            uploadColors();
        if (mRewriteFrom < mEntries.size())
            uploadVertices(mRewriteFrom, false, colors);
        uploadDirtyVertices(colors);
    }
    mColorsValid = colors;
    mRewriteFrom = NONE;
    mVerticesDirty = false;
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::uploadVertices(size_t firstEntry, bool allocate, bool colors)
{
    size_t expected = 0;
    size_t written = 0;
    bool countsMatch = true;
    {
        tVertexStream stream(mVertexBuffer, mTexCoordBuffer, mColorBuffer);
        const size_t start = firstEntry < mEntries.size() ? mEntries[firstEntry]->vertexOffset : mVertexCount;
        expected = mVertexCount - start;
        if (allocate)
            stream.allocate(mVertexCount);
        stream.seekParts(start, tVertexStream::POSITIONS | (mTexCoords ? tVertexStream::COORDS : 0) |
                                    (colors ? tVertexStream::COLORS : 0));
        for (size_t i = firstEntry; i < mEntries.size(); ++i) {
            if (colors)
                stream.setColor(colorOf(*mEntries[i]));
            mEntries[i]->colorDirty = false;
            countsMatch = restream(stream, *mEntries[i]) && countsMatch;
            written += mEntries[i]->vertexCount;
        }
    }
    BaseUtils::Assert(countsMatch && written == expected, mMessages.file, __LINE__, mMessages.rewriteMismatch);
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::uploadDirtyVertices(bool colors)
{
    bool countsMatch = true;
    {
        tVertexStream stream(mVertexBuffer, mTexCoordBuffer, mColorBuffer);
        const unsigned colorPart = colors ? tVertexStream::COLORS : 0;
        for (size_t i = 0; i < mEntries.size(); ++i) {
            tEntry& e = *mEntries[i];
            if (!e.dirty && !e.colorDirty)
                continue;
            if (colors)
                stream.setColor(colorOf(e));
            if (e.dirty) {
                stream.seekParts(e.vertexOffset, tVertexStream::POSITIONS | colorPart |
                                                     (mTexCoords && e.texCoordsDirty ? tVertexStream::COORDS : 0));
                countsMatch = restream(stream, e) && countsMatch;
            } else if (colors) {
                stream.seekParts(e.vertexOffset, tVertexStream::COLORS);
                stream.putColors(e.vertexCount);
            }
            e.colorDirty = false;
        }
    }
    BaseUtils::Assert(countsMatch, mMessages.file, __LINE__, mMessages.dirtyMismatch);
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::uploadColors()
{
    tVertexStream stream(mVertexBuffer, mTexCoordBuffer, mColorBuffer);
    stream.allocate(mBufferedVertexCount);
    stream.seekParts(0, tVertexStream::COLORS);
    for (size_t i = 0; i < mEntries.size(); ++i) {
        stream.setColor(colorOf(*mEntries[i]));
        stream.putColors(mEntries[i]->vertexCount);
        mEntries[i]->colorDirty = false;
    }
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::sortEntries(bool frontToBack)
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
