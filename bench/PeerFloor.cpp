#include "PeerFloor.h"

#include "CGraphics2D.h"
#include "CTexture.h"
#include "CTextureManager.h"
#include "tMatrix23.h"

#include <VellOpenGLConfig.h>
#include <algorithm>

namespace PeerScenes {

FloorScene::FloorScene(const tScene& scene) : mScene(scene), mBuffers{0, 0, 0, 0}, mMovingQuads(0)
{
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(scene.width, scene.height);
    CGraphics2D::Instance()->init(tVect2{tFixed(scene.width), tFixed(scene.height)}, tColor{0, 0, 0, 255}, 0, 0);
    for (size_t t = 0; t < scene.textures.size(); ++t)
        mTextures.push_back(CTextureManager::Instance()->load(scene.textures[t].path, true, false, false));

    const size_t sprites = scene.sprites.size();
    const int cels = scene.cels ? scene.cels : 1;
    mQuadOf.assign(sprites, 0);
    size_t quad = 0;
    for (int pass = 0; pass < 2; ++pass)
        for (size_t i = 0; i < sprites; ++i)
            if (scene.sprites[i].moving == (pass == 0)) {
                mQuadOf[i] = static_cast<int>(quad);
                quad += cels;
                mMovingQuads += pass == 0 ? 1 : 0;
            }
    mPositions.resize(quad * 12);
    mCoords.resize(quad * 8);
    for (size_t i = 0; i < sprites; ++i)
        if (scene.sprites[i].tint[3])
            mColors.assign(quad * 16, 255);
    for (size_t i = 0; i < sprites; ++i) {
        const tSpriteDef& d = scene.sprites[i];
        for (int c = 0; c < cels; ++c) {
            const int t = (d.texture + c) % static_cast<int>(scene.textures.size());
            putQuad(mQuadOf[i] + c, d, scene.textures[t]);
        }
        for (int v = 0; v < 4 && !mColors.empty(); ++v)
            for (int c = 0; c < 4; ++c)
                mColors[(mQuadOf[i] * 4 + v) * 4 + c] = d.tint[3] ? d.tint[c] : 255;
    }

    // Opaque quads front to back per texture; translucent ones back to front, one batch per depth.
    const std::vector<int> backToFront = paintersOrder(scene);
    mIndices.reserve(sprites * 6);
    if (scene.cels == 0) {
        for (size_t t = 0; t < scene.textures.size(); ++t) {
            if (scene.textures[t].translucent)
                continue;
            const tBatch b = {mTextures[t]->glTextureId, static_cast<GLsizei>(mIndices.size()), 0};
            for (size_t k = sprites; k-- > 0;) {
                const int i = backToFront[k];
                if (scene.sprites[i].texture != static_cast<int>(t) || blended(scene, scene.sprites[i]))
                    continue;
                const uint16_t v = static_cast<uint16_t>(mQuadOf[i] * 4);
                const uint16_t quadIndices[6] = {v, uint16_t(v + 1), uint16_t(v + 2), uint16_t(v + 2),
                                                 uint16_t(v + 1), uint16_t(v + 3)};
                mIndices.insert(mIndices.end(), quadIndices, quadIndices + 6);
            }
            if (mIndices.size() > static_cast<size_t>(b.first))
                mOpaque.push_back(tBatch{b.texture, b.first, static_cast<GLsizei>(mIndices.size()) - b.first});
        }
        int32_t batchZ = 0;
        for (size_t k = 0; k < sprites; ++k) {
            const tSpriteDef& d = scene.sprites[backToFront[k]];
            if (!blended(scene, d))
                continue;
            const GLuint texture = mTextures[d.texture]->glTextureId;
            const bool sameBatch = !mTranslucent.empty() && batchZ == d.z && mTranslucent.back().texture == texture;
            batchZ = d.z;
            if (!sameBatch)
                mTranslucent.push_back(tBatch{texture, static_cast<GLsizei>(mIndices.size()), 0});
            const uint16_t v = static_cast<uint16_t>(mQuadOf[backToFront[k]] * 4);
            const uint16_t quadIndices[6] = {v, uint16_t(v + 1), uint16_t(v + 2), uint16_t(v + 2), uint16_t(v + 1),
                                             uint16_t(v + 3)};
            mIndices.insert(mIndices.end(), quadIndices, quadIndices + 6);
            mTranslucent.back().count += 6;
        }
    } else {
        mIndices.resize(sprites * 6);
        buildIndices(0);
    }

    glGenBuffers(4, mBuffers);
    if (!mColors.empty()) {
        glBindBuffer(GL_ARRAY_BUFFER, mBuffers[3]);
        glBufferData(GL_ARRAY_BUFFER, mColors.size(), mColors.data(), GL_DYNAMIC_DRAW);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, 0);
        glEnableClientState(GL_COLOR_ARRAY);
    }
    glBindBuffer(GL_ARRAY_BUFFER, mBuffers[1]);
    glBufferData(GL_ARRAY_BUFFER, mCoords.size() * 4, mCoords.data(), GL_STATIC_DRAW);
    glTexCoordPointer(2, GL_FIXED, 0, 0);
    glBindBuffer(GL_ARRAY_BUFFER, mBuffers[0]);
    glBufferData(GL_ARRAY_BUFFER, mPositions.size() * 4, mPositions.data(), GL_DYNAMIC_DRAW);
    glVertexPointer(3, GL_FIXED, 0, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mBuffers[2]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, mIndices.size() * 2, mIndices.data(), GL_DYNAMIC_DRAW);
    glColor4ub(255, 255, 255, 255);
}

