#include "TestSupport.h"

#include "Avatar2DPiece.h"
#include "CAvatarCostume.h"
#include "CDrawManager.h"
#include "CGraphics2D.h"
#include "CTexturedChunk.h"

#include <fstream>

namespace {

/// Three LODs (32, 64, 128) of one piece: the whole texture, a distinct colour per LOD.
class AvatarPieceTest : public GLTest
{
protected:
    AvatarPieceTest() : GLTest(128, 128) {}

    void SetUp() override
    {
        GLTest::SetUp();
        const std::string dir = scratchDir("avatar-piece");
        const int sizes[3] = {32, 64, 128};
        const tColor colours[3] = {RED, GREEN, BLUE};
        std::ofstream json(dir + "/kid.json");
        json << "{\"LODList\": [";
        for (int i = 0; i < 3; ++i) {
            const int s = sizes[i];
            writeSolidPNG(dir + "/kid" + std::to_string(s) + ".png", s, s, colours[i]);
            json << (i ? "," : "") << "{\"Size\": " << s << ", \"TextureURI\": \"kid" << s
                 << ".png\", \"ComponentList\": [{\"Name\": \"body\", \"Variations\": [{\"Name\": \"plain\", "
                 << "\"RectLeft\": 0, \"RectTop\": 0, \"RectRight\": " << s << ", \"RectBottom\": " << s
                 << ", \"RegPointX\": " << s / 2 << ", \"RegPointY\": " << s / 2 << "}]}]}";
        }
        json << "]}";
        json.close();
        costume.reset(new AvatarCostume());
        costume->addFromJson(dir + "/kid.json", nullptr, 0);
    }

    void TearDown() override
    {
        costume.reset();
        GLTest::TearDown();
    }

    /// Bounding box of non-black pixels, and the colour at the centre.
    struct tExtent { int left, bottom, right, top; tColor centre; };
    tExtent extent()
    {
        ImageIO::tImage f = readFrame();
        tExtent e{f.width, f.height, -1, -1, pixel(64, 64)};
        for (int y = 0; y < f.height; ++y)
            for (int x = 0; x < f.width; ++x) {
                const uint8_t* p = f.at(x, f.height - 1 - y);
                if (p[0] + p[1] + p[2] > 0) {
                    e.left = std::min(e.left, x);
                    e.right = std::max(e.right, x);
                    e.bottom = std::min(e.bottom, y);
                    e.top = std::max(e.top, y);
                }
            }
        return e;
    }

    boost::shared_ptr<AvatarCostume> costume;
};

TEST_F(AvatarPieceTest, SameOnScreenSizeAtEveryLOD)
{
    boost::shared_ptr<Avatar2DPiece> piece(new Avatar2DPiece());
    piece->setPiece("body", "plain");
    piece->moveTo(tVect2{tFixed(64), tFixed(64)});
    piece->setCostume(costume.get());
    CDrawManager::Instance()->add(piece);
    const struct { int lod; tColor colour; } cases[] = {{32, RED}, {64, GREEN}, {128, BLUE}};
    for (const auto& c : cases) {
        costume->setLOD(c.lod);
        EXPECT_EQ(piece->getLODSize(), c.lod) << "pieces follow the costume's LOD";
        frame();
        tExtent e = extent();
        EXPECT_EQ(e.centre, c.colour) << "LOD " << c.lod;
        EXPECT_EQ((std::vector<int>{e.left, e.bottom, e.right, e.top}), (std::vector<int>{14, 14, 113, 113})) << c.lod;
    }
    CDrawManager::Instance()->remove(piece);
}

TEST_F(AvatarPieceTest, UnknownComponentShowsNothing)
{
    AssertCapture asserts;
    boost::shared_ptr<Avatar2DPiece> piece(new Avatar2DPiece());
    piece->setPiece("wings", "plain");
    piece->setCostume(costume.get());
    EXPECT_TRUE(piece->getChunks().empty());
    EXPECT_TRUE(asserts.has("CAvatarCostume::getAvatarTexturePiece - Could not find component wings.\n"));
    piece->setPiece("body", "striped");
    ASSERT_EQ(piece->getChunks().size(), 1u) << "an unknown variation falls back on the first";
    costume.reset();
    EXPECT_EQ(piece->getCostume(), nullptr) << "a costume going away lets go of its pieces";
}

} // namespace
