#include "CPointSpriteChunk.h"

#include "CGraphicElement.h"
#include "CPointSpriteDrawList.h"
#include "CTexture.h"
#include "CTexturedChunk.h"

#include <BaseUtils.h>

namespace {

const char* const kFile = "Zephrin2D/Src/CPointSpriteChunk";
const size_t MAX_COUNT = 65535;

tFixed firstZ(const std::vector<tVect3>& vertices) { return vertices.empty() ? ZERO_X : vertices[0].z; }

} // namespace

CPointSpriteChunk::CPointSpriteChunk() : mPointSize(ZERO_X), mRevision(0) {}

CPointSpriteChunk::CPointSpriteChunk(unsigned short vertexCount)
    : CDrawChunk(vertexCount), mPointSize(ZERO_X), mRevision(0)
{
}

CPointSpriteChunk::CPointSpriteChunk(const CPointSpriteChunk& other)
    : CDrawChunk(), mTexture(other.mTexture), mPointSize(other.mPointSize), mRevision(0)
{
    mVertices = other.mVertices;
    mTranslucent = other.mTranslucent;
    mTextureId = other.mTextureId;
}

void CPointSpriteChunk::setTexture(boost::shared_ptr<CTexture> texture)
{
    mTexture = texture;
    mTranslucent = texture && CTexturedChunk::isTranslucentFormat(texture->imageInfo.GetGLInternalFormat());
    mDrawList.reset();
    mTextureId = texture ? texture->glTextureId : 0;
}

tFixed CPointSpriteChunk::getDrawnPointSize() const
{
    if (mPointSize > ZERO_X)
        return mPointSize;
    if (mTexture && mTexture->imageInfo.width > 0 && mTexture->imageInfo.width <= CTexture::MAX_SIDE)
        return tFixed(static_cast<int>(mTexture->imageInfo.width));
    return ONE_X;
}

tVect3 CPointSpriteChunk::getVertex(size_t n) const { return n < mVertices.size() ? mVertices[n] : VECT3_0; }

void CPointSpriteChunk::setVertex(size_t n, tVect3 v)
{
    if (n >= mVertices.size())
        return;
    mVertices[n] = v;
    ++mRevision;
}

void CPointSpriteChunk::moveVertexBy(size_t n, tVect3 d)
{
    if (n >= mVertices.size())
        return;
    mVertices[n] = mVertices[n] + d;
    ++mRevision;
}

boost::shared_ptr<CDrawList> CPointSpriteChunk::createDrawList()
{
    return boost::shared_ptr<CDrawList>(new CPointSpriteDrawList());
}

bool CPointSpriteChunk::canMerge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other) const
{
    boost::shared_ptr<CPointSpriteChunk> points = boost::dynamic_pointer_cast<CPointSpriteChunk>(other);
    if (!points || points->mTexture != mTexture || points->mTextureId != mTextureId ||
        points->mTranslucent != mTranslucent || points->mPointSize != mPointSize)
        return false;
    if (mVertices.size() + points->mVertices.size() > MAX_COUNT)
        return false;
    if (!mTranslucent)
        return true;
    const tFixed elementZ = element ? element->getZ() : ZERO_X;
    return elementZ + firstZ(points->mVertices) == firstZ(mVertices);
}

boost::shared_ptr<CDrawChunk> CPointSpriteChunk::createMergedChunk(boost::shared_ptr<CGraphicElement> element,
                                                                   boost::shared_ptr<CDrawChunk> other) const
{
    boost::shared_ptr<CPointSpriteChunk> merged(new CPointSpriteChunk(*this));
    merged->merge(element, other);
    return merged;
}

boost::shared_ptr<CDrawChunk> CPointSpriteChunk::createTransformedChunk(boost::shared_ptr<CGraphicElement> element) const
{
    boost::shared_ptr<CPointSpriteChunk> transformed(new CPointSpriteChunk(*this));
    if (element)
        transformed->transformVertices(element->getMatrix());
    return transformed;
}

void CPointSpriteChunk::merge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other)
{
    boost::shared_ptr<CPointSpriteChunk> points = boost::dynamic_pointer_cast<CPointSpriteChunk>(other);
    if (!points)
        return;
    const size_t base = mVertices.size();
    const size_t count = points->mVertices.size();
    const bool fits = base + count <= MAX_COUNT;
    BaseUtils::Assert(fits, kFile, __LINE__, "CPointSpriteChunk::merge merged chunk would exceed 65535 points");
    if (!fits)
        return;
    const tMatrix23 m = element ? element->getMatrix() : tMatrix23();
    mVertices.reserve(base + count);
    for (size_t i = 0; i < count; ++i)
        mVertices.push_back(m * points->mVertices[i]);
    ++mRevision;
}
