#ifndef ZEPHRIN2D_TINDEXSTREAM_H
#define ZEPHRIN2D_TINDEXSTREAM_H

#include <GLES/gl.h>
#include <stddef.h>
#include <stdint.h>

/// The index counterpart of tVertexStream: streams indices from the stack
/// into the bound GL_ELEMENT_ARRAY_BUFFER.
class tIndexStream
{
public:
    /// Indices per block: what one stream holds on the stack.
    enum { BLOCK = 6144 };

    /// allocateTotal: the buffer is (re)allocated for that many indices (0: it is kept).
    /// allocateUpTo: without a total, the buffer is allocated for what was
    /// written when it fits one block, else for allocateUpTo indices.
    explicit tIndexStream(size_t allocateTotal, size_t allocateUpTo = 0)
        : mStart(0), mCount(0), mAllocateTotal(allocateTotal), mAllocateUpTo(allocateTotal ? 0 : allocateUpTo)
    {
    }
    ~tIndexStream() { flush(true); }

    void put(uint16_t index)
    {
        mIndices[mCount] = index;
        if (++mCount == BLOCK)
            flush(false);
    }
    size_t written() const { return mStart + mCount; }

private:
    void flush(bool last)
    {
        if (mCount == 0)
            return;
        const size_t size = sizeof(uint16_t);
        bool done = false;
        if (mAllocateUpTo) {
            mAllocateTotal = last && mStart == 0 ? mCount : mAllocateUpTo;
            mAllocateUpTo = 0;
        }
        if (mAllocateTotal) {
            done = mCount == mAllocateTotal;
            glBufferData(GL_ELEMENT_ARRAY_BUFFER, mAllocateTotal * size, done ? mIndices : 0, GL_DYNAMIC_DRAW);
            mAllocateTotal = 0;
        }
        if (!done)
            glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, mStart * size, mCount * size, mIndices);
        mStart += mCount;
        mCount = 0;
    }

    size_t mStart;
    size_t mCount;
    size_t mAllocateTotal;
    size_t mAllocateUpTo;
    uint16_t mIndices[BLOCK];
};

#endif
