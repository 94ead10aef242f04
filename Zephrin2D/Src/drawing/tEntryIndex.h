#ifndef ZEPHRIN2D_TENTRYINDEX_H
#define ZEPHRIN2D_TENTRYINDEX_H

#include <stddef.h>
#include <stdint.h>
#include <vector>

/// A draw list's lookup of its entries by (element, chunk) pair: an open
/// addressing table, probed linearly and at most three quarters full, of
/// 32-bit values: the entry's slot number in the list's pool (slots 0 to
/// MAX_SLOT) and the top 16 bits of the pair's hash, so that a probe looks
/// at the pool only when the hashes agree, and a table of up to 65536 values
/// rehashes without it. No node per entry; the table only grows, so a steady
/// exchange of entries allocates nothing. Pool is anything whose operator[]
/// gives the entry of a slot number.
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
        const size_t i = position(element, chunk);
        return i == NONE ? NOT_FOUND : slotOf(mSlots[i]);
    }

    /// The slot (at most MAX_SLOT) and its pair must not be in the table yet.
    void insert(tSlot slot)
    {
        if ((mCount + 1) * 4 > mSlots.size() * 3)
            grow();
        const auto& entry = mPool[slot];
        place(static_cast<uint32_t>(hash(entry.element.get(), entry.chunk.get()) >> 48 << 16) | (slot + 1));
        ++mCount;
    }

    void erase(const void* element, const void* chunk)
    {
        size_t hole = position(element, chunk);
        if (hole == NONE)
            return;
        mSlots[hole] = 0;
        --mCount;
        // Close the gap: later values of the run move back unless their home lies after the hole.
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
        std::vector<uint32_t>().swap(mSlots);
        mCount = 0;
        mShift = 64;
    }

    size_t size() const { return mCount; }

private:
    static constexpr size_t NONE = static_cast<size_t>(-1);

    size_t mask() const { return mSlots.size() - 1; }
    static tSlot slotOf(uint32_t value) { return (value & 0xFFFF) - 1; }

    static uint64_t hash(const void* element, const void* chunk)
    {
        return (reinterpret_cast<uintptr_t>(element) ^ (reinterpret_cast<uintptr_t>(chunk) * 0x9E3779B97F4A7C15ull)) *
               0xC2B2AE3D27D4EB4Full;
    }

    /// Where the pair's value is, or NONE.
    size_t position(const void* element, const void* chunk) const
    {
        if (mSlots.empty())
            return NONE;
        const uint64_t k = hash(element, chunk);
        const uint32_t tag = static_cast<uint32_t>(k >> 48);
        for (size_t i = static_cast<size_t>(k >> mShift);; i = (i + 1) & mask()) {
            const uint32_t value = mSlots[i];
            if (!value)
                return NONE;
            if (value >> 16 == tag) {
                const auto& entry = mPool[slotOf(value)];
                if (entry.element.get() == element && entry.chunk.get() == chunk)
                    return i;
            }
        }
    }

    /// The home of a stored value: from its hash bits while they suffice, else from its entry.
    size_t homeOf(uint32_t value) const
    {
        if (mShift >= 48)
            return (value >> 16) >> (mShift - 48);
        const auto& entry = mPool[slotOf(value)];
        return static_cast<size_t>(hash(entry.element.get(), entry.chunk.get()) >> mShift);
    }

    void place(uint32_t value)
    {
        size_t i = homeOf(value);
        while (mSlots[i])
            i = (i + 1) & mask();
        mSlots[i] = value;
    }

    void grow()
    {
        std::vector<uint32_t> old;
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
    /// Hash bits in the high half, slot number plus one in the low half; 0 is free.
    std::vector<uint32_t> mSlots;
    size_t mCount;
    /// 64 minus log2 of the table size: a home is the hash's top bits.
    unsigned mShift;
};

#endif
