// zephrin2d-pack: packs loose PNG pictures into a texture sheet.
#include "CommandLine.h"
#include "JsonDocument.h"
#include "OutputSet.h"
#include "Paths.h"
#include "SheetPacker.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

static const char* const kAbout =
    "Packs PNG pictures (files, or folders searched for *.png) into power-of-two\n"
    "pages and writes the texture sheet NAME.json with its pages NAME-0.png, ...\n"
    "A picture's name is its path relative to the folder given, or its file\n"
    "name, without \".png\".\n";

static const char* const kEpilog =
    "The sidecar NAME.reg.json, when it exists, maps picture names to points:\n"
    "{\"hero/idle\": [16, 30]}, in pixels from the image's top-left corner.\n"
    "\n"
    "Exit status: 0 success, 1 bad input (nothing is written), 2 bad usage.\n";

static bool isPNGFile(const fs::path& path)
{
    std::string ext = path.extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(), ::tolower);
    return ext == ".png";
}

/// Reads one picture; the message names the file when it is not a readable PNG.
static bool readPicture(const fs::path& path, const std::string& name, std::vector<SheetPacker::tPicture>& pictures,
                        std::vector<std::string>& errors)
{
    SheetPacker::tPicture p;
    p.name = name;
    p.source = path.string();
    std::string error;
    if (!ImageIO::readPNG(p.source, p.image, error)) {
        errors.push_back(p.source + ":1:1: error: " + error);
        return false;
    }
    pictures.push_back(std::move(p));
    return true;
}

static void collect(const std::string& input, std::vector<SheetPacker::tPicture>& pictures,
                    std::vector<std::string>& errors)
{
    std::error_code ec;
    const fs::path root(input);
    if (!fs::is_directory(root, ec)) {
        if (!fs::exists(root, ec))
            errors.push_back(input + ":1:1: error: no such file or folder");
        else
            readPicture(root, root.stem().string(), pictures, errors);
        return;
    }
    std::vector<fs::path> files;
    fs::recursive_directory_iterator it(root, ec), end;
    for (; !ec && it != end; it.increment(ec))
        if (it->is_regular_file(ec) && isPNGFile(it->path()))
            files.push_back(it->path());
    if (ec) {
        errors.push_back(input + ":1:1: error: cannot read the folder: " + ec.message());
        return;
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        fs::path relative = file.lexically_relative(root);
        readPicture(file, relative.replace_extension().generic_string(), pictures, errors);
    }
}

static bool applySidecar(const std::string& path, std::vector<SheetPacker::tPicture>& pictures,
                         std::vector<std::string>& errors)
{
    if (!fs::exists(path))
        return true;
    JsonDocument doc;
    if (!doc.load(path) || !doc.root().isObject()) {
        errors.push_back(path + ":1:1: error: expected a JSON object of picture names and [x, y] points");
        return false;
    }
    bool ok = true;
    for (const std::string& name : doc.memberNamesInFileOrder(doc.root())) {
        const Json::Value& v = doc.root()[name];
        const JsonDocument::tPlace place = doc.place(v);
        const std::string at = path + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
        if (!v.isArray() || v.size() != 2 || !v[0].isInt() || !v[1].isInt()) {
            errors.push_back(at + ": error: the point of \"" + name + "\" must be [x, y] in whole pixels");
            ok = false;
            continue;
        }
        auto p = std::find_if(pictures.begin(), pictures.end(), [&](const SheetPacker::tPicture& q) { return q.name == name; });
        if (p == pictures.end()) {
            errors.push_back(at + ": error: no picture is named \"" + name + "\"");
            ok = false;
            continue;
        }
        p->regX = v[0].asInt();
        p->regY = v[1].asInt();
    }
    return ok;
}

struct tPackOptions
{
    std::vector<std::string> inputs;
    std::string output;
    int reg = 0;  // bottom-left, center
    std::string sidecar;
    SheetPacker::tOptions sheet;
};

