#ifndef ZEPHRIN2D_CCHUNKDRAWLIST_H
#define ZEPHRIN2D_CCHUNKDRAWLIST_H

#include "CDrawChunk.h"
#include "CDrawList.h"
#include "CGraphicElement.h"
#include "tEntryIndex.h"
#include "tEntryPool.h"
#include "tVertexStream.h"

#include <BaseUtils.h>

#include <GLES/gl.h>
#include <algorithm>
#include <boost/weak_ptr.hpp>
#include <stdint.h>
#include <string.h>
#include <boost/make_shared.hpp>
#include <vector>

/// What a chunk draw list keeps for each (element, chunk) pair it accepted
/// (48 bytes for a textured chunk: the flags share a word with the order).
template <class Chunk>
struct tChunkEntry
{
    /// The element whose matrix places the chunk.
    boost::shared_ptr<CGraphicElement> element;
    boost::shared_ptr<Chunk> chunk;
    /// First vertex of the chunk in the list's vertex buffer.
    uint16_t vertexOffset;
    /// First index of the chunk in the list's index buffer (lists that draw indexed).
    uint16_t indexOffset;
    /// Counts as accepted; a chunk changed in place afterwards cannot overrun the buffers.
    uint16_t vertexCount;
    uint16_t indexCount;
    /// Element z plus the chunk's first vertex z, as of the last buffering.
    int32_t depth;
    /// Acceptance order, unique among the held entries: equal depths draw in it.
    uint32_t order : 24;
    /// The list kept the hash of what the vertices were written from when
    /// the pair came back; cleared when they are written again.
    bool hashKept : 1;
    /// The vertices must be re-transformed and re-uploaded.
    bool dirty : 1;
    /// The texture coordinates must be re-uploaded too.
    bool texCoordsDirty : 1;
    bool visible : 1;
    /// The element draws a colour other than opaque white.
    bool tinted : 1;
    /// The element draws with alpha 0: nothing is drawn.
    bool cleared : 1;
    /// The colours must be re-uploaded.
    bool colorDirty : 1;
    /// The pair left the list; its vertices stay for its return (see CChunkDrawList).
    bool parked : 1;
};

/// The bookkeeping every draw list of one GL texture shares: the accepted
/// pairs in acceptance order (their vertices packed in that order in one
/// vertex buffer), the visible ones in draw order, the hidden ones, a
/// lookup by pair, and the vertex uploads, which rewrite only what changed.
///
/// Entries live in a pool of blocks that share a control block each, and
/// the lookup table only grows. A removed pair's entry stays parked, with
/// its vertices in the buffers and only weak references to the pair: when
/// the pair comes back (an actor showing a cel again) the entry is taken up
/// again, and its vertices are used as they are unless the element's matrix
/// or the chunk changed meanwhile. So a steady exchange of chunks allocates
/// nothing and uploads nothing but indices. Parked entries go when the
/// buffers must grow and their pair is gone, when the list shrinks, and when
/// their room is needed for a new pair.
/// Subclasses write an entry's vertices and draw.
template <class Entry, class Chunk>
class CChunkDrawList : public CDrawList
{
public:
    typedef Entry tEntry;
    /// The assertion texts of one kind of list.
    struct tMessages
    {
        const char* file;
        const char* noTexture;
        const char* rewriteMismatch;
        const char* dirtyMismatch;
    };

    ~CChunkDrawList() override;

