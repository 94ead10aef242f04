#include "Importer.h"

#include "Aseprite.h"
#include "ImportLimits.h"
#include "JsonFields.h"
#include "MapImporter.h"
#include "OutputSet.h"

#include <cstdio>
#include <fstream>
#include <sys/stat.h>

namespace {

enum class eKind { Aseprite, TiledJson, Tmx, Tileset, Unknown };

eKind detect(const std::string& text, const JsonDocument& doc)
{
    size_t i = text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    while (i < text.size() && isspace(static_cast<unsigned char>(text[i])))
        ++i;
    if (i < text.size() && text[i] == '<') {
        // The root element's name decides.
        size_t at = i;
        while ((at = text.find('<', at)) != std::string::npos) {
            const char next = at + 1 < text.size() ? text[at + 1] : 0;
            if (next != '?' && next != '!')
                break;
            ++at;
        }
        if (at != std::string::npos && text.compare(at, 4, "<map") == 0)
            return eKind::Tmx;
        if (at != std::string::npos && text.compare(at, 8, "<tileset") == 0)
            return eKind::Tileset;
        return eKind::Unknown;
    }
    if (isAsepriteSheet(doc.root()))
        return eKind::Aseprite;
    if (isTiledJsonMap(doc.root()))
        return eKind::TiledJson;
    const Json::Value& type = JsonFields::at(doc.root(), "type");
    if (type.isString() && type.asString() == "tileset")
        return eKind::Tileset;
    return eKind::Unknown;
}

/// The sheet, its pages and then NAME.json, the commit point, as one set that replaces no input.
bool writeOutputs(const tImportOptions& options, const SheetPacker::tSheet& sheet, const std::string& base,
                  const tImportResult& result, std::vector<std::string>& errors)
{
    OutputSet out;
    out.protect(options.input);
    std::string temp;
    if (out.open(options.outDir) && SheetPacker::write(sheet, base + "-sheet", out, errors) &&
        !(temp = out.add(base + ".json")).empty()) {
        std::ofstream file(temp, std::ios::binary);
        if (!(file << result.content) || !file.flush()) {
            errors.push_back(base + ".json:1:1: error: cannot be written");
            return false;
        }
        file.close();
        if (out.commit())
            return true;
    }
    if (!out.errorFile().empty())
        errors.push_back(out.errorFile() + ":1:1: error: " + out.errorMessage());
    return false;
}

// Reads the input and makes its pictures and content; false when refused.
bool importInput(const tImportOptions& options, const std::string& name, tImportResult& result, Diagnostics& diag)
{
    std::string text, why;
    if (!readTextFile(options.input, text, why, ImportLimits::MAX_FILE_BYTES)) {
        diag.error(options.input, 1, 1, why);
        return false;
    }
    JsonDocument doc;
    const size_t first = text.find_first_not_of(" \t\r\n");
    const bool looksJson = first != std::string::npos && text[first] == '{';
    if (looksJson && !doc.load(options.input, diag))
        return false;
    tTiledMap map;
    switch (detect(text, doc)) {
    case eKind::Aseprite: {
        tAsepriteOptions a;
        a.name = name;
        a.once = options.once;
        return importAseprite(doc, a, result, diag);
    }
    case eKind::TiledJson:
    case eKind::Tmx:
        return (looksJson ? readTiledJsonMap(doc, map, diag) : readTmxMap(options.input, map, diag)) &&
               importTiledMap(map, result, diag);
    case eKind::Tileset:
        diag.error(options.input, 1, 1, "a tileset alone is not imported: import a map that uses it");
        return false;
    case eKind::Unknown:
        break;
    }
    diag.error(options.input, 1, 1,
               "neither an Aseprite sprite sheet (JSON with \"frames\" and \"meta\") nor a Tiled map "
               "(.tmx, or JSON with \"layers\" and \"tilesets\")");
    return false;
}

} // namespace

int runImport(const tImportOptions& options, Diagnostics& diag, std::vector<std::string>& report)
{
    const std::string name = options.name.empty() ? stemOf(options.input) : options.name;
    tImportResult result;
    if (!importInput(options, name, result, diag) || diag.failed())
        return 1;

    std::vector<SheetPacker::tPicture> pictures;
    for (tImportPicture& p : result.pictures) {
        SheetPacker::tPicture picture;
        picture.name = p.name;
        picture.source = options.input;
        picture.image = std::move(p.image);
        picture.regX = p.regX;
        picture.regY = p.regY;
        pictures.push_back(std::move(picture));
    }
    const std::string base = options.outDir + "/" + name;
    SheetPacker::tOptions pack = options.pack;
    pack.output = base + "-sheet";
    SheetPacker::tSheet sheet;
    std::vector<std::string> errors;
    if (!SheetPacker::pack(pictures, pack, sheet, errors) || !writeOutputs(options, sheet, base, result, errors)) {
        for (const std::string& e : errors)
            diag.addLine(e);
        return 1;
    }
    report.push_back(base + ".json: " + result.kind + ", " + base + "-sheet.json: " +
                     std::to_string(sheet.pictures.size()) + " pictures on " + std::to_string(sheet.pages.size()) +
                     (sheet.pages.size() == 1 ? " page" : " pages"));
    for (const std::string& note : result.notes)
        report.push_back("  " + note);
    return 0;
}
