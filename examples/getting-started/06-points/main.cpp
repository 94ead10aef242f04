// Step 6: a point-sprite cloud: one small texture drawn at many points in a
// single call. Moving the points costs only the stores.
#include <Zephrin2D.h>
#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>

int main()
{
    CGraphics2D::Instance()->init(tVect2{320_x, 240_x}, tColor{0, 0, 0, 255}, 0, 0);
    {
        boost::shared_ptr<CBillboard> backdrop = boost::make_shared<CBillboard>("art/backdrop.png", true);
        backdrop->scaleTo(tVect2{1.25_x, 0.9375_x});
        CDrawManager::Instance()->add(backdrop);

        const int count = 40;
        boost::shared_ptr<CGraphicPoints> sparkles = boost::make_shared<CGraphicPoints>(count, "art/sparkle.png");
        sparkles->moveTo(tVect3{ZERO_X, ZERO_X, ONE_X});  // in front of the backdrop
        unsigned int seed = 7;                            // the same picture on every run
        for (int i = 0; i < count; ++i) {
            seed = seed * 1103515245u + 12345u;
            sparkles->setVertexN(i, tVect3{tFixed((seed >> 8) % 320), tFixed((seed >> 20) % 240), ZERO_X});
        }
        CDrawManager::Instance()->add(sparkles);

        for (int frame = 0; frame < 60; ++frame) {
            for (int i = 0; i < count; ++i) {  // each rises at its own speed, and wraps at the top
                tVect3 p = sparkles->getVertexN(i);
                p.y = p.y + tFixed(1 + i % 3);
                if (p.y > 240_x)
                    p.y = ZERO_X;
                sparkles->setVertexN(i, p);
            }
            CGraphics2D::Instance()->clearBuffer();
            CDrawManager::Instance()->drawAll();
            CGraphics2D::Instance()->swapBuffer();
        }
        Tadwick::Vell::VellOpenGLConfig::SaveFrame("points.png");
    }
    CGraphics2D::Instance()->cleanup();
    return 0;
}
