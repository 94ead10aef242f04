#include <DebugMPI.h>
#include <VellOpenGLConfig.h>

#include "ImageIO.h"

#include <GLES/gl.h>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

using Tadwick::Vell::CDebugMPI;
using Tadwick::Vell::VellOpenGLConfig;

namespace {

std::string messagesOf(const std::function<void()>& body)
{
    std::string text;
    auto previous = CDebugMPI::SetHandler([&](int, int, const std::string& t) { text += t; });
    body();
    CDebugMPI::SetHandler(previous);
    return text;
}

// An 8x6 frame, red with a green 3x2 block in the bottom-left corner, is
// written top row first, exactly as it reads back.
TEST(FrameCapture, WritesTheLastFrameTopRowFirst)
{
    VellOpenGLConfig::SetSurfaceSize(8, 6);
    std::unique_ptr<VellOpenGLConfig> config(new VellOpenGLConfig);
    VellOpenGLConfig::SetSurfaceSize(0, 0);
    ASSERT_TRUE(config->isValid());
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 3, 2);
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    eglSwapBuffers(config->eglDisplay, config->eglSurface);

    const std::string path = std::string(Z2D_BINARY_DIR) + "/frame-capture.png";
    ASSERT_TRUE(VellOpenGLConfig::SaveFrame(path.c_str()));
    ImageIO::tImage png, frame;
    ASSERT_TRUE(ImageIO::readPNG(path, png));
    ASSERT_TRUE(config->readPixels(frame.rgba, frame.width, frame.height));
    EXPECT_EQ(png.width, 8);
    EXPECT_EQ(png.height, 6);
    EXPECT_EQ(png.rgba, frame.rgba);
    const uint8_t red[4] = {255, 0, 0, 255}, green[4] = {0, 255, 0, 255};
    EXPECT_EQ(0, memcmp(png.at(0, 0), red, 4));
    EXPECT_EQ(0, memcmp(png.at(2, 5), green, 4));
    EXPECT_EQ(0, memcmp(png.at(3, 5), red, 4));
    EXPECT_EQ(0, memcmp(png.at(2, 3), red, 4));

    const std::string unwritable = std::string(Z2D_BINARY_DIR) + "/no-such-dir/frame.png";
    EXPECT_NE(messagesOf([&] { EXPECT_FALSE(config->writePNG(unwritable.c_str())); }).find("could not write " + unwritable),
              std::string::npos);
    config.reset();
    EXPECT_EQ(messagesOf([&] { EXPECT_FALSE(VellOpenGLConfig::SaveFrame(path.c_str())); }),
              "VellOpenGLConfig::SaveFrame - no graphics context, " + path + " not written\n");
}

} // namespace
