#include "TestSupport.h"
#include "DrawTestSupport.h"

#include "CBillboard.h"
#include "CDrawList.h"
#include "CDrawManager.h"
#include "CGraphics2D.h"
#include "CTextureSheet.h"

using namespace DrawTest;

namespace {

tFixed F(int v) { return tFixed(v); }
tFixed raw(int32_t v) { return tFixed::fromRaw(v); }

class BillboardTest : public GLTest
{
protected:
    static boost::shared_ptr<CTexturedChunk> chunkOf(CBillboard& b)
    {
        return boost::dynamic_pointer_cast<CTexturedChunk>(b.getChunks().at(0));
    }
};

TEST_F(BillboardTest, VerticesAndTextureCoordinates)
{
    boost::shared_ptr<CTexture> texture = solidTexture(RED, 8);
    boost::shared_ptr<CTexture> wide = makeTexture(64, 32, kPixelFormatRGB888, [](int, int) { return RED; });
    struct {
        const char* what;
        std::function<void(CBillboard&)> change;
        tVect2 vertices[4];
        tVect2 coords[4];
    } cases[] = {
        {"whole 64 x 32 texture", [&](CBillboard& b) { b.setTexture(wide); },
         {{F(0), F(32)}, {F(64), F(32)}, {F(0), F(0)}, {F(64), F(0)}},
         {{F(0), F(0)}, {F(1), F(0)}, {F(0), F(1)}, {F(1), F(1)}}},
        {"pixel rectangle (16, 0)-(48, 16)",
         [&](CBillboard& b) {
             b.setTexture(wide);
             b.setTextureCoords(F(16), F(0), F(48), F(16));
         },
         {{F(16), F(32)}, {F(48), F(32)}, {F(16), F(16)}, {F(48), F(16)}},
         {{raw(0x4000), F(0)}, {raw(0xC000), F(0)}, {raw(0x4000), raw(0x8000)}, {raw(0xC000), raw(0x8000)}}},
        {"a third of a pixel is truncated",
         [&](CBillboard& b) {
             b.setTexture(makeTexture(3, 3, kPixelFormatRGB888, [](int, int) { return RED; }));
             b.setTextureCoords(F(1), F(1), F(2), F(2));
         },
         {{F(1), F(2)}, {F(2), F(2)}, {F(1), F(1)}, {F(2), F(1)}},
         {{raw(0x5555), raw(0x5555)}, {raw(0xAAAA), raw(0x5555)}, {raw(0x5555), raw(0xAAAA)}, {raw(0xAAAA), raw(0xAAAA)}}},
        {"setVertices and setTexCoords",
         [&](CBillboard& b) {
             b.setTexture(texture);
             b.setVertices(F(-1), F(2), F(3), F(-4));
             b.setTexCoords(ONE_HALF_X, F(0), F(1), ONE_HALF_X);
         },
         {{F(-1), F(2)}, {F(3), F(2)}, {F(-1), F(-4)}, {F(3), F(-4)}},
         {{ONE_HALF_X, F(0)}, {F(1), F(0)}, {ONE_HALF_X, ONE_HALF_X}, {F(1), ONE_HALF_X}}},
    };
    for (const auto& c : cases) {
        CBillboard b;
        c.change(b);
        boost::shared_ptr<CTexturedChunk> chunk = chunkOf(b);
        ASSERT_EQ(chunk->getVertices().size(), 4u);
        const std::vector<uint16_t> indices = {0, 1, 2, 2, 1, 3};
        EXPECT_EQ(chunk->getIndices(), indices) << c.what;
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(chunk->getVertices()[i], (tVect3{c.vertices[i].x, c.vertices[i].y, ZERO_X})) << c.what << " c" << i;
            EXPECT_EQ(chunk->getTexCoords()[i], c.coords[i]) << c.what << " c" << i;
        }
    }
}