FloorScene::~FloorScene()
{
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glDisableClientState(GL_COLOR_ARRAY);
    glDeleteBuffers(4, mBuffers);
    mTextures.clear();
    CGraphics2D::Instance()->cleanup();
}

void FloorScene::putQuad(size_t quad, const tSpriteDef& d, const tTextureDef& t)
{
    const tMatrix23 m(tVect2{tFixed(t.width / 2), tFixed(t.height / 2)}, tVect2{ONE_X, ONE_X}, tFixed(d.angle),
                      tVect3{tFixed(d.x), tFixed(d.y), tFixed::fromRaw(d.z)});
    const tVect3 corners[4] = {{ZERO_X, tFixed(t.height), ZERO_X},
                               {tFixed(t.width), tFixed(t.height), ZERO_X},
                               {ZERO_X, ZERO_X, ZERO_X},
                               {tFixed(t.width), ZERO_X, ZERO_X}};
    for (int c = 0; c < 4; ++c) {
        const tVect3 p = m * corners[c];
        int32_t* pos = &mPositions[(quad * 4 + c) * 3];
        pos[0] = p.x.raw();
        pos[1] = p.y.raw();
        pos[2] = p.z.raw();
        int32_t* st = &mCoords[(quad * 4 + c) * 2];
        st[0] = (c & 1) ? 0x10000 : 0;
        st[1] = (c & 2) ? 0x10000 : 0;
    }
}

void FloorScene::buildIndices(int frame)
{
    // The cel each actor shows, grouped by its texture (a counting sort).
    const size_t textures = mScene.textures.size();
    const int cel = frame % mScene.cels;
    size_t start[16] = {0};
    for (size_t i = 0; i < mScene.sprites.size(); ++i)
        ++start[(mScene.sprites[i].texture + cel) % textures + 1];
    for (size_t t = 1; t <= textures; ++t)
        start[t] += start[t - 1];
    mOpaque.clear();
    for (size_t t = 0; t < textures; ++t)
        if (start[t + 1] > start[t])
            mOpaque.push_back(tBatch{mTextures[t]->glTextureId, static_cast<GLsizei>(start[t] * 6),
                                     static_cast<GLsizei>((start[t + 1] - start[t]) * 6)});
    for (size_t i = 0; i < mScene.sprites.size(); ++i) {
        const size_t t = (mScene.sprites[i].texture + cel) % textures;
        const uint16_t v = static_cast<uint16_t>((mQuadOf[i] + cel) * 4);
        uint16_t* out = &mIndices[start[t]++ * 6];
        out[0] = v;
        out[1] = out[4] = static_cast<uint16_t>(v + 1);
        out[2] = out[3] = static_cast<uint16_t>(v + 2);
        out[5] = static_cast<uint16_t>(v + 3);
    }
}

void FloorScene::update(int frame)
{
    if (mScene.cels) {
        buildIndices(frame);
        glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 0, mIndices.size() * 2, mIndices.data());
        return;
    }
    if (!mColors.empty()) {
        for (size_t i = 0; i < mScene.sprites.size(); ++i) {
            const uint8_t a = alphaOf(mScene.sprites[i], frame);
            for (int v = 0; v < 4; ++v)
                mColors[(mQuadOf[i] * 4 + v) * 4 + 3] = a;
        }
        glBindBuffer(GL_ARRAY_BUFFER, mBuffers[3]);
        glBufferSubData(GL_ARRAY_BUFFER, 0, mColors.size(), mColors.data());
        glBindBuffer(GL_ARRAY_BUFFER, mBuffers[0]);
    }
    if (mMovingQuads == 0)
        return;
    const int32_t step = stepOf(frame) * 0x10000;
    for (size_t v = 0; v < mMovingQuads * 4; ++v)
        mPositions[v * 3] += step;
    glBufferSubData(GL_ARRAY_BUFFER, 0, mMovingQuads * 4 * 12, mPositions.data());
}

void FloorScene::draw()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_BLEND);
    for (size_t b = 0; b < mOpaque.size(); ++b) {
        glBindTexture(GL_TEXTURE_2D, mOpaque[b].texture);
        glDrawElements(GL_TRIANGLES, mOpaque[b].count, GL_UNSIGNED_SHORT,
                       reinterpret_cast<const void*>(static_cast<uintptr_t>(mOpaque[b].first) * 2));
    }
    glEnable(GL_BLEND);
    for (size_t b = 0; b < mTranslucent.size(); ++b) {
        glBindTexture(GL_TEXTURE_2D, mTranslucent[b].texture);
        glDrawElements(GL_TRIANGLES, mTranslucent[b].count, GL_UNSIGNED_SHORT,
                       reinterpret_cast<const void*>(static_cast<uintptr_t>(mTranslucent[b].first) * 2));
    }
}

void FloorScene::finish()
{
    glFinish();
    CGraphics2D::Instance()->swapBuffer();
}

std::vector<uint8_t> FloorScene::pixels()
{
    std::vector<uint8_t> rgba;
    int w = 0, h = 0;
    Tadwick::Vell::VellOpenGLConfig::Current()->readPixels(rgba, w, h);
    return rgba;
}

} // namespace PeerScenes
