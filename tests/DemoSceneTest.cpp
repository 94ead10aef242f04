#include "TestSupport.h"

#include "DemoScene.h"

#include "CGraphics2D.h"

#include <memory>

namespace {

/// The demo scene as the demo program draws it, on a 320 x 240 screen.
class DemoSceneTest : public GLTest
{
protected:
    DemoSceneTest() : GLTest(DEMO_WIDTH, DEMO_HEIGHT) {}

    void SetUp() override
    {
        GLTest::SetUp();
        scene.reset(new tDemoScene);
        buildDemoScene(*scene, examplesPath("demo/"));
    }
    void TearDown() override
    {
        scene.reset();
        gDemoScene = nullptr;
        GLTest::TearDown();
    }

    std::unique_ptr<tDemoScene> scene;
};

TEST_F(DemoSceneTest, FramesMatchTheGoldenImages)
{
    // Frames 33 ms apart: the hero walks to the right, the critters land and
    // jump (in the air at frame 9), the kid waves (arm up at frame 15).
    const struct { int frame; const char* golden; } frames[] = {
        {0, "demo-frame-00"}, {9, "demo-frame-09"}, {15, "demo-frame-15"}, {40, "demo-frame-40"}};
    int at = 0;
    for (const auto& f : frames) {
        for (; at < f.frame; ++at)
            stepDemoScene(*scene, DEMO_FRAME_MS);
        frame();
        SCOPED_TRACE(f.golden);
        // Text glyphs may differ by a few pixels between font versions.
        expectMatchesGolden(f.golden, 2, 40);
    }
}

TEST_F(DemoSceneTest, ActorsLoopAndTrigger)
{
    // 3300 ms: the walk cycle (4 cels of 120 ms) steps on entering cels 1
    // and 3, at 120, 360, 600, ... 3240 ms: 14 steps. Each critter lands
    // when its loop jumps back to cel 0, every 440 ms: 7 times each.
    for (int i = 0; i < 100; ++i)
        stepDemoScene(*scene, DEMO_FRAME_MS);
    EXPECT_TRUE(scene->hero->isPlaying()) << "the walk loops instead of running off its last cel";
    EXPECT_EQ(scene->hero->getCurrentAnimationLabel(), "walk");
    EXPECT_EQ(scene->steps, 14);
    EXPECT_EQ(scene->hops, 14);
    EXPECT_EQ(scene->title->getText(), "Zephrin2D  steps " + std::to_string(scene->steps) + "  hops " +
                                           std::to_string(scene->hops));
    EXPECT_LT(scene->kid->getCurrentCelOffset(), 2u);
}

} // namespace
