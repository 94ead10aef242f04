#include "TestSupport.h"

#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "CDrawManager.h"
#include "CGraphics2D.h"
#include "CLoadReport.h"
#include "CSceneLoaderJson.h"
#include "CTextureSheet.h"

#include <gmock/gmock.h>
#include <memory>

namespace {

enum tLoader { SCENE, COSTUME, SHEET, ACTOR };

/// A file of tests/data/broken, the loader it is meant for, every assertion
/// it must raise (all of them, in any order), debug messages it must give,
/// and how much still loads: scene entries, costume LODs or actor cels (-1:
/// not checked).
struct tCase
{
    const char* file;
    tLoader loader;
    std::vector<std::string> asserts;
    std::vector<std::string> debug;
    int loaded;
};

const char* const NOT_ARRAY = "CSceneLoaderJson::parseJsonValue outermost container is not an array";
const char* const NOT_OBJECT = "CSceneLoaderJson::parseJsonValue value is not an object";
const char* const NO_TYPE = "CSceneLoaderJson::parseJsonValue value does not have a ElementType";
const char* const TYPE_NOT_INT = "CSceneLoaderJson::parseJsonValue value ElementType is not an int";
const char* const CEL_NO_ID = "CSceneLoaderJson::parseSpriteCel no ID number";
const char* const CEL_ID_NOT_INT = "CSceneLoaderJson::parseSpriteCel ID is not an integer";
const char* const NO_DURATION = "CSceneLoaderJson::parseSpriteCel no member Duration";
const char* const BAD_DURATION = "CSceneLoaderJson::parseSpriteCel Duration is not an unsigned int";
const char* const NO_ANIMATION = "CSceneLoaderJson::parseActor2D no member Animation";
const char* const ANIMATION_NOT_ARRAY = "CSceneLoaderJson::parseActor2D Animation is not array";
const char* const ACTOR_NOT_OBJECT = "CActor2D::loadJson(char *url) outermost container is not an object\n";
const std::string GE = "CSceneLoaderJson::parseGraphicElementPortion ";

const tCase kCases[] = {
    // Scenes.
    {"scene-empty.json", SCENE, {NOT_ARRAY}, {}, 0},
    {"scene-not-json.json", SCENE, {NOT_ARRAY}, {}, 0},
    {"scene-truncated.json", SCENE, {NOT_ARRAY}, {}, 0},
    {"scene-object-root.json", SCENE, {NOT_ARRAY}, {}, 0},
    {"scene-deep-arrays.json", SCENE, {NOT_ARRAY}, {}, 0},
    {"scene-deep-unclosed.json", SCENE, {NOT_ARRAY}, {}, 0},
    {"scene-entries-not-objects.json", SCENE,
     {NOT_OBJECT, NO_TYPE, TYPE_NOT_INT, NOT_OBJECT, NO_TYPE, TYPE_NOT_INT, NOT_OBJECT, NO_TYPE, TYPE_NOT_INT}, {}, 3},
    {"scene-no-element-type.json", SCENE, {NO_TYPE, TYPE_NOT_INT}, {}, 1},
    {"scene-element-type-mistyped.json", SCENE, {TYPE_NOT_INT, TYPE_NOT_INT}, {}, 2},
    {"scene-unknown-element-types.json", SCENE, {}, {}, 3},
    {"scene-bad-ids.json", SCENE,
     {"CSceneLoaderJson::parseBillboard ID is not an integer", "CSceneLoaderJson::parseBillboard ID is not an integer",
      "CSceneLoaderJson::parseBillboard ID is not an integer"},
     {"CSceneLoaderJson::parseBillboard ID number is wrong, got 2, expected 1\n",
      "CSceneLoaderJson::parseBillboard ID number is wrong, got 7, expected 2\n",
      "CSceneLoaderJson::parseBillboard ID number is wrong, got -3, expected 3\n"},
     5},
    {"scene-billboard-wrong-types.json", SCENE,
     {GE + "Position is not Array", GE + "invalid number of elements for position", GE + "Rotation not a double",
      GE + "Scale is not Array", GE + "Scale is not 2 double", GE + "Scale first item not a double",
      GE + "Scale second item not a double", GE + "reg_point is not Array", GE + "reg_point does not have 2 elements",
      GE + "reg_point first element not double", GE + "reg_point second element not double",
      GE + "color is not Array", GE + "color does not have 4 elements", GE + "color first element is not int",
      GE + "color second element is not int", GE + "color third element is not int",
      // With no URL the name is the default path alone, a directory: it counts
      // as missing, so the billboard shows the placeholder.
      GE + "color forth element is not int", "CSceneLoaderJson::parseBillboard URL is not a string"},
     {}, 1},
    {"scene-graphic-items-wrong.json", SCENE,
     {GE + "position 2 first item not a double 4", GE + "position 2 second item not a double 5",
      GE + "position 3 first item not a double", GE + "position 3 third item not a double",
      GE + "Scale second item not a double", GE + "reg_point first element not double",
      GE + "invalid number of elements for position", GE + "Scale is not 2 double",
      GE + "Scale second item not a double", GE + "reg_point does not have 2 elements",
      GE + "color second element is not int", GE + "color forth element is not int"},
     {}, 3},
    {"scene-sprite-wrong-types.json", SCENE,
     {"CSceneLoaderJson::parseSprite ID is not an integer", "CSceneLoaderJson::parseSpritePortion Children is not an array",
      NOT_OBJECT, NO_TYPE, TYPE_NOT_INT},
     {}, 2},
    {"scene-cel-wrong-types.json", SCENE,
     {BAD_DURATION, "CSceneLoaderJson::parseSpriteCel Operation 0 Opcode is not an int",
      "CSceneLoaderJson::parseSpriteCel Operation 1 Oparg is not an int",
      "CSceneLoaderJson::parseSpriteCel Operation 2, Play Audio Oparg is not an Int or an Array",
      "CSceneLoaderJson::parseSpriteCel Operation 3, Play Audio Oparg First element not a String",
      "CSceneLoaderJson::parseSpriteCel Operation 3, Play Audio Oparg Second element not a String",
      "CSceneLoaderJson::parseSpriteCel Operation 4, Play Audio Oparg Array is not size 1 or 2", BAD_DURATION,
      BAD_DURATION},
     {}, 3},
    {"scene-cel-missing-keys.json", SCENE,
     {CEL_NO_ID, CEL_ID_NOT_INT, NO_DURATION, BAD_DURATION,
      "CSceneLoaderJson::parseSpriteCel Operation 0 no member Opcode",
      "CSceneLoaderJson::parseSpriteCel Operation 0 Opcode is not an int",
      "CSceneLoaderJson::parseSpriteCel Operation 1 no member Opcode",
      "CSceneLoaderJson::parseSpriteCel Operation 1 Opcode is not an int"},
     {}, 2},
    {"scene-actor-wrong-types.json", SCENE,
     {ANIMATION_NOT_ARRAY, "CSceneLoaderJson::parseActor2D SpriteCel 0 Label is not a string", CEL_NO_ID,
      CEL_ID_NOT_INT},
     {}, 2},
    // An actor without ID reports it with the sprite cel's words.
    {"scene-actor-missing-keys.json", SCENE,
     {CEL_NO_ID, CEL_ID_NOT_INT, NO_ANIMATION, ANIMATION_NOT_ARRAY, NO_ANIMATION, ANIMATION_NOT_ARRAY}, {}, 2},
    {"scene-piece-wrong.json", SCENE,
     {"CSceneLoaderJson::parseAvatarPiece no Component.", "CSceneLoaderJson::parseAvatarPiece no Variation.",
      "CAvatarCostume::getAvatarTexturePiece - Could not find component .\n",
      "CAvatarCostume::getAvatarTexturePiece - Could not find component .\n",
      "CAvatarCostume::getAvatarTexturePiece - Could not find component tail.\n"},
     {"CAvatarCostume::getAvatarTexturePiece - could not find variation square of component head.  Falling back on "
      "variation 0.\n"},
     4},
    {"scene-missing-art.json", SCENE, {},
     {"CTexturePNG::LoadPNG() failed to open file: " + testDataPath("broken/no-such-picture.png") + "\n"}, 1},
    {"scene-deep-sprites.json", SCENE, {}, {}, 1},

    // Costumes, asked for the LODs 32, 64 and 128.
    {"costume-empty.json", COSTUME, {}, {"loading LODs... (0 total)\n"}, 0},
    {"costume-not-json.json", COSTUME, {}, {"loading LODs... (0 total)\n"}, 0},
    {"costume-array-root.json", COSTUME, {}, {"loading LODs... (0 total)\n"}, 0},
    // Members of a mistyped list read as empty objects: an LOD of size 0 with the placeholder picture.
    {"costume-wrong-types.json", COSTUME, {}, {"CTexturePNG::LoadPNG() failed to open file: \n"}, 1},
    {"costume-lod-wrong-types.json", COSTUME, {}, {"loading LODs... (2 total)\n"}, 1},
    {"costume-variation-wrong-types.json", COSTUME, {},
     {"CTexturePNG::LoadPNG() failed to open file: " + testDataPath("broken/no-such-texture.png") + "\n"}, 1},
    {"costume-missing-keys.json", COSTUME, {}, {"loading LODs... (2 total)\n"}, 1},
    // 32, 64 and 128 all map to the largest size, 99999.
    {"costume-odd-sizes.json", COSTUME, {}, {"loading LODs... (3 total)\n"}, 1},

    // Texture sheets.
    {"sheet-empty.json", SHEET, {}, {"loading Bitmaps... (0 total)\n"}, -1},
    {"sheet-not-json.json", SHEET, {}, {"loading Bitmaps... (0 total)\n"}, -1},
    {"sheet-array-root.json", SHEET, {}, {"loading Bitmaps... (0 total)\n"}, -1},
    {"sheet-wrong-types.json", SHEET, {}, {"loading Bitmaps... (2 total)\n"}, -1},
    {"sheet-image-wrong-types.json", SHEET, {},
     {"CTexturePNG::LoadPNG() failed to open file: " + testDataPath("broken/no-such-sheet.png") + "\n"}, -1},
    {"sheet-missing-keys.json", SHEET, {}, {"loading Bitmaps... (2 total)\n"}, -1},

    // Actor files.
    {"actor-empty.json", ACTOR, {ACTOR_NOT_OBJECT}, {}, 0},
    {"actor-not-json.json", ACTOR, {ACTOR_NOT_OBJECT}, {}, 0},
    {"actor-array-root.json", ACTOR, {ACTOR_NOT_OBJECT}, {}, 0},
    {"actor-no-animation.json", ACTOR, {"CActor2D::loadJson(char *url) no member Animation\n"}, {}, 0},
    {"actor-animation-not-array.json", ACTOR, {"CActor2D::loadJson(char *url) Animation is not array\n"}, {}, 0},
    {"actor-wrong-types.json", ACTOR,
     {GE + "Position is not Array", GE + "invalid number of elements for position", CEL_ID_NOT_INT,
      "CSceneLoaderJson::parseSpritePortion Children is not an array", BAD_DURATION,
      "CSceneLoaderJson::parseSpriteCel Operation 0 Opcode is not an int",
      "CSceneLoaderJson::parseActor2D SpriteCel 0 Label is not a string", CEL_NO_ID, CEL_ID_NOT_INT},
     {}, 2},
    {"actor-bad-ids.json", ACTOR, {"CActor2D::pushBackSpriteCelStart duplicate animation name a\n"},
     {"CSceneLoaderJson::parseSpriteCel ID number is wrong, got 3, expected 0\n",
      "CSceneLoaderJson::parseSpriteCel ID number is wrong, got -1, expected 1\n"},
     3},
    {"actor-deep.json", ACTOR, {}, {}, 1},
};

class BrokenContentTest : public GLTest
{
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        costume.reset(new AvatarCostume);
        costume->addFromJson(examplesPath("demo/kid-costume.json"), lods, 3);
        sheet.reset(new CTextureSheet(examplesPath("art/sheet.json")));
    }
    void TearDown() override
    {
        CDrawManager::Instance()->deleteAll();
        sheet.reset();
        costume.reset();
        GLTest::TearDown();
    }

