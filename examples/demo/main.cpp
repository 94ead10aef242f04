// Zephrin2D demo: loads the demo scene, plays it for a number of frames and
// writes the last frame to a PNG file.
//
//   zephrin2d-demo [DIR/] [FRAMES] [OUT.png]
//
// DIR is the directory of the demo's files (default "examples/demo/", so run
// it from the top of the source tree).
#include "DemoScene.h"

#include "CGraphics2D.h"

#include <VellOpenGLConfig.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    const std::string dir = argc > 1 ? argv[1] : "examples/demo/";
    const int frames = argc > 2 ? atoi(argv[2]) : 60;
    const char* out = argc > 3 ? argv[3] : "demo.png";

    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(DEMO_WIDTH, DEMO_HEIGHT);
    CGraphics2D::Instance()->init(tVect2{tFixed(DEMO_WIDTH), tFixed(DEMO_HEIGHT)}, tColor{0, 0, 0, 255}, 0, 0);
    bool written = false;
    {
        tDemoScene scene;  // released before the graphics context
        buildDemoScene(scene, dir);

        for (int frame = 0; frame <= frames; ++frame) {
            if (frame > 0)
                stepDemoScene(scene, DEMO_FRAME_MS);
            CGraphics2D::Instance()->clearBuffer();
            CDrawManager::Instance()->drawAll();
            CGraphics2D::Instance()->swapBuffer();
        }
        printf("%d frames: the hero took %d steps, the critters hopped %d times\n", frames, scene.steps,
               scene.hops);
        written = Tadwick::Vell::VellOpenGLConfig::SaveFrame(out);
    }
    CGraphics2D::Instance()->cleanup();
    if (!written) {
        fprintf(stderr, "zephrin2d-demo: could not write %s\n", out);
        return 1;
    }
    printf("wrote %s (%dx%d)\n", out, DEMO_WIDTH, DEMO_HEIGHT);
    return 0;
}
