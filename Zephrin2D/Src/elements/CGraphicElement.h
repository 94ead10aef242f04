#ifndef ZEPHRIN2D_CGRAPHICELEMENT_H
#define ZEPHRIN2D_CGRAPHICELEMENT_H

#include "CDrawManager.h"
#include "tMatrix23.h"
#include "tRect2.h"

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <stdint.h>
#include <string.h>
#include <vector>

class CDrawChunk;

/// The base of everything that can be placed in a scene.
///
/// Holds the transform (position with depth, registration point, rotation in
/// degrees, scale), the colour with its alpha, the visibility and the vertex
/// chunks the element hands to the draw manager. Every transform setter marks
/// the element's vertices dirty in the draw lists that hold its chunks; the
/// colour and alpha setters do not (they show at the next immediate draw or
/// vertex rebuild). Elements are always owned through boost::shared_ptr
/// before they are given to the draw manager.
class CGraphicElement : public boost::enable_shared_from_this<CGraphicElement>
{
public:
    typedef std::vector<boost::shared_ptr<CDrawChunk> > tChunkList;

    CGraphicElement();
    /// Shares the chunks of other; the copy is not draw managed.
    CGraphicElement(const CGraphicElement& other);
    /// Takes other's state and chunks; a draw-managed target first withdraws its chunks.
    CGraphicElement& operator=(const CGraphicElement& other);

    virtual void draw() {}
    /// Marks the registration point with a point of the given size (yellow unless a colour is given).
    virtual void drawRegPoint(tFixed size, tColor* color);
    virtual ~CGraphicElement();

    virtual void rotateTo(tFixed degrees);
    virtual void rotateBy(tFixed degrees);
    /// Keeps z.
    virtual void moveTo(tVect2 position);
    virtual void moveTo(tVect3 position);
    virtual void moveBy(tVect2 offset);
    virtual void moveBy(tVect3 offset);
    virtual void scaleXTo(tFixed scale);
    virtual void scaleXBy(tFixed factor);
    virtual void scaleYTo(tFixed scale);
    virtual void scaleYBy(tFixed factor);
    virtual void scaleTo(tVect2 scale);
    virtual void scaleBy(tVect2 factor);
    virtual void alphaTo(unsigned char alpha);
    /// alpha = factor x alpha, truncated to 8 bits (a factor above 1.0 wraps).
    virtual void alphaBy(tFixed factor);
    virtual void moveRegTo(tVect2 reg);
    virtual void moveRegBy(tVect2 offset);
    /// All four bytes, alpha included.
    virtual void setColor(tColor color);

    virtual tVect3 getPos() const { return mPosition; }
    virtual tFixed getX() const { return mPosition.x; }
    virtual tFixed getY() const { return mPosition.y; }
    virtual tFixed getZ() const { return mPosition.z; }
    virtual tVect2 getScale() const { return mScale; }
    virtual tFixed getXscale() const { return mScale.x; }
    virtual tFixed getYscale() const { return mScale.y; }
    virtual tFixed getRotation() const { return mRotation; }
    virtual tVect2 getReg() const { return mReg; }
    virtual tColor getColor() const { return mColor; }
    virtual unsigned char getAlpha() const { return mColor.a; }

    /// The local-to-scene transform, rebuilt when the transform changed.
    /// Inline, so that the draw lists can inline it for elements that keep it.
    virtual tMatrix23 getMatrix()
    {
        if (mMatrixDirty) {
            if (mLinearDirty) {
                rebuildMatrix();
            } else {
                mMatrix.setPlacement(mReg, mPosition);
                mMatrixDirty = false;
            }
        }
        return mMatrix;
    }
    /// Shows or hides the element's chunks in the draw manager.
    virtual void setVisibility(bool visible);
    virtual bool getVisibility() const { return mVisible; }
    virtual tChunkList& getChunks() { return mChunks; }
    /// Pushes the model-view matrix and applies the transform for an immediate draw.
    virtual void pushTransform();
    virtual void popTransform();
    /// Sets the GL colour: the given one, or the element's when null.
    virtual void applyColor(tColor* color);
    virtual void markDirtyVertices();
    /// Draws at once, outside the draw manager, with an optional colour.
    virtual void draw(tColor* color) = 0;

