#include "TestSupport.h"

#include "CAvatarCostume.h"
#include "CTexture.h"

#include <fstream>

namespace {

TEST(AvatarCostumeMapping, RequestedSizesMapToLoadedOnes)
{
    const std::vector<int> sizes = {32, 64, 128};
    struct { int requested; std::vector<int> sizes; int want; } cases[] = {
        {50, sizes, 64}, {200, sizes, 128}, {32, sizes, 32}, {33, sizes, 64}, {0, sizes, 32},
        {-5, sizes, 32}, {10, {}, -1}, {10, {9999, 20000}, 20000}, {10, {9998, 20000}, 9998},
    };
    for (const auto& c : cases)
        EXPECT_EQ(AvatarCostume::mapLOD(c.requested, c.sizes), c.want) << c.requested;
}

/// A costume of three LODs whose textures are solid colours.
class AvatarCostumeTest : public GLTest
{
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        dir = scratchDir("costume");
        const int sizes[3] = {32, 64, 128};
        std::ofstream json(dir + "/costume.json");
        json << "{ \"AudioList\": [ {\"Name\": \"hello\", \"URI\": \"hello.wav\"} ],\n  \"LODList\": [\n";
        for (int i = 0; i < 3; ++i) {
            const int s = sizes[i];
            writeSolidPNG(dir + "/lod" + std::to_string(s) + ".png", s, s, tColor{255, 255, 255, 255});
            json << "    {\"Size\": " << s << ", \"TextureURI\": \"lod" << s << ".png\", \"ComponentList\": [\n"
                 << "      {\"Name\": \"head\", \"Variations\": [\n"
                 << "        {\"Name\": \"round\", \"RectLeft\": 0, \"RectTop\": 0, \"RectRight\": " << s / 2
                 << ", \"RectBottom\": " << s / 2 << ", \"RegPointX\": " << s / 4 << ", \"RegPointY\": " << s / 4 << "},\n"
                 << "        {\"Name\": \"square\", \"RectLeft\": " << s / 2 << ", \"RectTop\": 0, \"RectRight\": " << s
                 << ", \"RectBottom\": " << s / 2 << ", \"RegPointX\": 0.5, \"RegPointY\": 0}]}]}" << (i < 2 ? ",\n" : "\n");
        }
        json << "  ]\n}\n";
    }

    std::vector<int> loadedSizes(int* lods, int count)
    {
        AvatarCostume costume;
        costume.addFromJson(dir + "/costume.json", lods, count);
        std::vector<int> out;
        for (const tAvatarLOD& lod : costume.getLODs())
            out.push_back(lod.size);
        return out;
    }

    std::string dir;
};

TEST_F(AvatarCostumeTest, LoadsOnlyTheMappedLODs)
{
    int both[] = {32, 40};
    int big[] = {200};
    EXPECT_EQ(loadedSizes(both, 2), (std::vector<int>{32, 64}));
    EXPECT_EQ(loadedSizes(big, 1), (std::vector<int>{128}));
    EXPECT_EQ(loadedSizes(nullptr, 0), (std::vector<int>{32, 64, 128}));
    EXPECT_EQ(loadedSizes(both, -3), (std::vector<int>{32, 64, 128})) << "a negative count loads everything";
    // At most thirty requests are read.
    AssertCapture asserts;
    std::vector<int> many(31, 32);
    many[30] = 128;  // past the limit: must not be looked at
    EXPECT_EQ(loadedSizes(many.data(), 31), (std::vector<int>{32}));
    EXPECT_TRUE(asserts.has("AvatarCostume::addFromJson - received a list size of 31, but the max is 30."));
    // A missing dataset is reported and loads nothing.
    AvatarCostume costume;
    int none = 0;
    costume.addFromFile(dir + "/nothing.dsetBin", &none, 0);
    EXPECT_TRUE(asserts.has("AvatarCostume::addFromDset could not load dataset file: " + dir + "/nothing.dsetBin\n"));
    EXPECT_TRUE(costume.getLODs().empty());
}

TEST_F(AvatarCostumeTest, PiecesAndFallbacks)
{
    AvatarCostume costume;
    AssertCapture asserts;
    DebugCapture debug;
    costume.getAvatarTexturePiece("head", "round");
    EXPECT_TRUE(asserts.has("AvatarCostume::getAvatarTexturePiece - List is empty.\n"));

    costume.addFromJson(dir + "/costume.json", nullptr, 0);
    costume.setLOD(64);
    tAvatarTexturePiece p = costume.getAvatarTexturePiece("head", "square");
    ASSERT_TRUE(p.valid);
    EXPECT_EQ(p.lodSize, 64);
    ASSERT_TRUE(p.texture);
    EXPECT_EQ(p.texture->imageInfo.width, 64u);
    EXPECT_EQ(p.variation.left, tFixed(32));
    EXPECT_EQ(p.variation.regX, ONE_HALF_X);

    EXPECT_FALSE(costume.getAvatarTexturePiece("tail", "round").valid);
    EXPECT_TRUE(asserts.has("CAvatarCostume::getAvatarTexturePiece - Could not find component tail.\n"));

    tAvatarTexturePiece fallback = costume.getAvatarTexturePiece("head", "spiky");
    EXPECT_TRUE(fallback.valid);
    EXPECT_EQ(fallback.variation.name, "round");
    EXPECT_TRUE(debug.has("CAvatarCostume::getAvatarTexturePiece - could not find variation spiky of component head.  "
                          "Falling back on variation 0.\n"));
    EXPECT_EQ(costume.getAudioURI("hello"), "hello.wav");

    costume.setLOD(100);
    EXPECT_EQ(costume.getAvatarTexturePiece("head", "round").lodSize, 128) << "an unloaded LOD maps like a request";
    EXPECT_FALSE(debug.has("CAvatarCostume::getAvatarTexturePiece - could not find variation round of component head.  "
                           "Falling back on variation 0.\n")) << "the first variation is found by its name";
    costume.debugDump();
    EXPECT_TRUE(debug.has(3, "Current contents of avatar costume object:\n"));
    EXPECT_TRUE(debug.has(3, "variation name:square\n"));
    EXPECT_TRUE(debug.has(3, "hello: [hello.wav]\n"));
}

} // namespace
