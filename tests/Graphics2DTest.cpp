#include "TestSupport.h"

#include "CGraphics2D.h"

#include <GLES/gl.h>
#include <GLES/glext.h>
#include <VellOpenGLConfig.h>
#include <algorithm>
#include <cstdlib>

namespace {

class Graphics2DTest : public GLTest
{
protected:
    Graphics2DTest() : GLTest(64, 48, tColor{255, 0, 128, 255}) {}
};

TEST_F(Graphics2DTest, ClearColourIsShiftedNotScaledAndSecondInitChangesNothing)
{
    CGraphics2D::Instance()->clearBuffer();
    EXPECT_EQ(pixel(10, 10), (tColor{254, 0, 128, 254})) << "0x8000 is exactly 0.5";
    EXPECT_TRUE(CGraphics2D::Instance()->swapBuffer());

    // A second init changes nothing.
    AssertCapture asserts;
    Tadwick::Vell::VellOpenGLConfig* first = CGraphics2D::Instance()->getConfig();
    glDisable(GL_BLEND);
    EXPECT_TRUE(CGraphics2D::Instance()->init(tVect2{tFixed(10), tFixed(10)}, tColor{0, 0, 0, 0}, 1, 2));
    EXPECT_EQ(CGraphics2D::Instance()->getConfig(), first);
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_TRUE(asserts.entries().empty()) << "the init assertion must not fire";
}

TEST(Graphics2DLifecycle, CleanupGivesAFreshContext)
{
    DebugCapture debug;
    CGraphics2D* first = CGraphics2D::Instance();
    first->init(tVect2{tFixed(16), tFixed(16)}, tColor{0, 0, 0, 255}, 0, 0);
    first->cleanup();
    CGraphics2D* second = CGraphics2D::Instance();
    EXPECT_EQ(second->getConfig(), nullptr);
    EXPECT_FALSE(second->IsSupportedCompressedTexFormat(GL_PALETTE8_RGBA4_OES));
    EXPECT_TRUE(debug.has(2, "CGraphics2D::init()\n"));
    EXPECT_TRUE(debug.has(2, "CGraphics2D::cleanup()\n"));
    second->cleanup();
}

TEST(Graphics2DLifecycle, SurfaceTakesTheSceneSizeUnlessTheHostChoseOne)
{
    using Tadwick::Vell::VellOpenGLConfig;
    struct { int hostW, hostH, sceneW, sceneH, wantW, wantH; const char* message; } cases[] = {
        {0, 0, 100, 60, 100, 60, nullptr},
        {0, 0, 0, 0, 320, 240, "CGraphics2D::init - the scene is 0x0 but the surface is 320x240: the scene is stretched to fit\n"},
        {100, 60, 100, 60, 100, 60, nullptr},
        {80, 40, 100, 60, 80, 40,
         "CGraphics2D::init - the scene is 100x60 but the surface is 80x40: the scene is stretched to fit\n"},
    };
    unsetenv("ZEPHRIN2D_DISPLAY");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.hostW);
        DebugCapture debug;
        VellOpenGLConfig::SetSurfaceSize(c.hostW, c.hostH);
        CGraphics2D* graphics = CGraphics2D::Instance();
        graphics->init(tVect2{tFixed(c.sceneW), tFixed(c.sceneH)}, tColor{0, 0, 0, 255}, 0, 0);
        EXPECT_EQ(graphics->getConfig()->getWidth(), c.wantW);
        EXPECT_EQ(graphics->getConfig()->getHeight(), c.wantH);
        const int loud = std::count_if(debug.entries().begin(), debug.entries().end(),
                                       [](const DebugCapture::tEntry& e) { return e.level <= 1; });
        EXPECT_EQ(loud, c.message ? 1 : 0);
        EXPECT_TRUE(!c.message || debug.has(1, c.message));
        EXPECT_EQ(VellOpenGLConfig::IsSurfaceSizeChosen(), c.hostW > 0) << "the scene's size is not kept as the host's";
        graphics->cleanup();
    }
}

TEST_F(Graphics2DTest, CheckErrorNamesEachError)
{
    StdoutCapture out;
    glPopMatrix();  // the model-view stack is empty
    EXPECT_TRUE(gl_checkError());
    EXPECT_FALSE(gl_checkError());
    glEnable(0x1234);
    EXPECT_TRUE(gl_checkError());
    glLineWidthx(-1);
    EXPECT_TRUE(gl_checkError());
    EXPECT_EQ(out.finish(), "GL_STACK_UNDERFLOW\nGL_INVALID_ENUM\nGL_INVALID_VALUE\n");
}

} // namespace
