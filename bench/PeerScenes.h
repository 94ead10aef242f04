#ifndef ZEPHRIN2D_BENCH_PEERSCENES_H
#define ZEPHRIN2D_BENCH_PEERSCENES_H

// The scenes drawn three ways (the batched draw manager, each element's
// immediate draw, SDL2's renderer): plain descriptions that every side
// builds its own objects from, so that all draw the same textures at the
// same positions, rotations and depths.

#include <stdint.h>
#include <string>
#include <vector>

namespace PeerScenes {

struct tTextureDef
{
    std::string path;   ///< PNG file written by writeArt
    int width;
    int height;
    bool translucent;   ///< RGBA with partial alpha, else RGB
};

struct tSpriteDef
{
    int x, y;           ///< centre in pixels, origin bottom left, y up
    int32_t z;          ///< depth, raw 16.16 (greater is nearer)
    int texture;        ///< first texture (actors: of their cel run)
    int angle;          ///< degrees, counter-clockwise
    bool moving;        ///< steps one pixel left and right every frame
    uint8_t tint[4];    ///< colour and alpha (scene g); alpha 0: drawn as the texture is
};

struct tScene
{
    char id;                  ///< 'a' ... 'g'
    std::string name;
    int width, height;        ///< surface
    std::vector<tTextureDef> textures;
    std::vector<tSpriteDef> sprites;
    int cels;                 ///< actors: cels per actor (texture, texture + 1, ...); 0: plain sprites
};

/// The directory the art is written to (created on first use).
std::string artDirectory();

/// Scene 'a' ... 'g'. pixelCheck gives rotations in steps of 90 degrees
/// only, so that the ways can be compared pixel by pixel.
tScene makeScene(char id, bool pixelCheck = false);

/// Back-to-front painter's order: indices sorted by depth, ties in creation order.
std::vector<int> paintersOrder(const tScene& scene);

/// The step of a moving sprite in frame n: +1 or -1 pixel.
inline int stepOf(int frame) { return (frame & 1) ? 1 : -1; }

/// A tinted sprite's alpha in frame n: it fades by one step and back.
inline uint8_t alphaOf(const tSpriteDef& d, int frame) { return static_cast<uint8_t>(d.tint[3] + (frame & 1)); }

/// Whether the sprite draws blended: a translucent texture or a tint with alpha.
inline bool blended(const tScene& s, const tSpriteDef& d) { return s.textures[d.texture].translucent || d.tint[3]; }

} // namespace PeerScenes

#endif
