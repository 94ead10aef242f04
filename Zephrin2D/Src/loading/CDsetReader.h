#ifndef ZEPHRIN2D_CDSETREADER_H
#define ZEPHRIN2D_CDSETREADER_H

#include <Dataset.h>

#include <boost/shared_ptr.hpp>
#include <cstring>
#include <stdint.h>

/// Bounds-checked access to the records of a loaded dataset.
///
/// Record pointer fields are 32-bit addresses (fixed up below 4 GiB by the
/// platform). Before a loader reads an array or a string it asks here
/// whether it lies wholly inside the dataset; a record that would reach
/// outside is refused instead of read.
class CDsetReader
{
public:
    explicit CDsetReader(const boost::shared_ptr<CDataset>& dataset) : mDataset(dataset) {}

    static const void* address(uint32_t pointer)
    {
        return reinterpret_cast<const void*>(static_cast<uintptr_t>(pointer));
    }

    /// count records of T at pointer, or null when they do not fit, are not
    /// aligned for T (the format aligns every record to 4 bytes), or count is 0.
    template <class T> const T* array(uint32_t pointer, uint32_t count) const
    {
        // Misaligned records would be read through misaligned pointers: refused like outside ones.
        if (!mDataset || count == 0 || pointer == 0 || pointer % alignof(T) != 0)
            return 0;
        const uint64_t bytes = static_cast<uint64_t>(count) * sizeof(T);
        if (bytes > mDataset->size || !mDataset->contains(address(pointer), static_cast<size_t>(bytes)))
            return 0;
        return static_cast<const T*>(address(pointer));
    }

    template <class T> const T* record(const void* p) const
    {
        if (!mDataset || !p || reinterpret_cast<uintptr_t>(p) % alignof(T) != 0 || !mDataset->contains(p, sizeof(T)))
            return 0;
        return static_cast<const T*>(p);
    }

    /// A NUL-terminated string at pointer, or null when it is not ended inside the dataset.
    const char* string(uint32_t pointer) const
    {
        if (!mDataset || pointer == 0 || !mDataset->contains(address(pointer), 1))
            return 0;
        const char* s = static_cast<const char*>(address(pointer));
        const char* end = static_cast<const char*>(mDataset->base) + mDataset->size;
        return memchr(s, 0, end - s) ? s : 0;
    }

    /// Whether pointer is null or a string ended inside the dataset.
    bool stringOrNull(uint32_t pointer) const { return pointer == 0 || string(pointer) != 0; }

private:
    boost::shared_ptr<CDataset> mDataset;
};

#endif
