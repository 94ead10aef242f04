#include "TestSupport.h"

#include "CTexture.h"
#include "CTextureManager.h"
#include "CTextureSheet.h"

#include <algorithm>
#include <sys/stat.h>

namespace {

tVect2 v(int x, int y) { return tVect2{tFixed(x), tFixed(y)}; }

class TextureSheetTest : public GLTest
{
protected:
    /// art/sheets/ under a scratch directory, holding a.png (8x8) and b.png (16x16).
    void SetUp() override
    {
        GLTest::SetUp();
        mDir = scratchDir("texture-sheet") + "/art";
        mkdir(mDir.c_str(), 0755);
        mDir += "/sheets";
        mkdir(mDir.c_str(), 0755);
        copyFile(testDataPath("png/rgb.png"), mDir + "/a.png");
        copyFile(testDataPath("png/pal4.png"), mDir + "/b.png");
    }
    std::string mDir;
};

const char* const kTwoPictures = R"({"ImageData": [{"Bitmap": "a.png", "Images": [
    {"Name": "hero", "P1": [1, 2], "P2": [5, 7], "RegPoint": [-3, 4], "CropRect": [1, 2, 3, 4]},
    {"Name": "coin", "P1": [0, 0], "P2": [8, 8], "RegPoint": [0, 0], "CropRect": [0, 0, 8, 8]}]}]})";

// Pictures of one bitmap share its texture; the dump lists every picture as
// loaded; an unknown name gives the zero element.
TEST_F(TextureSheetTest, PicturesOfOneBitmapShareItsTexture)
{
    writeFile(mDir + "/a.json", kTwoPictures);
    CTextureSheet sheet(mDir + "/a.json");
    EXPECT_EQ(sheet.getElementCount(), 2u);
    const tTextureSheetElement hero = sheet.getElement("hero");
    const tTextureSheetElement coin = sheet.getElement("coin");
    ASSERT_TRUE(hero.texture);
    EXPECT_EQ(hero.texture, coin.texture);
    EXPECT_EQ(hero.texture->imageInfo.width, 8u) << "a.png beside the description";
    EXPECT_NE(hero.texture->glTextureId, 0u);
    EXPECT_FALSE(hero.texture->inRAM);
    EXPECT_EQ(CTextureManager::Instance()->get(mDir + "/a.png"), hero.texture);

    // The dump shows the hero's corners, registration point and crop rectangle as loaded.
    DebugCapture debug;
    sheet.debugDump();
    std::vector<std::string> lines;
    for (const auto& m : debug.entries()) {
        EXPECT_EQ(m.level, 3);
        lines.push_back(m.text);
    }
    const std::vector<std::string> heroLines = {
        "hero :\n", "  p1:  [1.000000, 2.000000]\n", "  p2:  [5.000000, 7.000000]\n", "  reg: [-3.000000, 4.000000]\n",
        "  cropRect: [1.000000, 2.000000]-[3.000000, 4.000000]\n",
    };
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(lines[0], "Current contents of Texture Sheet object:\n");
    EXPECT_EQ(lines[1], "--------------------------------------------------\n");
    EXPECT_NE(std::search(lines.begin(), lines.end(), heroLines.begin(), heroLines.end()), lines.end());

    debug.clear();
    const tTextureSheetElement e = sheet.getElement("villain");
    EXPECT_TRUE(debug.has(3, "could not find villain\n"));
    EXPECT_TRUE(e.p1 == VECT2_0 && e.p2 == VECT2_0 && e.reg == VECT2_0 && !e.texture);
    EXPECT_EQ(std::count(e.cropRect, e.cropRect + 4, ZERO_X), 4);
}

TEST_F(TextureSheetTest, IncompleteDescriptionsLoadWhatTheyCan)
{
    struct {
        const char* what;
        const char* json;
        size_t count;
        tVect2 p1, p2;
        bool textured;
    } cases[] = {
        {"missing P1", R"({"ImageData": [{"Bitmap": "a.png", "Images": [{"Name": "x", "P2": [4, 5]}]}]})", 1,
         v(0, 0), v(4, 5), true},
        {"P1 not an array", R"({"ImageData": [{"Bitmap": "a.png", "Images": [{"Name": "x", "P1": "3,4", "P2": [4, 5]}]}]})",
         1, v(0, 0), v(4, 5), true},
        {"short P2", R"({"ImageData": [{"Bitmap": "a.png", "Images": [{"Name": "x", "P1": [1, 1], "P2": [6]}]}]})", 1,
         v(1, 1), v(6, 0), true},
        {"no bitmap", R"({"ImageData": [{"Images": [{"Name": "x", "P1": [1, 2]}]}]})", 1, v(1, 2), v(0, 0), false},
        {"bitmap not a string", R"({"ImageData": [{"Bitmap": 7, "Images": [{"Name": "x", "P1": [1, 2]}]}]})", 1,
         v(1, 2), v(0, 0), false},
        {"nameless picture", R"({"ImageData": [{"Bitmap": "a.png", "Images": [{"P1": [1, 2]}, {"Name": 5}]}]})", 0,
         v(0, 0), v(0, 0), false},
        {"images not an array", R"({"ImageData": [{"Bitmap": "a.png", "Images": {"Name": "x"}}]})", 0, v(0, 0),
         v(0, 0), false},
        {"image data not an array", R"({"ImageData": {"Bitmap": "a.png"}})", 0, v(0, 0), v(0, 0), false},
        {"root not an object", R"([1, 2, 3])", 0, v(0, 0), v(0, 0), false},
        {"not JSON", "ImageData: a.png", 0, v(0, 0), v(0, 0), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        AssertCapture asserts;
        writeFile(mDir + "/odd.json", c.json);
        CTextureSheet sheet(mDir + "/odd.json");
        EXPECT_EQ(sheet.getElementCount(), c.count);
        const tTextureSheetElement e = sheet.getElement("x");
        EXPECT_EQ(e.p1, c.p1);
        EXPECT_EQ(e.p2, c.p2);
        EXPECT_EQ(bool(e.texture), c.textured);
    }
    CTextureSheet missing(mDir + "/no-such-sheet.json");
    EXPECT_EQ(missing.getElementCount(), 0u);
}

} // namespace
