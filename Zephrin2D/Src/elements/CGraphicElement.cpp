#include "CGraphicElement.h"

#include "CDrawChunk.h"
#include "CDrawList.h"
#include "CDrawManager.h"

#include <GLES/gl.h>

CGraphicElement::CGraphicElement()
    : mMatrix(), mPosition(VECT3_0), mReg(VECT2_0), mRotation(ZERO_X), mScale{ONE_X, ONE_X},
      mColor{255, 255, 255, 255}, mMatrixDirty(true), mLinearDirty(true), mVisible(true), mDrawManaged(false),
      mColorEnabled(false)
{
}

CGraphicElement::CGraphicElement(const CGraphicElement& other)
    : boost::enable_shared_from_this<CGraphicElement>(), mMatrix(), mPosition(other.mPosition), mReg(other.mReg),
      mRotation(other.mRotation), mScale(other.mScale), mColor(other.mColor), mChunks(other.mChunks),
      mMatrixDirty(true), mLinearDirty(true), mVisible(other.mVisible), mDrawManaged(false), mColorEnabled(other.mColorEnabled)
{
}

CGraphicElement& CGraphicElement::operator=(const CGraphicElement& other)
{
    if (this == &other)
        return *this;
    if (mDrawManaged) {
        boost::shared_ptr<CGraphicElement> self = shared_from_this();
        for (size_t i = 0; i < mChunks.size(); ++i)
            CDrawManager::Instance()->remove(self, mChunks[i]);
    }
    mMatrixDirty = true;
    mLinearDirty = true;
    mPosition = other.mPosition;
    mReg = other.mReg;
    mRotation = other.mRotation;
    mScale = other.mScale;
    mColor = other.mColor;
    mColorEnabled = other.mColorEnabled;
    mVisible = other.mVisible;
    mChunks = other.mChunks;
    mMatrix = other.mMatrix;
    return *this;
}

CGraphicElement::~CGraphicElement() {}

void CGraphicElement::rotateTo(tFixed degrees) { mRotation = degrees; markLinearDirty(); }
void CGraphicElement::rotateBy(tFixed degrees) { mRotation += degrees; markLinearDirty(); }

void CGraphicElement::moveTo(tVect2 position)
{
    mPosition.x = position.x;
    mPosition.y = position.y;
    markDirtyVertices();
}

void CGraphicElement::moveTo(tVect3 position) { mPosition = position; markDirtyVertices(); }

void CGraphicElement::moveBy(tVect2 offset)
{
    mPosition.x += offset.x;
    mPosition.y += offset.y;
    markDirtyVertices();
}

void CGraphicElement::moveBy(tVect3 offset) { mPosition = mPosition + offset; markDirtyVertices(); }
void CGraphicElement::scaleXTo(tFixed scale) { mScale.x = scale; markLinearDirty(); }
void CGraphicElement::scaleXBy(tFixed factor) { mScale.x = mScale.x * factor; markLinearDirty(); }
void CGraphicElement::scaleYTo(tFixed scale) { mScale.y = scale; markLinearDirty(); }
void CGraphicElement::scaleYBy(tFixed factor) { mScale.y = mScale.y * factor; markLinearDirty(); }
void CGraphicElement::scaleTo(tVect2 scale) { mScale = scale; markLinearDirty(); }

void CGraphicElement::scaleBy(tVect2 factor)
{
    mScale.x = mScale.x * factor.x;
    mScale.y = mScale.y * factor.y;
    markLinearDirty();
}

void CGraphicElement::alphaTo(unsigned char alpha)
{
    const unsigned char before = mColor.a;
    mColor.a = alpha;
    if (drawsColor())
        colorChanged(before);
}

void CGraphicElement::alphaBy(tFixed factor)
{
    const unsigned char before = mColor.a;
    mColor.a = static_cast<unsigned char>((static_cast<int64_t>(factor.raw()) * mColor.a) >> 16);
    if (drawsColor())
        colorChanged(before);
}

