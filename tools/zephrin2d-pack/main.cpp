// zephrin2d-pack: packs loose PNG pictures into a texture sheet.
#include "SheetPacker.h"

#include <json/json.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

static void usage(FILE* out)
{
    fprintf(out,
            "Usage: zephrin2d-pack [options] INPUT... -o NAME\n"
            "\n"
            "Packs PNG pictures (files, or folders searched for *.png) into power-of-two\n"
            "pages and writes the texture sheet NAME.json with its pages NAME-0.png, ...\n"
            "A picture's name is its path relative to the folder given, or its file\n"
            "name, without \".png\".\n"
            "\n"
            "Options:\n"
            "  -o, --output NAME   the sheet to write (required)\n"
            "  --max-size N        largest page side, a power of two up to 2048 (1024)\n"
            "  --padding N         transparent pixels between pictures (2)\n"
            "  --extrude N         repeat each picture's edge pixels N times around it (0)\n"
            "  --no-trim           keep fully transparent borders\n"
            "  --reg WHERE         registration point of the pictures that the sidecar\n"
            "                      does not name: bottom-left (default) or center\n"
            "  --reg FILE.json     the sidecar to read instead of NAME.reg.json\n"
            "  --palette MODE      auto (default): 4-bit or 8-bit paletted pages when that\n"
            "                      changes no pixel, else RGBA; 8 or 4: paletted or an\n"
            "                      error; off: always RGBA\n"
            "  -h, --help          show this help\n"
            "\n"
            "The sidecar NAME.reg.json, when it exists, maps picture names to points:\n"
            "{\"hero/idle\": [16, 30]}, in pixels from the image's top-left corner.\n"
            "\n"
            "Exit status: 0 success, 1 bad input (nothing is written), 2 bad usage.\n");
}

