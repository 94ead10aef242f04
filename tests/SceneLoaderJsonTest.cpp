#include "TestSupport.h"

#include "CActor2D.h"
#include "CBillboard.h"
#include "CSceneLoaderJson.h"
#include "CSprite.h"
#include "CSpriteCel.h"

#include <algorithm>

namespace {

/// Loads scene text from a scratch file.
class SceneLoaderJsonTest : public GLTest
{
protected:
    CSceneLoaderJson::tElementList load(const std::string& text) { return load(text, loader); }
    CSceneLoaderJson::tElementList load(const std::string& text, CSceneLoaderJson& into)
    {
        const std::string path = scratchDir("scene-json") + "/scene.json";
        writeFile(path, text);
        into.setDefaultPath(examplesPath("art/"));
        return into.parseJsonFile(path.c_str());
    }
    CSceneLoaderJson loader;
};

TEST_F(SceneLoaderJsonTest, DefinitionNumbers)
{
    DebugCapture debug;
    CSceneLoaderJson::tElementList e = load(R"([
        {"ElementType": 0, "ID": 0, "URL": "missing.png", "Position": [1.0, 2.0]},
        {"ElementType": 0, "ID": 0, "Position": [9.0, 9.0]},
        {"ElementType": 0, "ID": 5, "URL": "missing.png"},
        {"ElementType": 0, "ID": -1, "URL": "missing.png"},
        {"ElementType": 6, "ID": 0},
        {"ElementType": 0, "ID": 1}
    ])");
    ASSERT_EQ(e.size(), 6u);
    EXPECT_EQ(e[0], e[1]) << "an earlier definition is the same object";
    EXPECT_EQ(e[0]->getPos(), (tVect3{tFixed(1), tFixed(2), ZERO_X})) << "the reference's keys are not read";
    EXPECT_NE(e[2], e[0]);
    EXPECT_TRUE(debug.has(3, "CSceneLoaderJson::parseBillboard ID number is wrong, got 5, expected 1\n"));
    EXPECT_TRUE(debug.has(3, "CSceneLoaderJson::parseBillboard ID number is wrong, got -1, expected 2\n"));
    EXPECT_FALSE(e[4]) << "an unknown element type gives an empty entry";
    EXPECT_EQ(e[5], e[2]) << "the wrongly numbered billboard became number 1";
}

TEST_F(SceneLoaderJsonTest, NumbersTruncateTowardZero)
{
    CSceneLoaderJson::tElementList e = load(R"([
        {"ElementType": 1, "ID": 0, "Position": [1.5, -0.25, 3.0], "Rotation": 45.5, "Scale": [2.0, 0.5],
         "Reg": [0.00001, -0.00001], "Color": [10, 20, 30, 40]}
    ])");
    ASSERT_EQ(e.size(), 1u);
    EXPECT_EQ(e[0]->getX().raw(), 0x18000);
    EXPECT_EQ(e[0]->getY().raw(), static_cast<int32_t>(0xFFFFC000u));
    EXPECT_EQ(e[0]->getZ().raw(), 0x30000);
    EXPECT_EQ(e[0]->getRotation().raw(), 0x2D8000);
    EXPECT_EQ(e[0]->getScale(), (tVect2{tFixed(2), ONE_HALF_X}));
    EXPECT_EQ(e[0]->getReg(), VECT2_0) << "fractions below 1/65536 truncate to 0";
    EXPECT_EQ(e[0]->getColor(), (tColor{10, 20, 30, 40}));
}

TEST_F(SceneLoaderJsonTest, OpargsAreCutToSixteenBits)
{
    const struct { const char* oparg; int opcode; unsigned short expected; } cases[] = {
        {"7", 3, 7}, {"-1", 3, 0xFFFF}, {"70000", 4, 70000 & 0xFFFF}, {"-2", 5, 0xFFFE}, {"[\"a.wav\"]", 5, 0},
    };
    for (const auto& c : cases) {
        CSceneLoaderJson fresh;
        const std::string text = std::string(R"([{"ElementType": 2, "ID": 0, "Duration": 5, "Operations": [{"Opcode": )") +
            std::to_string(c.opcode) + R"(, "Oparg": )" + c.oparg + "}]}]";
        CSceneLoaderJson::tElementList e = load(text, fresh);
        ASSERT_EQ(e.size(), 1u) << c.oparg;
        const CSpriteCel* cel = dynamic_cast<const CSpriteCel*>(e[0].get());
        ASSERT_TRUE(cel) << c.oparg;
        tOperationList::const_iterator begin, end;
        cel->getEnterOpcodeIterators(begin, end);
        ASSERT_EQ(end - begin, 1) << c.oparg;
        EXPECT_EQ(begin->oparg, c.expected) << c.oparg;
    }
}

