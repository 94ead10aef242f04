#ifndef ZEPHRIN2D_TVERTEXSTREAM_H
#define ZEPHRIN2D_TVERTEXSTREAM_H

#include "tVect.h"

#include <GLES/gl.h>
#include <stddef.h>

/// A draw list's scratch memory for uploads: streams vertex positions into
/// one buffer (and texture coordinates into a second) block by block from
/// the stack, so that buffering never touches the heap. The first flush of
/// an allocating upload creates the buffers at their full size, with the
/// data when it all fits one block. Leaves GL_ARRAY_BUFFER bound.
class tVertexStream
{
public:
    /// Vertices per block: what one stream holds on the stack.
    enum { BLOCK = 1024 };

    tVertexStream(GLuint positionBuffer, GLuint coordBuffer)
        : mPositionBuffer(positionBuffer), mCoordBuffer(coordBuffer), mStart(0), mCount(0), mCoords(false),
          mAllocateTotal(0)
    {
    }
    ~tVertexStream() { flush(); }

    void allocate(size_t total) { mAllocateTotal = total; }
    /// Continues at vertex offset start; coords says whether coordinates go up too.
    void seek(size_t start, bool coords)
    {
        if (mStart + mCount == start && mCoords == coords)
            return;
        flush();
        mStart = start;
        mCoords = coords;
    }
    void put(const tVect3& position, const tVect2& coord)
    {
        mPositions[mCount] = position;
        mTexCoords[mCount] = coord;
        if (++mCount == BLOCK)
            flush();
    }
    void flush()
    {
        if (mCount == 0)
            return;
        upload(mPositionBuffer, mPositions, sizeof(tVect3));
        if (mCoords)
            upload(mCoordBuffer, mTexCoords, sizeof(tVect2));
        mAllocateTotal = 0;
        mStart += mCount;
        mCount = 0;
    }

private:
    void upload(GLuint buffer, const void* data, size_t size)
    {
        glBindBuffer(GL_ARRAY_BUFFER, buffer);
        if (mAllocateTotal) {
            const bool whole = mCount == mAllocateTotal;
            glBufferData(GL_ARRAY_BUFFER, mAllocateTotal * size, whole ? data : 0, GL_DYNAMIC_DRAW);
            if (whole)
                return;
        }
        glBufferSubData(GL_ARRAY_BUFFER, mStart * size, mCount * size, data);
    }

    GLuint mPositionBuffer;
    GLuint mCoordBuffer;
    size_t mStart;
    size_t mCount;
    bool mCoords;
    size_t mAllocateTotal;
    tVect3 mPositions[BLOCK];
    tVect2 mTexCoords[BLOCK];
};

#endif