static bool parseCount(const std::string& text, int& value)
{
    if (text.empty() || text.size() > 5 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    value = atoi(text.c_str());
    return true;
}

static std::string positionOf(const std::string& text, ptrdiff_t offset)
{
    int line = 1, column = 1;
    for (ptrdiff_t i = 0; i < offset && i < static_cast<ptrdiff_t>(text.size()); ++i, ++column)
        if (text[i] == '\n')
            ++line, column = 0;
    return ":" + std::to_string(line) + ":" + std::to_string(column);
}

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
    unsigned char signature[8] = {0};
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        errors.push_back(p.source + ":1:1: error: cannot read the file: " + strerror(errno));
        return false;
    }
    in.read(reinterpret_cast<char*>(signature), 8);
    if (memcmp(signature, "\x89PNG\r\n\x1a\n", 8) != 0) {
        errors.push_back(p.source + ":1:1: error: not a PNG file");
        return false;
    }
    if (!ImageIO::readPNG(p.source, p.image)) {
        errors.push_back(p.source + ":1:1: error: the PNG file is damaged or of an unsupported kind");
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
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return true;
    std::stringstream buffer;
    buffer << in.rdbuf();
    const std::string text = buffer.str();
    Json::CharReaderBuilder builder;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string parseError;
    if (!reader->parse(text.data(), text.data() + text.size(), &root, &parseError) || !root.isObject()) {
        errors.push_back(path + ":1:1: error: expected a JSON object of picture names and [x, y] points");
        return false;
    }
    bool ok = true;
    for (const std::string& name : root.getMemberNames()) {
        const Json::Value& v = root[name];
        const std::string at = path + positionOf(text, v.getOffsetStart());
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

int main(int argc, char** argv)
{
    std::vector<std::string> inputs;
    std::string output, reg = "bottom-left", sidecar;
    SheetPacker::tOptions options;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i], value;
        const size_t eq = arg.find('=');
        const bool inlineValue = arg.compare(0, 2, "--") == 0 && eq != std::string::npos;
        if (inlineValue) {
            value = arg.substr(eq + 1);
            arg.resize(eq);
        }
        auto takeValue = [&]() {
            if (inlineValue)
                return true;
            if (i + 1 >= argc) {
                fprintf(stderr, "zephrin2d-pack: %s needs a value\n", arg.c_str());
                return false;
            }
            value = argv[++i];
            return true;
        };
        auto badValue = [&]() {
            fprintf(stderr, "zephrin2d-pack: bad value for %s: %s (see --help)\n", arg.c_str(), value.c_str());
            return 2;
        };
        if (arg == "-h" || arg == "--help") {
            usage(stdout);
            return 0;
        } else if (arg == "--no-trim" && !inlineValue) {
            options.trim = false;
        } else if (arg == "-o" || arg == "--output") {
            if (!takeValue())
                return 2;
            output = value;
        } else if (arg == "--max-size" || arg == "--padding" || arg == "--extrude") {
            int n = 0;
            if (!takeValue())
                return 2;
            if (!parseCount(value, n))
                return badValue();
            if (arg == "--max-size") {
                if (n < 1 || n > 2048 || (n & (n - 1)) != 0)
                    return badValue();
                options.maxSize = n;
            } else {
                (arg == "--padding" ? options.padding : options.extrude) = n;
            }
        } else if (arg == "--reg") {
            if (!takeValue())
                return 2;
            if (value.size() > 5 && value.compare(value.size() - 5, 5, ".json") == 0)
                sidecar = value;
            else if (value == "bottom-left" || value == "center")
                reg = value;
            else
                return badValue();
        } else if (arg == "--palette") {
            if (!takeValue())
                return 2;
            if (value == "auto") options.palette = SheetPacker::ePalette::Auto;
            else if (value == "8") options.palette = SheetPacker::ePalette::Bits8;
            else if (value == "4") options.palette = SheetPacker::ePalette::Bits4;
            else if (value == "off") options.palette = SheetPacker::ePalette::Off;
            else return badValue();
        } else if (arg.size() > 1 && arg[0] == '-') {
            fprintf(stderr, "zephrin2d-pack: unknown option %s (see --help)\n", arg.c_str());
            return 2;
        } else {
            inputs.push_back(arg);
        }
    }
    if (inputs.empty() || output.empty()) {
        fprintf(stderr, "zephrin2d-pack: %s\n", inputs.empty() ? "no input given" : "no output given (-o NAME)");
        usage(stderr);
        return 2;
    }
    options.output = output;

    std::vector<SheetPacker::tPicture> pictures;
    std::vector<std::string> errors;
    for (const std::string& input : inputs)
        collect(input, pictures, errors);
    if (errors.empty() && pictures.empty())
        errors.push_back(inputs[0] + ":1:1: error: no PNG pictures found");
    for (SheetPacker::tPicture& p : pictures) {
        p.regX = reg == "center" ? p.image.width / 2 : 0;
        p.regY = reg == "center" ? p.image.height / 2 : p.image.height;
    }
    SheetPacker::tSheet sheet;
    if (sidecar.empty())
        sidecar = output + ".reg.json";
    else if (!fs::is_regular_file(sidecar))
        errors.push_back(sidecar + ":1:1: error: cannot read the registration points");
    if (errors.empty() && applySidecar(sidecar, pictures, errors) &&
        SheetPacker::pack(pictures, options, sheet, errors)) {
        std::error_code ec;
        const fs::path folder = fs::path(output).parent_path();
        if (!folder.empty())
            fs::create_directories(folder, ec);
        SheetPacker::write(sheet, output, errors);
    }
    for (const std::string& e : errors)
        fprintf(stderr, "%s\n", e.c_str());
    if (!errors.empty())
        return 1;

    for (size_t i = 0; i < sheet.pages.size(); ++i) {
        const SheetPacker::tPage& page = sheet.pages[i];
        const std::string kind = page.paletteBits ? std::to_string(page.paletteBits) + "-bit paletted" : "RGBA";
        printf("%s-%zu.png: %dx%d, %s, %s%d colours, GPU bytes %lu before, %lu after\n", output.c_str(), i,
               page.image.width, page.image.height, kind.c_str(), page.colours > 256 ? "over " : "",
               std::min(page.colours, 256), page.gpuBytesRGBA, page.gpuBytes);
    }
    printf("%s.json: %zu pictures on %zu pages\n", output.c_str(), sheet.pictures.size(), sheet.pages.size());
    return 0;
}
