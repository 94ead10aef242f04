#include "Avatar2DPiece.h"

#include "CAvatarCostume.h"
#include "CDrawManager.h"
#include "CTexture.h"
#include "CTexturedChunk.h"

#include <GLES/gl.h>

namespace {

/// value / size in 16.16 through a 64-bit intermediate.
tFixed ratio(tFixed value, uint32_t size)
{
    return size ? tFixed::fromRaw(static_cast<int32_t>(static_cast<int64_t>(value.raw()) / size)) : ZERO_X;
}

} // namespace

Avatar2DPiece::Avatar2DPiece() : mCostume(0), mLODSize(0) {}

Avatar2DPiece::Avatar2DPiece(const Avatar2DPiece& other)
    : CGraphicElement(other), mComponent(other.mComponent), mVariation(other.mVariation), mCostume(0), mLODSize(0)
{
    setCostume(other.mCostume);
}

Avatar2DPiece& Avatar2DPiece::operator=(const Avatar2DPiece& other)
{
    if (this == &other)
        return *this;
    CGraphicElement::operator=(other);
    mComponent = other.mComponent;
    mVariation = other.mVariation;
    setCostume(other.mCostume);
    return *this;
}

Avatar2DPiece::~Avatar2DPiece()
{
    if (mCostume)
        mCostume->detachPiece(this);
}

void Avatar2DPiece::setPiece(Glib::ustring component, Glib::ustring variation)
{
    mComponent = component;
    mVariation = variation;
    if (mCostume)
        refresh();
}

void Avatar2DPiece::setCostume(AvatarCostume* costume)
{
    if (mCostume != costume) {
        if (mCostume)
            mCostume->detachPiece(this);
        mCostume = costume;
        if (mCostume)
            mCostume->attachPiece(this);
    }
    refresh();
}

void Avatar2DPiece::refresh()
{
    tAvatarTexturePiece piece;
    piece.valid = false;
    if (mCostume)
        piece = mCostume->getAvatarTexturePiece(mComponent, mVariation);

    boost::shared_ptr<CGraphicElement> self = mDrawManaged ? shared_from_this() : boost::shared_ptr<CGraphicElement>();
    if (mDrawManaged)
        for (size_t i = 0; i < mChunks.size(); ++i)
            CDrawManager::Instance()->remove(self, mChunks[i]);
    mChunks.clear();
    mLODSize = 0;
    if (!piece.valid || !piece.texture || piece.lodSize <= 0)
        return;

    const tAvatarVariation& v = piece.variation;
    const tFixed f = ratio(AVATAR_BASE_SIZE, static_cast<uint32_t>(piece.lodSize));
    const tFixed w = v.right - v.left;
    const tFixed h = v.bottom - v.top;
    const tFixed x0 = -(v.regX * f), x1 = (w - v.regX) * f;
    const tFixed y0 = v.regY * f, y1 = (v.regY - h) * f;

    boost::shared_ptr<CTexturedChunk> chunk(new CTexturedChunk(4, 6));
    const uint16_t indices[6] = {0, 1, 2, 2, 1, 3};
    std::copy(indices, indices + 6, chunk->getIndices().begin());
    chunk->setTexture(piece.texture);
    std::vector<tVect3>& p = chunk->getVertices();
    p[0] = tVect3{x0, y0, ZERO_X};
    p[1] = tVect3{x1, y0, ZERO_X};
    p[2] = tVect3{x0, y1, ZERO_X};
    p[3] = tVect3{x1, y1, ZERO_X};
    const uint32_t texW = piece.texture->imageInfo.width;
    const uint32_t texH = piece.texture->imageInfo.height;
    std::vector<tVect2>& st = chunk->getTexCoords();
    st[0] = tVect2{ratio(v.left, texW), ratio(v.top, texH)};
    st[1] = tVect2{ratio(v.right, texW), ratio(v.top, texH)};
    st[2] = tVect2{ratio(v.left, texW), ratio(v.bottom, texH)};
    st[3] = tVect2{ratio(v.right, texW), ratio(v.bottom, texH)};
    mChunks.push_back(chunk);
    mLODSize = piece.lodSize;
    if (mDrawManaged)
        CDrawManager::Instance()->add(self, chunk);
}

void Avatar2DPiece::draw(tColor* color)
{
    if (!mVisible || mChunks.empty())
        return;
    CTexturedChunk* chunk = static_cast<CTexturedChunk*>(mChunks[0].get());
    pushTransform();
    applyColor(color);
    glBindTexture(GL_TEXTURE_2D, chunk->getTextureId());
    glVertexPointer(3, GL_FIXED, 0, &chunk->getVertices()[0]);
    glTexCoordPointer(2, GL_FIXED, 0, &chunk->getTexCoords()[0]);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    popTransform();
}
