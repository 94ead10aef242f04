// The smallest Zephrin2D program: open the graphics context, draw a few
// frames of shapes, close. Headless by default: nothing appears on screen.
#include <Zephrin2D.h>

#include <boost/make_shared.hpp>
#include <cstdio>

int main()
{
    CGraphics2D* graphics = CGraphics2D::Instance();
    graphics->init(tVect2{tFixed(320), tFixed(240)}, tColor{20, 24, 40, 255}, 0, 0);

    // Shapes are elements: always held by a shared owner.
    boost::shared_ptr<CGraphicRectangle> ground = boost::make_shared<CGraphicRectangle>();
    ground->setWidthHeight(tVect2{tFixed(320), tFixed(40)});
    ground->moveTo(tVect2{tFixed(160), tFixed(20)});
    ground->setColor(tColor{60, 140, 70, 255});

    boost::shared_ptr<CGraphicCircle> ball = boost::make_shared<CGraphicCircle>();
    ball->setSides(32);
    ball->setRadius(tFixed(24));
    ball->setColor(tColor{250, 180, 40, 255});

    bool ok = true;
    for (int frame = 0; frame < 60; ++frame) {
        ball->moveTo(tVect2{tFixed(40 + frame * 4), tFixed(64)});
        graphics->clearBuffer();
        ground->draw(nullptr);  // nullptr: in the shape's own colour
        ball->draw(nullptr);
        ok = graphics->swapBuffer() && ok;
    }

    graphics->cleanup();
    std::printf("%s\n", ok ? "60 frames drawn" : "the frames could not be shown");
    return ok ? 0 : 1;
}
