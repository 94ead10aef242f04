// Step 4: an actor. art/hero.json holds six cels in two labelled animations,
// "walk" and "wave", each looping back to its own start. A callback at the
// end of every round switches: two rounds of walking, then one wave.
#include <Zephrin2D.h>
#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>
#include <cstdio>

static int gRounds = 0;  // callbacks are plain functions: their state lives outside

static void onAnimationDone(CBaseActor* actor, Glib::ustring const&)
{
    // The argument is the label's collation key, which differs from the label
    // under most locales: ask the actor for the label itself.
    CActor2D* hero = static_cast<CActor2D*>(actor);
    const Glib::ustring label = hero->getCurrentAnimationLabel();
    if (label == "walk" && ++gRounds == 2) {
        gRounds = 0;
        hero->gotoAndPlay("wave");
        std::printf("walk -> wave\n");
    } else if (label == "wave") {
        hero->gotoAndPlay("walk");
        std::printf("wave -> walk\n");
    }
}

int main()
{
    CGraphics2D::Instance()->init(tVect2{tFixed(320), tFixed(240)}, tColor{0, 0, 0, 255}, 0, 0);
    {
        boost::shared_ptr<CBillboard> backdrop = boost::make_shared<CBillboard>("art/backdrop.png", true);
        backdrop->scaleTo(tVect2{tFixed(320) / tFixed(256), tFixed(240) / tFixed(256)});
        CDrawManager::Instance()->add(backdrop);

        // The cels place the picture so that the actor's origin is at its feet.
        boost::shared_ptr<CActor2D> hero = boost::make_shared<CActor2D>("art/hero.json", nullptr, nullptr);
        hero->moveTo(tVect3{tFixed(60), tFixed(24), ONE_X});
        hero->setAnimationDoneFunction(onAnimationDone);
        CDrawManager::Instance()->add(hero);

        for (int frame = 0; frame < 85; ++frame) {  // 30 frames a second
            hero->update(33);                       // durations are in milliseconds
            if (hero->getCurrentAnimationLabel() == "walk")
                hero->moveBy(tVect2{tFixed(2), ZERO_X});
            CGraphics2D::Instance()->clearBuffer();
            CDrawManager::Instance()->drawAll();
            CGraphics2D::Instance()->swapBuffer();
        }
        Tadwick::Vell::VellOpenGLConfig::SaveFrame("actor.png");
    }
    CGraphics2D::Instance()->cleanup();
    return 0;
}
