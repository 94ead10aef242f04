#ifndef ZEPHRIN2D_AVATAR2DPIECE_H
#define ZEPHRIN2D_AVATAR2DPIECE_H

#include "CGraphicElement.h"

#include <glibmm/ustring.h>

class AvatarCostume;
class CTexturedChunk;

/// Shows one variation of one component of a costume.
///
/// A textured quad cut from the current LOD's texture at the variation's
/// rectangle, with the element's origin at the variation's registration
/// point (measured from the rectangle's top-left corner, y downwards). The
/// quad is scaled by AVATAR_BASE_SIZE / LOD size, so a piece keeps the same
/// on-screen size at every LOD. When the costume's LOD changes, every piece
/// showing it rebuilds itself from the new LOD. A piece whose component is
/// not in the costume shows nothing.
class Avatar2DPiece : public CGraphicElement
{
public:
    Avatar2DPiece();
    Avatar2DPiece(const Avatar2DPiece& other);
    Avatar2DPiece& operator=(const Avatar2DPiece& other);
    ~Avatar2DPiece() override;

    void setPiece(Glib::ustring component, Glib::ustring variation);
    void setCostume(AvatarCostume* costume);
    /// Rebuilds the quad from the costume's current LOD.
    void refresh();

    const Glib::ustring& getComponent() const { return mComponent; }
    const Glib::ustring& getVariation() const { return mVariation; }
    AvatarCostume* getCostume() const { return mCostume; }
    /// The LOD size the quad was built from, 0 when it shows nothing.
    int getLODSize() const { return mLODSize; }

    using CGraphicElement::draw;
    void draw(tColor* color) override;

private:
    friend class AvatarCostume;
    void costumeGone() { mCostume = 0; }

    Glib::ustring mComponent;
    Glib::ustring mVariation;
    AvatarCostume* mCostume;
    int mLODSize;
};

#endif
