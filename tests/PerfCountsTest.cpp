// The benchmark scenes under test: what a frame costs in GL calls and
// uploads, that the batched and the immediate ways draw the same picture,
// and that actors change cel without touching the heap.
#include "AllocationCounter.h"
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

class PerfPictureTest : public ::testing::TestWithParam<char>
{
};

TEST_P(PerfPictureTest, BatchedAndImmediateDrawTheSamePicture)
{
    const tScene s = makeScene(GetParam(), true);
    std::vector<uint8_t> pictures[2];
    for (int managed = 0; managed < 2; ++managed) {
        ZephrinScene scene(s, managed != 0);
        scene.update(0);
        scene.draw();
        scene.finish();
        pictures[managed] = scene.pixels();
    }
    ASSERT_EQ(pictures[0].size(), static_cast<size_t>(s.width * s.height * 4));
    ASSERT_EQ(pictures[0].size(), pictures[1].size());
    long over = 0;
    long lit = 0;
    for (size_t p = 0; p < pictures[0].size(); p += 4) {
        int diff = 0;
        for (int ch = 0; ch < 3; ++ch)
            diff = std::max(diff, std::abs(pictures[0][p + ch] - pictures[1][p + ch]));
        over += diff > 3;
        lit += pictures[1][p] + pictures[1][p + 1] + pictures[1][p + 2] > 0;
    }
    EXPECT_GT(lit, s.width * s.height / 2) << "the scene covers the surface";
    EXPECT_LE(over, s.width * s.height / 100) << "pixels differing by more than 3";
}

// (a) opaque over random depths (depth test), (d) translucent over 50 depths (back to front).
INSTANTIATE_TEST_SUITE_P(Scenes, PerfPictureTest, ::testing::Values('a', 'd'),
                         [](const ::testing::TestParamInfo<char>& info) {
                             return std::string("Scene_") + info.param;
                         });

TEST(PerfActorTest, CelChangesAllocateNothingInTheSteadyState)
{
    ZephrinScene scene(makeScene('e'), true);
    int frame = 0;
    // Every actor goes once round its cels: the lists reach their sizes.
    for (; frame < 8; ++frame) {
        scene.update(frame);
        scene.draw();
        scene.finish();
    }
    const unsigned long before = AllocationCounter::count();
    for (int n = 0; n < 8; ++n, ++frame) {
        scene.update(frame);
        scene.draw();
    }
    EXPECT_EQ(AllocationCounter::count() - before, 0u) << "operator new calls over 8 frames of 500 cel changes";
    scene.finish();
}

} // namespace
