#include "TestSupport.h"

#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "CLoadReport.h"
#include "CSceneLoaderJson.h"
#include "CTextureSheet.h"

#include <boost/make_shared.hpp>

namespace {

class LoadReportTest : public GLTest
{
protected:
    /// Loads path the way a program would, by the kind its name starts with or the options given.
    std::vector<tLoadProblem> load(const std::string& path, const std::string& kind, const char* sheetFile = 0,
                                   const char* costumeFile = 0)
    {
        AssertCapture quiet;
        DebugCapture quietDebug;
        CTextureSheet sheet;
        if (sheetFile)
            sheet.addFromJson(testDataPath(std::string("check/") + sheetFile));
        AvatarCostume costume;
        if (costumeFile)
            costume.addFromFile(testDataPath(std::string("check/") + costumeFile), 0, 0);
        const uint64_t after = CLoadReport::mark();
        if (kind == "sheet") {
            CTextureSheet loaded(path);
        } else if (kind == "costume") {
            AvatarCostume loaded;
            loaded.addFromFile(path, 0, 0);
        } else if (kind == "actor" || kind == "dataset") {
            CActor2D actor(path, costumeFile ? &costume : 0, sheetFile ? &sheet : 0);
        } else {
            CSceneLoaderJson loader;
            loader.setTextureSheet(sheetFile ? &sheet : 0);
            loader.setCostume(costumeFile ? &costume : 0);
            loader.setDefaultPath(path.substr(0, path.rfind('/') + 1) + (path.find("default-path") != std::string::npos ? "art" : ""));
            loader.parseJsonFile(path.c_str());
        }
        return CLoadReport::since(after);
    }
};

bool mentions(const std::vector<tLoadProblem>& problems, const std::string& file, tLoadProblem::tReason reason,
              const std::string& words)
{
    for (const tLoadProblem& p : problems)
        if (p.file == file && p.reason == reason && CLoadReport::describe(p).find(words) != Glib::ustring::npos)
            return true;
    return false;
}

// The rows of the checker's table, with what was asked for and why. The
// relink file listing a field that is no pointer loads all the same: only the
// checker can tell.
TEST_F(LoadReportTest, CheckerTableRowsGiveWhatWasAskedAndWhy)
{
    const tLoadProblem::tReason BAD = tLoadProblem::BAD_CONTENT, GONE = tLoadProblem::NOT_FOUND,
                                REFUSED = tLoadProblem::REFUSED_IMAGE, NO_PICTURE = tLoadProblem::PICTURE_MISSING;
    struct
    {
        const char* file;
        const char* kind;
        const char* sheet;
        const char* costume;
        tLoadProblem::tReason reason;
        const char* words;
    } rows[] = {
        {"postion.json", "scene", 0, 0, BAD, "unknown key \"Postion\" in a billboard"},
        {"types.json", "scene", 0, 0, BAD, "Rotation not a double"},
        {"images.json", "scene", 0, 0, GONE, "nothere.png\" not found"},
        {"images.json", "scene", 0, 0, REFUSED, "notpng.png\" refused: CTexturePNG: libpng error: Not a PNG file"},
        {"images.json", "scene", 0, 0, REFUSED, "grey.png\" refused: CTexturePNG: Unsupported PNG type 0"},
        {"ids.json", "scene", 0, 0, BAD, "ID number is wrong, got 5, expected 1"},
        {"lable.json", "actor", 0, 0, BAD, "unknown key \"Lable\" in a sprite cel"},
        {"lable.json", "actor", 0, 0, BAD, "duplicate animation name walk"},
        {"scene-actor.json", "scene", 0, 0, BAD, "unknown key \"Children\" in an actor"},
        {"sheet-broken.json", "sheet", 0, 0, GONE, "missing.png\" not found"},
        {"costume.json", "costume", 0, 0, GONE, "not found"},
        {"no-costume.json", "scene", 0, 0, BAD, "no costume defined"},
        {"truncated.dsetBin", "dataset", 0, 0, BAD, "shorter than the 12-byte header"},
        {"sheet-names.json", "scene", "sheet.json", 0, NO_PICTURE, "picture \"coinn\" is not in the texture sheet"},
        {"sheet-names.json", "scene", "sheet.json", 0, GONE, "coinn\" not found"},
        {"pieces.json", "scene", 0, "dress.json", BAD, "pieces.json"},
        {"default-path.json", "scene", 0, 0, GONE, "artok.png\" not found"},
    };
    for (const auto& r : rows) {
        const std::string path = testDataPath(std::string("check/") + r.file);
        EXPECT_TRUE(mentions(load(path, r.kind, r.sheet, r.costume), path, r.reason, r.words)) << r.file << ": " << r.words;
    }
    // Found as a file after all: the sheet's miss is no problem; and nothing is kept that was not asked since.
    std::vector<tLoadProblem> fine = load(testDataPath("check/sheet-names.json"), "scene", "sheet.json");
    EXPECT_FALSE(mentions(fine, testDataPath("check/sheet-names.json"), NO_PICTURE, "\"coin\""));
    EXPECT_TRUE(CLoadReport::since(CLoadReport::mark()).empty());
}

} // namespace
