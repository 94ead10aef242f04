// Step 1: open the graphics context, draw shapes for two seconds, save the
// last frame. Headless by default; with --window it opens an X11 window.
#include <Zephrin2D.h>
#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>
#include <chrono>
#include <cstring>
#include <thread>

int main(int argc, char** argv)
{
    const bool window = argc > 1 && std::strcmp(argv[1], "--window") == 0;
    Tadwick::Vell::VellOpenGLConfig::SetWindowed(window);
    CGraphics2D* graphics = CGraphics2D::Instance();
    graphics->init(tVect2{320_x, 240_x}, tColor{110, 170, 230, 255}, 0, 0);

    // Screen units are pixels, (0, 0) is the bottom-left corner, y points up.
    // A rectangle is centred on its position.
    boost::shared_ptr<CGraphicRectangle> ground = boost::make_shared<CGraphicRectangle>();
    ground->setWidthHeight(tVect2{320_x, 60_x});
    ground->moveTo(tVect2{160_x, 30_x});
    ground->setColor(tColor{70, 150, 60, 255});

    boost::shared_ptr<CGraphicCircle> sun = boost::make_shared<CGraphicCircle>();
    sun->setSides(40);
    sun->setRadius(28_x);
    sun->setColor(tColor{255, 210, 70, 255});

    for (int frame = 0; frame < 120; ++frame) {
        sun->moveTo(tVect2{250_x, tFixed(60 + frame)});  // the sun rises
        graphics->clearBuffer();
        ground->draw(nullptr);  // shapes draw at once, in their own colour
        sun->draw(nullptr);
        graphics->swapBuffer();
        if (window)
            std::this_thread::sleep_for(std::chrono::milliseconds(16));
    }

    Tadwick::Vell::VellOpenGLConfig::SaveFrame("hello.png");
    graphics->cleanup();
    return 0;
}
