#include "Demo.h"
#include "ShapesScene.h"

/// Points, lines, a triangle, rectangles and circles, turning and pulsing.
class DemoShapes : public Demo
{
public:
    const char* summary() const override
    {
        return "every kind of shape, some turning and pulsing (--count: points in the top row)";
    }
    tColor clearColor() const override { return ShapesScene::background(); }
    void build(const DemoOptions& options) override { mScene.build(options.width, options.height, options.count); }
    void frame(int index, int dtMs) override { mScene.frame(index, dtMs); }

private:
    ShapesScene mScene;
};

Z2D_REGISTER_DEMO("shapes", DemoShapes);
