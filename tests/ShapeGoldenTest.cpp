#include "TestSupport.h"

#include "CGraphics2D.h"
#include "ShapesScene.h"

#include <cstdio>

namespace {

class ShapeGoldenTest : public GLTest
{
protected:
    ShapeGoldenTest() : GLTest(320, 240, ShapesScene::background()) {}
};

// The frames of the render tool's "shapes" demo.
TEST_F(ShapeGoldenTest, ShapesScene)
{
    for (int index : {0, 20}) {
        ShapesScene scene;
        scene.build(320, 240);
        CGraphics2D::Instance()->clearBuffer();
        scene.frame(index, 33);
        char name[32];
        std::snprintf(name, sizeof(name), "shapes-%04d", index);
        expectMatchesGolden(name);
    }
}

} // namespace