void CGraphicElement::moveRegTo(tVect2 reg) { mReg = reg; markDirtyVertices(); }
void CGraphicElement::moveRegBy(tVect2 offset) { mReg = mReg + offset; markDirtyVertices(); }
void CGraphicElement::setColor(tColor color)
{
    const unsigned char before = mColor.a;
    mColor = color;
    if (drawsColor())
        colorChanged(before);
}

void CGraphicElement::setColorEnabled(bool enabled)
{
    const bool before = drawsColor();
    mColorEnabled = enabled;
    if (drawsColor() != before)
        colorChanged();
}

void CGraphicElement::colorChanged(unsigned char alphaBefore)
{
    // An alpha between 1 and 254 before and after keeps the element tinted
    // and translucent, and drawn: its lists only take the new colour (a fade).
    if (!mDrawManaged || static_cast<unsigned>(alphaBefore - 1) > 253u || static_cast<unsigned>(mColor.a - 1) > 253u) {
        colorChanged();
        return;
    }
    tChunkList& chunks = getChunks();
    for (size_t i = 0; i < chunks.size(); ++i) {
        CDrawList* const list = chunks[i] ? chunks[i]->peekDrawList() : 0;
        if (list && list->movesInPlace()) {
            if (list->recolorTinted(*this, chunks[i]) != CDrawList::RECOLORED)
                recolorElsewhere(chunks[i], false);
        } else if (chunks[i]) {
            recolorElsewhere(chunks[i], true);
        }
    }
}

void CGraphicElement::recolorElsewhere(const boost::shared_ptr<CDrawChunk>& chunk, bool askList)
{
    if (askList) {
        const boost::shared_ptr<CDrawList> list = chunk->getDrawList().lock();
        if (list && list->recolorTinted(*this, chunk) == CDrawList::RECOLORED)
            return;
    }
    CDrawManager::Instance()->recolor(shared_from_this(), chunk);
}

void CGraphicElement::colorChanged()
{
    if (!mDrawManaged)
        return;
    tChunkList& chunks = getChunks();
    for (size_t i = 0; i < chunks.size(); ++i) {
        if (!chunks[i])
            continue;
        // The list that holds the pair takes the colour; the manager moves a
        // pair that now belongs in a list of the other kind, or finds it.
        const boost::shared_ptr<CDrawList> list = chunks[i]->getDrawList().lock();
        if (!list || list->recolorHeld(*this, chunks[i]) != CDrawList::RECOLORED)
            CDrawManager::Instance()->recolor(shared_from_this(), chunks[i]);
    }
}

void CGraphicElement::rebuildMatrix()
{
    if (mLinearDirty)
        mMatrix.setTransform(mReg, mScale, mRotation, mPosition);
    else
        mMatrix.setPlacement(mReg, mPosition);
    mMatrixDirty = false;
    mLinearDirty = false;
}

tMatrix23 CGraphicElement::currentMatrix() const
{
    return mMatrixDirty ? tMatrix23(mReg, mScale, mRotation, mPosition) : mMatrix;
}

// getChunks() is where an actor gives its current cel and a text lays itself
// out; neither changes what the element shows.
tRect2 CGraphicElement::getBounds(const tMatrix23& m) const
{
    tRect2 box = tRect2::Empty();
    const tChunkList& chunks = const_cast<CGraphicElement*>(this)->getChunks();
    for (size_t i = 0; i < chunks.size(); ++i) {
        if (!chunks[i])
            continue;
        const std::vector<tVect3>& vertices = chunks[i]->getVertices();
        for (size_t j = 0; j < vertices.size(); ++j) {
            const tVect3 p = m * vertices[j];
            box.Include(tVect2{p.x, p.y});
        }
    }
    return box;
}

void CGraphicElement::flipHorizontal()
{
    const tRect2 box = getBounds(tMatrix23());
    if (box.IsEmpty())
        return;
    mReg.x = box.left + box.right - mReg.x;
    mScale.x = -mScale.x;
    markLinearDirty();
}

void CGraphicElement::flipVertical()
{
    const tRect2 box = getBounds(tMatrix23());
    if (box.IsEmpty())
        return;
    mReg.y = box.bottom + box.top - mReg.y;
    mScale.y = -mScale.y;
    markLinearDirty();
}

