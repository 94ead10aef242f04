#include "CDrawChunk.h"

CDrawChunk::CDrawChunk() : mTranslucent(false) {}

CDrawChunk::CDrawChunk(unsigned short vertexCount) : mVertices(vertexCount, VECT3_0), mTranslucent(false) {}

CDrawChunk::~CDrawChunk() {}

void CDrawChunk::transformVertices(tMatrix23 m)
{
    for (size_t i = 0; i < mVertices.size(); ++i)
        mVertices[i] = m * mVertices[i];
}
