// Step 7: the earlier steps make a small game scene. The hero walks along
// and collects the coins: each coin hides, the score goes up and sparkles
// burst where it was. At the end the hero waves. One frame a second is saved.
// Whatever did not load as asked is printed once everything is loaded.
#include <Zephrin2D.h>
#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>
#include <cstdio>
#include <string>
#include <vector>

int main()
{
    CGraphics2D::Instance()->init(tVect2{320_x, 240_x}, tColor{0, 0, 0, 255}, 0, 0);
    {
        const uint64_t start = CLoadReport::mark();
        CDrawManager* drawing = CDrawManager::Instance();
        CTextureSheet sheet("art/sheet.json");
        boost::shared_ptr<CBillboard> backdrop = boost::make_shared<CBillboard>("art/backdrop.png", true);
        backdrop->scaleTo(tVect2{1.25_x, 0.9375_x});
        drawing->add(backdrop);

        std::vector<boost::shared_ptr<CBillboard> > coins;
        for (int i = 0; i < 4; ++i) {
            coins.push_back(boost::make_shared<CBillboard>("coin", &sheet, true));
            coins.back()->moveTo(tVect3{tFixed(52 + i * 56), 60_x, ONE_X});
            drawing->add(coins.back());
        }
        boost::shared_ptr<CActor2D> hero = boost::make_shared<CActor2D>("art/hero.json", nullptr, nullptr);
        hero->moveTo(tVect3{24_x, 24_x, 2_x});
        drawing->add(hero);

        boost::shared_ptr<CText> score = boost::make_shared<CText>("Coins: 0", "DejaVu Sans", 16);
        score->moveTo(tVect3{12_x, 216_x, 4_x});
        drawing->add(score);

        boost::shared_ptr<CGraphicPoints> sparkles = boost::make_shared<CGraphicPoints>(12, "art/sparkle.png");
        sparkles->setVisibility(false);
        drawing->add(sparkles);

        for (const tLoadProblem& problem : CLoadReport::since(start))
            std::fprintf(stderr, "%s\n", CLoadReport::describe(problem).c_str());

        int collected = 0, burstAge = 0;
        for (int frame = 1; frame <= 120; ++frame) {
            hero->update(33);
            if (hero->getCurrentAnimationLabel() == "walk")
                hero->moveBy(tVect2{2_x, ZERO_X});
            if (hero->getX() >= 260_x && hero->getCurrentAnimationLabel() == "walk")
                hero->gotoAndPlay("wave");

            for (size_t i = 0; i < coins.size(); ++i) {
                if (coins[i]->getVisibility() && coins[i]->getX() + 20_x <= hero->getX()) {
                    coins[i]->setVisibility(false);
                    score->setText("Coins: " + std::to_string(++collected));
                    sparkles->moveTo(tVect3{coins[i]->getX() + 20_x, 80_x, 3_x});
                    sparkles->setVisibility(true);
                    burstAge = 0;
                }
            }
            ++burstAge;
            for (int i = 0; i < 12; ++i) {  // a ring that grows from the coin
                const tFixed angle = tFixed(i * 30), radius = tFixed(burstAge * 3);
                sparkles->setVertexN(i, tVect3{cos(angle) * radius, sin(angle) * radius, ZERO_X});
            }
            if (burstAge == 20)
                sparkles->setVisibility(false);

            CGraphics2D::Instance()->clearBuffer();
            drawing->drawAll();
            CGraphics2D::Instance()->swapBuffer();
            if (frame % 30 == 0) {
                char name[32];
                std::snprintf(name, sizeof name, "scene-%d.png", frame / 30);
                Tadwick::Vell::VellOpenGLConfig::SaveFrame(name);
            }
        }
    }
    CGraphics2D::Instance()->cleanup();
    return 0;
}
