// Step 5: text. The platform's font service renders each string into a
// texture of its own; changing the text rebuilds it.
#include <Zephrin2D.h>
#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>
#include <string>

int main()
{
    CGraphics2D::Instance()->init(tVect2{320_x, 240_x}, tColor{0, 0, 0, 255}, 0, 0);
    {
        boost::shared_ptr<CBillboard> backdrop = boost::make_shared<CBillboard>("art/backdrop.png", true);
        backdrop->scaleTo(tVect2{1.25_x, 0.9375_x});
        CDrawManager::Instance()->add(backdrop);

        // The font is a fontconfig family name or a font file. A text's origin is
        // the left end of its baseline; its colour is the text colour.
        boost::shared_ptr<CText> title = boost::make_shared<CText>("Meadow Quest", "DejaVu Sans", 32);
        title->setColor(tColor{30, 40, 110, 255});
        title->moveTo(tVect3{40_x, 140_x, ONE_X});
        CDrawManager::Instance()->add(title);

        boost::shared_ptr<CText> score = boost::make_shared<CText>("", "DejaVu Sans", 16);
        score->setColor(tColor{30, 60, 30, 255});
        score->moveTo(tVect3{20_x, 20_x, ONE_X});
        CDrawManager::Instance()->add(score);

        for (int coins = 0; coins <= 7; ++coins) {
            score->setText("Coins: " + std::to_string(coins));
            CGraphics2D::Instance()->clearBuffer();
            CDrawManager::Instance()->drawAll();
            CGraphics2D::Instance()->swapBuffer();
        }
        Tadwick::Vell::VellOpenGLConfig::SaveFrame("text.png");
    }
    CGraphics2D::Instance()->cleanup();
    return 0;
}
