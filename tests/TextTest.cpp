#include "TestSupport.h"

#include "CDrawManager.h"
#include "CGraphics2D.h"
#include "CText.h"

#include <GLES/gl.h>
#include <algorithm>
#include <climits>

namespace {

// Every text here takes its font as a string literal.
boost::shared_ptr<CText> makeText(const char* text, unsigned char size)
{
    return boost::shared_ptr<CText>(new CText(text, "DejaVu Sans", size));
}

TEST(Text, NextHighestPowerOfTwo)
{
    const unsigned int cases[][2] = {{0, 1},     {1, 1},       {2, 2},       {3, 4},          {5, 8},
                                     {255, 256}, {512, 512},   {513, 1024},  {65537, 131072}, {100000, 131072}};
    for (const auto& c : cases)
        EXPECT_EQ(CText::nextHighestPowerOfTwo(c[0]), c[1]) << c[0];
}

class TextTest : public GLTest
{
protected:
    TextTest() : GLTest(128, 64) {}

    int litInColumn(int x, int y0, int y1)
    {
        int lit = 0;
        for (int y = y0; y <= y1; ++y)
            lit += pixel(x, y).r > 128;
        return lit;
    }
};

TEST_F(TextTest, TextureSidesArePowersOfTwoCappedAt512)
{
    struct { const char* text; unsigned char size; } cases[] = {
        {"Hi", 12}, {"Zephrin2D draws text", 16}, {"a much longer line of text that will not fit in 512 pixels at all", 24},
    };
    for (const auto& c : cases) {
        boost::shared_ptr<CText> t = makeText(c.text, c.size);
        const int width = t->getStringWidth();
        const Tadwick::Vell::tFontMetrics m = t->getFontMetrics();
        t->remakeTexture();
        const int wantW = std::min(512u, CText::nextHighestPowerOfTwo(width));
        const int wantH = std::min(512u, CText::nextHighestPowerOfTwo(m.ascent - m.descent));
        EXPECT_EQ(t->getTextureWidth(), wantW) << c.text;
        EXPECT_EQ(t->getTextureHeight(), wantH) << c.text;
        EXPECT_EQ(t->getReg(), (tVect2{ZERO_X, tFixed(wantH - m.ascent)})) << "origin on the baseline";
    }
}

// Run with a ctest TIMEOUT (text-long-layout): layout must stay linear in the text.
TEST_F(TextTest, MegabyteTextAndExtremeRectangles)
{
    std::string words;
    while (words.size() < (1u << 20))
        words += "word\xC3\xA9 ";
    struct { int w, h, align, wantW, wantH; } cases[] = {
        {0, 0, 0, 512, 0}, {INT_MAX, INT_MAX, 1, 512, 512}, {INT_MAX, INT_MAX, 2, 512, 512},
        {300, 200, 2, 512, 256}, {-5, 7, 1, 1, 8}, {INT_MIN, INT_MIN, 0, 1, 1},
    };
    boost::shared_ptr<CText> t(new CText(words, "DejaVu Sans", 12));
    AssertCapture asserts;
    for (const auto& c : cases) {
        t->forceRectSize(c.w, c.h);
        t->setAlignment(c.align);
        t->remakeTexture();
        EXPECT_EQ(t->getTextureWidth(), c.wantW) << c.w;
        if (c.wantH) {
            EXPECT_EQ(t->getTextureHeight(), c.wantH) << c.h;
        }
    }
    EXPECT_TRUE(asserts.entries().empty());
    // A rest too short to reach the width is drawn as one line unmeasured: as the measured line.
    std::vector<ImageIO::tImage> frames;
    for (int width : {INT_MAX, 1000}) {
        boost::shared_ptr<CText> line = makeText("Wide  words, one line", 12);
        line->forceRectSize(width, 32);
        line->remakeTexture();
        frame();
        drawTexturedQuad(line->getTextureName(), 128, 32);
        frames.push_back(readFrame());
    }
    EXPECT_TRUE(frames[0].rgba == frames[1].rgba);
    EXPECT_NE(std::count(frames[0].rgba.begin(), frames[0].rgba.end(), 255), 0);
}

TEST_F(TextTest, RebuildsOnlyWhenASettingChanged)
{
    boost::shared_ptr<CText> empty(new CText());
    GLRecorder::start();
    empty->remakeTexture();
    EXPECT_EQ(GLRecorder::count("glTexImage2D"), 0u) << "empty text keeps the old texture";

    boost::shared_ptr<CText> t = makeText("Hello", 14);
    CDrawManager::Instance()->add(t);
    CDrawManager::Instance()->drawAll();
    GLRecorder::clear();
    CDrawManager::Instance()->drawAll();
    EXPECT_EQ(GLRecorder::count("glTexImage2D"), 0u);
    struct { const char* setting; std::function<void()> change; } settings[] = {
        {"text", [&] { t->setText("Hello again"); }},
        {"font", [&] { t->setFont("DejaVu Serif"); }},
        {"size", [&] { t->setSize(15); }},
        {"colour", [&] { t->setColor(tColor{255, 255, 255, 128}); }},
        {"debug textures on", [&] { t->showDebugTextures(true); }},
        {"debug textures off", [&] { t->showDebugTextures(false); }},
    };
    for (const auto& s : settings) {
        GLRecorder::clear();
        s.change();
        EXPECT_EQ(GLRecorder::count("glTexImage2D"), 1u) << "a registered text is rebuilt at once: " << s.setting;
    }
    GLRecorder::clear();
    t->moveTo(tVect2{tFixed(3), tFixed(4)});
    EXPECT_EQ(GLRecorder::count("glTexImage2D"), 0u) << "moving is not a text setting";
    frame();
    const ImageIO::tImage shot = readFrame();
    int brightest = 0;
    for (size_t i = 0; i < shot.rgba.size(); i += 4)
        brightest = std::max<int>(brightest, shot.rgba[i]);
    EXPECT_NEAR(brightest, 128, 24) << "the colour's alpha reaches the glyphs";
    CDrawManager::Instance()->remove(t);
}

TEST_F(TextTest, OriginSitsOnTheBaseline)
{
    boost::shared_ptr<CText> t = makeText("H", 24);
    t->moveTo(tVect2{tFixed(20), tFixed(20)});
    CDrawManager::Instance()->add(t);
    frame();
    // The left stem of the H: lit from the baseline up, dark below it.
    int stem = -1;
    for (int x = 20; x < 30 && stem < 0; ++x)
        if (litInColumn(x, 20, 30) > 8)
            stem = x;
    ASSERT_GE(stem, 0) << "no glyph stem found right of the origin";
    EXPECT_GT(pixel(stem, 20).r, 128);
    EXPECT_LT(pixel(stem, 19).r, 64);
    CDrawManager::Instance()->remove(t);
}

TEST_F(TextTest, ImmediateDrawMatchesBatchedDraw)
{
    boost::shared_ptr<CText> t = makeText("Ag", 20);
    t->moveTo(tVect3{tFixed(30), tFixed(25), ZERO_X});
    t->setColor(tColor{255, 255, 255, 255});
    CGraphics2D::Instance()->clearBuffer();
    t->draw(nullptr);
    ImageIO::tImage immediate = readFrame();
    CDrawManager::Instance()->add(t);
    frame();
    EXPECT_EQ(ImageIO::compare(immediate, readFrame(), 2).pixelsOver, 0);
    CDrawManager::Instance()->remove(t);

    // The texture carries colour and alpha: with element colours on, alphaTo fades it as setColor does.
    ImageIO::tImage faded;
    for (bool on : {false, true}) {
        boost::shared_ptr<CText> f = makeText("Ag", 20);
        f->setColor(tColor{0, 255, 255, on ? uint8_t(255) : uint8_t(128)});
        CDrawManager::Instance()->add(f);
        f->setColorEnabled(on);
        f->alphaTo(128);
        frame();
        if (on) {
            EXPECT_EQ(ImageIO::compare(faded, readFrame(), 2).pixelsOver, 0);
        }
        faded = readFrame();
        CDrawManager::Instance()->remove(f);
    }
}

TEST_F(TextTest, FontThatCannotLoadIsReported)
{
    DebugCapture debug;
    Glib::ustring missing = "/no/such/font.ttf";
    boost::shared_ptr<CText> t(new CText("text", missing, 12));
    t->remakeTexture();
    EXPECT_TRUE(debug.has(3, "*** CText::setFont - could not load font.\n"));
    t->setText("again");
    t->remakeTexture();
    EXPECT_EQ(std::count_if(debug.entries().begin(), debug.entries().end(),
                            [](const DebugCapture::tEntry& e) { return e.text == "*** CText::setFont - could not load font.\n"; }),
              2) << "each preparation tries to load again";
}

class TextGoldenTest : public GLTest
{
protected:
    TextGoldenTest() : GLTest(160, 96, tColor{20, 30, 60, 255}) {}
};

TEST_F(TextGoldenTest, WrappedTextInEachAlignment)
{
    const char* names[3] = {"text-left", "text-center", "text-right"};
    for (int align = 0; align < 3; ++align) {
        boost::shared_ptr<CText> t = makeText("The quick brown fox jumps over the lazy dog", 14);
        t->forceRectSize(128, 64);
        t->setAlignment(align);
        t->setColor(tColor{255, 220, 120, 255});
        t->moveTo(tVect2{tFixed(16), tFixed(60)});
        CDrawManager::Instance()->add(t);
        frame();
        expectMatchesGolden(names[align], 8, 10);
        CDrawManager::Instance()->remove(t);
    }
}

} // namespace
