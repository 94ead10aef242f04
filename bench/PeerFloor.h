#ifndef ZEPHRIN2D_BENCH_PEERFLOOR_H
#define ZEPHRIN2D_BENCH_PEERFLOOR_H

#include "PeerScenes.h"

#include <GLES/gl.h>
#include <boost/shared_ptr.hpp>
#include <stdint.h>
#include <vector>

class CTexture;

namespace PeerScenes {

/// The driver's floor: the scene drawn by a minimal GL ES 1.1 program with
/// no library in the frame. Every quad is transformed once into one vertex
/// buffer (moving quads first, so that one upload covers them) and one
/// index buffer; a frame is one glDrawElements per texture for opaque
/// quads, one per depth for translucent ones (back to front), plus one
/// upload of the moved quads' positions, or for actors of the indices of
/// the cels now shown. Tinted quads (scene g) draw with a colour array
/// whose alphas are all uploaded again each frame. The library sets up the
/// context and textures only.
class FloorScene
{
public:
    explicit FloorScene(const tScene& scene);
    ~FloorScene();

    void update(int frame);
    void draw();
    void finish();
    std::vector<uint8_t> pixels();

private:
    struct tBatch
    {
        GLuint texture;
        GLsizei first;   ///< first index
        GLsizei count;
    };
    /// Sprite i's quad (cel c for actors) at vertex 4 * quad.
    void putQuad(size_t quad, const tSpriteDef& d, const tTextureDef& t);
    void buildIndices(int frame);

    tScene mScene;
    std::vector<boost::shared_ptr<CTexture> > mTextures;
    GLuint mBuffers[4];         ///< positions, texture coordinates, indices, colours
    std::vector<int32_t> mPositions;
    std::vector<int32_t> mCoords;
    std::vector<uint8_t> mColors;   ///< RGBA per vertex; empty without tints
    std::vector<uint16_t> mIndices;
    std::vector<int> mQuadOf;   ///< sprite -> its first quad
    size_t mMovingQuads;
    std::vector<tBatch> mOpaque;
    std::vector<tBatch> mTranslucent;
};

} // namespace PeerScenes

#endif
