#ifndef ZEPHRIN2D_CBILLBOARD_H
#define ZEPHRIN2D_CBILLBOARD_H

#include "CGraphicElement.h"

#include <GLES/gl.h>
#include <glibmm/ustring.h>
#include <stdint.h>

class CTexture;
class CTexturedChunk;
class CTextureSheet;

/// A texture, or a rectangle cut out of one, shown as a single quad.
///
/// The quad is one CTexturedChunk of four vertices (c0 top left, c1 top
/// right, c2 bottom left, c3 bottom right) and two triangles, batched by the
/// draw manager with every other quad of its texture. A whole W x H texture
/// spans (0, 0)-(W, H) with its bottom-left corner on the element's origin.
/// Every change is copy-on-write: a chunk already handed to a draw list (or
/// held anywhere else) is never modified; the billboard swaps in a changed
/// copy and re-registers it. A chunk only the billboard holds changes in place.
class CBillboard : public CGraphicElement
{
public:
    CBillboard();
    /// Loads the image file (through the texture cache).
    CBillboard(const Glib::ustring& path, bool visible);
    /// Shows the picture of that name from the sheet.
    CBillboard(const Glib::ustring& path, CTextureSheet* sheet, bool visible);

    /// A fresh quad without texture: indices 0, 1, 2, 2, 1, 3.
    void init();
    /// With a sheet, path names one of its pictures, placed so that the
    /// picture's registration point is the element's origin; without one it
    /// is an image file. False when there is no such texture.
    bool loadTexture(const Glib::ustring& path, CTextureSheet* sheet);
    /// Shows the whole texture; false when it is empty.
    bool setTexture(boost::shared_ptr<CTexture> texture);
    /// As above; binaryAlpha draws the quad opaque whatever the format (see CTexturedChunk).
    bool setTexture(boost::shared_ptr<CTexture> texture, bool binaryAlpha);
    /// Unregisters from the draw manager and drops the texture; the size stays.
    void clearTexture();
    /// c0 = (x1, y1), c1 = (x2, y1), c2 = (x1, y2), c3 = (x2, y2).
    void setVertices(tFixed x1, tFixed y1, tFixed x2, tFixed y2);
    /// Texture coordinates (0 ... 1.0): c0 = (s1, t1), c1 = (s2, t1), c2 = (s1, t2), c3 = (s2, t2).
    void setTexCoords(tFixed s1, tFixed t1, tFixed s2, tFixed t2);
    /// Shows the pixel rectangle (x1, y1)-(x2, y2) of the texture, y counted
    /// down from its top row, at the same place it has in the whole texture.
    void setTextureCoords(tFixed x1, tFixed y1, tFixed x2, tFixed y2);
    void setTextureCoords(tVect2 p1, tVect2 p2);

    boost::shared_ptr<CTexture> getTexture() const;
    GLuint getTextureId() const;
    /// Pixel size of the whole texture last set (0 when none).
    tFixed getWidth() const { return tFixed(static_cast<int>(mWidth)); }
    tFixed getHeight() const { return tFixed(static_cast<int>(mHeight)); }
    /// Width and height of what the quad shows: a sheet picture's own size,
    /// where getWidth() and getHeight() give its page's. (0, 0) without a quad.
    tVect2 getPictureSize() const;

    using CGraphicElement::draw;
    /// Draws the quad at once, outside the draw manager, in the current
    /// model-view transform; skipped when hidden or without size.
    void draw(tColor* color) override;

private:
    boost::shared_ptr<CTexturedChunk> quad();
    boost::shared_ptr<CTexturedChunk> beginChange(bool& registered);
    void endChange(const boost::shared_ptr<CTexturedChunk>& changed, bool registered);
    void setWholeTexture(CTexturedChunk& chunk);
    /// Copy-on-write: a new chunk showing all of texture.
    void showWholeTexture(boost::shared_ptr<CTexture> texture, bool binaryAlpha);

    // Whole pixels in 16 bits, so that a billboard and its control block fit one 160-byte heap block.
    uint16_t mWidth;
    uint16_t mHeight;
};

#endif
