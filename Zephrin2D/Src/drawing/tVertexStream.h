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
        const tVect3* const v = vertices;
        if (n == 4 && v[0].x == v[2].x && v[1].x == v[3].x && v[0].y == v[1].y && v[2].y == v[3].y) {
            // A billboard's quad: two columns and two rows, so half the products
            // serve two corners each (every product is rounded on its own, so
            // the sums are exactly those of the matrix product).
            const tFixed ax0 = m.m00 * v[0].x, ax1 = m.m00 * v[1].x, cx0 = m.m10 * v[0].x, cx1 = m.m10 * v[1].x;
            const tFixed by0 = m.m01 * v[0].y, by2 = m.m01 * v[2].y, dy0 = m.m11 * v[0].y, dy2 = m.m11 * v[2].y;
            out[0] = tVect3{m.m02 + ax0 + by0, m.m12 + cx0 + dy0, v[0].z + m.z};
            out[1] = tVect3{m.m02 + ax1 + by0, m.m12 + cx1 + dy0, v[1].z + m.z};
            out[2] = tVect3{m.m02 + ax0 + by2, m.m12 + cx0 + dy2, v[2].z + m.z};
            out[3] = tVect3{m.m02 + ax1 + by2, m.m12 + cx1 + dy2, v[3].z + m.z};
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
    /// count vertices of one colour from vertex offset start, for a stream of colours only.
    void putColorsAt(size_t start, tColor color, size_t count)
    {
        const size_t at = mStart + mCount;
        if (count == 4 && at == start && mParts == COLORS && mCount + count < BLOCK) {
            tColor* const out = mColors + mCount;
            out[0] = out[1] = out[2] = out[3] = color;
            mCount += count;
            return;
        }
        seekParts(start, COLORS);
        mColor = color;
        putColors(count);
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
