#include "TestSupport.h"

#include "CDrawManager.h"
#include "CGraphics2D.h"

#include <VellOpenGLConfig.h>

#include <GLES/gl.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

AssertCapture::AssertCapture()
{
    mPrevious = BaseUtils::SetAssertHandler([this](const char* file, int line, const std::string& message) {
        mEntries.push_back(tEntry{file, line, message});
    });
}

AssertCapture::~AssertCapture() { BaseUtils::SetAssertHandler(mPrevious); }

std::vector<std::string> AssertCapture::messages() const
{
    std::vector<std::string> out;
    for (const tEntry& e : mEntries)
        out.push_back(e.message);
    return out;
}

bool AssertCapture::has(const std::string& message) const
{
    return std::any_of(mEntries.begin(), mEntries.end(), [&](const tEntry& e) { return e.message == message; });
}

DebugCapture::DebugCapture()
{
    mPrevious = Tadwick::Vell::CDebugMPI::SetHandler([this](int module, int level, const std::string& text) {
        mEntries.push_back(tEntry{module, level, text});
    });
}

DebugCapture::~DebugCapture() { Tadwick::Vell::CDebugMPI::SetHandler(mPrevious); }

bool DebugCapture::has(const std::string& text) const { return has(-1, text); }

/// Level -1 matches any level.
bool DebugCapture::has(int level, const std::string& text) const
{
    return std::any_of(mEntries.begin(), mEntries.end(),
                       [&](const tEntry& e) { return e.text == text && (level < 0 || e.level == level); });
}

GLTest::GLTest(int width, int height, tColor clear) : mWidth(width), mHeight(height), mClear(clear) {}

void GLTest::SetUp()
{
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(mWidth, mHeight);
    CGraphics2D::Instance()->init(tVect2{tFixed(mWidth), tFixed(mHeight)}, mClear, 0, 0);
    ASSERT_NE(CGraphics2D::Instance()->getConfig(), nullptr);
    ASSERT_TRUE(CGraphics2D::Instance()->getConfig()->isValid());
    CGraphics2D::Instance()->clearBuffer();
}

void GLTest::TearDown()
{
    GLRecorder::stop();
    GLRecorder::clear();
    GLRecorder::setHideCompressedFormats(false);
    CGraphics2D::Instance()->cleanup();
}

ImageIO::tImage GLTest::readFrame() const
{
    ImageIO::tImage image;
    Tadwick::Vell::VellOpenGLConfig* config = CGraphics2D::Instance()->getConfig();
    if (config)
        config->readPixels(image.rgba, image.width, image.height);
    return image;
}

tColor GLTest::pixel(int x, int y) const
{
    uint8_t p[4] = {0, 0, 0, 0};
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, p);
    return tColor{p[0], p[1], p[2], p[3]};
}

void GLTest::expectMatchesGolden(const std::string& name, int tolerance, long allowedPixels) const
{
    const std::string golden = std::string(Z2D_SOURCE_DIR) + "/tests/golden/" + name + ".png";
    ImageIO::tImage frame = readFrame();
    const char* update = getenv("ZEPHRIN2D_UPDATE_GOLDEN");
    if (update && std::string(update) == "1") {
        ASSERT_TRUE(ImageIO::writePNG(golden, frame)) << golden;
        return;
    }
    ImageIO::tImage expected;
    ASSERT_TRUE(ImageIO::readPNG(golden, expected)) << "missing golden image " << golden
                                                    << " (run with ZEPHRIN2D_UPDATE_GOLDEN=1 to create it)";
    ImageIO::tDifference d = ImageIO::compare(frame, expected, tolerance);
    ASSERT_TRUE(d.sameSize) << name;
    if (d.pixelsOver > allowedPixels) {
        const std::string out = scratchDir("golden-failures") + "/" + name;
        ImageIO::writePNG(out + ".actual.png", frame);
        ImageIO::writePNG(out + ".diff.png", ImageIO::differenceImage(frame, expected, tolerance));
        ADD_FAILURE() << name << ": " << d.pixelsOver << " pixels differ (max channel difference "
                      << d.maxChannelDiff << "); see " << out << ".actual.png";
    }
}

void GLTest::frame() const
{
    CGraphics2D::Instance()->clearBuffer();
    CDrawManager::Instance()->drawAll();
}

void GLTest::drawTexturedQuad(unsigned int id, int w, int h) const
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glBindTexture(GL_TEXTURE_2D, id);
    const GLfixed v[] = {0, 0, w << 16, 0, 0, h << 16, w << 16, h << 16};
    const GLfixed tc[] = {0, 0, 0x10000, 0, 0, 0x10000, 0x10000, 0x10000};
    glColor4x(0x10000, 0x10000, 0x10000, 0x10000);
    glVertexPointer(2, GL_FIXED, 0, v);
    glTexCoordPointer(2, GL_FIXED, 0, tc);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

::std::ostream& operator<<(::std::ostream& os, const tColor& c)
{
    return os << "(" << int(c.r) << ", " << int(c.g) << ", " << int(c.b) << ", " << int(c.a) << ")";
}

std::string testDataPath(const std::string& relative) { return std::string(Z2D_TEST_DATA_DIR) + "/" + relative; }

std::string examplesPath(const std::string& relative) { return std::string(Z2D_EXAMPLES_DIR) + "/" + relative; }

std::string scratchDir(const std::string& name)
{
    std::string dir = std::string(Z2D_BINARY_DIR) + "/scratch";
    mkdir(dir.c_str(), 0755);
    // Per process: ctest runs tests in parallel, each in its own process.
    dir += "/" + name + "-" + std::to_string(getpid());
    mkdir(dir.c_str(), 0755);
    return dir;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

void writeFile(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

void copyFile(const std::string& from, const std::string& to) { writeFile(to, readFile(from)); }

void writeSolidPNG(const std::string& path, int w, int h, tColor c)
{
    ImageIO::tImage image;
    image.width = w;
    image.height = h;
    for (int i = 0; i < w * h; ++i)
        image.rgba.insert(image.rgba.end(), {c.r, c.g, c.b, c.a});
    EXPECT_TRUE(ImageIO::writePNG(path, image)) << path;
}
