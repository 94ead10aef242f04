#ifndef ZEPHRIN2D_CPOINTSPRITECHUNK_H
#define ZEPHRIN2D_CPOINTSPRITECHUNK_H

#include "CDrawChunk.h"

#include <GLES/gl.h>
#include <stdint.h>

class CTexture;

/// Points drawn as point sprites: one copy of the texture centred on each
/// vertex, pointSize pixels wide.
///
/// Translucency follows the texture format as for CTexturedChunk. Vertices
/// may be written in place every frame; whoever does so bumps the revision
/// (setVertex and moveVertexBy do), and the draw list re-uploads the points
/// of a chunk whose revision changed.
class CPointSpriteChunk : public CDrawChunk
{
public:
    CPointSpriteChunk();
    explicit CPointSpriteChunk(unsigned short vertexCount);
    CPointSpriteChunk(const CPointSpriteChunk& other);

    /// Takes the texture and its translucency; the chunk then belongs to no list.
    void setTexture(boost::shared_ptr<CTexture> texture);
    boost::shared_ptr<CTexture> getTexture() const { return mTexture; }

    /// Sprite size in pixels; 0 (the default) means the texture's width.
    void setPointSize(tFixed size) { mPointSize = size; }
    tFixed getPointSize() const { return mPointSize; }
    /// The size drawn: the point size, else the texture's width, else 1.0.
    tFixed getDrawnPointSize() const;

    /// Point n; (0, 0, 0) past the end.
    tVect3 getVertex(size_t n) const;
    /// Writes point n in place and bumps the revision; ignored past the end.
    void setVertex(size_t n, tVect3 v);
    void moveVertexBy(size_t n, tVect3 d);
    /// Tells the draw list that the points were written in place.
    void touch() { ++mRevision; }
    uint32_t getRevision() const { return mRevision; }

    boost::shared_ptr<CDrawList> createDrawList() override;
    /// Same texture and point size; translucent chunks also need the same resulting depth.
    bool canMerge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other) const override;
    boost::shared_ptr<CDrawChunk> createMergedChunk(boost::shared_ptr<CGraphicElement> element,
                                                    boost::shared_ptr<CDrawChunk> other) const override;
    boost::shared_ptr<CDrawChunk> createTransformedChunk(boost::shared_ptr<CGraphicElement> element) const override;
    /// Appends other's points, placed by the element's matrix.
    void merge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other) override;

private:
    CPointSpriteChunk& operator=(const CPointSpriteChunk&);

    boost::shared_ptr<CTexture> mTexture;
    tFixed mPointSize;
    uint32_t mRevision;
};

#endif
