#include "CBillboard.h"

#include "CDrawManager.h"
#include "CTexture.h"
#include "CTextureManager.h"
#include "CTextureSheet.h"
#include "CTexturedChunk.h"

#include <BaseUtils.h>
#include <DebugMPI.h>
#include <boost/make_shared.hpp>

namespace {

const char* const kFile = "Zephrin2D/Src/CBillboard";

const Tadwick::Vell::CDebugMPI& debug()
{
    static Tadwick::Vell::CDebugMPI d(0x282);
    return d;
}

void setCorners(CTexturedChunk& chunk, tVect2 c0, tVect2 c3)
{
    std::vector<tVect3>& v = chunk.getVertices();
    v[0] = tVect3{c0.x, c0.y, ZERO_X};
    v[1] = tVect3{c3.x, c0.y, ZERO_X};
    v[2] = tVect3{c0.x, c3.y, ZERO_X};
    v[3] = tVect3{c3.x, c3.y, ZERO_X};
}

void setCoords(CTexturedChunk& chunk, tVect2 c0, tVect2 c3)
{
    std::vector<tVect2>& t = chunk.getTexCoords();
    t[0] = tVect2{c0.x, c0.y};
    t[1] = tVect2{c3.x, c0.y};
    t[2] = tVect2{c0.x, c3.y};
    t[3] = tVect2{c3.x, c3.y};
}

/// A texture's pixel size as the billboard keeps it (tFixed holds no more than 32767 anyway).
uint16_t pixels(uint32_t size)
{
    return static_cast<uint16_t>(size < 0xFFFF ? size : 0xFFFF);
}

} // namespace

CBillboard::CBillboard() : mWidth(0), mHeight(0)
{
    mChunks.resize(1);
    init();
}

CBillboard::CBillboard(const Glib::ustring& path, bool visible) : mWidth(0), mHeight(0)
{
    mChunks.resize(1);
    init();
    loadTexture(path, 0);
    setVisibility(visible);
}

CBillboard::CBillboard(const Glib::ustring& path, CTextureSheet* sheet, bool visible)
    : mWidth(0), mHeight(0)
{
    mChunks.resize(1);
    init();
    loadTexture(path, sheet);
    setVisibility(visible);
}

void CBillboard::init()
{
    boost::shared_ptr<CTexturedChunk> chunk = boost::make_shared<CTexturedChunk>(4, 6);
    const uint16_t indices[6] = {0, 1, 2, 2, 1, 3};
    chunk->getIndices().assign(indices, indices + 6);
    mChunks.resize(1);
    mChunks[0] = chunk;
}

boost::shared_ptr<CTexturedChunk> CBillboard::quad()
{
    boost::shared_ptr<CTexturedChunk> chunk =
        mChunks.empty() ? boost::shared_ptr<CTexturedChunk>() : boost::dynamic_pointer_cast<CTexturedChunk>(mChunks[0]);
    if (!chunk || chunk->getVertices().size() != 4 || chunk->getTexCoords().size() != 4) {
        // Someone replaced the slot: start over from a fresh quad.
        if (mDrawManaged && !mChunks.empty())
            CDrawManager::Instance()->remove(shared_from_this(), mChunks[0]);
        init();
        chunk = boost::static_pointer_cast<CTexturedChunk>(mChunks[0]);
    }
    return chunk;
}

boost::shared_ptr<CTexturedChunk> CBillboard::beginChange(bool& registered)
{
    boost::shared_ptr<CTexturedChunk> current = quad();
    registered = mDrawManaged;
    // Held only here and by the billboard: nobody can see the change, so no copy is needed.
    if (!registered && current.use_count() == 2)
        return current;
    if (registered)
        CDrawManager::Instance()->remove(shared_from_this(), current);
    boost::shared_ptr<CTexturedChunk> copy = boost::make_shared<CTexturedChunk>(*current);
    mChunks[0] = copy;
    return copy;
}

void CBillboard::endChange(const boost::shared_ptr<CTexturedChunk>& changed, bool registered)
{
    if (registered)
        CDrawManager::Instance()->add(shared_from_this(), changed);
}

void CBillboard::setWholeTexture(CTexturedChunk& chunk)
{
    const boost::shared_ptr<CTexture>& texture = chunk.getTexture();
    mWidth = pixels(texture->imageInfo.width);
    mHeight = pixels(texture->imageInfo.height);
    setCorners(chunk, tVect2{ZERO_X, getHeight()}, tVect2{getWidth(), ZERO_X});
    setCoords(chunk, tVect2{ZERO_X, ZERO_X}, tVect2{ONE_X, ONE_X});
}

bool CBillboard::setTexture(boost::shared_ptr<CTexture> texture)
{
    BaseUtils::Assert(static_cast<bool>(texture), kFile, __LINE__,
                      " CBillboard::setTexture(boost::shared_ptr<CTexture> newTexture) texure not valid\n");
    if (!texture)
        return false;
    showWholeTexture(texture, false);
    return true;
}

