// Step 4: an actor. art/hero.json holds six cels in two labelled animations,
// "walk" and "wave", each looping back to its own start. A callback at the
// end of every round switches: two rounds of walking, then one wave.
#include <Zephrin2D.h>
#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>
#include <cstdio>

int main()
{
    CGraphics2D::Instance()->init(tVect2{320_x, 240_x}, tColor{0, 0, 0, 255}, 0, 0);
    {
        boost::shared_ptr<CBillboard> backdrop = boost::make_shared<CBillboard>("art/backdrop.png", true);
        backdrop->scaleTo(tVect2{1.25_x, 0.9375_x});
        CDrawManager::Instance()->add(backdrop);

        // The cels place the picture so that the actor's origin is at its feet.
        boost::shared_ptr<CActor2D> hero = boost::make_shared<CActor2D>("art/hero.json", nullptr, nullptr);
        hero->moveTo(tVect3{60_x, 24_x, ONE_X});
        CDrawManager::Instance()->add(hero);

        // The second argument is the label's collation key, which differs from
        // the label under most locales: ask the actor for the label itself.
        int rounds = 0;
        hero->setAnimationDoneFunction([&](CBaseActor*, Glib::ustring const&) {
            const Glib::ustring label = hero->getCurrentAnimationLabel();
            if (label == "walk" && ++rounds == 2) {
                rounds = 0;
                hero->gotoAndPlay("wave");
                std::printf("walk -> wave\n");
            } else if (label == "wave") {
                hero->gotoAndPlay("walk");
                std::printf("wave -> walk\n");
            }
        });

        for (int frame = 0; frame < 85; ++frame) {  // 30 frames a second
            hero->update(33);                       // durations are in milliseconds
            if (hero->getCurrentAnimationLabel() == "walk")
                hero->moveBy(tVect2{2_x, ZERO_X});
            CGraphics2D::Instance()->clearBuffer();
            CDrawManager::Instance()->drawAll();
            CGraphics2D::Instance()->swapBuffer();
        }
        Tadwick::Vell::VellOpenGLConfig::SaveFrame("actor.png");
    }
    CGraphics2D::Instance()->cleanup();
    return 0;
}