    /// Batched drawing ignores the colour unless it is enabled for the
    /// element or for all (CDrawManager::setColorsEnabled). Enabled, a colour
    /// other than opaque white modulates the texels, an alpha below 255 draws
    /// blended among the translucent geometry and alpha 0 draws nothing; the
    /// colour and alpha setters then take effect at the next frame.
    void setColorEnabled(bool enabled);
    bool isColorEnabled() const { return mColorEnabled; }
    /// Whether batched drawing applies the colour (enabled here or for all).
    bool drawsColor() const { return mColorEnabled || CDrawManager::colorsEnabled(); }
    /// The colour batched drawing multiplies the texels by when it applies
    /// colours: the element's colour, or white for an element whose texels
    /// already carry it.
    virtual tColor getBatchedColor() const { return mColor; }
    /// The colour is opaque white. Batched drawing then draws the texels as
    /// they are whatever the switches say (getBatchedColor of such an element
    /// is opaque white too), so a cel change asks nothing more.
    bool hasOpaqueWhite() const
    {
        uint32_t c;
        memcpy(&c, &mColor, sizeof c);
        return c == 0xFFFFFFFFu;
    }

    /// The screen-space rectangle around what the element shows: its
    /// geometry (for an actor, the current cel's) transformed by its current
    /// transform. Empty (tRect2::IsEmpty) when it shows nothing. A text
    /// whose settings changed lays itself out first.
    tRect2 getBounds() const { return getBounds(currentMatrix()); }
    /// The same under any transform; the identity gives the element-space box.
    virtual tRect2 getBounds(const tMatrix23& transform) const;
    /// Whether point lies in getBounds() (tRect2::Contains).
    bool contains(tVect2 point) const { return getBounds().Contains(point); }
    /// Mirrors what the element shows left to right (or top to bottom) about
    /// the centre of its element-space box, without moving it: the scale is
    /// negated and the registration point mirrored about that centre, so
    /// getBounds() stays where it was. Twice gives back the first state.
    void flipHorizontal();
    void flipVertical();

    void setDrawManaged(bool managed) { mDrawManaged = managed; }
    bool isDrawManaged() const { return mDrawManaged; }

protected:
    void applyPlacement();
    /// markDirtyVertices() after a change of rotation or scale.
    void markLinearDirty();
    /// Brings the cached matrix up to date with the transform.
    void rebuildMatrix();
    /// The colour changed: the lists holding the chunks take it at the next frame.
    void colorChanged();
    /// The same after a change of the colour from one of alpha alphaBefore.
    void colorChanged(unsigned char alphaBefore);
    /// A tinted colour change for a chunk whose list is not reached in
    /// place (askList: ask it first) or refused it; kept out of the fade's path.
    __attribute__((noinline)) void recolorElsewhere(const boost::shared_ptr<CDrawChunk>& chunk, bool askList);
    /// The cached matrix, or a fresh one when the transform changed since.
    tMatrix23 currentMatrix() const;

    tMatrix23 mMatrix;
    tVect3 mPosition;
    tVect2 mReg;
    tFixed mRotation;
    tVect2 mScale;
    tColor mColor;
    tChunkList mChunks;
    // The flags come last and together: no padding within, and a subclass's
    // small fields fill the rest of the word (a billboard and its control
    // block then fit one 160-byte heap block).
    bool mMatrixDirty : 1;
    /// The rotation or scale changed too: the matrix's linear part is rebuilt,
    /// not only its translation (a moved sprite costs no trigonometry).
    bool mLinearDirty : 1;
    bool mVisible;
    bool mDrawManaged;
    bool mColorEnabled;
};

#endif
