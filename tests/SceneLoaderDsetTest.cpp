#include "TestSupport.h"

#include "ActorCompare.h"
#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "CBillboard.h"
#include "CDrawChunk.h"
#include "CDsetReader.h"
#include "CSceneLoaderDset.h"
#include "CSceneLoaderJson.h"
#include "DsetCompiler.h"
#include "DsetWriter.h"
#include "tDsetRecords.h"

#include <Dataset.h>

#include <sstream>

namespace {

const char* const kTextures[] = {"ball_pal4.png", "bricks_rgb.png", "ghost_pal8_trns.png", "glow_rgba.png",
                                 "star_pal4_trns.png", "tree_pal8.png"};

/// An actor of celCount cels: labels every 7 cels, several billboards per
/// cel over opaque and translucent textures at a few depths, operations of
/// every kind (references to earlier billboards included).
std::string generatedActor(int celCount)
{
    std::ostringstream j;
    j << "{\"Position\": [12.5, 20.0, 1.0], \"Rotation\": 10.0, \"Scale\": [1.5, 0.75], \"Reg\": [4.0, 2.0],\n"
      << " \"Color\": [200, 210, 220, 230], \"Animation\": [\n";
    int billboards = 0;
    for (int c = 0; c < celCount; ++c) {
        j << (c ? ",\n" : "") << "{\"ID\": " << c << ", \"Duration\": " << (c * 37) % 500;
        if (c % 7 == 0)
            j << ", \"Label\": \"anim" << c / 7 << "\"";
        j << ", \"Operations\": [{\"Opcode\": " << 1 + c % 6 << ", \"Oparg\": " << (c * 3) % 9 << "}";
        if (c % 5 == 0)
            j << ", {\"Opcode\": 5, \"Oparg\": [\"boing.wav\", \"second\"]}, {\"Opcode\": 0}, {\"Opcode\": 3}";
        j << "], \"Children\": [";
        for (int b = 0; b < 1 + c % 4; ++b) {
            if (b && c % 3 == 0 && billboards > 0) {
                j << ", {\"ElementType\": 0, \"ID\": " << (c * 7) % billboards << "}";
                continue;
            }
            j << (b ? ", " : "") << "{\"ElementType\": 0, \"ID\": " << billboards++ << ", \"URL\": \""
              << kTextures[(c + b) % 6] << "\", \"Position\": [" << b * 10 << ".25, " << c % 13 << ".5, " << b % 2
              << ".0], \"Rotation\": " << (c * 11) % 360 << ".0, \"Scale\": [1.0, 2.0], \"Color\": [1, 2, 3, 4]}";
        }
        j << "]}";
    }
    j << "\n]}\n";
    return j.str();
}

class SceneLoaderDsetTest : public GLTest
{
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        dir = scratchDir("dset");
        // Image names in actor files are relative to the file: keep the art beside it.
        for (const char* t : kTextures)
            copyFile(examplesPath(std::string("art/") + t), dir + "/" + t);
    }

    std::string compile(const std::string& name, const std::string& json)
    {
        const std::string base = dir + "/" + name;
        writeFile(base + ".json", json);
        std::string error;
        DsetCompiler::tKind kind;
        EXPECT_TRUE(DsetCompiler::compileFile(base + ".json", base, kind, error)) << error;
        return base;
    }

    std::string dir;
};

TEST_F(SceneLoaderDsetTest, GeneratedActorsLoadTheSameFromJsonAndDataset)
{
    for (int cels : {1, 40, 300}) {
        const std::string base = compile("generated" + std::to_string(cels), generatedActor(cels));
        boost::shared_ptr<CActor2D> fromJson(new CActor2D(base + ".json", 0, 0));
        boost::shared_ptr<CActor2D> fromDset(new CActor2D(base + ".dsetBin", 0, 0));
        ASSERT_EQ(fromJson->getCelCount(), static_cast<unsigned int>(cels));
        std::string why;
        EXPECT_TRUE(sameActor(*fromJson, *fromDset, why)) << cels << " cels: " << why;
    }
}

TEST_F(SceneLoaderDsetTest, CelsMergeIntoOneChunkPerTextureRun)
{
    const std::string base = compile("merge", R"({"Animation": [{"ID": 0, "Duration": 10, "Children": [
        {"ElementType": 0, "ID": 0, "URL": "bricks_rgb.png", "Position": [0.0, 0.0]},
        {"ElementType": 0, "ID": 1, "URL": "bricks_rgb.png", "Position": [40.0, 0.0, 3.0]},
        {"ElementType": 0, "ID": 2, "URL": "glow_rgba.png", "Position": [0.0, 0.0, 1.0]},
        {"ElementType": 0, "ID": 3, "URL": "glow_rgba.png", "Position": [9.0, 0.0, 1.0]},
        {"ElementType": 0, "ID": 4, "URL": "glow_rgba.png", "Position": [0.0, 0.0, 2.0]}]}]})");
    boost::shared_ptr<CActor2D> actor(new CActor2D(base + ".dsetBin", 0, 0));
    ASSERT_EQ(actor->getCelCount(), 1u);
    const tActor2DFrameStruct& cel = actor->getCel(0);
    ASSERT_EQ(cel.chunks.size(), 3u) << "opaque merge at any depth, translucent only at equal depth";
    EXPECT_EQ(cel.chunks[0]->getVertices().size(), 8u);
    EXPECT_EQ(cel.chunks[1]->getVertices().size(), 8u);
    EXPECT_EQ(cel.chunks[2]->getVertices().size(), 4u);
}

