#include "CDrawChunk.h"

CDrawChunk::CDrawChunk() : mTranslucent(false), mHolds(0), mListSlot(0xFFFF), mTextureId(0) {}

CDrawChunk::CDrawChunk(unsigned short vertexCount)
    : mVertices(vertexCount, VECT3_0), mTranslucent(false), mHolds(0), mListSlot(0xFFFF), mTextureId(0)
{
}

CDrawChunk::~CDrawChunk() {}

void CDrawChunk::transformVertices(tMatrix23 m)
{
    for (size_t i = 0; i < mVertices.size(); ++i)
        mVertices[i] = m * mVertices[i];
}