TEST_F(BillboardTest, TextureGivesSizeAndClearingUnregisters)
{
    boost::shared_ptr<CBillboard> b = boost::make_shared<CBillboard>();
    boost::shared_ptr<CTexture> texture = makeTexture(64, 32, kPixelFormatRGBA8888, [](int, int) { return RED; });
    EXPECT_TRUE(b->setTexture(texture));
    EXPECT_EQ(b->getWidth(), F(64));
    EXPECT_EQ(b->getHeight(), F(32));
    EXPECT_EQ(b->getTextureId(), texture->glTextureId);
    EXPECT_TRUE(chunkOf(*b)->isTranslucent());
    EXPECT_TRUE(b->setTexture(texture, true));
    EXPECT_FALSE(chunkOf(*b)->isTranslucent());
    CDrawManager::Instance()->add(b);
    frame();
    EXPECT_EQ(pixel(2, 2), RED);
    b->clearTexture();
    EXPECT_FALSE(b->getTexture());
    EXPECT_FALSE(b->isDrawManaged());
    EXPECT_EQ(b->getWidth(), F(64)) << "the size is kept";
    frame();
    EXPECT_EQ(pixel(2, 2), BLACK);

    CBillboard missing;
    EXPECT_TRUE(missing.loadTexture(scratchDir("billboard-missing") + "/nothing-here.png", 0));
    EXPECT_NE(missing.getTextureId(), 0u) << "the placeholder";
}

TEST_F(BillboardTest, ImmediateDrawNeedsVisibilityAndSize)
{
    CBillboard sized;
    sized.setTexture(solidTexture(BLUE));
    CBillboard empty;
    struct { CBillboard* b; bool visible; bool draws; } cases[] = {
        {&sized, true, true}, {&sized, false, false}, {&empty, true, false}};
    for (const auto& c : cases) {
        CGraphics2D::Instance()->clearBuffer();
        c.b->setVisibility(c.visible);
        GLRecorder::start();
        c.b->draw(nullptr);
        GLRecorder::stop();
        EXPECT_EQ(GLRecorder::count("glDrawArrays"), c.draws ? 1u : 0u);
        EXPECT_EQ(pixel(3, 3), c.draws ? BLUE : BLACK);
        GLRecorder::clear();
    }
}

TEST_F(BillboardTest, ReportsWhatItCannotDo)
{
    AssertCapture asserts;
    CBillboard b;
    boost::shared_ptr<CDrawChunk> before = b.getChunks()[0];
    EXPECT_FALSE(b.setTexture(boost::shared_ptr<CTexture>()));
    EXPECT_FALSE(b.setTexture(boost::shared_ptr<CTexture>(), true));
    EXPECT_EQ(b.getChunks()[0], before) << "a failed setTexture keeps the chunk";
    b.setTextureCoords(F(1), F(2), F(3), F(4));
    CTextureSheet sheet;
    EXPECT_FALSE(b.loadTexture("nobody", &sheet));
    const std::vector<std::string> expected = {
        " CBillboard::setTexture(boost::shared_ptr<CTexture> newTexture) texure not valid\n",
        " CBillboard::setTexture(boost::shared_ptr<CTexture> newTexture) texure not valid\n",
        "CBillboard::setTextureCoords - Cannot set texture coords, billboard has no size\n",
    };
    EXPECT_EQ(asserts.messages(), expected);
    for (const auto& e : asserts.entries())
        EXPECT_EQ(e.file, "Zephrin2D/Src/CBillboard");
}