TEST_F(SceneLoaderDsetTest, SceneBillboardsLoadAsFromJson)
{
    const std::string children = R"({"ElementType": 0, "ID": 0, "URL": "bricks_rgb.png", "Position": [3.0, 4.0, 1.0],
        "Rotation": 90.0}, {"ElementType": 0, "ID": 1, "URL": "glow_rgba.png"}, {"ElementType": 0, "ID": 2, "URL": "bricks_rgb.png"})";
    const std::string base = compile("scene", R"({"Animation": [{"ID": 0, "Duration": 1, "Children": [)" + children + "]}]}");
    writeFile(dir + "/scene-list.json", "[" + children + "]");
    CSceneLoaderJson json;
    json.setDefaultPath(dir + "/");
    const CSceneLoaderJson::tElementList fromJson = json.parseJsonFile((dir + "/scene-list.json").c_str());
    CSceneLoaderDset dset;
    dset.setDefaultPath(dir + "/");
    void* data = 0;
    const boost::shared_ptr<CDataset> dataset = dset.LoadDset(base + ".dsetBin", data);
    ASSERT_TRUE(data);
    const tDsetSpriteCel* cel = static_cast<const tDsetSpriteCel*>(CDsetReader::address(static_cast<tDsetActor*>(data)->cels));
    for (int i = 0; i < 3; ++i) {
        const boost::shared_ptr<CBillboard> b =
            dset.parseBillboard(static_cast<const tDsetBillboard*>(CDsetReader::address(cel->billboards)) + i);
        const boost::shared_ptr<CBillboard> j = boost::dynamic_pointer_cast<CBillboard>(fromJson.at(i));
        EXPECT_EQ(b->getTexture(), j->getTexture()) << i;
        EXPECT_EQ(b->getChunks()[0]->createTransformedChunk(b)->getVertices(),
                  j->getChunks()[0]->createTransformedChunk(j)->getVertices()) << i;
    }
}

TEST_F(SceneLoaderDsetTest, PathsAndExtensions)
{
    AssertCapture asserts;
    DebugCapture debug;
    CSceneLoaderDset loader;
    void* data = reinterpret_cast<void*>(1);
    EXPECT_FALSE(loader.LoadDset(dir + "/scene.json", data));
    EXPECT_EQ(data, nullptr);
    EXPECT_TRUE(asserts.has("CSceneLoaderDset::LoadDataset file name \"" + dir +
                            "/scene.json\" doesn't have \".dsetBin\" extension."));
    loader.LoadDset(dir + "/x.dsetBin.dsetBin", data);
    bool namedRelink = false;
    for (const auto& e : debug.entries())
        namedRelink |= e.text.find("x.dsetBin.relinkBin") != std::string::npos ||
                       e.text.find("x.dsetBin.dsetBin") != std::string::npos;
    EXPECT_TRUE(namedRelink);

    boost::shared_ptr<CActor2D> actor(new CActor2D());
    EXPECT_FALSE(actor->loadFile(".dsetBin", 0, 0)) << "the extension alone is a JSON name";
    EXPECT_TRUE(asserts.has("CActor2D::loadJson(char *url) outermost container is not an object\n"));
}

TEST_F(SceneLoaderDsetTest, BrokenDatasetsAreRefused)
{
    const std::string base = compile("good", generatedActor(6));
    const std::string good = readFile(base + ".dsetBin");
    const std::string relink = readFile(base + ".relinkBin");
    uint32_t root;
    memcpy(&root, &good[8], 4);
    const uint32_t celsField = root + offsetof(tDsetActor, cels);
    uint32_t firstCel;
    memcpy(&firstCel, &good[celsField], 4);

    struct tCase
    {
        const char* name;
        std::function<void(std::string&, std::string&)> damage;
    };
    const tCase cases[] = {
        {"truncated", [](std::string& d, std::string&) { d.resize(d.size() / 2); }},
        {"header only", [](std::string& d, std::string&) { d.resize(12); }},
        {"pointer past the end", [&](std::string& d, std::string&) {
             const uint32_t far = static_cast<uint32_t>(d.size()) + 64;
             memcpy(&d[celsField], &far, 4);
         }},
        {"cel count past the end", [&](std::string& d, std::string&) {
             const uint32_t many = 1000000;
             memcpy(&d[root + offsetof(tDsetActor, celCount)], &many, 4);
         }},
        {"billboard count past the end", [&](std::string& d, std::string&) {
             const uint32_t many = 0x7FFFFFFF;
             memcpy(&d[firstCel + offsetof(tDsetSpriteCel, billboardCount)], &many, 4);
         }},
        {"operation count wraps", [&](std::string& d, std::string&) {
             const uint32_t many = 0xFFFFFFFF;
             memcpy(&d[firstCel + offsetof(tDsetSpriteCel, operationCount)], &many, 4);
         }},
        {"not an actor", [&](std::string& d, std::string&) { d[root] ^= 0xFF; }},
        {"relink offset outside", [](std::string& d, std::string& r) {
             const uint32_t far = static_cast<uint32_t>(d.size());
             r.append(reinterpret_cast<const char*>(&far), 4);
         }},
        {"missing relink file", [](std::string&, std::string& r) { r.clear(); r.push_back(1); }},
    };
    for (const tCase& c : cases) {
        std::string d = good, r = relink;
        c.damage(d, r);
        const std::string path = dir + "/broken.dsetBin";
        writeFile(path, d);
        writeFile(dir + "/broken.relinkBin", r);
        if (std::string(c.name) == "missing relink file")
            std::remove((dir + "/broken.relinkBin").c_str());
        AssertCapture asserts;
        DebugCapture debug;
        boost::shared_ptr<CActor2D> actor(new CActor2D());
        const bool loaded = actor->loadDset(path, 0, 0);
        EXPECT_FALSE(loaded) << c.name;
        EXPECT_FALSE(asserts.entries().empty()) << c.name << ": refused without a message";
        actor->update(100);
    }
}

} // namespace