    /// Loads the file with the loader, adds what loaded to the draw manager
    /// and draws it once; returns the count described in tCase.
    int load(const std::string& path, tLoader loader)
    {
        int loaded = -1;
        if (loader == SCENE) {
            CSceneLoaderJson scene;
            scene.setCostume(costume.get());
            scene.setTextureSheet(sheet.get());
            scene.setDefaultPath(testDataPath("broken/"));
            const CSceneLoaderJson::tElementList elements = scene.parseJsonFile(path.c_str());
            for (const auto& e : elements)
                if (e)
                    CDrawManager::Instance()->add(e);
            loaded = static_cast<int>(elements.size());
        } else if (loader == COSTUME) {
            AvatarCostume c;
            c.addFromJson(path, lods, 3);
            loaded = static_cast<int>(c.getLODs().size());
        } else if (loader == SHEET) {
            CTextureSheet s;
            s.addFromJson(path);
            s.getElement("hero");
        } else {
            boost::shared_ptr<CActor2D> actor(new CActor2D());
            actor->loadJson(path, costume.get(), sheet.get());
            CDrawManager::Instance()->add(actor);
            actor->update(1000);
            loaded = static_cast<int>(actor->getCelCount());
        }
        frame();
        return loaded;
    }

    int lods[3] = {32, 64, 128};
    std::unique_ptr<AvatarCostume> costume;
    std::unique_ptr<CTextureSheet> sheet;
};

