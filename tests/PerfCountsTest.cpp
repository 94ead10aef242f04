// The benchmark scenes under test: what a frame costs in GL calls and uploads.
#include "GLRecorder.h"
#include "PeerScenes.h"
#include "PeerZephrin.h"

#include <GLES/gl.h>
#include <gtest/gtest.h>

namespace {

using namespace PeerScenes;

struct tCountCase
{
    char scene;
    unsigned long drawCalls;     ///< per frame
    unsigned long uploadBytes;   ///< per frame
    unsigned long bufferDataCalls;
};

// Without it gtest prints the case's raw bytes, padding included.
void PrintTo(const tCountCase& c, std::ostream* os) { *os << "scene " << c.scene; }

class PerfCountsTest : public ::testing::TestWithParam<tCountCase>
{
};

TEST_P(PerfCountsTest, DrawCallsAndUploadsPerFrame)
{
    const tCountCase c = GetParam();
    ZephrinScene scene(makeScene(c.scene), true);
    int frame = 0;
    for (; frame < 2; ++frame) {
        scene.update(frame);
        scene.draw();
        scene.finish();
    }
    for (int n = 0; n < 3; ++n, ++frame) {
        GLRecorder::resetCounters();
        GLRecorder::clear();
        GLRecorder::start();
        scene.update(frame);
        scene.draw();
        GLRecorder::stop();
        scene.finish();
        const GLRecorder::tCounters counters = GLRecorder::counters();
        EXPECT_EQ(counters.drawCalls, c.drawCalls) << "frame " << frame;
        EXPECT_EQ(counters.uploadBytes, c.uploadBytes) << "frame " << frame;
        EXPECT_EQ(GLRecorder::count("glBufferData"), c.bufferDataCalls) << "no buffer is re-created";
        for (const GLRecorder::tCall& call : GLRecorder::callsNamed("glBufferSubData")) {
            EXPECT_EQ(call.args[0], GL_ARRAY_BUFFER) << "only positions go up";
            EXPECT_EQ(call.size % 48, 0) << "whole quads of 4 x 12 bytes";
        }
    }
}

// (a): one call per texture, nothing uploaded; (b): 1,000 of 10,000 sprites
// move, so 1,000 quads of 4 vertices x 12 bytes of positions go up.
INSTANTIATE_TEST_SUITE_P(Scenes, PerfCountsTest,
                         ::testing::Values(tCountCase{'a', 8, 0, 0}, tCountCase{'b', 8, 1000 * 4 * 12, 0}),
                         [](const ::testing::TestParamInfo<tCountCase>& info) {
                             return std::string("Scene_") + info.param.scene;
                         });

} // namespace
