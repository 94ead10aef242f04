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
    graphics->init(tVect2{tFixed(320), tFixed(240)}, tColor{110, 170, 230, 255}, 0, 0);

    // Screen units are pixels, (0, 0) is the bottom-left corner, y points up.
    // A rectangle is centred on its position.
    boost::shared_ptr<CGraphicRectangle> ground = boost::make_shared<CGraphicRectangle>();
    ground->setWidthHeight(tVect2{tFixed(320), tFixed(60)});
    ground->moveTo(tVect2{tFixed(160), tFixed(30)});
    ground->setColor(tColor{70, 150, 60, 255});

    boost::shared_ptr<CGraphicCircle> sun = boost::make_shared<CGraphicCircle>();
    sun->setSides(40);
    sun->setRadius(tFixed(28));
    sun->setColor(tColor{255, 210, 70, 255});

    for (int frame = 0; frame < 120; ++frame) {
        sun->moveTo(tVect2{tFixed(250), tFixed(60 + frame)});  // the sun rises
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
