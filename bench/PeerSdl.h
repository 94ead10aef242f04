#ifndef ZEPHRIN2D_BENCH_PEERSDL_H
#define ZEPHRIN2D_BENCH_PEERSDL_H

#include "PeerScenes.h"

#include <stdint.h>
#include <string>
#include <vector>

struct SDL_Renderer;
struct SDL_Texture;
struct SDL_Window;

namespace PeerScenes {

/// The scene drawn by SDL2's renderer: the "opengles2" driver on the
/// "offscreen" video driver (EGL on Mesa, its own context), batching on,
/// one SDL_RenderCopyEx per sprite in painter's order (sorted by depth once:
/// no sprite changes depth). Textures come from the same PNG pixels.
class SdlScene
{
public:
    explicit SdlScene(const tScene& scene);
    ~SdlScene();

    /// Empty when SDL came up; else why not.
    const std::string& error() const { return mError; }
    std::string rendererName() const;

    void update(int frame);
    /// Clears, queues every copy and flushes SDL's batch to GL.
    void draw();
    /// glFinish and the present: outside the timed region.
    void finish();
    /// The frame just drawn (call before finish), RGBA rows top first.
    std::vector<uint8_t> pixels();

private:
    tScene mScene;
    std::string mError;
    SDL_Window* mWindow;
    SDL_Renderer* mRenderer;
    std::vector<SDL_Texture*> mTextures;
    std::vector<int> mPainters;
    std::vector<int> mX;        ///< current centre x of each sprite
    std::vector<int> mCel;      ///< current cel of each actor
    void (*mFinish)();
    int mFrame;                 ///< the frame last updated to (tinted sprites fade)
};

} // namespace PeerScenes

#endif
