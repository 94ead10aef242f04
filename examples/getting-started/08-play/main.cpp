// Step 8: play. The arrows walk the hero, who turns to face the way he goes;
// touching a coin collects it (the hit test). Escape or closing the window
// quits. Without a window it plays 60 frames untouched and saves play.png.
#include <Zephrin2D.h>
#include <Buttons.h>
#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    using Tadwick::Vell::CButtons;
    const bool window = argc > 1 && std::strcmp(argv[1], "--window") == 0;
    Tadwick::Vell::VellOpenGLConfig::SetWindowed(window);
    CGraphics2D::Instance()->init(tVect2{320_x, 240_x}, tColor{0, 0, 0, 255}, 0, 0);
    int collected = 0;
    {
        CDrawManager* drawing = CDrawManager::Instance();
        CTextureSheet sheet("art/sheet.json");
        boost::shared_ptr<CBillboard> backdrop = boost::make_shared<CBillboard>("art/backdrop.png", true);
        backdrop->scaleTo(tVect2{1.25_x, 0.9375_x});
        drawing->add(backdrop);

        std::vector<boost::shared_ptr<CBillboard> > coins;
        for (int i = 0; i < 4; ++i) {
            coins.push_back(boost::make_shared<CBillboard>("coin", &sheet, true));
            coins.back()->moveTo(tVect3{tFixed(90 + i * 56), tFixed(30 + i * 30), ONE_X});
            drawing->add(coins.back());
        }
        boost::shared_ptr<CActor2D> hero = boost::make_shared<CActor2D>("art/hero.json", nullptr, nullptr);
        hero->moveTo(tVect3{40_x, 24_x, 2_x});
        drawing->add(hero);

        boost::shared_ptr<CText> score = boost::make_shared<CText>("Coins: 0", "DejaVu Sans", 16);
        score->moveTo(tVect3{12_x, 216_x, 4_x});
        drawing->add(score);

        CButtons buttons;
        Tadwick::Vell::CFrameClock clock;
        bool facingLeft = false;
        for (int frame = 0; window || frame < 60; ++frame) {
            buttons.Poll();
            if (buttons.QuitRequested())
                break;
            const int elapsed = window ? clock.Tick() : 33;
            const tFixed step = tFixed(elapsed) / 16_x;  // 60 pixels a second
            if (buttons.IsHeld(CButtons::LEFT) || buttons.IsHeld(CButtons::RIGHT)) {
                const bool left = buttons.IsHeld(CButtons::LEFT);
                if (left != facingLeft)
                    hero->flipHorizontal();
                facingLeft = left;
                hero->moveBy(tVect2{left ? -step : step, ZERO_X});
            }
            if (buttons.IsHeld(CButtons::UP))
                hero->moveBy(tVect2{ZERO_X, step});
            if (buttons.IsHeld(CButtons::DOWN))
                hero->moveBy(tVect2{ZERO_X, -step});
            hero->update(elapsed);

            for (size_t i = 0; i < coins.size(); ++i) {
                if (coins[i]->getVisibility() && hero->getBounds().HasIntersection(coins[i]->getBounds())) {
                    coins[i]->setVisibility(false);
                    score->setText("Coins: " + std::to_string(++collected));
                }
            }
            CGraphics2D::Instance()->clearBuffer();
            drawing->drawAll();
            CGraphics2D::Instance()->swapBuffer();
        }
        if (!window)
            Tadwick::Vell::VellOpenGLConfig::SaveFrame("play.png");
        std::printf("hero at %d, %d with %d coins\n", hero->getX().toInt(), hero->getY().toInt(), collected);
    }
    CGraphics2D::Instance()->cleanup();
    return 0;
}
