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
};

struct tScene
{
    char id;                  ///< 'a' ... 'f'
    std::string name;
    int width, height;        ///< surface
    std::vector<tTextureDef> textures;
    std::vector<tSpriteDef> sprites;
    int cels;                 ///< actors: cels per actor (texture, texture + 1, ...); 0: plain sprites
};

/// The directory the art is written to (created on first use).
std::string artDirectory();

/// Scene 'a' ... 'f'. pixelCheck gives rotations in steps of 90 degrees
/// only, so that the ways can be compared pixel by pixel.
tScene makeScene(char id, bool pixelCheck = false);

/// Back-to-front painter's order: indices sorted by depth, ties in creation order.
std::vector<int> paintersOrder(const tScene& scene);

/// The step of a moving sprite in frame n: +1 or -1 pixel.
inline int stepOf(int frame) { return (frame & 1) ? 1 : -1; }

} // namespace PeerScenes

#endif
