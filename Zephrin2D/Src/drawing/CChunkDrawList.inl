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
CChunkDrawList<Entry, Chunk>::refTo(tSlot slot) const
{
    const tEntry& e = mPool[slot];
    tEntryRef ref;
    ref.entry = mPool.weak(slot);
    ref.depth = e.depth;
    ref.order = e.order;
    return ref;
}

template <class Entry, class Chunk>
CChunkDrawList<Entry, Chunk>::~CChunkDrawList()
{
    deleteVertexBuffers();
    for (size_t i = 0; i < mEntries.size(); ++i)
        if (!mEntries[i]->parked)
            releaseHold(*mEntries[i]->chunk);
}

template <class Entry, class Chunk>
typename CChunkDrawList<Entry, Chunk>::tEntryRef
CChunkDrawList<Entry, Chunk>::takeRef(std::vector<tEntryRef>& refs, const tEntry& entry)
{
    tEntryRef key;
    key.depth = entry.depth;
    key.order = entry.order;
    size_t from = 0;
    if (&refs == &mSortedEntries) {
        // In the part in draw order the reference is found by its depth and
        // order, and left in place, dead, until the next sort.
        const typename std::vector<tEntryRef>::iterator end = refs.begin() + mSortedPrefix;
        const typename std::vector<tEntryRef>::iterator it =
            std::lower_bound(refs.begin(), end, key, [this](const tEntryRef& a, const tEntryRef& b) {
                return drawsBefore(a, b);
            });
        size_t i = static_cast<size_t>(it - refs.begin());
        if (i == mSortedPrefix || refs[i].order != entry.order) {
            // Its depth changed since the sort: looked for by its order alone.
            i = 0;
            while (i < mSortedPrefix && refs[i].order != entry.order)
                ++i;
        }
        if (i < mSortedPrefix && !refs[i].entry.expired()) {
            tEntryRef ref = key;
            ref.entry.swap(refs[i].entry);   // leaves the dead one empty
            ++mDeadRefs;
            mOrderDirty = true;
            return ref;
        }
        from = mSortedPrefix;
    }
    // Past the part in draw order (and among the hidden ones) order does not matter: the last one fills the gap.
    for (size_t i = from; i < refs.size(); ++i)
        if (refs[i].order == entry.order) {
            tEntryRef ref = std::move(refs[i]);
            if (i + 1 != refs.size())
                refs[i] = std::move(refs.back());
            refs.pop_back();
            return ref;
        }
    return tEntryRef();
}

