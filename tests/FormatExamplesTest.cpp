#include "TestSupport.h"

#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "CSceneLoaderJson.h"
#include "CTextureSheet.h"
#include "DsetCompiler.h"

namespace {

enum tFormat { SCENE, ACTOR, SHEET, COSTUME };

/// An example of examples/formats, its loader and how much it must load:
/// scene entries, actor cels, sheet pictures or costume components.
struct tExample
{
    const char* file;
    tFormat format;
    unsigned int loaded;
};

const tExample kExamples[] = {
    {"scene.json", SCENE, 5},
    {"actor.json", ACTOR, 4},
    {"actor.dsetBin", ACTOR, 4},
    {"sheet.json", SHEET, 4},
    {"costume.json", COSTUME, 2},
};

using FormatExamplesTest = GLTest;

TEST_F(FormatExamplesTest, EachLoadsCleanly)
{
    const std::string dir = examplesPath("formats/");
    for (const tExample& e : kExamples) {
        SCOPED_TRACE(e.file);
        AssertCapture asserts;
        DebugCapture debug;
        CTextureSheet sheet(dir + "sheet.json");
        AvatarCostume costume;
        costume.addFromFile(dir + "costume.json", 0, 0);
        unsigned int loaded = 0;
        if (e.format == SCENE) {
            CSceneLoaderJson loader;
            loader.setTextureSheet(&sheet);
            loader.setCostume(&costume);
            loader.setDefaultPath(dir);
            loaded = loader.parseJsonFile((dir + e.file).c_str()).size();
        } else if (e.format == ACTOR) {
            CActor2D actor;
            EXPECT_TRUE(actor.loadFile(dir + e.file, &costume, &sheet));
            EXPECT_EQ(actor.getAnimationMap().size(), 2u);
            loaded = actor.getCelCount();
        } else if (e.format == SHEET) {
            loaded = sheet.getElementCount();
            EXPECT_TRUE(sheet.getElement("plank").texture);
        } else {
            ASSERT_EQ(costume.getLODs().size(), 1u);
            loaded = costume.getLODs()[0].components.size();
        }
        EXPECT_EQ(loaded, e.loaded);
        EXPECT_TRUE(asserts.messages().empty()) << asserts.messages()[0];
        for (const char* failure : {"failed to open", "ID number is wrong"})
            for (const DebugCapture::tEntry& m : debug.entries())
                EXPECT_EQ(m.text.find(failure), std::string::npos) << m.text;
    }
}

TEST_F(FormatExamplesTest, DatasetIsTheCompiledActor)
{
    const std::string base = scratchDir("format-examples") + "/actor";
    std::string error;
    DsetCompiler::tKind kind;
    ASSERT_TRUE(DsetCompiler::compileFile(examplesPath("formats/actor.json"), base, kind, error)) << error;
    for (const char* extension : {".dsetBin", ".relinkBin"})
        EXPECT_EQ(readFile(base + extension), readFile(examplesPath("formats/actor") + extension))
            << "examples/formats/actor" << extension << " is older than actor.json: compile it again";
}

} // namespace