// Paths that the files of tests/data/broken do not take. An actor cel's label
// is checked before the cel: those rows give exactly their messages, in order.
TEST_F(SceneLoaderJsonTest, BrokenScenesGiveTheirMessages)
{
    const struct { const char* name; const char* text; std::vector<std::string> messages; bool exact; } cases[] = {
        {"billboard without id or url", R"([{"ElementType": 0}])",
         {"CSceneLoaderJson::parseBillboard no ID number", "CSceneLoaderJson::parseBillboard ID is not an integer",
          "CSceneLoaderJson::parseBillboard no URL", "CSceneLoaderJson::parseBillboard URL is not a string"}, false},
        {"color short", R"([{"ElementType": 1, "ID": 0, "Color": [1, 2.5, 3]}])",
         {"CSceneLoaderJson::parseGraphicElementPortion color does not have 4 elements",
          "CSceneLoaderJson::parseGraphicElementPortion color second element is not int",
          "CSceneLoaderJson::parseGraphicElementPortion color forth element is not int"}, false},
        {"sprite id", R"([{"ElementType": 1}])",
         {"CSceneLoaderJson::parseSprite no ID number", "CSceneLoaderJson::parseSprite ID is not an integer"}, false},
        {"piece without costume", R"([{"ElementType": 4, "ID": 0}])",
         {"CSceneLoaderJson::parseBillboard - no costume defined, probably tried to load with parseSpritePortion",
          "CSceneLoaderJson::parseAvatarPiece no Component.", "CSceneLoaderJson::parseAvatarPiece no Variation."}, false},
        {"label number, no duration", R"([{"ElementType": 3, "ID": 0, "Animation": [{"ID": 0, "Label": 4}]}])",
         {"CSceneLoaderJson::parseActor2D SpriteCel 0 Label is not a string",
          "CSceneLoaderJson::parseSpriteCel no member Duration",
          "CSceneLoaderJson::parseSpriteCel Duration is not an unsigned int"}, true},
        {"second cel, label array, no id",
         R"([{"ElementType": 3, "ID": 0, "Animation": [{"ID": 0, "Duration": 1, "Label": "a"}, {"Duration": 1, "Label": []}]}])",
         {"CSceneLoaderJson::parseActor2D SpriteCel 1 Label is not a string",
          "CSceneLoaderJson::parseSpriteCel no ID number", "CSceneLoaderJson::parseSpriteCel ID is not an integer"}, true},
        {"string label, no duration", R"([{"ElementType": 3, "ID": 0, "Animation": [{"ID": 0, "Label": "walk"}]}])",
         {"CSceneLoaderJson::parseSpriteCel no member Duration",
          "CSceneLoaderJson::parseSpriteCel Duration is not an unsigned int"}, true},
    };
    for (const auto& c : cases) {
        AssertCapture asserts;
        CSceneLoaderJson fresh;
        load(c.text, fresh);
        if (c.exact) {
            EXPECT_EQ(asserts.messages(), c.messages) << c.name;
        }
        for (const std::string& m : c.messages)
            EXPECT_TRUE(asserts.has(m)) << c.name << ": missing \"" << m << "\"";
        for (const std::string& m : asserts.messages())
            EXPECT_TRUE(std::count(c.messages.begin(), c.messages.end(), m) || m.find("CBillboard") != std::string::npos ||
                        m.find("CTexturePNG") != std::string::npos) << c.name << ": unexpected \"" << m << "\"";
    }
}

TEST_F(SceneLoaderJsonTest, NamesFindTheirElements)
{
    const CSceneLoaderJson::tElementList e = load(R"([
      {"ElementType": 0, "ID": 0, "URL": "tree_pal8.png", "Name": "tree"},
      {"ElementType": 1, "ID": 0, "Name": "group", "Children": [
        {"ElementType": 0, "ID": 1, "URL": "ball_pal4.png", "Name": "ball"}]},
      {"ElementType": 0, "ID": 0, "Name": "not read: a reference"},
      {"ElementType": 3, "ID": 0, "Name": "walker", "Animation": [{"ID": 0, "Duration": 9, "Name": "first cel"}]},
      {"ElementType": 3, "ID": 0, "Name": "second walker", "Position": [5.0, 0.0]}
    ])");
    ASSERT_EQ(e.size(), 5u);
    const struct { const char* name; boost::shared_ptr<CGraphicElement> want; } cases[] = {
        {"tree", e[0]}, {"group", e[1]}, {"walker", e[3]}, {"second walker", e[4]},
        {"not read: a reference", boost::shared_ptr<CGraphicElement>()}, {"nobody", boost::shared_ptr<CGraphicElement>()},
    };
    for (const auto& c : cases)
        EXPECT_EQ(loader.find(c.name), c.want) << c.name;
    EXPECT_TRUE(boost::dynamic_pointer_cast<CBillboard>(loader.find("ball")));
    EXPECT_TRUE(boost::dynamic_pointer_cast<CSpriteCel>(loader.find("first cel")));

    const std::string actorFile = scratchDir("scene-json") + "/named-actor.json";
    writeFile(actorFile, R"({"Name": "hero", "Animation": [{"ID": 0, "Duration": 9}]})");
    CActor2D hero(actorFile, 0, 0);
    EXPECT_EQ(hero.getName(), "hero");
    EXPECT_EQ(CActor2D(hero).getName(), "hero");
    EXPECT_EQ(CActor2D().getName(), "");
}

} // namespace
