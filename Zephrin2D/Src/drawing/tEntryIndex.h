#ifndef ZEPHRIN2D_TENTRYINDEX_H
#define ZEPHRIN2D_TENTRYINDEX_H

#include <stddef.h>
#include <stdint.h>
#include <vector>

/// A draw list's lookup of its entries by (element, chunk) pair: an open
/// addressing table of entry pointers, probed linearly, keyed by the
/// entry's own element and chunk. One pointer per slot and no node per
/// entry; it only grows, so a steady exchange of entries allocates nothing.
template <class Entry>
class tEntryIndex
{
public:
    tEntryIndex() : mCount(0), mShift(64) {}

    Entry* find(const void* element, const void* chunk) const
    {
        if (mSlots.empty())
            return 0;
        for (size_t i = home(element, chunk);; i = (i + 1) & mask()) {
            Entry* e = mSlots[i];
            if (!e || (e->element.get() == element && e->chunk.get() == chunk))
                return e;
        }
    }

    /// The entry's pair must not be in the table yet.
    void insert(Entry* entry)
    {
        if ((mCount + 1) * 4 > mSlots.size() * 3)
            grow();
        place(entry);
        ++mCount;
    }

    void erase(const void* element, const void* chunk)
    {
        if (mSlots.empty())
            return;
        size_t hole = home(element, chunk);
        while (mSlots[hole] && !(mSlots[hole]->element.get() == element && mSlots[hole]->chunk.get() == chunk))
            hole = (hole + 1) & mask();
        if (!mSlots[hole])
            return;
        mSlots[hole] = 0;
        --mCount;
        // Close the gap: later entries of the run move back unless their home lies after the hole.
        for (size_t i = (hole + 1) & mask(); mSlots[i]; i = (i + 1) & mask()) {
            const size_t h = home(mSlots[i]->element.get(), mSlots[i]->chunk.get());
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
        std::vector<Entry*>().swap(mSlots);
        mCount = 0;
        mShift = 64;
    }

    size_t size() const { return mCount; }

private:
    size_t mask() const { return mSlots.size() - 1; }

    size_t home(const void* element, const void* chunk) const
    {
        const uint64_t k = (reinterpret_cast<uintptr_t>(element) ^
                            (reinterpret_cast<uintptr_t>(chunk) * 0x9E3779B97F4A7C15ull)) * 0xC2B2AE3D27D4EB4Full;
        return static_cast<size_t>(k >> mShift);
    }

    void place(Entry* entry)
    {
        size_t i = home(entry->element.get(), entry->chunk.get());
        while (mSlots[i])
            i = (i + 1) & mask();
        mSlots[i] = entry;
    }

    void grow()
    {
        std::vector<Entry*> old;
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

    std::vector<Entry*> mSlots;
    size_t mCount;
    /// 64 minus log2 of the slot count: home() keeps the hash's top bits.
    unsigned mShift;
};

#endif