static bool parse(int argc, char** argv, tPackOptions& o, int& status)
{
    CommandLine line("zephrin2d-pack", "INPUT... -o NAME", kAbout);
    int palette = 0;
    line.text("--output", "NAME", "the sheet to write (required)", o.output, "-o");
    line.maxSize(o.sheet.maxSize);
    line.number("--padding", "N", "transparent pixels between pictures (2)", 0, 64, o.sheet.padding);
    line.number("--extrude", "N", "repeat each picture's edge pixels N times around it (0)", 0, 64,
                o.sheet.extrude);
    bool noTrim = false;
    line.flag("--no-trim", "keep fully transparent borders", noTrim);
    line.add({"--reg", "", "WHERE",
              "registration point of the pictures that the sidecar\ndoes not name: bottom-left (default) or "
              "center;\nor FILE.json: the sidecar to read instead of NAME.reg.json",
              [&o](const std::string& v) {
                  if (v.size() > 5 && v.compare(v.size() - 5, 5, ".json") == 0)
                      o.sidecar = v;
                  else if (v == "bottom-left" || v == "center")
                      o.reg = v == "center";
                  else
                      return "--reg takes bottom-left, center or a FILE.json, not '" + v + "'";
                  return std::string();
              }});
    line.choice("--palette",
                "auto (default): 4-bit or 8-bit paletted pages when that\nchanges no pixel, else RGBA; 8 or 4: "
                "paletted or an\nerror; off: always RGBA",
                {"auto", "8", "4", "off"}, palette);
    line.operands("input", 1, 100000, o.inputs);
    line.epilog(kEpilog);
    if (!line.parse(argc, argv, status))
        return false;
    if (o.output.empty()) {
        status = line.usageError("no output given (-o NAME)");
        return false;
    }
    o.sheet.trim = !noTrim;
    const SheetPacker::ePalette palettes[] = {SheetPacker::ePalette::Auto, SheetPacker::ePalette::Bits8,
                                              SheetPacker::ePalette::Bits4, SheetPacker::ePalette::Off};
    o.sheet.palette = palettes[palette];
    o.sheet.output = o.output;
    return true;
}

static void printSheet(const SheetPacker::tSheet& sheet, const std::string& output)
{
    for (size_t i = 0; i < sheet.pages.size(); ++i) {
        const SheetPacker::tPage& page = sheet.pages[i];
        const std::string kind = page.paletteBits ? std::to_string(page.paletteBits) + "-bit paletted" : "RGBA";
        printf("%s%s: %dx%d, %s, %s%d colours, GPU bytes %lu before, %lu after\n", directoryOf(output).c_str(),
               SheetPacker::pageName(sheet, i, fileNameOf(output)).c_str(),
               page.image.width, page.image.height, kind.c_str(), page.colours > 256 ? "over " : "",
               std::min(page.colours, 256), page.gpuBytesRGBA, page.gpuBytes);
    }
    printf("%s.json: %zu pictures on %zu pages\n", output.c_str(), sheet.pictures.size(), sheet.pages.size());
}

/// The sheet and its pages as one set that replaces no input.
static bool writeSheet(const tPackOptions& o, const std::vector<SheetPacker::tPicture>& pictures,
                       const SheetPacker::tSheet& sheet, std::vector<std::string>& errors)
{
    OutputSet out;
    for (const SheetPacker::tPicture& p : pictures)
        out.protect(p.source);
    out.protect(o.sidecar);
    if (out.open(directoryOf(o.output)) && SheetPacker::write(sheet, o.output, out, errors) && out.commit())
        return true;
    if (!out.errorFile().empty())
        errors.push_back(out.errorFile() + ":1:1: error: " + out.errorMessage());
    return false;
}

int main(int argc, char** argv)
{
    tPackOptions o;
    int status = 0;
    if (!parse(argc, argv, o, status))
        return status;
    std::vector<SheetPacker::tPicture> pictures;
    std::vector<std::string> errors;
    for (const std::string& input : o.inputs)
        collect(input, pictures, errors);
    if (errors.empty() && pictures.empty())
        errors.push_back(o.inputs[0] + ":1:1: error: no PNG pictures found");
    for (SheetPacker::tPicture& p : pictures) {
        p.regX = o.reg ? p.image.width / 2 : 0;
        p.regY = o.reg ? p.image.height / 2 : p.image.height;
    }
    SheetPacker::tSheet sheet;
    if (o.sidecar.empty())
        o.sidecar = o.output + ".reg.json";
    else if (!fs::is_regular_file(o.sidecar))
        errors.push_back(o.sidecar + ":1:1: error: cannot read the registration points");
    if (errors.empty() && applySidecar(o.sidecar, pictures, errors) &&
        SheetPacker::pack(pictures, o.sheet, sheet, errors))
        writeSheet(o, pictures, sheet, errors);
    for (const std::string& e : errors)
        fprintf(stderr, "%s\n", e.c_str());
    if (!errors.empty())
        return 1;
    printSheet(sheet, o.output);
    return 0;
}
