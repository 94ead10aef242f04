#include "SoakScene.h"

#include "CSpriteCel.h"

namespace {

const char* const kImages[] = {"ball_pal4.png", "bricks_rgb.png", "ghost_pal8_trns.png", "glow_rgba.png",
                               "star_pal4_trns.png"};
const int kImageCount = sizeof(kImages) / sizeof(kImages[0]);

void loopAnimation(CBaseActor* actor, Glib::ustring const&)
{
    CActor2D* actor2D = static_cast<CActor2D*>(actor);
    actor2D->gotoAndPlay(actor2D->getCurrentAnimationLabel());
}

} // namespace

SoakScene::SoakScene(const std::string& examples) : mArt(examples + "/art/")
{
    buildDemoScene(mDemo, examples + "/demo/");
    CDrawManager* manager = CDrawManager::Instance();
    for (int i = 0; i < BILLBOARDS; ++i) {
        boost::shared_ptr<CBillboard> b(new CBillboard(mArt + kImages[i % kImageCount], true));
        b->moveTo(tVect3{tFixed(i * 7 % 320), tFixed(i * 13 % 240), tFixed(i % 9) / tFixed(3)});
        b->alphaTo(static_cast<unsigned char>(i % 4 == 0 ? 128 : 255));
        manager->add(b);
        mBillboards.push_back(b);
    }
    for (int i = 0; i < ACTORS; ++i) {
        mActors.push_back(makeActor(i));
        manager->add(mActors.back());
        mDemo.actors.add(mActors.back());
    }
}

SoakScene::~SoakScene()
{
    CDrawManager* manager = CDrawManager::Instance();
    for (const auto& b : mBillboards)
        manager->remove(b);
    for (const auto& a : mActors) {
        mDemo.actors.remove(a);
        manager->remove(a);
    }
    if (mTransient)
        manager->remove(mTransient);
    if (mTransientText)
        manager->remove(mTransientText);
    for (const auto& e : mDemo.elements)
        if (e)
            manager->remove(e);
    for (const auto& a : {mDemo.hero, mDemo.kid})
        manager->remove(a);
    manager->remove(mDemo.title);
    manager->remove(mDemo.sparkles);
    mDemo.actors.removeAll();
    gDemoScene = nullptr;
}

boost::shared_ptr<CActor2D> SoakScene::makeActor(int index)
{
    boost::shared_ptr<CActor2D> actor(new CActor2D);
    const int cels = 3 + index;
    for (int c = 0; c < cels; ++c) {
        boost::shared_ptr<CSpriteCel> cel(new CSpriteCel);
        cel->duration = static_cast<unsigned short>(33 * (1 + (c + index) % 3));
        for (int b = 0; b < 1 + c % 3; ++b) {
            boost::shared_ptr<CBillboard> piece(new CBillboard(mArt + kImages[(index + c + b) % kImageCount], true));
            piece->moveTo(tVect3{tFixed(b * 12), tFixed(c * 3), tFixed(b % 2)});
            piece->rotateTo(tFixed((c * 40 + b * 15) % 360));
            cel->attach(piece);
        }
        if (c == 1)
            cel->pushBackOperation(operation::TRIGGER, 1);
        if (c == 0)
            actor->appendSpriteCelStart(cel, index % 2 ? "spin" : "hop");
        else
            actor->appendSpriteCel(cel);
    }
    actor->setAnimationDoneFunction(loopAnimation);
    actor->moveTo(tVect3{tFixed(40 + 60 * index), tFixed(120), tFixed(2)});
    actor->gotoAndPlay(index % 2 ? "spin" : "hop");
    return actor;
}

void SoakScene::step(long frame, int ms)
{
    stepDemoScene(mDemo, ms);
    for (size_t i = 0; i < mBillboards.size(); i += 3) {
        const long t = frame + static_cast<long>(i);
        mBillboards[i]->moveTo(tVect3{tFixed(t % 320), tFixed((t * 3) % 240), mBillboards[i]->getZ()});
        if (i % 9 == 0)
            mBillboards[i]->rotateTo(tFixed(t % 360));
    }
    CDrawManager* manager = CDrawManager::Instance();
    const long phase = frame % CYCLE;
    if (phase == 0) {
        mTransient.reset(new CBillboard(mArt + "tree_pal8.png", true));
        mTransient->moveTo(tVect3{tFixed(frame % 300), tFixed(10), tFixed(4)});
        manager->add(mTransient);
        Glib::ustring font = "DejaVu Sans";
        mTransientText.reset(new CText("frame " + std::to_string(frame), font, 10));
        manager->add(mTransientText);
    } else if (phase == CYCLE / 2) {
        manager->remove(mTransient);
        manager->remove(mTransientText);
        mTransient.reset();
        mTransientText.reset();
        // Lists emptied by the removal stay until the host shrinks them.
        manager->shrinkAll();
    }
}