void CGraphicElement::markLinearDirty()
{
    mLinearDirty = true;
    markDirtyVertices();
}

namespace {

/// Hands the move to the list of each chunk (see markDirtyVertices).
__attribute__((noinline)) void markEachMoved(CGraphicElement& element, CGraphicElement::tChunkList& chunks)
{
    const boost::shared_ptr<CDrawChunk>* chunk = chunks.data();
    const boost::shared_ptr<CDrawChunk>* end = chunk + chunks.size();
    for (; chunk != end; ++chunk) {
        CDrawList* const list = (*chunk)->peekDrawList();
        if (!list)
            continue;
        // A list that only flags the entry is called without a reference taken
        // for the call, and changes nothing here.
        if (list->movesInPlace()) {
            list->markMoved(element, *chunk);
            continue;
        }
        const size_t i = static_cast<size_t>(chunk - chunks.data());
        if (const boost::shared_ptr<CDrawList> held = (*chunk)->getDrawList().lock())
            held->markMoved(element, chunks[i]);
        // Another kind of list may have changed the chunks.
        if (i >= chunks.size())
            break;
        chunk = chunks.data() + i;
        end = chunks.data() + chunks.size();
    }
}

} // namespace

void CGraphicElement::markDirtyVertices()
{
    mMatrixDirty = true;
    if (!mDrawManaged)
        return;
    // One chunk (a billboard) in a list of this library: a tail call, with no
    // loop and no registers saved around it.
    if (mChunks.size() == 1) {
        CDrawList* const list = mChunks[0]->peekDrawList();
        if (list && list->movesInPlace()) {
            list->markMoved(*this, mChunks[0]);
            return;
        }
    }
    markEachMoved(*this, mChunks);
}

void CGraphicElement::setVisibility(bool visible)
{
    if (visible == mVisible)
        return;
    if (mDrawManaged) {
        boost::shared_ptr<CGraphicElement> self = shared_from_this();
        tChunkList& chunks = getChunks();
        for (size_t i = 0; i < chunks.size(); ++i) {
            if (visible)
                CDrawManager::Instance()->show(self, chunks[i]);
            else
                CDrawManager::Instance()->hide(self, chunks[i]);
        }
    }
    mVisible = visible;
}

/// Position, rotation and scale, each skipped when it is an identity.
void CGraphicElement::applyPlacement()
{
    if (mPosition.x != ZERO_X || mPosition.y != ZERO_X || mPosition.z != ZERO_X)
        glTranslatex(mPosition.x.raw(), mPosition.y.raw(), mPosition.z.raw());
    if (mRotation != ZERO_X)
        glRotatex(mRotation.raw(), 0, 0, ONE_X.raw());
    if (mScale.x != ONE_X || mScale.y != ONE_X)
        glScalex(mScale.x.raw(), mScale.y.raw(), ONE_X.raw());
}

void CGraphicElement::pushTransform()
{
    glPushMatrix();
    applyPlacement();
    if (mReg.x != ZERO_X || mReg.y != ZERO_X)
        glTranslatex(-mReg.x.raw(), -mReg.y.raw(), 0);
}

void CGraphicElement::popTransform() { glPopMatrix(); }

void CGraphicElement::applyColor(tColor* color)
{
    const tColor& c = color ? *color : mColor;
    glColor4ub(c.r, c.g, c.b, c.a);
}

void CGraphicElement::drawRegPoint(tFixed size, tColor* color)
{
    static const GLfixed origin[2] = {0, 0};
    glPushMatrix();
    applyPlacement();
    const tColor saved = mColor;
    mColor = tColor{255, 255, 0, 255};
    applyColor(color);
    mColor = saved;
    glVertexPointer(2, GL_FIXED, 0, origin);
    glDisable(GL_TEXTURE_2D);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glPointSizex(size.raw());
    glDrawArrays(GL_POINTS, 0, 1);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnable(GL_TEXTURE_2D);
    popTransform();
}