// Files given to another loader than their own are just as broken, and survived.
// Every file but the deep ones that load as written (there to be survived) names
// itself in the load report.
TEST_F(BrokenContentTest, EachFileGivesItsMessages)
{
    for (const tCase& c : kCases)
        for (tLoader loader : {SCENE, COSTUME, SHEET, ACTOR}) {
            SCOPED_TRACE(testing::Message() << c.file << " through loader " << loader);
            AssertCapture asserts;
            DebugCapture debug;
            int loaded = -1;
            const std::string path = testDataPath(std::string("broken/") + c.file);
            const uint64_t after = CLoadReport::mark();
            EXPECT_NO_THROW(loaded = load(path, loader));
            if (loader != c.loader)
                continue;
            const std::vector<tLoadProblem> problems = CLoadReport::since(after);
            EXPECT_TRUE(!problems.empty() || (c.loaded == 1 && std::string(c.file).find("deep") != std::string::npos));
            for (const tLoadProblem& p : problems)
                EXPECT_EQ(p.file, path) << CLoadReport::describe(p);
            EXPECT_THAT(asserts.messages(), ::testing::UnorderedElementsAreArray(c.asserts));
            for (const std::string& m : c.debug)
                EXPECT_TRUE(debug.has(m)) << "missing debug message \"" << m << "\"";
            if (c.loaded >= 0) {
                EXPECT_EQ(loaded, c.loaded);
            }
        }
}

} // namespace
