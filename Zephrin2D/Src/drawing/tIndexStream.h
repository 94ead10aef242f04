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

    explicit tIndexStream(size_t allocateTotal) : mStart(0), mCount(0), mAllocateTotal(allocateTotal) {}
    ~tIndexStream() { flush(); }

    void put(uint16_t index)
    {
        mIndices[mCount] = index;
        if (++mCount == BLOCK)
            flush();
    }
    void flush()
    {
        if (mCount == 0)
            return;
        const size_t size = sizeof(uint16_t);
        bool done = false;
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

private:
    size_t mStart;
    size_t mCount;
    size_t mAllocateTotal;
    uint16_t mIndices[BLOCK];
};

#endif
