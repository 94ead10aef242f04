#include "PeerZephrin.h"

#include "CActor2D.h"
#include "CBillboard.h"
#include "CDrawManager.h"
#include "CGraphics2D.h"

#include <GLES/gl.h>
#include <VellOpenGLConfig.h>
#include <boost/make_shared.hpp>

namespace PeerScenes {

namespace {

tVect3 positionOf(const tSpriteDef& d)
{
    return tVect3{tFixed(d.x), tFixed(d.y), tFixed::fromRaw(d.z)};
}

/// Centre of rotation and registration point: the middle of the quad.
void place(CGraphicElement& e, const tSpriteDef& d, const tTextureDef& t)
{
    e.moveRegTo(tVect2{tFixed(t.width / 2), tFixed(t.height / 2)});
    e.rotateTo(tFixed(d.angle));
    e.moveTo(positionOf(d));
}

} // namespace

ZephrinScene::ZephrinScene(const tScene& scene, bool managed, bool colors) : mScene(scene), mManaged(managed)
{
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(scene.width, scene.height);
    CGraphics2D::Instance()->init(tVect2{tFixed(scene.width), tFixed(scene.height)}, tColor{0, 0, 0, 255}, 0, 0);
    for (size_t i = 0; i < scene.sprites.size(); ++i)
        colors = colors || scene.sprites[i].tint[3] != 0;
    CDrawManager::Instance()->setColorsEnabled(colors);
    mPainters = paintersOrder(scene);
    for (size_t i = 0; i < scene.sprites.size(); ++i) {
        const tSpriteDef& d = scene.sprites[i];
        if (scene.cels == 0) {
            boost::shared_ptr<CBillboard> b = boost::make_shared<CBillboard>(scene.textures[d.texture].path, true);
            place(*b, d, scene.textures[d.texture]);
            if (d.tint[3]) {
                b->setColor(tColor{d.tint[0], d.tint[1], d.tint[2], d.tint[3]});
                mTinted.push_back(static_cast<int>(mBillboards.size()));
            }
            if (managed)
                CDrawManager::Instance()->add(b);
            if (d.moving)
                mMoving.push_back(static_cast<int>(mBillboards.size()));
            mBillboards.push_back(b);
            continue;
        }
        // An actor of cels built with the append API; each cel is one billboard's quad,
        // the last cel jumps back to the first.
        boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>();
        for (int c = 0; c < scene.cels; ++c) {
            const int t = (d.texture + c) % static_cast<int>(scene.textures.size());
            boost::shared_ptr<CBillboard> b = boost::make_shared<CBillboard>(scene.textures[t].path, true);
            tActor2DFrameStruct frame;
            frame.duration = 1;
            frame.chunks = b->getChunks();
            actor->appendFrame(frame);
            mCelBillboards.push_back(b);
        }
        actor->pushBackOperation(static_cast<unsigned short>(scene.cels - 1), 1, 0);
        place(*actor, d, scene.textures[d.texture]);
        actor->gotoAndPlay(0);
        if (managed)
            CDrawManager::Instance()->add(actor);
        mActors.push_back(actor);
    }
}

ZephrinScene::~ZephrinScene()
{
    mBillboards.clear();
    mActors.clear();
    mCelBillboards.clear();
    CGraphics2D::Instance()->cleanup();
}

void ZephrinScene::update(int frame)
{
    const tVect2 step = {tFixed(stepOf(frame)), ZERO_X};
    for (size_t k = 0; k < mMoving.size(); ++k)
        mBillboards[mMoving[k]]->moveBy(step);
    for (size_t k = 0; k < mTinted.size(); ++k)
        mBillboards[mTinted[k]]->alphaTo(alphaOf(mScene.sprites[mTinted[k]], frame));
    for (size_t i = 0; i < mActors.size(); ++i)
        mActors[i]->update(1);
}

void ZephrinScene::draw()
{
    CGraphics2D::Instance()->clearBuffer();
    if (mManaged)
        CDrawManager::Instance()->drawAll();
    else
        drawImmediate();
}

void ZephrinScene::drawImmediate()
{
    // Opaque quads need no order (the depth test sorts them); translucent ones
    // go back to front, as a game drawing element by element would do it.
    glDisable(GL_BLEND);
    for (int pass = 0; pass < 2; ++pass) {
        if (pass == 1)
            glEnable(GL_BLEND);
        for (size_t k = 0; k < mPainters.size(); ++k) {
            const int i = mPainters[k];
            const tSpriteDef& d = mScene.sprites[i];
            if (blended(mScene, d) != (pass == 1))
                continue;
            if (mScene.cels == 0) {
                mBillboards[i]->pushTransform();
                if (d.tint[3])
                    mBillboards[i]->applyColor(0);
                mBillboards[i]->draw(0);
                if (d.tint[3])
                    glColor4ub(255, 255, 255, 255);
                mBillboards[i]->popTransform();
            } else {
                CActor2D& actor = *mActors[i];
                actor.pushTransform();
                mCelBillboards[i * mScene.cels + actor.getCurrentCelOffset()]->draw(0);
                actor.popTransform();
            }
        }
    }
}

void ZephrinScene::finish()
{
    glFinish();
    CGraphics2D::Instance()->swapBuffer();
}

std::vector<uint8_t> ZephrinScene::pixels()
{
    std::vector<uint8_t> rgba;
    int w = 0, h = 0;
    Tadwick::Vell::VellOpenGLConfig::Current()->readPixels(rgba, w, h);
    return rgba;
}

} // namespace PeerScenes
