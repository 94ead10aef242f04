#include "PeerSdl.h"

#include "ImageIO.h"

#include <SDL2/SDL.h>

namespace PeerScenes {

SdlScene::SdlScene(const tScene& scene) : mScene(scene), mWindow(0), mRenderer(0), mFinish(0), mFrame(0)
{
    SDL_SetHint(SDL_HINT_RENDER_DRIVER, "opengles2");
    SDL_SetHint(SDL_HINT_RENDER_BATCHING, "1");
    SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "0");
    SDL_SetHint(SDL_HINT_RENDER_VSYNC, "0");
    setenv("SDL_VIDEODRIVER", "offscreen", 0);
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
        mError = std::string("SDL_Init: ") + SDL_GetError();
        return;
    }
    mWindow = SDL_CreateWindow("peer", 0, 0, scene.width, scene.height, SDL_WINDOW_OPENGL);
    if (mWindow)
        mRenderer = SDL_CreateRenderer(mWindow, -1, SDL_RENDERER_ACCELERATED);
    if (!mRenderer) {
        mError = std::string("SDL renderer: ") + SDL_GetError();
        return;
    }
    for (size_t t = 0; t < scene.textures.size(); ++t) {
        ImageIO::tImage image;
        if (!ImageIO::readPNG(scene.textures[t].path, image)) {
            mError = "cannot read " + scene.textures[t].path;
            return;
        }
        SDL_Texture* texture = SDL_CreateTexture(mRenderer, SDL_PIXELFORMAT_ABGR8888, SDL_TEXTUREACCESS_STATIC,
                                                 image.width, image.height);
        SDL_UpdateTexture(texture, 0, image.rgba.data(), image.width * 4);
        bool blend = scene.textures[t].translucent;
        for (size_t i = 0; i < scene.sprites.size(); ++i)
            blend = blend || (scene.sprites[i].texture == static_cast<int>(t) && scene.sprites[i].tint[3]);
        SDL_SetTextureBlendMode(texture, blend ? SDL_BLENDMODE_BLEND : SDL_BLENDMODE_NONE);
        mTextures.push_back(texture);
    }
    mPainters = paintersOrder(scene);
    for (size_t i = 0; i < scene.sprites.size(); ++i) {
        mX.push_back(scene.sprites[i].x);
        mCel.push_back(0);
    }
    mFinish = reinterpret_cast<void (*)()>(SDL_GL_GetProcAddress("glFinish"));
}

SdlScene::~SdlScene()
{
    for (size_t t = 0; t < mTextures.size(); ++t)
        SDL_DestroyTexture(mTextures[t]);
    if (mRenderer)
        SDL_DestroyRenderer(mRenderer);
    if (mWindow)
        SDL_DestroyWindow(mWindow);
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

std::string SdlScene::rendererName() const
{
    SDL_RendererInfo info;
    if (!mRenderer || SDL_GetRendererInfo(mRenderer, &info) != 0)
        return std::string();
    return info.name;
}

void SdlScene::update(int frame)
{
    mFrame = frame;
    const int step = stepOf(frame);
    for (size_t i = 0; i < mX.size(); ++i)
        if (mScene.sprites[i].moving)
            mX[i] += step;
    if (mScene.cels)
        for (size_t i = 0; i < mCel.size(); ++i)
            mCel[i] = mCel[i] + 1 == mScene.cels ? 0 : mCel[i] + 1;
}

void SdlScene::draw()
{
    SDL_SetRenderDrawColor(mRenderer, 0, 0, 0, 255);
    SDL_RenderClear(mRenderer);
    const int textures = static_cast<int>(mTextures.size());
    for (size_t k = 0; k < mPainters.size(); ++k) {
        const int i = mPainters[k];
        const tSpriteDef& d = mScene.sprites[i];
        const int t = mScene.cels ? (d.texture + mCel[i]) % textures : d.texture;
        const tTextureDef& def = mScene.textures[t];
        // Bottom-left origin, y up, counter-clockwise degrees -> top-left origin, y down, clockwise.
        const SDL_Rect dst = {mX[i] - def.width / 2, mScene.height - d.y - def.height / 2, def.width, def.height};
        if (d.tint[3]) {
            SDL_SetTextureColorMod(mTextures[t], d.tint[0], d.tint[1], d.tint[2]);
            SDL_SetTextureAlphaMod(mTextures[t], alphaOf(d, mFrame));
        }
        SDL_RenderCopyEx(mRenderer, mTextures[t], 0, &dst, -static_cast<double>(d.angle), 0, SDL_FLIP_NONE);
    }
    SDL_RenderFlush(mRenderer);
}

void SdlScene::finish()
{
    if (mFinish)
        mFinish();
    SDL_RenderPresent(mRenderer);
}

std::vector<uint8_t> SdlScene::pixels()
{
    std::vector<uint8_t> rgba(static_cast<size_t>(mScene.width) * mScene.height * 4);
    SDL_RenderReadPixels(mRenderer, 0, SDL_PIXELFORMAT_ABGR8888, rgba.data(), mScene.width * 4);
    return rgba;
}

} // namespace PeerScenes