template <class Entry, class Chunk>
size_t CChunkDrawList<Entry, Chunk>::purgeDeadRefs()
{
    size_t kept = mSortedPrefix;
    if (mDeadRefs > 0) {
        kept = 0;
        size_t w = 0;
        for (size_t i = 0; i < mSortedEntries.size(); ++i) {
            tEntryRef& r = mSortedEntries[i];
            // A dropped entry's slot has no chunk until it is taken again, under a later order.
            if (!peekedEntry(i))
                continue;
            kept += i < mSortedPrefix;
            if (w != i)
                mSortedEntries[w] = std::move(r);
            ++w;
        }
        mSortedEntries.erase(mSortedEntries.begin() + w, mSortedEntries.end());
    }
    mDeadRefs = 0;
    mSortedPrefix = 0;
    return kept;
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::insertSorted(tEntryRef ref)
{
    // Sorted at the next draw: moving every later reference now would cost more.
    reserveOneMore(mSortedEntries);
    mSortedEntries.push_back(std::move(ref));
    mOrderDirty = true;
}

template <class Entry, class Chunk>
uint32_t CChunkDrawList<Entry, Chunk>::renumber()
{
    {
        // The held entries keep their relative order: both reference lists
        // are put in acceptance order and numbered as one, merged.
        purgeDeadRefs();
        const auto byOrder = [](const tEntryRef& a, const tEntryRef& b) { return a.order < b.order; };
        std::sort(mSortedEntries.begin(), mSortedEntries.end(), byOrder);
        std::sort(mHiddenEntries.begin(), mHiddenEntries.end(), byOrder);
        size_t s = 0, h = 0;
        uint32_t next = 0;
        while (s < mSortedEntries.size() || h < mHiddenEntries.size()) {
            const bool sorted = h == mHiddenEntries.size() ||
                                (s < mSortedEntries.size() && mSortedEntries[s].order < mHiddenEntries[h].order);
            tEntryRef& ref = sorted ? mSortedEntries[s++] : mHiddenEntries[h++];
            if (boost::shared_ptr<tEntry> e = ref.entry.lock())
                e->order = next;
            ref.order = next++;
        }
        mNextOrder = next;
        mOrderDirty = true;
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
    e.hashKept = false;
    const int32_t depth = depthOf(e);
    if (depth != e.depth) {
        e.depth = depth;
        if (e.visible) {
            mOrderDirty = true;
            mDepthsStale = true;
        }
    }
    return countMatches;
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::addHeld(const boost::shared_ptr<CGraphicElement>& element,
                                           const boost::shared_ptr<CDrawChunk>& chunk)
{
    if (!element || !chunk)
        return false;
    // A pair found (held or parked) has this list's kind of chunk: no cast is needed.
    const tSlot held = lookup(element.get(), chunk.get());
    Chunk* const typed = held != tIndex::NOT_FOUND ? mPool[held].chunk.get() : dynamic_cast<Chunk*>(chunk.get());
    if (!typed)
        return false;
    const bool translucent = typed->isTranslucentFor(*element);
    if (mHasTexture && (typed->getTextureId() != mTextureId || translucent != mTranslucent))
        return false;
    const Chunk& constant = *typed;
    const size_t vertexCount = constant.getVertices().size();
    if (held != tIndex::NOT_FOUND) {
        if (!mPool[held].parked)
            return true;
        if (mPool[held].vertexCount == vertexCount)
            return rejoin(held, element, chunk, *typed);
        dropParked(false);   // the chunk changed size in place: its kept room no longer fits
    }
    const size_t indexCount = indexCountOf(constant);
    if (mVertexCount + vertexCount > MAX_COUNT || mIndexCount + mHiddenIndexCount + indexCount > MAX_COUNT ||
        mPool.fullAt(tIndex::MAX_SLOT)) {
        if (mParked.empty() || mVertexCount + vertexCount > MAX_COUNT ||
            mIndexCount + mHiddenIndexCount + indexCount > MAX_COUNT)
            return false;
        dropParked(false);
        if (mPool.fullAt(tIndex::MAX_SLOT))
            return false;
    }
    if (mVertexEnd + vertexCount > MAX_COUNT)
        dropParked(false);
    if (!mHasTexture) {
        BaseUtils::Assert(typed->getTextureId() != 0, mMessages.file, __LINE__, mMessages.noTexture);
        mTextureId = typed->getTextureId();
        mTextureKey = mTextureId;
        mTranslucent = translucent;
        mHasTexture = true;
    }

    const tSlot slot = mPool.take();
    tEntry& entry = mPool[slot];
    entry.element = element;
    entry.chunk = boost::shared_ptr<Chunk>(chunk, typed);
    entry.vertexOffset = mVertexEnd;
    entry.indexOffset = 0;
    entry.dirty = true;
    entry.texCoordsDirty = true;
    entry.vertexCount = static_cast<uint16_t>(vertexCount);
    entry.depth = depthOf(entry);
    entry.tinted = false;
    entry.cleared = false;
    entry.colorDirty = false;
    entry.parked = false;
    entry.hashKept = false;
    entryAdded(entry);
    mIndex.insert(slot);
    mVertexEnd = static_cast<uint16_t>(mVertexEnd + vertexCount);
    reserveOneMore(mEntries);
    if (mMovedEntries.size() < mEntries.capacity() / 8)
        mMovedEntries.resize(mEntries.capacity() / 8);
    mEntries.push_back(mPool.shared(slot));
    mVerticesDirty = true;
    mScanAll = true;
    join(slot, *typed, indexCount);
    return true;
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::join(tSlot slot, Chunk& chunk, size_t indexCount)
{
    tEntry& entry = mPool[slot];
    entry.indexCount = static_cast<uint16_t>(indexCount);
    entry.visible = entry.element->getVisibility();
    entry.order = nextOrder();
    takeColor(entry);
    mVertexCount = static_cast<uint16_t>(mVertexCount + entry.vertexCount);
    ++mLiveCount;
    if (entry.visible) {
        insertSorted(refTo(slot));
        mIndexCount = static_cast<uint16_t>(mIndexCount + entry.indexCount);
    } else {
        reserveOneMore(mHiddenEntries);
        mHiddenEntries.push_back(refTo(slot));
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount + entry.indexCount);
    }
    chunk.setHoldCount(chunk.getHoldCount() + 1);
    if (mSelf._empty())
        mSelf = weak_from_this();
    // Only a chunk that names no list or another one takes a new reference.
    if (!chunk.getDrawList().owner_equals(mSelf))
        chunk.setDrawList(mSelf);
    chunk.setListSlot(static_cast<uint16_t>(slot));
    mIndicesDirty = true;
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::rejoin(tSlot slot, const boost::shared_ptr<CGraphicElement>& element,
                                          const boost::shared_ptr<CDrawChunk>& chunk, Chunk& typed)
{
    const Chunk& constant = typed;
    const size_t indexCount = indexCountOf(constant);
    if (mVertexCount + constant.getVertices().size() > MAX_COUNT ||
        mIndexCount + mHiddenIndexCount + indexCount > MAX_COUNT)
        return false;
    tEntry& e = mPool[slot];
    tParked& kept = mParked[e.indexOffset];
    // The pair is the one that left when both references still live (an
    // object at the same address would be another one); its vertices are
    // still right when neither the matrix nor the chunk changed.
    const bool same = !e.dirty && !kept.element.expired() && !kept.chunk.expired() &&
                      kept.fingerprint == fingerprintOf(constant);
    bool valid = same;
    if (valid) {
        const tMatrix23 m = element->getMatrix();
        const tMatrix23& k = kept.matrix;
        valid = m.m00 == k.m00 && m.m01 == k.m01 && m.m02 == k.m02 && m.m10 == k.m10 && m.m11 == k.m11 &&
                m.m12 == k.m12 && m.z == k.z;
    }
    if (valid) {
        // The vertices stay what they were written from: the hash serves again when the pair leaves.
        mKeptHashes[slot] = kept.fingerprint;
        e.hashKept = true;
    }
    if (static_cast<size_t>(e.indexOffset) + 1 != mParked.size()) {
        kept = std::move(mParked.back());
        mPool[kept.slot].indexOffset = e.indexOffset;
    }
    mParked.pop_back();
    e.element = element;
    e.chunk = boost::shared_ptr<Chunk>(chunk, &typed);
    e.parked = false;
    if (!valid) {
        e.dirty = true;
        e.texCoordsDirty = true;
        e.depth = depthOf(e);
        mVerticesDirty = true;
    }
    // It may have been flagged while parked.
    mScanAll = true;
    join(slot, typed, indexCount);
    return true;
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::removeHeld(const boost::shared_ptr<CGraphicElement>& element,
                                              const boost::shared_ptr<CDrawChunk>& chunk)
{
    const tSlot slot = lookup(element.get(), chunk.get());
    if (slot == tIndex::NOT_FOUND)
        return false;
    tEntry& e = mPool[slot];
    // The chunk found is this list's kind; it must still carry the list's texture.
    if (e.parked || e.chunk->getTextureId() != mTextureId)
        return false;
    mVertexCount = static_cast<uint16_t>(mVertexCount - e.vertexCount);
    if (e.tinted) {
        --mTintedCount;
        e.tinted = false;
    }
    if (e.visible) {
        mIndexCount = static_cast<uint16_t>(mIndexCount - e.indexCount);
        // Its reference stays where it is until the next sort, which is due
        // anyway: it is dead once its entry is parked or holds a later order.
        ++mDeadRefs;
        mOrderDirty = true;
    } else {
        mHiddenIndexCount = static_cast<uint16_t>(mHiddenIndexCount - e.indexCount);
        takeRef(mHiddenEntries, e);
    }
    --mLiveCount;
    park(slot, *chunk);
    mIndicesDirty = true;
    return true;
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::park(tSlot slot, CDrawChunk& chunk)
{
    tEntry& e = mPool[slot];
    e.indexOffset = static_cast<uint16_t>(mParked.size());
    mParked.emplace_back();
    tParked& kept = mParked.back();
    kept.element = e.element;
    kept.chunk = e.chunk;
    if (!e.dirty) {
        kept.matrix = e.element->getMatrix();
        kept.fingerprint = e.hashKept ? mKeptHashes[slot] : fingerprintOf(*e.chunk);
    }
    // Room for every slot handed out so far, so that its return finds it (grown while pairs first leave).
    if (mKeptHashes.size() <= slot)
        mKeptHashes.resize(mPool.used());
    e.hashKept = false;
    kept.slot = slot;
    // The entry keeps the pair's addresses for the lookup, without owning it.
    e.element = boost::shared_ptr<CGraphicElement>(boost::shared_ptr<void>(), e.element.get());
    e.chunk = boost::shared_ptr<Chunk>(boost::shared_ptr<void>(), e.chunk.get());
    e.parked = true;
    e.visible = false;
    // The list's own reference names it without locking the chunk's.
    if (releaseHold(chunk) && !mSelf._empty() && chunk.getDrawList().owner_equals(mSelf))
        chunk.setDrawList(boost::weak_ptr<CDrawList>());
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::dropParked(bool goneOnly)
{
    size_t dropped = 0;
    for (size_t i = 0; i < mParked.size(); ++i) {
        const tParked& kept = mParked[i];
        if (goneOnly && !kept.element.expired() && !kept.chunk.expired())
            continue;
        tEntry& e = mPool[kept.slot];
        mIndex.erase(e.element.get(), e.chunk.get());
        e.indexOffset = 0xFFFF;   // marks it for the sweep below
        ++dropped;
    }
    if (dropped == 0)
        return;
    // Close the gaps; the entries after the first one are rewritten at their new offsets.
    size_t w = 0;
    uint16_t offset = 0;
    size_t rewriteFrom = NONE;
    for (size_t i = 0; i < mEntries.size(); ++i) {
        tEntry& e = *mEntries[i];
        if (e.parked && e.indexOffset == 0xFFFF)
            continue;
        if ((e.vertexOffset != offset || i >= mRewriteFrom) && rewriteFrom == NONE)
            rewriteFrom = w;
        e.vertexOffset = offset;
        offset = static_cast<uint16_t>(offset + e.vertexCount);
        if (w != i)
            mEntries[w] = std::move(mEntries[i]);
        ++w;
    }
    mEntries.resize(w);
    mVertexEnd = offset;
    mRewriteFrom = rewriteFrom;
    mScanAll = true;
    if (rewriteFrom != NONE)
        mVerticesDirty = true;
    size_t k = 0;
    for (size_t i = 0; i < mParked.size(); ++i) {
        tEntry& e = mPool[mParked[i].slot];
        if (e.indexOffset == 0xFFFF) {
            e.element.reset();
            e.chunk.reset();
            e.parked = false;
            mPool.release(mParked[i].slot);
        } else {
            e.indexOffset = static_cast<uint16_t>(k);
            if (k != i)
                mParked[k] = std::move(mParked[i]);
            ++k;
        }
    }
    mParked.resize(k);
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
        tEntryRef ref = takeRef(mHiddenEntries, *entry);
        // A hidden reference's depth is that of when it was made.
        ref.depth = entry->depth;
        ref.order = entry->order;
        mSortedEntries.push_back(std::move(ref));
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
    flagDirty(*entry, texCoords);
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::recordMove(tEntry& entry)
{
    ++mMoveCount;
    if (mMovedCount < mMovedEntries.size() && (mMovedCount == 0 || entry.vertexOffset > mLastMovedOffset)) {
        mMovedEntries[mMovedCount++] = &entry;
        mLastMovedOffset = entry.vertexOffset;
    } else {
        mScanAll = true;
    }
}

template <class Entry, class Chunk>
tColor CChunkDrawList<Entry, Chunk>::colorOf(const tEntry& e)
{
    return e.tinted ? e.element->getBatchedColor() : tColor{255, 255, 255, 255};
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::recolorAll(tPairs& misplaced)
{
    for (size_t i = 0; i < mEntries.size(); ++i) {
        tEntry& e = *mEntries[i];
        if (e.parked)
            continue;
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
    for (size_t i = 0; i < mEntries.size(); ++i) {
        // A parked entry's chunk may be gone: it is not touched.
        if (mEntries[i]->parked)
            continue;
        Chunk& chunk = *mEntries[i]->chunk;
        releaseHold(chunk);
        if (chunk.getDrawList().lock().get() == this)
            chunk.setDrawList(boost::weak_ptr<CDrawList>());
    }
    mEntries.clear();
    mParked.clear();
    mMovedCount = 0;
    mScanAll = true;
    mLiveCount = 0;
    mVertexEnd = 0;
    mIndex.clear();
    mPool.clear();
    std::vector<uint64_t>().swap(mKeptHashes);
    mSortedEntries.clear();
    mSortedPrefix = 0;
    mDeadRefs = 0;
    mDepthsStale = false;
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
    if (mBufferedVertexCount < mVertexEnd)
        dropParked(true);
    // Flags set while uploading (a parked pair found gone) are seen at the next upload.
    const bool scanAll = mScanAll;
    mScanAll = false;
    if (mBufferedVertexCount < mVertexEnd) {
        uploadVertices(0, true, colors);
        mBufferedVertexCount = mVertexEnd;
    } else {
        if (colors && !mColorsValid)
            uploadColors();
        if (mRewriteFrom < mEntries.size())
            uploadVertices(mRewriteFrom, false, colors);
        uploadDirtyVertices(colors, scanAll);
    }
    // After more moves than the record holds, the next frame does not record them.
    mScanAll = mScanAll || mMoveCount > mMovedEntries.size();
    mMovedCount = 0;
    mMoveCount = 0;
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
        const size_t start = firstEntry < mEntries.size() ? mEntries[firstEntry]->vertexOffset : mVertexEnd;
        expected = mVertexEnd - start;
        if (allocate)
            stream.allocate(mVertexEnd);
        stream.seekParts(start, tVertexStream::POSITIONS | (mTexCoords ? tVertexStream::COORDS : 0) |
                                    (colors ? tVertexStream::COLORS : 0));
        for (size_t i = firstEntry; i < mEntries.size(); ++i) {
            if (colors)
                stream.setColor(colorOf(*mEntries[i]));
            mEntries[i]->colorDirty = false;
            if (mEntries[i]->parked)
                countsMatch = restreamParked(stream, *mEntries[i]) && countsMatch;
            else
                countsMatch = restream(stream, *mEntries[i]) && countsMatch;
            written += mEntries[i]->vertexCount;
        }
    }
    BaseUtils::Assert(countsMatch && written == expected, mMessages.file, __LINE__, mMessages.rewriteMismatch);
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::uploadDirtyVertices(bool colors, bool scanAll)
{
    bool countsMatch = true;
    {
        tVertexStream stream(mVertexBuffer, mTexCoordBuffer, mColorBuffer);
        const unsigned colorPart = colors ? tVertexStream::COLORS : 0;
        const unsigned coordPart = mTexCoords ? tVertexStream::COORDS : 0;
        const auto upload = [&](tEntry& e) {
            if ((!e.dirty && !e.colorDirty) || e.parked)
                return;
            if (!e.dirty) {
                // A new colour alone.
                if (colors)
                    stream.putColorsAt(e.vertexOffset, colorOf(e), e.vertexCount);
                e.colorDirty = false;
                return;
            }
            if (colors)
                stream.setColor(colorOf(e));
            stream.seekParts(e.vertexOffset,
                             tVertexStream::POSITIONS | colorPart | (e.texCoordsDirty ? coordPart : 0));
            countsMatch = restream(stream, e) && countsMatch;
            e.colorDirty = false;
        };
        // Streaming changes no entry vector: its bounds stay in registers across the calls.
        if (scanAll) {
            const boost::shared_ptr<tEntry>* const entries = mEntries.data();
            const size_t count = mEntries.size();
            for (size_t i = 0; i < count; ++i)
                upload(*entries[i]);
        } else {
            for (size_t i = 0; i < mMovedCount; ++i)
                upload(*mMovedEntries[i]);
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
    // What is left of the part in draw order stays in order.
    size_t prefix = purgeDeadRefs();
    if (mDepthsStale) {
        for (size_t i = 0; i < mSortedEntries.size(); ++i) {
            boost::shared_ptr<tEntry> e = mSortedEntries[i].entry.lock();
            if (e) {
                mSortedEntries[i].depth = e->depth;
                mSortedEntries[i].order = e->order;
            }
        }
        mDepthsStale = false;
        prefix = 0;
    }
    if (frontToBack != mSortedFrontToBack)
        prefix = 0;
    // Few appended references are sorted apart and merged in; many, or a new order, sort all.
    const bool merge = prefix > 0 && mSortedEntries.size() - prefix <= prefix;
    if (!merge && mSortedEntries.size() <= SMALL_SORT)
        sortSmall(frontToBack);
    else if (frontToBack) {
        if (merge)
            mergeAppended<true>(prefix);
        else
            std::sort(mSortedEntries.begin(), mSortedEntries.end(), [](const tEntryRef& a, const tEntryRef& b) {
                return a.depth != b.depth ? a.depth > b.depth : a.order < b.order;
            });
    } else {
        if (merge)
            mergeAppended<false>(prefix);
        else
            std::sort(mSortedEntries.begin(), mSortedEntries.end(), [](const tEntryRef& a, const tEntryRef& b) {
                return a.depth != b.depth ? a.depth < b.depth : a.order < b.order;
            });
    }
    mOrderDirty = false;
    mSortedFrontToBack = frontToBack;
    mSortedPrefix = mSortedEntries.size();
}

template <class Entry, class Chunk>
void CChunkDrawList<Entry, Chunk>::sortSmall(bool frontToBack)
{
    struct tKey
    {
        uint64_t key;
        uint32_t from;
    };
    tKey keys[SMALL_SORT];
    const size_t count = mSortedEntries.size();
    // Depth (flipped to unsigned, inverted back to front) above the order: one comparison each.
    const uint32_t flip = frontToBack ? 0x7FFFFFFFu : 0x80000000u;
    for (size_t i = 0; i < count; ++i) {
        const tEntryRef& r = mSortedEntries[i];
        keys[i].key = static_cast<uint64_t>(static_cast<uint32_t>(r.depth) ^ flip) << 32 | r.order;
        keys[i].from = static_cast<uint32_t>(i);
    }
    std::sort(keys, keys + count, [](const tKey& a, const tKey& b) { return a.key < b.key; });
    // Place k takes the reference at keys[k].from: each cycle of the permutation is followed once.
    for (size_t k = 0; k < count; ++k) {
        if (keys[k].from == k)
            continue;
        tEntryRef held = std::move(mSortedEntries[k]);
        size_t j = k;
        while (keys[j].from != k) {
            const size_t from = keys[j].from;
            mSortedEntries[j] = std::move(mSortedEntries[from]);
            keys[j].from = static_cast<uint32_t>(j);
            j = from;
        }
        mSortedEntries[j] = std::move(held);
        keys[j].from = static_cast<uint32_t>(j);
    }
}

template <class Entry, class Chunk>
template <bool frontToBack>
void CChunkDrawList<Entry, Chunk>::mergeAppended(size_t prefix)
{
    const auto before = [](const tEntryRef& a, const tEntryRef& b) {
        if (a.depth != b.depth)
            return frontToBack ? a.depth > b.depth : a.depth < b.depth;
        return a.order < b.order;
    };
    const size_t count = mSortedEntries.size();
    if (count == prefix)
        return;
    // The scratch grows to the most references appended between two sorts, then stays.
    for (size_t i = prefix; i < count; ++i)
        mSortScratch.push_back(std::move(mSortedEntries[i]));
    std::sort(mSortScratch.begin(), mSortScratch.end(), before);
    // From the back: each place is filled by the later of the two candidates (orders are unique).
    size_t i = prefix, j = mSortScratch.size(), k = count;
    while (j > 0) {
        if (i > 0 && before(mSortScratch[j - 1], mSortedEntries[i - 1]))
            mSortedEntries[--k] = std::move(mSortedEntries[--i]);
        else
            mSortedEntries[--k] = std::move(mSortScratch[--j]);
    }
    mSortScratch.clear();
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::restreamParked(tVertexStream& stream, tEntry& e)
{
    tParked& kept = mParked[e.indexOffset];
    const boost::shared_ptr<CGraphicElement> element = kept.element.lock();
    const boost::shared_ptr<Chunk> chunk = kept.chunk.lock();
    if (!element || !chunk || static_cast<const Chunk&>(*chunk).getVertices().size() != e.vertexCount) {
        for (size_t i = 0; i < e.vertexCount; ++i)
            stream.put(VECT3_0, VECT2_0);
        e.dirty = true;
        return true;
    }
    // While the pair lives the entry's addresses are its own: it is written as a held one.
    streamEntry(stream, e);
    e.depth = depthOf(e);
    kept.matrix = element->getMatrix();
    kept.fingerprint = fingerprintOf(*chunk);
    return true;
}

template <class Entry, class Chunk>
bool CChunkDrawList<Entry, Chunk>::releaseHold(CDrawChunk& chunk)
{
    const unsigned holds = chunk.getHoldCount();
    if (holds == CDrawChunk::MAX_HOLDS)
        return false;   // too many to count: the reference stays
    chunk.setHoldCount(holds > 0 ? holds - 1 : 0);
    return holds <= 1;
}
