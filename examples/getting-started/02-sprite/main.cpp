// Step 2: pictures from PNG files. Elements handed to the draw manager are
// drawn together by drawAll(), batched by texture.
#include <Zephrin2D.h>
#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>

int main()
{
    CGraphics2D::Instance()->init(tVect2{320_x, 240_x}, tColor{0, 0, 0, 255}, 0, 0);
    {
        // 256x256, stretched over the screen, at the back (z 0).
        boost::shared_ptr<CBillboard> backdrop = boost::make_shared<CBillboard>("art/backdrop.png", true);
        backdrop->scaleTo(tVect2{1.25_x, 0.9375_x});
        CDrawManager::Instance()->add(backdrop);

        // A billboard's origin is the picture's bottom-left corner; greater z is nearer.
        boost::shared_ptr<CBillboard> hero = boost::make_shared<CBillboard>("art/hero_walk0.png", true);
        hero->moveTo(tVect3{128_x, 24_x, ONE_X});
        CDrawManager::Instance()->add(hero);

        CGraphics2D::Instance()->clearBuffer();
        CDrawManager::Instance()->drawAll();
        CGraphics2D::Instance()->swapBuffer();
        Tadwick::Vell::VellOpenGLConfig::SaveFrame("sprite.png");
    }  // elements go before the graphics context
    CGraphics2D::Instance()->cleanup();
    return 0;
}