bool CBillboard::setTexture(boost::shared_ptr<CTexture> texture, bool binaryAlpha)
{
    BaseUtils::Assert(static_cast<bool>(texture), kFile, __LINE__,
                      " CBillboard::setTexture(boost::shared_ptr<CTexture> newTexture) texure not valid\n");
    if (!texture)
        return false;
    showWholeTexture(texture, binaryAlpha);
    return true;
}

void CBillboard::showWholeTexture(boost::shared_ptr<CTexture> texture, bool binaryAlpha)
{
    bool registered = false;
    boost::shared_ptr<CTexturedChunk> chunk = beginChange(registered);
    chunk->setTexture(texture, binaryAlpha);
    setWholeTexture(*chunk);
    endChange(chunk, registered);
}

bool CBillboard::loadTexture(const Glib::ustring& path, CTextureSheet* sheet)
{
    if (!sheet) {
        boost::shared_ptr<CTexture> texture = CTextureManager::Instance()->load(path, true, false, false);
        BaseUtils::Assert(static_cast<bool>(texture), kFile, __LINE__, " CBillboard::loadTexture texure %s not found\n",
                          path.c_str());
        if (!texture)
            return false;
        showWholeTexture(texture, false);
        return true;
    }

    const tTextureSheetElement e = sheet->getElement(path);
    if (!e.texture)
        return false;
    const bool result = setTexture(e.texture);
    setTextureCoords(e.p1.x, e.p1.y, e.p2.x, e.p2.y);
    debug().DebugOut(5, "moving registration point to %f, %f.\n", e.p1.x.toDouble(), (getHeight() - e.p2.y).toDouble());
    const tFixed offX = e.p1.x + e.cropRect[0] + e.reg.x;
    const tFixed offY = getHeight() - (e.p2.y + e.cropRect[3] + e.reg.y);
    std::vector<tVect3>& v = quad()->getVertices();
    for (size_t i = 0; i < v.size(); ++i) {
        v[i].x -= offX;
        v[i].y -= offY;
    }
    return result;
}

void CBillboard::clearTexture()
{
    if (mDrawManaged)
        CDrawManager::Instance()->remove(shared_from_this());
    init();
}

void CBillboard::setVertices(tFixed x1, tFixed y1, tFixed x2, tFixed y2)
{
    bool registered = false;
    boost::shared_ptr<CTexturedChunk> chunk = beginChange(registered);
    setCorners(*chunk, tVect2{x1, y1}, tVect2{x2, y2});
    endChange(chunk, registered);
}

void CBillboard::setTexCoords(tFixed s1, tFixed t1, tFixed s2, tFixed t2)
{
    bool registered = false;
    boost::shared_ptr<CTexturedChunk> chunk = beginChange(registered);
    setCoords(*chunk, tVect2{s1, t1}, tVect2{s2, t2});
    debug().DebugOut(4, "setting texture coordinates to: %f, %f, %f, %f\n", s1.toDouble(), t1.toDouble(),
                     s2.toDouble(), t2.toDouble());
    endChange(chunk, registered);
}

void CBillboard::setTextureCoords(tFixed x1, tFixed y1, tFixed x2, tFixed y2)
{
    bool registered = false;
    boost::shared_ptr<CTexturedChunk> chunk = beginChange(registered);
    setCorners(*chunk, tVect2{x1, getHeight() - y1}, tVect2{x2, getHeight() - y2});
    const bool sized = mWidth != 0 && mHeight != 0;
    BaseUtils::Assert(sized, kFile, __LINE__,
                      "CBillboard::setTextureCoords - Cannot set texture coords, billboard has no size\n");
    if (sized)
        setCoords(*chunk, tVect2{x1 / getWidth(), y1 / getHeight()}, tVect2{x2 / getWidth(), y2 / getHeight()});
    endChange(chunk, registered);
}

void CBillboard::setTextureCoords(tVect2 p1, tVect2 p2) { setTextureCoords(p1.x, p1.y, p2.x, p2.y); }

boost::shared_ptr<CTexture> CBillboard::getTexture() const
{
    const CTexturedChunk* chunk = mChunks.empty() ? 0 : dynamic_cast<const CTexturedChunk*>(mChunks[0].get());
    return chunk ? chunk->getTexture() : boost::shared_ptr<CTexture>();
}

GLuint CBillboard::getTextureId() const
{
    boost::shared_ptr<CTexture> texture = getTexture();
    return texture ? texture->glTextureId : 0;
}

void CBillboard::draw(tColor*)
{
    if (!mVisible || mWidth == 0 || mHeight == 0)
        return;
    boost::shared_ptr<CTexturedChunk> chunk = quad();
    glBindTexture(GL_TEXTURE_2D, chunk->getTextureId());
    glVertexPointer(3, GL_FIXED, 0, &chunk->getVertices()[0]);
    glTexCoordPointer(2, GL_FIXED, 0, &chunk->getTexCoords()[0]);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

tVect2 CBillboard::getPictureSize() const
{
    const tRect2 box = getBounds(tMatrix23());
    return box.IsEmpty() ? VECT2_0 : tVect2{box.right - box.left, box.top - box.bottom};
}
