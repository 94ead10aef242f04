#include "CGraphicPoints.h"

#include "CDrawManager.h"
#include "CPointSpriteChunk.h"
#include "CTexture.h"
#include "CTextureManager.h"

#include <BaseUtils.h>

#include <GLES/gl.h>
#include <GLES/glext.h>

namespace {

const char* const kFile = "Zephrin2D/Src/CGraphicPoints";

} // namespace

CGraphicPoints::CGraphicPoints()
{
    mChunks.resize(1);
    mChunks[0].reset(new CPointSpriteChunk());
}

CGraphicPoints::CGraphicPoints(unsigned short count, const Glib::ustring& path)
{
    mChunks.resize(1);
    mChunks[0].reset(new CPointSpriteChunk());
    setNumberVertices(count);
    loadTexture(path);
}

CGraphicPoints::CGraphicPoints(const CGraphicPoints& other) : CGraphicElement(other)
{
    boost::shared_ptr<CPointSpriteChunk> theirs =
        other.mChunks.empty() ? boost::shared_ptr<CPointSpriteChunk>()
                              : boost::dynamic_pointer_cast<CPointSpriteChunk>(other.mChunks[0]);
    mChunks.resize(1);
    mChunks[0].reset(theirs ? new CPointSpriteChunk(*theirs) : new CPointSpriteChunk());
}

CGraphicPoints& CGraphicPoints::operator=(const CGraphicPoints& other)
{
    if (this == &other)
        return *this;
    CGraphicElement::operator=(other);
    const CPointSpriteChunk* theirs =
        other.mChunks.empty() ? 0 : dynamic_cast<const CPointSpriteChunk*>(other.mChunks[0].get());
    mChunks.resize(1);
    mChunks[0].reset(theirs ? new CPointSpriteChunk(*theirs) : new CPointSpriteChunk());
    return *this;
}

boost::shared_ptr<CPointSpriteChunk> CGraphicPoints::points()
{
    boost::shared_ptr<CPointSpriteChunk> chunk =
        mChunks.empty() ? boost::shared_ptr<CPointSpriteChunk>()
                        : boost::dynamic_pointer_cast<CPointSpriteChunk>(mChunks[0]);
    if (!chunk) {
        // Someone replaced the slot: start over from an empty cloud.
        chunk.reset(new CPointSpriteChunk());
        replace(chunk);
    }
    return chunk;
}

void CGraphicPoints::replace(const boost::shared_ptr<CPointSpriteChunk>& next)
{
    // The draw manager's add never withdraws a chunk: the old one goes first.
    if (mDrawManaged && !mChunks.empty() && mChunks[0])
        CDrawManager::Instance()->remove(shared_from_this(), mChunks[0]);
    mChunks.resize(1);
    mChunks[0] = next;
    if (mDrawManaged)
        CDrawManager::Instance()->add(shared_from_this(), next);
}

bool CGraphicPoints::inRange(unsigned int n)
{
    const size_t count = points()->getVertices().size();
    BaseUtils::Assert(n < count, kFile, __LINE__, "CGraphicPoints: point %u past the last of %u\n", n,
                      static_cast<unsigned>(count));
    return n < count;
}

void CGraphicPoints::setNumberVertices(unsigned short count)
{
    boost::shared_ptr<CPointSpriteChunk> next(new CPointSpriteChunk(*points()));
    next->getVertices().resize(count, VECT3_0);
    replace(next);
}

unsigned short CGraphicPoints::getNumberVertices()
{
    return static_cast<unsigned short>(points()->getVertices().size());
}

bool CGraphicPoints::loadTexture(const Glib::ustring& path)
{
    boost::shared_ptr<CTexture> texture = CTextureManager::Instance()->load(path, true, false, false);
    BaseUtils::Assert(static_cast<bool>(texture), kFile, __LINE__,
                      " CGraphicPoints::loadTexture(const CPath &imagePath) texure %s not found\n", path.c_str());
    if (!texture)
        return false;
    boost::shared_ptr<CPointSpriteChunk> next(new CPointSpriteChunk(*points()));
    next->setTexture(texture);
    replace(next);
    return true;
}

tVect3 CGraphicPoints::getVertexN(unsigned short n) { return inRange(n) ? points()->getVertex(n) : VECT3_0; }

void CGraphicPoints::setVertexN(unsigned short n, tVect3 v)
{
    if (inRange(n))
        points()->setVertex(n, v);
}

void CGraphicPoints::moveVertexNBy(unsigned int n, tVect3 d)
{
    if (inRange(n))
        points()->moveVertexBy(n, d);
}

void CGraphicPoints::setPointSize(tFixed size) { points()->setPointSize(size); }

tFixed CGraphicPoints::getPointSize() { return points()->getPointSize(); }

void CGraphicPoints::draw(tColor* color)
{
    boost::shared_ptr<CPointSpriteChunk> chunk = points();
    if (!mVisible || chunk->getVertices().empty())
        return;
    pushTransform();
    applyColor(color);
    glBindTexture(GL_TEXTURE_2D, chunk->getTextureId());
    glEnable(GL_POINT_SPRITE_OES);
    glTexEnvi(GL_POINT_SPRITE_OES, GL_COORD_REPLACE_OES, GL_TRUE);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glPointSizex(chunk->getDrawnPointSize().raw());
    glVertexPointer(3, GL_FIXED, 0, &chunk->getVertices()[0]);
    glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(chunk->getVertices().size()));
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexEnvi(GL_POINT_SPRITE_OES, GL_COORD_REPLACE_OES, GL_FALSE);
    glDisable(GL_POINT_SPRITE_OES);
    glPointSizex(ONE_X.raw());
    popTransform();
}
