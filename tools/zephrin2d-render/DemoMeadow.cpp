#include "Demo.h"

#include "DemoScene.h"

#include <memory>

/// The example content of examples/demo/: the meadow scene file, the hero
/// and kid actor files, the costume and the texture sheet, plus the text and
/// the sparkle cloud its host adds from code.
class DemoMeadow : public Demo
{
public:
    const char* summary() const override
    {
        return "the example content: scene, actor files, costume, texture sheet, text and point sprites";
    }

    void build(const DemoOptions&) override
    {
        mScene.reset(new tDemoScene());
        buildDemoScene(*mScene, examplesDir() + "demo/");
    }

    void frame(int index, int dtMs) override
    {
        if (index > 0)
            stepDemoScene(*mScene, dtMs);
        CDrawManager::Instance()->drawAll();
    }

    ~DemoMeadow() override { mScene.reset(); }

private:
    std::unique_ptr<tDemoScene> mScene;
};

Z2D_REGISTER_DEMO("meadow", DemoMeadow);