TEST_F(BillboardTest, ChangesAreCopyOnWrite)
{
    boost::shared_ptr<CTexture> texture = makeTexture(16, 16, kPixelFormatRGB888, [](int x, int y) {
        return x < 8 ? RED : (y < 8 ? GREEN : BLUE);
    });
    boost::shared_ptr<CBillboard> b = boost::make_shared<CBillboard>();
    b->setTexture(texture);
    CDrawManager::Instance()->add(b);
    frame();
    boost::shared_ptr<CDrawChunk> handed = b->getChunks()[0];
    const std::vector<tVect3> handedVertices = handed->getVertices();
    boost::shared_ptr<CBillboard> copy = boost::make_shared<CBillboard>(*b);
    EXPECT_EQ(copy->getChunks()[0], handed) << "copies share the chunk";

    b->setTextureCoords(F(8), F(0), F(16), F(8));  // the green corner
    EXPECT_NE(b->getChunks()[0], handed);
    EXPECT_EQ(handed->getVertices(), handedVertices) << "the chunk handed to the list is untouched";
    boost::shared_ptr<CDrawList> list = b->getChunks()[0]->getDrawList().lock();
    ASSERT_TRUE(list);
    EXPECT_TRUE(list->contains(b, b->getChunks()[0]));
    EXPECT_FALSE(list->contains(b, handed));
    EXPECT_TRUE(b->isDrawManaged());
    frame();
    EXPECT_EQ(pixel(12, 12), GREEN);
    EXPECT_EQ(pixel(2, 2), BLACK) << "the old quad is gone";

    copy->setTexCoords(F(0), F(0), F(1), F(1));
    EXPECT_EQ(handed->getVertices(), handedVertices);
    EXPECT_EQ(copy->getChunks()[0]->getVertices(), handedVertices);
}

TEST_F(BillboardTest, SheetPictureLandsOnItsRegistrationPoint)
{
    // A 64 x 32 bitmap: the picture (16, 0)-(48, 16) is green with a blue top-left pixel.
    const std::string dir = scratchDir("billboard-sheet");
    ImageIO::tImage bitmap;
    bitmap.width = 64;
    bitmap.height = 32;
    bitmap.rgba.resize(64 * 32 * 4);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x) {
            const bool inside = x >= 16 && x < 48 && y < 16;
            const tColor c = x == 16 && y == 0 ? BLUE : (inside ? GREEN : RED);
            uint8_t* p = bitmap.at(x, y);
            p[0] = c.r, p[1] = c.g, p[2] = c.b, p[3] = 255;
        }
    ASSERT_TRUE(ImageIO::writePNG(dir + "/bitmap.png", bitmap));
    writeFile(dir + "/sheet.json", R"({"ImageData": [{"Bitmap": "bitmap.png", "Images": [
        {"Name": "hero", "P1": [16, 0], "P2": [48, 16], "RegPoint": [8, 4], "CropRect": [2, 0, 0, 3]}]}]})");
    CTextureSheet sheet(dir + "/sheet.json");

    DebugCapture debug;
    boost::shared_ptr<CBillboard> b = boost::make_shared<CBillboard>("hero", &sheet, true);
    EXPECT_TRUE(debug.has(5, "moving registration point to 16.000000, 16.000000.\n"));
    // offX = 16 + 2 + 8 = 26, offY = 32 - (16 + 3 + 4) = 9
    const std::vector<tVect3> expected = {
        {F(-10), F(23), ZERO_X}, {F(22), F(23), ZERO_X}, {F(-10), F(7), ZERO_X}, {F(22), F(7), ZERO_X}};
    EXPECT_EQ(b->getChunks()[0]->getVertices(), expected);

    b->moveTo(tVect2{F(20), F(20)});
    CDrawManager::Instance()->add(b);
    frame();
    EXPECT_EQ(pixel(10, 42), BLUE) << "the picture's top-left pixel";
    EXPECT_EQ(pixel(11, 42), GREEN);
    EXPECT_EQ(pixel(41, 27), GREEN) << "its bottom-right pixel";
    EXPECT_EQ(pixel(9, 35), BLACK);
    EXPECT_EQ(pixel(42, 35), BLACK);
    EXPECT_EQ(pixel(20, 26), BLACK);
    EXPECT_EQ(pixel(20, 43), BLACK);
}

} // namespace
