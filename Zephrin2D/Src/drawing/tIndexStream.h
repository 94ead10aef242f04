#ifndef ZEPHRIN2D_TINDEXSTREAM_H
#define ZEPHRIN2D_TINDEXSTREAM_H

#include <GLES/gl.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

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
    /// padTo: what was written in one block is padded with zeros up to that
    /// many indices (at most a block), so that a buffer refilled again and
    /// again keeps its size and the driver reuses its storage.
    explicit tIndexStream(size_t allocateTotal, size_t allocateUpTo = 0, size_t padTo = 0)
        : mStart(0), mCount(0), mAllocateTotal(allocateTotal), mAllocateUpTo(allocateTotal ? 0 : allocateUpTo),
          mPadTo(padTo < size_t(BLOCK) ? padTo : size_t(BLOCK)), mAllocated(0)
    {
    }
    ~tIndexStream() { flush(true); }

    void put(uint16_t index)
    {
        mIndices[mCount] = index;
        if (++mCount == BLOCK)
            flush(false);
    }
    /// The n indices of a chunk of vertexCount vertices, each moved by
    /// offset; one past the chunk's vertices is written as its first vertex
    /// and makes the result false.
    bool putChunk(const uint16_t* indices, size_t n, uint16_t offset, uint16_t vertexCount)
    {
        bool inRange = true;
        if (mCount + n >= BLOCK) {
            // Across a block's end: one by one, so that blocks end where they always did.
            for (size_t i = 0; i < n; ++i) {
                inRange = inRange && indices[i] < vertexCount;
                put(static_cast<uint16_t>((indices[i] < vertexCount ? indices[i] : 0) + offset));
            }
            return inRange;
        }
        uint16_t* const out = mIndices + mCount;
        unsigned past = 0;
        const auto one = [&](size_t i) {
            past |= indices[i] >= vertexCount;
            out[i] = static_cast<uint16_t>(indices[i] + offset);
        };
        if (n == 6) {
            // A quad's two triangles, the common chunk.
            one(0), one(1), one(2), one(3), one(4), one(5);
        } else {
            for (size_t i = 0; i < n; ++i)
                one(i);
        }
        for (size_t i = 0; past && i < n; ++i)
            if (indices[i] >= vertexCount)
                out[i] = offset;
        mCount += n;
        return !past;
    }
    size_t written() const { return mStart + mCount; }
    /// The indices the buffer was allocated for; valid once the stream is flushed.
    size_t allocated() const { return mAllocated; }
    void flush() { flush(true); }

private:
    void flush(bool last)
    {
        if (mCount == 0)
            return;
        const size_t size = sizeof(uint16_t);
        bool done = false;
        if (mAllocateUpTo) {
            const bool oneBlock = last && mStart == 0;
            if (oneBlock && mCount < mPadTo)
                memset(mIndices + mCount, 0, (mPadTo - mCount) * size);
            mAllocateTotal = oneBlock ? (mCount < mPadTo ? mPadTo : mCount) : mAllocateUpTo;
            mAllocateUpTo = 0;
        }
        if (mAllocateTotal) {
            done = mStart == 0 && mCount <= mAllocateTotal && (mCount == mAllocateTotal || mAllocateTotal <= mPadTo);
            glBufferData(GL_ELEMENT_ARRAY_BUFFER, mAllocateTotal * size, done ? mIndices : 0, GL_DYNAMIC_DRAW);
            mAllocated = mAllocateTotal;
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
    size_t mPadTo;
    size_t mAllocated;
    uint16_t mIndices[BLOCK];
};

#endif