    bool add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override
    {
        return addHeld(element, chunk);
    }
    bool remove(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override
    {
        return removeHeld(element, chunk);
    }
    bool addHeld(const boost::shared_ptr<CGraphicElement>& element,
                 const boost::shared_ptr<CDrawChunk>& chunk) override;
    bool removeHeld(const boost::shared_ptr<CGraphicElement>& element,
                    const boost::shared_ptr<CDrawChunk>& chunk) override;
    bool show(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override
    {
        return setVisible(element, chunk, true);
    }
    bool hide(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override
    {
        return setVisible(element, chunk, false);
    }
    void markDirtyVertices(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override
    {
        markDirty(element.get(), chunk.get(), false);
    }
    /// Final: it only flags the entry (see CDrawList::movesInPlace).
    void markMoved(CGraphicElement& element, const boost::shared_ptr<CDrawChunk>& chunk) final
    {
        // The chunk's hint, inline and apart from the lookup, so that this path saves no registers.
        CDrawChunk* const c = chunk.get();
        const tSlot hint = c ? c->getListSlot() : tSlot(0);
        if (c && mPool.holds(hint)) {
            tEntry& e = mPool[hint];
            if (e.element.get() == &element && e.chunk.get() == c) {
                if (!e.parked)
                    flagDirty(e, false);
                return;
            }
        }
        markDirty(&element, c, false);
    }
    void shrink() override
    {
        dropParked(false);
        mBufferedVertexCount = 0;
        mVerticesDirty = true;
    }
    void clear() override;
    void bufferVertices() override;
    bool empty() override { return mLiveCount == 0; }
    bool isTranslucent() const override { return mTranslucent; }
    bool contains(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) const override
    {
        return static_cast<bool>(find(element, chunk));
    }
    tRecolor recolor(const boost::shared_ptr<CGraphicElement>& element,
                     const boost::shared_ptr<CDrawChunk>& chunk) override
    {
        return element ? recolorHeld(*element, chunk) : NOT_HELD;
    }
    /// Final for the same reason as markMoved.
    tRecolor recolorTinted(CGraphicElement& element, const boost::shared_ptr<CDrawChunk>& chunk) final
    {
        // An entry that draws tinted keeps doing so: only its colour goes up again.
        CDrawChunk* const c = chunk.get();
        const tSlot hint = c ? c->getListSlot() : tSlot(0);
        if (c && mPool.holds(hint)) {
            tEntry& e = mPool[hint];
            if (e.element.get() == &element && e.chunk.get() == c && !e.parked && e.tinted) {
                e.colorDirty = true;
                mVerticesDirty = true;
                mScanAll = true;
                return RECOLORED;
            }
        }
        return recolorLookedUp(element, chunk);
    }
    tRecolor recolorHeld(CGraphicElement& element, const boost::shared_ptr<CDrawChunk>& chunk) override
    {
        tEntry* const entry = find(&element, chunk.get());
        if (!entry)
            return NOT_HELD;
        if (entry->chunk->isTranslucentFor(element) != mTranslucent)
            return MISPLACED;
        takeColor(*entry);
        return RECOLORED;
    }
    void recolorAll(tPairs& misplaced) override;

    uint32_t getTextureId() const { return mTextureId; }
    uint16_t getVertexCount() const { return mVertexCount; }
    size_t getEntryCount() const { return mLiveCount; }
    /// Entries kept for pairs that left the list.
    size_t getParkedEntryCount() const { return mParked.size(); }
    size_t getVisibleEntryCount() const { return mSortedEntries.size() - mDeadRefs; }
    size_t getHiddenEntryCount() const { return mHiddenEntries.size(); }
    /// Whether the list draws with a colour array (it holds an element of another colour than opaque white).
    bool hasColors() const { return mTintedCount > 0; }

protected:
    /// A weak reference with what sorting and lookups need without locking it
    /// (the entry's order, unique in the list, identifies it).
    struct tEntryRef
    {
        boost::weak_ptr<tEntry> entry;
        int32_t depth;
        uint32_t order;
    };
    static constexpr size_t MAX_COUNT = 65535;

    /// texCoords: whether the list keeps a texture-coordinate buffer beside
    /// the positions; such lists also draw element colours.
    CChunkDrawList(const tMessages& messages, bool texCoords)
        : mTranslucent(false), mHasTexture(false), mTextureId(0), mVertexBuffer(0), mTexCoordBuffer(0),
          mBufferedVertexCount(0), mVertexCount(0), mVerticesDirty(false), mIndexCount(0), mHiddenIndexCount(0),
          mIndicesDirty(false), mColorBuffer(0), mTintedCount(0), mColorsValid(false), mAlphaCursor(0), mOrderDirty(false), mSortedPrefix(0), mDeadRefs(0), mSortedFrontToBack(false), mDepthsStale(false), mRewriteFrom(NONE), mMovedCount(0), mMoveCount(0), mLastMovedOffset(0), mScanAll(true),
          mNextOrder(0), mVertexEnd(0), mLiveCount(0), mIndex(mPool), mMessages(messages), mTexCoords(texCoords)
    {
        mMovesInPlace = true;
    }

    /// Writes the entry's vertices, transformed, into the stream and clears
    /// its dirty flags; false when the chunk no longer has the vertex count
    /// it was accepted with.
    virtual bool streamEntry(tVertexStream& stream, tEntry& entry) = 0;
    /// Indices the chunk adds to the list (0 for lists that draw arrays).
    virtual size_t indexCountOf(const Chunk& chunk) const = 0;
    /// Called once a new entry is filled in.
    virtual void entryAdded(tEntry&) {}
    /// What the chunk's vertices in the buffers are made of, hashed: its
    /// positions, and what else a subclass writes per vertex. A pair comes
    /// back to its kept vertices only when this did not change meanwhile.
    virtual uint64_t fingerprintOf(const Chunk& chunk) const { return hashed(chunk.getVertices(), 0); }
    /// The bytes of v, eight at a time.
    template <class V> static uint64_t hashed(const std::vector<V>& v, uint64_t h)
    {
        const unsigned char* bytes = reinterpret_cast<const unsigned char*>(v.data());
        const size_t size = v.size() * sizeof(V);
        size_t i = 0;
        for (; i + 8 <= size; i += 8) {
            uint64_t word;
            memcpy(&word, bytes + i, 8);
            h = (h ^ word) * 0x100000001B3ull;
        }
        if (i < size) {
            uint32_t word;   // the sizes are multiples of 4
            memcpy(&word, bytes + i, 4);
            h = (h ^ word) * 0x100000001B3ull;
        }
        return h;
    }

    /// The pair's entry, or none (also when it is parked).
    tEntry* find(const boost::shared_ptr<CGraphicElement>& element, const boost::shared_ptr<CDrawChunk>& chunk) const
    {
        return find(element.get(), chunk.get());
    }
    tEntry* find(const CGraphicElement* element, CDrawChunk* chunk) const
    {
        if (!chunk)
            return 0;
        // The hint first, inline: a moved element's entry is found with one pool access.
        const tSlot hint = chunk->getListSlot();
        if (mPool.holds(hint)) {
            tEntry& e = mPool[hint];
            if (e.element.get() == element && e.chunk.get() == chunk)
                return e.parked ? 0 : &e;
        }
        const uint32_t slot = lookup(element, chunk);
        return slot == tIndex::NOT_FOUND || mPool[slot].parked ? 0 : &mPool[slot];
    }
    __attribute__((noinline)) void markDirty(const CGraphicElement* element, CDrawChunk* chunk, bool texCoords);
    /// recolorHeld, out of line: the paths that try the hint first then save no registers.
    __attribute__((noinline)) tRecolor recolorLookedUp(CGraphicElement& element,
                                                       const boost::shared_ptr<CDrawChunk>& chunk)
    {
        return CChunkDrawList::recolorHeld(element, chunk);
    }
    void flagDirty(tEntry& entry, bool texCoords)
    {
        const bool wasClean = !entry.dirty && !entry.colorDirty;
        entry.dirty = true;
        entry.texCoordsDirty = entry.texCoordsDirty || texCoords;
        mVerticesDirty = true;
        if (!wasClean)
            return;
        if (mScanAll)
            ++mMoveCount;
        else
            recordMove(entry);
    }
    /// Notes a clean entry's move in the record of moved entries; kept out
    /// of line: the lookup before it then needs no registers saved.
    __attribute__((noinline)) void recordMove(tEntry& entry);
    /// The entry of sorted reference r, held in held; null for a dead reference.
    tEntry* liveEntry(size_t r, boost::shared_ptr<tEntry>& held) const
    {
        tEntry* const e = peekedEntry(r);
        if (e)
            held = mSortedEntries[r].entry.lock();
        return e;
    }
    /// liveEntry without a reference taken: for loops that release nothing
    /// (the pool's blocks live as long as the list).
    tEntry* peekedEntry(size_t r) const
    {
        const tEntryRef& ref = mSortedEntries[r];
        tEntry* const e = boost::weak_ptr<boost::tDrawListPeek>::peek(ref.entry);
        return e && !e->parked && e->chunk && e->order == ref.order ? e : 0;
    }
    /// Orders the visible entries by depth (ties by acceptance).
    void sortEntries(bool frontToBack);
    /// Drops the references of entries taken out since the last sort (those
    /// emptied, and those whose entry is parked or was taken up again under a
    /// later order); gives how many of the part in draw order are left.
    size_t purgeDeadRefs();
    /// The first depth a translucent pass draws, after rewinding it.
    int startAlphaPass()
    {
        mAlphaCursor = 0;
        return mSortedEntries.empty() ? NO_MORE_DEPTHS : mSortedEntries[0].depth;
    }
    void deleteVertexBuffers();
    /// Entries were flagged otherwise than by a move: the next upload looks at every entry.
    void scanAllDirty() { mScanAll = true; }
    /// Enables and points the colour array when the list draws colours; true when it did.
    bool bindColors();

    bool mTranslucent;
    bool mHasTexture;
    uint32_t mTextureId;
    GLuint mVertexBuffer;
    GLuint mTexCoordBuffer;
    uint16_t mBufferedVertexCount;
    uint16_t mVertexCount;
    bool mVerticesDirty;
    /// Indices of the chunks of visible and of hidden elements.
    uint16_t mIndexCount;
    uint16_t mHiddenIndexCount;
    bool mIndicesDirty;
    GLuint mColorBuffer;
    /// Entries with another colour than opaque white; the colour buffer is drawn only while there are some.
    uint32_t mTintedCount;
    /// The colour buffer holds every entry's colour.
    bool mColorsValid;
    std::vector<boost::shared_ptr<tEntry> > mEntries;
    std::vector<tEntryRef> mSortedEntries;
    std::vector<tEntryRef> mHiddenEntries;
    size_t mAlphaCursor;
    /// The sorted entries must be re-sorted (a depth, the membership or the direction changed).
    bool mOrderDirty;
    /// The first sorted references are in draw order as of the last sort
    /// (those of entries taken out since are left in place, dead, so that
    /// the others are still found by a binary search); later ones were appended.
    size_t mSortedPrefix;
    /// Sorted references of entries taken out since the last sort, left in place.
    size_t mDeadRefs;
    bool mSortedFrontToBack;
    /// A visible entry's depth changed since its reference was made: the next sort takes every depth anew.
    bool mDepthsStale;

private:
    typedef tEntryPool<tEntry> tPool;
    typedef tEntryIndex<tPool> tIndex;
    typedef typename tPool::tSlot tSlot;
    static constexpr size_t NONE = static_cast<size_t>(-1);
    /// Orders run below this (24 bits); reaching it renumbers the entries.
    static constexpr uint32_t ORDER_LIMIT = 1u << 24;

    /// What a parked entry keeps of its pair (the entry's index offset is
    /// its place here): whether the pair still lives, and what placed the
    /// vertices it left in the buffers.
    struct tParked
    {
        boost::weak_ptr<CGraphicElement> element;
        boost::weak_ptr<Chunk> chunk;
        tMatrix23 matrix;
        uint64_t fingerprint = 0;
        tSlot slot;
    };

    static int32_t depthOf(const tEntry& e);
    /// Doubles up to a kilobyte, then grows by an eighth: a list's vectors
    /// hold one or two references per entry, and doubling would leave up to
    /// half of them unused (below a kilobyte, the allocator keeps the blocks
    /// left behind for reuse, so few sizes are better there). Growth happens
    /// as entries are added, never in a frame.
    template <class V> static void reserveOneMore(V& v)
    {
        if (v.size() == v.capacity())
            v.reserve(v.size() * sizeof(v[0]) < 1024 ? 2 * v.size() + 2 : v.size() + v.size() / 8);
    }
    /// A reference to the slot's entry, made from the pool's block without a shared one in between.
    tEntryRef refTo(tSlot slot) const;
    /// Takes the entry's reference out of refs.
    tEntryRef takeRef(std::vector<tEntryRef>& refs, const tEntry& entry);
    /// Whether a draws before b in the sorted entries' current direction.
    bool drawsBefore(const tEntryRef& a, const tEntryRef& b) const
    {
        if (a.depth != b.depth)
            return mSortedFrontToBack ? a.depth > b.depth : a.depth < b.depth;
        return a.order < b.order;
    }
    /// Adds the reference to the sorted entries (they are sorted at the next draw).
    void insertSorted(tEntryRef ref);
    /// Sorts the references appended since the last sort and merges them
    /// into the part in draw order (which the caller checked is in the
    /// direction of frontToBack and at least as long).
    template <bool frontToBack> void mergeAppended(size_t prefix);
    /// Sorts up to SMALL_SORT references by 64-bit keys on the stack, then
    /// moves each reference once into its place (a list whose entries all
    /// changed, as when every actor changes cel, is sorted whole each frame).
    void sortSmall(bool frontToBack);
    static constexpr size_t SMALL_SORT = 512;
    /// Makes the entry count as held: counts, references, colour, the chunk's
    /// list; indexCount is indexCountOf(chunk), which the caller has checked.
    void join(tSlot slot, Chunk& chunk, size_t indexCount);
    /// Takes a parked entry up again for its returning pair.
    bool rejoin(tSlot slot, const boost::shared_ptr<CGraphicElement>& element,
                const boost::shared_ptr<CDrawChunk>& chunk, Chunk& typed);
    /// The pair's slot, parked or not, through the chunk's hint or else the
    /// lookup table (which then becomes the hint); NOT_FOUND without one.
    tSlot lookup(const CGraphicElement* element, CDrawChunk* chunk) const
    {
        const tSlot hint = chunk->getListSlot();
        if (mPool.holds(hint)) {
            const tEntry& e = mPool[hint];
            if (e.element.get() == element && e.chunk.get() == chunk)
                return hint;
        }
        const tSlot slot = mIndex.find(element, chunk);
        if (slot != tIndex::NOT_FOUND)
            chunk->setListSlot(static_cast<uint16_t>(slot));
        return slot;
    }
    /// Counts one holder of the chunk less; true when none is left.
    static bool releaseHold(CDrawChunk& chunk);
    /// Parks a held entry whose pair is removed.
    void park(tSlot slot, CDrawChunk& chunk);
    /// Drops the parked entries (those whose pair is gone, or all) and closes their gaps.
    void dropParked(bool goneOnly);
    /// Writes a parked entry's vertices while its pair lives, else zeros.
    bool restreamParked(tVertexStream& stream, tEntry& e);
    /// The next acceptance order; renumbers the entries when the orders run out.
    uint32_t nextOrder() { return mNextOrder < ORDER_LIMIT ? mNextOrder++ : renumber(); }
    /// Renumbers the held entries from 0 in their order; gives the next order after them.
    __attribute__((noinline)) uint32_t renumber();
    bool holdsTexture(const boost::shared_ptr<CDrawChunk>& chunk) const;
    bool setVisible(const boost::shared_ptr<CGraphicElement>& element, const boost::shared_ptr<CDrawChunk>& chunk,
                    bool visible);
    void uploadVertices(size_t firstEntry, bool allocate, bool colors);
    /// scanAll: look at every entry, not only the moved ones.
    void uploadDirtyVertices(bool colors, bool scanAll);
    /// Writes every entry's colour into a colour buffer of the vertex buffer's size.
    void uploadColors();
    /// Takes the element's colour into the entry's flags and the tinted count.
    void takeColor(tEntry& e)
    {
        tColor c = {255, 255, 255, 255};
        if (mTexCoords && !e.element->hasOpaqueWhite() && e.element->drawsColor())
            c = e.element->getBatchedColor();
        const bool tinted = (c.r & c.g & c.b & c.a) != 255;
        if (tinted != e.tinted) {
            if (!tinted)
                --mTintedCount;
            else if (mTintedCount++ == 0)
                mColorsValid = false;
            e.tinted = tinted;
        }
        e.cleared = c.a == 0;
        if (mTintedCount > 0) {
            e.colorDirty = true;
            mVerticesDirty = true;
            mScanAll = true;
        }
    }
    static tColor colorOf(const tEntry& e);
    /// Streams the entry and takes its new depth.
    bool restream(tVertexStream& stream, tEntry& e);

    /// Entries from this one on moved in the vertex buffer and are rewritten whole.
    size_t mRewriteFrom;
    /// The entries moves flagged since the last upload, in buffer order, so
    /// that a few moves among many entries are uploaded without a look at
    /// the others (the pool's blocks never move, and dropping entries makes
    /// the next upload look at all). Room for an eighth of the entries is
    /// made as they are added; more moves than that (then also in the next
    /// frame), moves out of buffer order or any other flagging (mScanAll)
    /// make the upload look at all.
    std::vector<tEntry*> mMovedEntries;
    size_t mMovedCount;
    /// Moves flagged since the last upload, recorded or not.
    size_t mMoveCount;
    uint16_t mLastMovedOffset;
    bool mScanAll;
    uint32_t mNextOrder;
    std::vector<tParked> mParked;
    /// Per slot, the hash an entry's vertices were written from, kept when
    /// its pair came back (tChunkEntry::hashKept), so that leaving again
    /// needs no hash. Only lists whose pairs come back have it; it grows with
    /// their slots while they first return, then stays.
    std::vector<uint64_t> mKeptHashes;
    /// The appended references while they are merged; as long as the most appended between two sorts.
    std::vector<tEntryRef> mSortScratch;
    /// The list's own weak reference, which held chunks name (empty until a chunk first joins).
    boost::weak_ptr<CDrawList> mSelf;
    /// Vertices the entries, parked ones included, take in the buffers.
    uint16_t mVertexEnd;
    /// Entries that are not parked.
    size_t mLiveCount;
    tPool mPool;
    tIndex mIndex;
    tMessages mMessages;
    bool mTexCoords;
};

#include "CChunkDrawList.inl"

#endif
