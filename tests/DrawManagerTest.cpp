#include "TestSupport.h"
#include "DrawTestSupport.h"
#include "GLCallText.h"

#include "CDrawManager.h"
#include "CGraphics2D.h"
#include "CSprite.h"
#include "CTexturedDrawList.h"

#include <GLES/gl.h>
#include <cstdlib>

using namespace DrawTest;

namespace {

class DrawManagerTest : public GLTest
{
protected:
    CDrawManager* manager() { return CDrawManager::Instance(); }

    /// For each glDrawElements recorded: the texture bound at that moment and the index count.
    static std::vector<std::pair<long, long> > drawsWithTextures()
    {
        std::vector<std::pair<long, long> > out;
        long texture = 0;
        for (const GLRecorder::tCall& c : GLRecorder::calls()) {
            if (c.name == "glBindTexture")
                texture = c.args[1];
            else if (c.name == "glDrawElements")
                out.push_back(std::make_pair(texture, c.args[1]));
        }
        return out;
    }

    static void expectNear(tColor actual, tColor expected, int tolerance, const char* what)
    {
        EXPECT_LE(std::abs(actual.r - expected.r), tolerance) << what << ": " << actual << " vs " << expected;
        EXPECT_LE(std::abs(actual.g - expected.g), tolerance) << what << ": " << actual << " vs " << expected;
        EXPECT_LE(std::abs(actual.b - expected.b), tolerance) << what << ": " << actual << " vs " << expected;
    }
};

TEST_F(DrawManagerTest, RoutesPairsByTextureAndTranslucency)
{
    boost::shared_ptr<CTexture> red = solidTexture(RED);
    boost::shared_ptr<CTexture> glass = solidTexture(tColor{0, 255, 0, 100});
    boost::shared_ptr<Element> a = quadElement(red, 0, 0, Z(0));
    boost::shared_ptr<Element> b = quadElement(red, 10, 0, Z(1));
    boost::shared_ptr<Element> c = quadElement(glass, 0, 0, Z(2));
    boost::shared_ptr<Element> d = element();
    d->getChunks().push_back(quad(red, 4, 4));
    boost::dynamic_pointer_cast<CTexturedChunk>(d->getChunks()[0])->setTexture(glass, true);
    for (auto& e : {a, b, c, d})
        manager()->add(e);
    manager()->add(a);  // already held: not added twice
    manager()->add(a, a->getChunks()[0]);
    ASSERT_EQ(manager()->getOpaqueLists().size(), 2u) << "red, and the glass drawn opaque";
    ASSERT_EQ(manager()->getTranslucentLists().size(), 1u);
    CTexturedDrawList* redList = dynamic_cast<CTexturedDrawList*>(manager()->getOpaqueLists()[0].get());
    EXPECT_EQ(redList->getEntryCount(), 2u);
    EXPECT_EQ(redList->getTextureId(), red->glTextureId);
    EXPECT_TRUE(a->isDrawManaged());
    manager()->remove(a);
    EXPECT_FALSE(a->isDrawManaged());
    EXPECT_EQ(redList->getEntryCount(), 1u);
    manager()->remove(a);  // no longer held: nothing happens
    manager()->hide(a, a->getChunks()[0]);
    EXPECT_EQ(redList->getEntryCount(), 1u);
}

TEST_F(DrawManagerTest, TranslucentDepthsInterleaveAcrossLists)
{
    // Translucent textures, or opaque ones on elements faded to alpha 128.
    for (bool faded : {false, true}) {
        const unsigned char a8 = faded ? 255 : 128;
        boost::shared_ptr<CTexture> a = solidTexture(tColor{255, 0, 0, a8});
        boost::shared_ptr<CTexture> b = solidTexture(tColor{0, 255, 0, 128});
        // Added out of depth order: the lists sort.
        boost::shared_ptr<Element> a3 = quadElement(a, 0, 0, Z(3));
        boost::shared_ptr<Element> b2 = quadElement(b, 2, 2, Z(2));
        boost::shared_ptr<Element> a1 = quadElement(a, 4, 4, Z(1));
        manager()->setColorsEnabled(faded);
        for (auto& e : {a3, b2, a1}) {
            manager()->add(e);
            e->alphaTo(faded && e != b2 ? 128 : 255);
        }
        ASSERT_EQ(manager()->getTranslucentLists().size(), 2u);
        GLRecorder::clear();
        GLRecorder::start();
        frame();
        GLRecorder::stop();
        const std::vector<std::pair<long, long> > draws = drawsWithTextures();
        const std::vector<std::pair<long, long> > expected = {
            {a->glTextureId, 6}, {b->glTextureId, 6}, {a->glTextureId, 6}};
        EXPECT_EQ(draws, expected);

        // Each blend lands on what is behind it: red at 1, green at 2, red at 3.
        expectNear(pixel(5, 5), tColor{160, 64, 0, 255}, 3, "all three");
        expectNear(pixel(3, 3), tColor{128, 64, 0, 255}, 3, "green over nothing, red over it");
        expectNear(pixel(9, 9), tColor{64, 128, 0, 255}, 3, "red under green");
        manager()->deleteAll();
    }
}

TEST_F(DrawManagerTest, ElementColoursTintFadeAndHideOnlyWhenOn)
{
    // A quad over a blue one. on: colours off (0), on for all (1), for the element (2).
    const tColor WHITE{255, 255, 255, 255}, glass{255, 255, 255, 128};
    // halved: with the alpha halved afterwards (a fade).
    struct { tColor texture, color; int on; tColor expected, halved; } cases[] = {
        {WHITE, RED, 1, RED, {}},
        {WHITE, glass, 2, {128, 128, 255, 255}, {64, 64, 255, 255}},
        {WHITE, {0, 255, 0, 0}, 1, BLUE, {}},
        {WHITE, {255, 0, 0, 128}, 0, WHITE, {}},
        {glass, GREEN, 2, {0, 128, 128, 255}, {}},
        {glass, {0, 255, 0, 128}, 1, {0, 64, 191, 255}, {0, 32, 223, 255}},
    };
    for (const auto& c : cases) {
        boost::shared_ptr<Element> back = quadElement(solidTexture(BLUE), 0, 0, Z(0));
        boost::shared_ptr<Element> front = quadElement(solidTexture(c.texture), 0, 0, Z(1));
        front->setColor(c.color);
        manager()->add(back);
        manager()->add(front);
        frame();
        manager()->setColorsEnabled(c.on == 1);
        front->setColorEnabled(c.on == 2);
        frame();
        expectNear(pixel(4, 4), c.expected, 3, "tinted");
        if (c.halved.a) {
            front->alphaTo(c.color.a / 2);
            frame();
            expectNear(pixel(4, 4), c.halved, 3, "faded further");
        }
        // Back to opaque white: drawn as the texture is, at the next frame.
        front->setColor(WHITE);
        frame();
        const int a = c.texture.a;
        expectNear(pixel(4, 4), tColor{uint8_t(a), uint8_t(a), 255, 255}, 3, "white");
        manager()->shrinkAll();
        EXPECT_EQ(manager()->getTranslucentLists().size(), a < 255 ? 1u : 0u) << "the faded one left";
        manager()->deleteAll();
        manager()->setColorsEnabled(false);
    }
}

TEST_F(DrawManagerTest, ColourOfASpriteTintsItsMergedChunks)
{
    for (tColor texture : {tColor{255, 255, 255, 255}, tColor{255, 255, 255, 128}}) {
        boost::shared_ptr<CSprite> sprite = boost::make_shared<CSprite>();
        boost::shared_ptr<CTexture> t = solidTexture(texture);
        sprite->attach(quadElement(t, 0, 0, Z(1)));
        sprite->attach(quadElement(t, 16, 0, Z(1)));
        ASSERT_EQ(sprite->getChunks().size(), 1u);
        sprite->setColor(tColor{0, 255, 0, 128});
        sprite->setColorEnabled(true);
        manager()->add(sprite);
        frame();
        for (int x : {4, 20})
            expectNear(pixel(x, 4), tColor{0, uint8_t(texture.a / 2 + 1), 0, 255}, 3, "both halves");
        manager()->deleteAll();
    }
}

TEST_F(DrawManagerTest, ColoursCostNoCallUnlessOnAndNotWhite)
{
    // Two frames of an opaque and a translucent quad, their colour set before and between them,
    // each in a fresh context so that GL names compare.
    auto record = [&](tColor color, bool on) {
        TearDown();
        SetUp();
        boost::shared_ptr<Element> a = quadElement(solidTexture(RED), 0, 0, Z(0));
        boost::shared_ptr<Element> b = quadElement(solidTexture(tColor{0, 255, 0, 128}), 2, 2, Z(1));
        manager()->setColorsEnabled(on);
        GLRecorder::clear();
        GLRecorder::start();
        for (auto& e : {a, b}) {
            e->setColor(color);
            manager()->add(e);
        }
        frame();
        a->alphaTo(color.a);
        b->setColor(color);
        frame();
        GLRecorder::stop();
        manager()->deleteAll();
        manager()->setColorsEnabled(false);
        return recordedGLCalls();
    };
    const tColor WHITE{255, 255, 255, 255};
    const std::vector<std::string> white = record(WHITE, false);
    EXPECT_EQ(std::count(white.begin(), white.end(), glCall("glColor4ub", {255, 255, 255, 255})), 4);
    EXPECT_EQ(record(tColor{0, 0, 255, 128}, false), white) << "colours off";
    EXPECT_EQ(record(WHITE, true), white) << "colours on, all white";
    const std::vector<std::string> tinted = record(tColor{0, 0, 255, 128}, true);
    EXPECT_EQ(std::count(tinted.begin(), tinted.end(), glCall("glColorPointer", {4, GL_UNSIGNED_BYTE, 0})), 4);
    EXPECT_EQ(std::count(tinted.begin(), tinted.end(), glCall("glDisableClientState", {GL_COLOR_ARRAY})), 4);
}

TEST_F(DrawManagerTest, EqualDepthsOfOneListDrawInOneCall)
{
    boost::shared_ptr<CTexture> glass = solidTexture(tColor{0, 0, 255, 128});
    boost::shared_ptr<Element> first = quadElement(glass, 0, 0, Z(2));
    boost::shared_ptr<Element> second = element(20, 0, Z(1));
    second->getChunks().push_back(quad(glass, 8, 8, Z(1)));  // element z 1 + chunk z 1
    boost::shared_ptr<Element> behind = quadElement(glass, 40, 0, Z(1));
    for (auto& e : {first, second, behind})
        manager()->add(e);
    GLRecorder::start();
    frame();
    frame();
    GLRecorder::stop();
    std::vector<GLRecorder::tCall> draws = GLRecorder::callsNamed("glDrawElements");
    ASSERT_EQ(draws.size(), 4u);
    EXPECT_EQ(draws[0].args[1], 6) << "depth 1";
    EXPECT_EQ(draws[1].args[1], 12) << "depth 2: both";
    // Each depth goes into the other index buffer.
    std::vector<unsigned int> targets;
    for (const GLRecorder::tCall& c : GLRecorder::callsNamed("glBufferData"))
        if (c.args[0] == GL_ELEMENT_ARRAY_BUFFER)
            targets.push_back(c.buffer);
    ASSERT_EQ(targets.size(), 4u);
    EXPECT_NE(targets[0], targets[1]);
    EXPECT_EQ(targets[0], targets[2]);
    EXPECT_EQ(targets[1], targets[3]);
    expectNear(pixel(24, 4), tColor{0, 0, 128, 255}, 2, "drawn");
}

TEST_F(DrawManagerTest, AlphaTestedHolesShowWhatLiesBehind)
{
    // The left half is a hole; the texture has an alpha channel but is drawn opaque.
    boost::shared_ptr<CTexture> holed = makeTexture(8, 8, kPixelFormatRGBA8888, [](int x, int) {
        return x < 4 ? tColor{255, 255, 255, 0} : BLUE;
    });
    boost::shared_ptr<CTexture> red = solidTexture(RED);
    for (bool frontFirst : {true, false}) {
        boost::shared_ptr<Element> front = element(0, 0, Z(2));
        front->getChunks().push_back(quad(boost::shared_ptr<CTexture>(), 8, 8));
        boost::dynamic_pointer_cast<CTexturedChunk>(front->getChunks()[0])->setTexture(holed, true);
        boost::shared_ptr<Element> back = quadElement(red, 0, 0, Z(1));
        if (frontFirst) {
            manager()->add(front);
            manager()->add(back);
        } else {
            manager()->add(back);
            manager()->add(front);
        }
        EXPECT_TRUE(manager()->getTranslucentLists().empty());
        frame();
        EXPECT_EQ(pixel(1, 4), RED) << "front first: " << frontFirst;
        EXPECT_EQ(pixel(6, 4), BLUE) << "front first: " << frontFirst;
        manager()->deleteAll();
    }
}

} // namespace
