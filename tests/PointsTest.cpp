#include "TestSupport.h"
#include "DrawTestSupport.h"

#include "CDrawManager.h"
#include "CGraphicPoints.h"
#include "CGraphics2D.h"
#include "CPointSpriteChunk.h"
#include "CTextureManager.h"

#include <GLES/glext.h>

using namespace DrawTest;

namespace {

tVect3 P(int x, int y, int z = 0) { return tVect3{tFixed(x), tFixed(y), tFixed(z)}; }

class PointsTest : public GLTest
{
protected:
    /// A 4 x 4 image file of one colour.
    static std::string imageFile(const std::string& name, tColor c)
    {
        const std::string path = scratchDir("points") + "/" + name;
        writeSolidPNG(path, 4, 4, c);
        return path;
    }

    static boost::shared_ptr<CPointSpriteChunk> chunkOf(CGraphicPoints& p)
    {
        return boost::dynamic_pointer_cast<CPointSpriteChunk>(p.getChunks().at(0));
    }
};

TEST_F(PointsTest, PointsStartAtTheOriginResizeAndCopy)
{
    const std::string path = imageFile("red.png", RED);
    CGraphicPoints cloud(3, path);
    EXPECT_EQ(chunkOf(cloud)->getTexture(), CTextureManager::Instance()->get(path));
    EXPECT_EQ(chunkOf(cloud)->getDrawnPointSize(), tFixed(4)) << "the texture's width by default";
    cloud.setVertexN(1, P(4, 5, 1));
    cloud.moveVertexNBy(2, tVect3{ONE_X, ZERO_X, ZERO_X});
    cloud.moveVertexNBy(2, tVect3{ONE_X, ZERO_X, ZERO_X});
    cloud.setNumberVertices(5);
    const tVect3 expected[5] = {P(0, 0), P(4, 5, 1), P(2, 0), P(0, 0), P(0, 0)};
    for (unsigned short i = 0; i < 5; ++i)
        EXPECT_EQ(cloud.getVertexN(i), expected[i]) << i;
    CGraphicPoints copy(cloud), assigned;
    assigned = cloud;
    copy.setVertexN(1, P(5, 5));
    assigned.setNumberVertices(1);
    EXPECT_EQ(cloud.getVertexN(1), P(4, 5, 1));
    EXPECT_EQ(cloud.getNumberVertices(), 5);
}

TEST_F(PointsTest, ImmediateDrawAndAReplacedChunk)
{
    CGraphicPoints single(1, imageFile("red.png", RED));
    single.moveTo(tVect2{tFixed(20), tFixed(20)});
    CGraphics2D::Instance()->clearBuffer();
    single.draw(nullptr);
    EXPECT_EQ(pixel(20, 20), RED);
    EXPECT_EQ(pixel(10, 10), BLACK);
    EXPECT_EQ(glIsEnabled(GL_POINT_SPRITE_OES), GL_FALSE);

    boost::shared_ptr<CGraphicPoints> cloud = boost::make_shared<CGraphicPoints>();
    cloud->setNumberVertices(1);
    chunkOf(*cloud)->setTexture(solidTexture(RED, 4));
    cloud->setVertexN(0, P(10, 10));
    CDrawManager::Instance()->add(cloud);
    boost::shared_ptr<CPointSpriteChunk> old = chunkOf(*cloud);
    cloud->setNumberVertices(2);
    cloud->setVertexN(1, P(40, 40));
    EXPECT_TRUE(old->getDrawList().expired()) << "the replaced chunk is withdrawn";
    frame();
    EXPECT_EQ(pixel(10, 10), RED);
    EXPECT_EQ(pixel(40, 40), RED);
}

TEST_F(PointsTest, BadInputIsReported)
{
    AssertCapture asserts;
    CGraphicPoints cloud;
    cloud.setNumberVertices(2);
    boost::shared_ptr<CPointSpriteChunk> before = chunkOf(cloud);
    EXPECT_EQ(cloud.getVertexN(2), VECT3_0);
    cloud.setVertexN(7, P(1, 1));
    cloud.moveVertexNBy(70000, P(1, 1));
    EXPECT_EQ(asserts.entries().size(), 3u);
    asserts.clear();
    const std::string notPng = testDataPath("png/not_a_png.png");
    EXPECT_FALSE(cloud.loadTexture(notPng));
    EXPECT_TRUE(asserts.has(" CGraphicPoints::loadTexture(const CPath &imagePath) texure " + notPng + " not found\n"));
    EXPECT_EQ(chunkOf(cloud), before) << "nothing replaced";
    EXPECT_EQ(asserts.entries().back().file, "Zephrin2D/Src/CGraphicPoints");
}

TEST_F(PointsTest, MergesOnlyWithPointsOfTheSameKind)
{
    boost::shared_ptr<CTexture> texture = solidTexture(RED);
    boost::shared_ptr<CTexture> glass = solidTexture(tColor{255, 0, 0, 100});
    boost::shared_ptr<CPointSpriteChunk> points(new CPointSpriteChunk(2));
    boost::shared_ptr<CPointSpriteChunk> more(new CPointSpriteChunk(3));
    boost::shared_ptr<CTexturedChunk> quadChunk = quad(texture, 4, 4);
    points->setTexture(texture);
    more->setTexture(texture);
    boost::shared_ptr<Element> e = element(10, 0);
    EXPECT_TRUE(points->canMerge(e, more));
    EXPECT_FALSE(points->canMerge(e, quadChunk));
    EXPECT_FALSE(quadChunk->canMerge(e, points));
    more->setPointSize(tFixed(2));
    EXPECT_FALSE(points->canMerge(e, more)) << "other point size";
    boost::shared_ptr<CPointSpriteChunk> translucent(new CPointSpriteChunk(1));
    translucent->setTexture(glass);
    EXPECT_TRUE(translucent->isTranslucent());
    EXPECT_FALSE(points->canMerge(e, translucent));

    more->setPointSize(ZERO_X);
    boost::shared_ptr<CDrawChunk> merged = points->createMergedChunk(e, more);
    ASSERT_EQ(merged->getVertices().size(), 5u);
    EXPECT_EQ(merged->getVertices()[4], P(10, 0));
    EXPECT_EQ(points->getVertices().size(), 2u);
}

TEST_F(PointsTest, InPlaceWritesShowInTheNextFrame)
{
    boost::shared_ptr<CGraphicPoints> cloud = boost::make_shared<CGraphicPoints>(2, imageFile("red.png", RED));
    cloud->setVertexN(0, P(10, 10));
    cloud->setVertexN(1, P(50, 10));
    CDrawManager::Instance()->add(cloud);
    frame();
    EXPECT_EQ(pixel(10, 10), RED);
    EXPECT_EQ(pixel(50, 10), RED);
    EXPECT_EQ(pixel(30, 30), BLACK);

    GLRecorder::start();
    frame();
    EXPECT_EQ(GLRecorder::count("glBufferSubData") + GLRecorder::count("glBufferData"), 0u) << "a still cloud";
    GLRecorder::clear();
    cloud->setVertexN(0, P(30, 30));
    frame();
    GLRecorder::stop();
    std::vector<GLRecorder::tCall> uploads = GLRecorder::callsNamed("glBufferSubData");
    ASSERT_EQ(uploads.size(), 1u);
    EXPECT_EQ(uploads[0].size, 2 * 12);
    EXPECT_EQ(pixel(30, 30), RED);
    EXPECT_EQ(pixel(10, 10), BLACK);

    cloud->moveBy(tVect2{tFixed(0), tFixed(20)});
    frame();
    EXPECT_EQ(pixel(30, 50), RED) << "the element's transform places the points";
    EXPECT_EQ(pixel(50, 30), RED);
    cloud->setVisibility(false);
    frame();
    EXPECT_EQ(pixel(30, 50), BLACK);
}

TEST_F(PointsTest, NeighbouringCloudsOfOneSizeDrawInOneCall)
{
    boost::shared_ptr<CTexture> texture = solidTexture(RED, 4);
    struct { int x; int size; } clouds[] = {{10, 0}, {20, 4}, {30, 8}, {40, 0}};
    std::vector<boost::shared_ptr<CGraphicPoints> > all;
    for (const auto& c : clouds) {
        all.push_back(boost::make_shared<CGraphicPoints>());
        all.back()->setNumberVertices(1);
        chunkOf(*all.back())->setTexture(texture);
        all.back()->setPointSize(tFixed(c.size));
        all.back()->moveTo(tVect2{tFixed(c.x), tFixed(10)});
        CDrawManager::Instance()->add(all.back());
    }
    recordGL([&] { frame(); });
    std::vector<long> calls;  // point size, then the count of each glDrawArrays
    for (const GLRecorder::tCall& c : GLRecorder::calls())
        if (c.name == "glPointSizex")
            calls.push_back(c.args[0] >> 16);
        else if (c.name == "glDrawArrays")
            calls.push_back(-c.args[2]);
    const std::vector<long> expected = {4, -2, 8, -1, 4, -1, 1};
    EXPECT_EQ(calls, expected);
    EXPECT_EQ(pixel(31, 13), RED) << "8 pixels wide";
    EXPECT_EQ(pixel(41, 13), BLACK) << "4 pixels wide";
}

TEST_F(PointsTest, TranslucentCloudsTakeTheirPlaceAmongTranslucentQuads)
{
    boost::shared_ptr<CTexture> glass = solidTexture(tColor{0, 0, 255, 128});
    boost::shared_ptr<Element> back = quadElement(glass, 0, 0, Z(1));
    boost::shared_ptr<Element> front = quadElement(glass, 0, 0, Z(3));
    boost::shared_ptr<CGraphicPoints> cloud =
        boost::make_shared<CGraphicPoints>(1, imageFile("haze.png", tColor{255, 0, 0, 128}));
    cloud->moveTo(tVect3{tFixed(4), tFixed(4), tFixed(2)});
    CDrawManager::Instance()->add(front);
    CDrawManager::Instance()->add(cloud);
    CDrawManager::Instance()->add(back);
    ASSERT_EQ(CDrawManager::Instance()->getTranslucentLists().size(), 2u);
    recordGL([&] { frame(); });
    std::vector<std::string> draws;
    for (const GLRecorder::tCall& c : GLRecorder::calls())
        if (c.name == "glDrawElements" || c.name == "glDrawArrays")
            draws.push_back(c.name);
    const std::vector<std::string> expected = {"glDrawElements", "glDrawArrays", "glDrawElements"};
    EXPECT_EQ(draws, expected);
    EXPECT_EQ(glIsEnabled(GL_POINT_SPRITE_OES), GL_FALSE) << "point-sprite state is put back";
    EXPECT_EQ(glIsEnabled(GL_TEXTURE_COORD_ARRAY), GL_TRUE);
    const tColor p = pixel(4, 4);
    EXPECT_NEAR(p.r, 64, 3) << p;
    EXPECT_NEAR(p.b, 160, 3) << p;
}

} // namespace
