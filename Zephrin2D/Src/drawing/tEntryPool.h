#ifndef ZEPHRIN2D_TENTRYPOOL_H
#define ZEPHRIN2D_TENTRYPOOL_H

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <stddef.h>
#include <stdint.h>
#include <vector>

/// Where a draw list keeps its entries: blocks of 8, 16, 32, 64 and then
/// 128 entries, each block one heap allocation together with its control
/// block, and every entry shared through its block's count. An entry thus
/// costs its own size, not a heap block and a control block of its own.
/// Weak references to an entry stay valid as long as its block, which lives
/// as long as the pool. Slots are numbered from 0; freed slots are used
/// again, the last freed first; the blocks go only with clear().
template <class Entry>
class tEntryPool
{
public:
    typedef uint32_t tSlot;

    tEntryPool() : mUsed(0) {}

    /// The next take() would give a slot above last.
    bool fullAt(tSlot last) const { return mFree.empty() && mUsed > last; }

    /// A slot for a new entry, whose fields are as its last user left them.
    tSlot take()
    {
        if (!mFree.empty()) {
            const tSlot slot = mFree.back();
            mFree.pop_back();
            return slot;
        }
        size_t block, offset;
        locate(mUsed, block, offset);
        if (block == mBlocks.size())
            mBlocks.push_back(boost::make_shared<Entry[]>(block < GROWING ? size_t(FIRST) << block : size_t(LARGEST)));
        return mUsed++;
    }

    void release(tSlot slot) { mFree.push_back(slot); }

    /// Slots handed out at least once.
    tSlot used() const { return mUsed; }

    /// Whether slot was handed out (it may be free again).
    bool holds(tSlot slot) const { return slot < mUsed; }

    Entry& operator[](tSlot slot) const
    {
        size_t block, offset;
        locate(slot, block, offset);
        return mBlocks[block][offset];
    }

    boost::shared_ptr<Entry> shared(tSlot slot) const
    {
        size_t block, offset;
        locate(slot, block, offset);
        return boost::shared_ptr<Entry>(mBlocks[block], &mBlocks[block][offset]);
    }

    /// A weak reference to the slot's entry: one count taken, none given back.
    boost::weak_ptr<Entry> weak(tSlot slot) const
    {
        size_t block, offset;
        locate(slot, block, offset);
        return boost::weak_ptr<Entry>(mBlocks[block], &mBlocks[block][offset]);
    }

    void clear()
    {
        std::vector<boost::shared_ptr<Entry[]> >().swap(mBlocks);
        std::vector<tSlot>().swap(mFree);
        mUsed = 0;
    }

private:
    /// Blocks 0 to 3 hold 8, 16, 32 and 64 entries (120 slots), later ones 128.
    enum { FIRST = 8, GROWING = 4, LARGEST = 128 };

    static void locate(size_t slot, size_t& block, size_t& offset)
    {
        // Counted from 8, block k of the growing ones starts at 8 << k.
        const size_t from8 = slot + FIRST;
        if (from8 < LARGEST) {
            const int top = 63 - __builtin_clzll(from8);
            block = static_cast<size_t>(top) - 3;
            offset = from8 - (size_t(1) << top);
        } else {
            block = from8 / LARGEST + (GROWING - 1);
            offset = from8 % LARGEST;
        }
    }

    std::vector<boost::shared_ptr<Entry[]> > mBlocks;
    std::vector<tSlot> mFree;
    /// Slots handed out at least once.
    tSlot mUsed;
};

#endif
