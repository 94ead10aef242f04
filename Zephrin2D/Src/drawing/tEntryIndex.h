#ifndef ZEPHRIN2D_TENTRYINDEX_H
#define ZEPHRIN2D_TENTRYINDEX_H

#include <stddef.h>
#include <stdint.h>
#include <vector>

/// A draw list's lookup of its entries by (element, chunk) pair: an open
/// addressing table of 16-bit slot numbers into the list's entry pool
/// (slots 0 to MAX_SLOT), probed linearly, keyed by the entry's own element
/// and chunk. Two bytes per table slot and no node per entry; it only
/// grows, so a steady exchange of entries allocates nothing. Pool is
/// anything whose operator[] gives the entry of a slot number.
template <class Pool>
class tEntryIndex
{
public:
    typedef uint32_t tSlot;
    static constexpr tSlot MAX_SLOT = 0xFFFE;
    static constexpr tSlot NOT_FOUND = 0xFFFFFFFFu;

    explicit tEntryIndex(const Pool& pool) : mPool(pool), mCount(0), mShift(64) {}

    tSlot find(const void* element, const void* chunk) const
    {
        if (mSlots.empty())
            return NOT_FOUND;
        for (size_t i = home(element, chunk);; i = (i + 1) & mask()) {
            if (!mSlots[i])
                return NOT_FOUND;
            if (matches(mSlots[i] - 1, element, chunk))
                return mSlots[i] - 1;
        }
    }

    /// The slot (at most MAX_SLOT) and its pair must not be in the table yet.
    void insert(tSlot slot)
    {
        if ((mCount + 1) * 4 > mSlots.size() * 3)
            grow();
        place(static_cast<uint16_t>(slot + 1));
        ++mCount;
    }

    void erase(const void* element, const void* chunk)
    {
        if (mSlots.empty())
            return;
        size_t hole = home(element, chunk);
        while (mSlots[hole] && !matches(mSlots[hole] - 1, element, chunk))
            hole = (hole + 1) & mask();
        if (!mSlots[hole])
            return;
        mSlots[hole] = 0;
        --mCount;
        // Close the gap: later entries of the run move back unless their home lies after the hole.
        for (size_t i = (hole + 1) & mask(); mSlots[i]; i = (i + 1) & mask()) {
            const size_t h = homeOf(mSlots[i]);
            const bool stays = hole <= i ? (hole < h && h <= i) : (hole < h || h <= i);
            if (!stays) {
                mSlots[hole] = mSlots[i];
                mSlots[i] = 0;
                hole = i;
            }
        }
    }

    void clear()
    {
        std::vector<uint16_t>().swap(mSlots);
        mCount = 0;
        mShift = 64;
    }

    size_t size() const { return mCount; }

private:
    size_t mask() const { return mSlots.size() - 1; }

    bool matches(tSlot slot, const void* element, const void* chunk) const
    {
        return mPool[slot].element.get() == element && mPool[slot].chunk.get() == chunk;
    }

    size_t home(const void* element, const void* chunk) const
    {
        const uint64_t k = (reinterpret_cast<uintptr_t>(element) ^
                            (reinterpret_cast<uintptr_t>(chunk) * 0x9E3779B97F4A7C15ull)) * 0xC2B2AE3D27D4EB4Full;
        return static_cast<size_t>(k >> mShift);
    }

    /// Home of a stored value (slot number plus one).
    size_t homeOf(uint16_t stored) const
    {
        return home(mPool[stored - 1].element.get(), mPool[stored - 1].chunk.get());
    }

    void place(uint16_t stored)
    {
        size_t i = homeOf(stored);
        while (mSlots[i])
            i = (i + 1) & mask();
        mSlots[i] = stored;
    }

    void grow()
    {
        std::vector<uint16_t> old;
        old.swap(mSlots);
        const size_t size = old.empty() ? 8 : old.size() * 2;
        mSlots.assign(size, 0);
        mShift = 64;
        for (size_t s = size; s > 1; s >>= 1)
            --mShift;
        for (size_t i = 0; i < old.size(); ++i)
            if (old[i])
                place(old[i]);
    }

    const Pool& mPool;
    /// Slot number plus one; 0 is free.
    std::vector<uint16_t> mSlots;
    size_t mCount;
    /// 64 minus log2 of the slot count: home() keeps the hash's top bits.
    unsigned mShift;
};

#endif
