#ifndef ZEPHRIN2D_CTEXTUREDCHUNK_H
#define ZEPHRIN2D_CTEXTUREDCHUNK_H

#include "CDrawChunk.h"
#include "CGraphicElement.h"

#include <GLES/gl.h>
#include <stdint.h>

class CTexture;

/// Textured triangles: vertices with one texture coordinate each, 16-bit
/// indices into them and the texture they show.
///
/// The chunk is translucent when its texture's format carries a full alpha
/// channel (GL_RGBA and the RGBA8/RGBA4 palettes); one-bit alpha and formats
/// without alpha are opaque, their holes being cut by the alpha test. Draw
/// lists batch chunks by texture id.
class CTexturedChunk : public CDrawChunk
{
public:
    CTexturedChunk(unsigned short vertexCount, unsigned short indexCount);
    CTexturedChunk(const CTexturedChunk& other);

    /// Takes the texture and its translucency; the chunk then belongs to no list.
    void setTexture(boost::shared_ptr<CTexture> texture);
    /// As above; with binaryAlpha set the chunk is opaque whatever the format,
    /// for textures whose alpha is only ever 0 or full.
    void setTexture(boost::shared_ptr<CTexture> texture, bool binaryAlpha);
    /// Uses a GL texture the caller owns (no CTexture behind it); the chunk then belongs to no list.
    void setTextureId(GLuint textureId, bool translucent);

    boost::shared_ptr<CDrawList> createDrawList() override;
    /// Also when the element draws its colour with an alpha below 255.
    bool isTranslucentFor(const CGraphicElement& element) const final
    {
        return mTranslucent || (!element.hasOpaqueWhite() && element.drawsColor() && element.getAlpha() < 255);
    }
    /// Same texture object; translucent chunks also need the same resulting depth.
    bool canMerge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other) const override;
    boost::shared_ptr<CDrawChunk> createMergedChunk(boost::shared_ptr<CGraphicElement> element,
                                                    boost::shared_ptr<CDrawChunk> other) const override;
    boost::shared_ptr<CDrawChunk> createTransformedChunk(boost::shared_ptr<CGraphicElement> element) const override;
    /// Appends other's vertices (placed by element), texture coordinates and
    /// indices, the indices renumbered to the appended vertices.
    void merge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other) override;

    std::vector<uint16_t>& getIndices() { return mIndices; }
    const std::vector<uint16_t>& getIndices() const { return mIndices; }
    std::vector<tVect2>& getTexCoords() { return mTexCoords; }
    const std::vector<tVect2>& getTexCoords() const { return mTexCoords; }
    boost::shared_ptr<CTexture> getTexture() const { return mTexture; }

    /// Whether a texture in this GL internal format needs blending.
    static bool isTranslucentFormat(GLenum format);

private:
    CTexturedChunk& operator=(const CTexturedChunk&);

    // First, so that it fills the room the base leaves after its flag.
    std::vector<uint16_t> mIndices;
    std::vector<tVect2> mTexCoords;
    boost::shared_ptr<CTexture> mTexture;
};

#endif
