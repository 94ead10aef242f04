#ifndef ZEPHRIN2D_TESTS_TESTSUPPORT_H
#define ZEPHRIN2D_TESTS_TESTSUPPORT_H

#include "GLRecorder.h"
#include "ImageIO.h"
#include "OutputCapture.h"

#include <BaseUtils.h>
#include <DebugMPI.h>

#include "tVect.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

/// Records failed assertions while alive (file and formatted message).
class AssertCapture
{
public:
    struct tEntry { std::string file; int line; std::string message; };
    AssertCapture();
    ~AssertCapture();
    const std::vector<tEntry>& entries() const { return mEntries; }
    std::vector<std::string> messages() const;
    bool has(const std::string& message) const;
    void clear() { mEntries.clear(); }
private:
    std::vector<tEntry> mEntries;
    BaseUtils::tAssertHandler mPrevious;
};

/// Records every debug message with its level while alive.
class DebugCapture
{
public:
    struct tEntry { int module; int level; std::string text; };
    DebugCapture();
    ~DebugCapture();
    const std::vector<tEntry>& entries() const { return mEntries; }
    bool has(const std::string& text) const;
    bool has(int level, const std::string& text) const;
    void clear() { mEntries.clear(); }
private:
    std::vector<tEntry> mEntries;
    Tadwick::Vell::CDebugMPI::tHandler mPrevious;
};

/// Captures what the code under test writes on standard output.
class StdoutCapture : public OutputCapture
{
public:
    StdoutCapture() : OutputCapture(1) {}
};

/// A fixture with a fresh graphics context of the given size (clear colour
/// black, opaque) for each test, cleaned up afterwards.
class GLTest : public ::testing::Test
{
protected:
    explicit GLTest(int width = 64, int height = 64, tColor clear = tColor{0, 0, 0, 255});
    void SetUp() override;
    void TearDown() override;

    /// The current frame, rows top first.
    ImageIO::tImage readFrame() const;
    /// The pixel at column x, row y counted from the bottom (GL's convention).
    tColor pixel(int x, int y) const;
    /// Compares the frame with tests/golden/NAME.png; ZEPHRIN2D_UPDATE_GOLDEN=1 rewrites it.
    void expectMatchesGolden(const std::string& name, int tolerance = 2, long allowedPixels = 0) const;
    /// Clears, then draws everything the draw manager holds.
    void frame() const;
    /// Draws GL texture id in white over the pixels (0, 0) to (w, h), texel row 0 at the bottom.
    void drawTexturedQuad(unsigned int id, int w, int h) const;

    int mWidth;
    int mHeight;
    tColor mClear;
};

::std::ostream& operator<<(::std::ostream& os, const tColor& c);

/// Runs f with the GL call recorder on, after clearing what it held.
template <class F> void recordGL(F f)
{
    GLRecorder::clear();
    GLRecorder::start();
    f();
    GLRecorder::stop();
}

const tColor RED{255, 0, 0, 255};
const tColor GREEN{0, 255, 0, 255};
const tColor BLUE{0, 0, 255, 255};
/// The default clear colour as it reads back: its alpha 1.0 is shifted into 8 bits, not scaled.
const tColor BLACK{0, 0, 0, 254};

std::string testDataPath(const std::string& relative);
std::string examplesPath(const std::string& relative);
/// A directory under the build tree for one test process's files.
std::string scratchDir(const std::string& name);
std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& bytes);
void copyFile(const std::string& from, const std::string& to);
/// Writes a w x h PNG file of one colour.
void writeSolidPNG(const std::string& path, int w, int h, tColor c);

#endif
