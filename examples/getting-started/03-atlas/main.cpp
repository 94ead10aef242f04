// Step 3: a texture sheet (atlas). art/sheet.json names rectangles of
// art/sheet.png; every picture of the sheet shares its one texture, so the
// draw manager draws them all in one call.
#include <Zephrin2D.h>
#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>

int main()
{
    CGraphics2D::Instance()->init(tVect2{320_x, 240_x}, tColor{0, 0, 0, 255}, 0, 0);
    {
        CTextureSheet sheet("art/sheet.json");

        boost::shared_ptr<CBillboard> backdrop = boost::make_shared<CBillboard>("art/backdrop.png", true);
        backdrop->scaleTo(tVect2{1.25_x, 0.9375_x});
        CDrawManager::Instance()->add(backdrop);

        for (int i = 0; i < 5; ++i) {
            boost::shared_ptr<CBillboard> coin = boost::make_shared<CBillboard>("coin", &sheet, true);
            coin->moveTo(tVect3{tFixed(24 + i * 56), tFixed(110 + (i % 2) * 30), ONE_X});
            CDrawManager::Instance()->add(coin);  // the draw manager keeps it
        }
        boost::shared_ptr<CBillboard> mushroom = boost::make_shared<CBillboard>("mushroom", &sheet, true);
        mushroom->moveTo(tVect3{240_x, 24_x, ONE_X});
        CDrawManager::Instance()->add(mushroom);

        CGraphics2D::Instance()->clearBuffer();
        CDrawManager::Instance()->drawAll();
        CGraphics2D::Instance()->swapBuffer();
        Tadwick::Vell::VellOpenGLConfig::SaveFrame("atlas.png");
    }
    CGraphics2D::Instance()->cleanup();
    return 0;
}
