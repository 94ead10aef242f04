#ifndef ZEPHRIN2D_TVERTEXSTREAM_H
#define ZEPHRIN2D_TVERTEXSTREAM_H

#include "tMatrix23.h"
#include "tVect.h"

#include <GLES/gl.h>
#include <algorithm>
#include <stddef.h>

/// A draw list's scratch memory for uploads: streams vertex positions into
/// one buffer (texture coordinates into a second, colours into a third)
/// block by block from the stack, so that buffering never touches the heap. The first flush of
/// an allocating upload creates the buffers at their full size, with the
/// data when it all fits one block. Leaves GL_ARRAY_BUFFER bound.
class tVertexStream
{
public:
    /// Vertices per block: what one stream holds on the stack.
    enum { BLOCK = 1024 };
    /// What a seek sends up.
    enum { POSITIONS = 1, COORDS = 2, COLORS = 4 };

    tVertexStream(GLuint positionBuffer, GLuint coordBuffer, GLuint colorBuffer = 0)
        : mPositionBuffer(positionBuffer), mCoordBuffer(coordBuffer), mColorBuffer(colorBuffer), mStart(0),
          mCount(0), mParts(POSITIONS), mAllocateTotal(0), mColor{255, 255, 255, 255}
    {
    }
    ~tVertexStream() { flush(); }

    void allocate(size_t total) { mAllocateTotal = total; }
    /// Continues at vertex offset start; coords says whether coordinates go up too.
    void seek(size_t start, bool coords) { seekParts(start, POSITIONS | (coords ? COORDS : 0)); }
    void seekParts(size_t start, unsigned parts)
    {
        if (mStart + mCount == start && mParts == parts)
            return;
        flush();
        mStart = start;
        mParts = parts;
    }
    /// The colour the following vertices take.
    void setColor(tColor color) { mColor = color; }
    void put(const tVect3& position, const tVect2& coord)
    {
        mPositions[mCount] = position;
        mTexCoords[mCount] = coord;
        mColors[mCount] = mColor;
        if (++mCount == BLOCK)
            flush();
    }
    /// n vertices (at most BLOCK) transformed by m, with their texture
    /// coordinates and the current colour where the stream sends those.
    void putTransformed(const tMatrix23& m, const tVect3* vertices, const tVect2* coords, size_t n)
    {
        if (mCount + n > BLOCK)
            flush();
        tVect3* const out = mPositions + mCount;
        if (n == 4) {
            // A quad, the common chunk: unrolled, its matrix stays in registers.
            out[0] = m * vertices[0];
            out[1] = m * vertices[1];
            out[2] = m * vertices[2];
            out[3] = m * vertices[3];
        } else {
            for (size_t i = 0; i < n; ++i)
                out[i] = m * vertices[i];
        }
        if (mParts & COORDS)
            std::copy(coords, coords + n, mTexCoords + mCount);
        if (mParts & COLORS)
            std::fill(mColors + mCount, mColors + mCount + n, mColor);
        mCount += n;
    }
    /// count vertices of the current colour, for a stream of colours only.
    void putColors(size_t count)
    {
        if (count == 4 && mCount + count < BLOCK) {
            tColor* const out = mColors + mCount;
            out[0] = out[1] = out[2] = out[3] = mColor;
            mCount += count;
            return;
        }
        for (size_t i = 0; i < count; ++i) {
            mColors[mCount] = mColor;
            if (++mCount == BLOCK)
                flush();
        }
    }
    void flush()
    {
        if (mCount == 0)
            return;
        if (mParts & POSITIONS)
            upload(mPositionBuffer, mPositions, sizeof(tVect3));
        if (mParts & COORDS)
            upload(mCoordBuffer, mTexCoords, sizeof(tVect2));
        if (mParts & COLORS)
            upload(mColorBuffer, mColors, sizeof(tColor));
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
    GLuint mColorBuffer;
    size_t mStart;
    size_t mCount;
    unsigned mParts;
    size_t mAllocateTotal;
    tColor mColor;
    // Left uninitialised (the unions spare the zeroing by tFixed's constructor):
    // only what was put is ever sent up.
    union { tVect3 mPositions[BLOCK]; };
    union { tVect2 mTexCoords[BLOCK]; };
    union { tColor mColors[BLOCK]; };
};

#endif
