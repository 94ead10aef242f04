#include "CTexturedChunk.h"

#include <boost/make_shared.hpp>

#include "CGraphicElement.h"
#include "CTexture.h"
#include "CTexturedDrawList.h"

#include <BaseUtils.h>

#include <GLES/glext.h>

namespace {

const char* const kFile = "Zephrin2D/Src/CTexturedChunk";
const size_t MAX_COUNT = 65535;

tFixed firstZ(const std::vector<tVect3>& vertices) { return vertices.empty() ? ZERO_X : vertices[0].z; }

} // namespace

// A billboard's chunk and its control block share one heap block: the
// base's flag, hold count and slot hint share a word.
static_assert(sizeof(CTexturedChunk) <= 5 * sizeof(std::vector<int>) + sizeof(uint32_t), "chunk grew");

CTexturedChunk::CTexturedChunk(unsigned short vertexCount, unsigned short indexCount)
    : CDrawChunk(vertexCount), mIndices(indexCount, 0), mTexCoords(vertexCount, VECT2_0)
{
}

CTexturedChunk::CTexturedChunk(const CTexturedChunk& other)
    : CDrawChunk(), mIndices(other.mIndices), mTexCoords(other.mTexCoords),
      mTexture(other.mTexture)
{
    mVertices = other.mVertices;
    mTextureId = other.mTextureId;
    mTranslucent = other.mTranslucent;
}

bool CTexturedChunk::isTranslucentFormat(GLenum format)
{
    switch (format) {
    case GL_RGBA:
    case GL_PALETTE4_RGBA8_OES:
    case GL_PALETTE4_RGBA4_OES:
    case GL_PALETTE8_RGBA8_OES:
    case GL_PALETTE8_RGBA4_OES:
        return true;
    default:
        return false;
    }
}

void CTexturedChunk::setTexture(boost::shared_ptr<CTexture> texture) { setTexture(texture, false); }

void CTexturedChunk::setTexture(boost::shared_ptr<CTexture> texture, bool binaryAlpha)
{
    mTexture = texture;
    mTranslucent = texture && !binaryAlpha && isTranslucentFormat(texture->imageInfo.GetGLInternalFormat());
    mDrawList.reset();
    mTextureId = texture ? texture->glTextureId : 0;
}

void CTexturedChunk::setTextureId(GLuint textureId, bool translucent)
{
    mTexture.reset();
    mTranslucent = translucent;
    mDrawList.reset();
    mTextureId = textureId;
}

boost::shared_ptr<CDrawList> CTexturedChunk::createDrawList()
{
    return boost::shared_ptr<CDrawList>(new CTexturedDrawList());
}

bool CTexturedChunk::canMerge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other) const
{
    boost::shared_ptr<CTexturedChunk> textured = boost::dynamic_pointer_cast<CTexturedChunk>(other);
    if (!textured || textured->mTexture != mTexture || textured->mTextureId != mTextureId ||
        textured->mTranslucent != mTranslucent)
        return false;
    // 16-bit indices cannot reach past this.
    if (mVertices.size() + textured->mVertices.size() > MAX_COUNT ||
        mIndices.size() + textured->mIndices.size() > MAX_COUNT)
        return false;
    if (!mTranslucent)
        return true;
    const tFixed elementZ = element ? element->getZ() : ZERO_X;
    return elementZ + firstZ(textured->mVertices) == firstZ(mVertices);
}

boost::shared_ptr<CDrawChunk> CTexturedChunk::createMergedChunk(boost::shared_ptr<CGraphicElement> element,
                                                                boost::shared_ptr<CDrawChunk> other) const
{
    boost::shared_ptr<CTexturedChunk> merged = boost::make_shared<CTexturedChunk>(*this);
    merged->merge(element, other);
    return merged;
}

boost::shared_ptr<CDrawChunk> CTexturedChunk::createTransformedChunk(boost::shared_ptr<CGraphicElement> element) const
{
    boost::shared_ptr<CTexturedChunk> transformed = boost::make_shared<CTexturedChunk>(*this);
    if (element)
        transformed->transformVertices(element->getMatrix());
    return transformed;
}

void CTexturedChunk::merge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other)
{
    boost::shared_ptr<CTexturedChunk> textured = boost::dynamic_pointer_cast<CTexturedChunk>(other);
    if (!textured)
        return;
    // Counts are taken first so that a chunk can merge a copy of itself.
    const size_t base = mVertices.size();
    const size_t vertexCount = textured->mVertices.size();
    const size_t indexCount = textured->mIndices.size();
    const bool fits = base + vertexCount <= MAX_COUNT && mIndices.size() + indexCount <= MAX_COUNT;
    BaseUtils::Assert(fits, kFile, __LINE__, "CTexturedChunk::merge merged chunk would exceed 65535 vertices or indices");
    if (!fits)
        return;
    const tMatrix23 m = element ? element->getMatrix() : tMatrix23();
    mVertices.reserve(base + vertexCount);
    for (size_t i = 0; i < vertexCount; ++i)
        mVertices.push_back(m * textured->mVertices[i]);
    // A chunk whose coordinate list fell short of its vertices gets zeros, keeping one per vertex.
    const size_t coordCount = textured->mTexCoords.size();
    mTexCoords.resize(base, VECT2_0);
    mTexCoords.reserve(base + vertexCount);
    for (size_t i = 0; i < vertexCount; ++i)
        mTexCoords.push_back(i < coordCount ? textured->mTexCoords[i] : VECT2_0);
    mIndices.reserve(mIndices.size() + indexCount);
    for (size_t i = 0; i < indexCount; ++i)
        mIndices.push_back(static_cast<uint16_t>(textured->mIndices[i] + base));
}
