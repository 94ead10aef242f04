// zephrin2d-import: Aseprite sprite sheets become actors, Tiled maps become scenes.
#include "Importer.h"

#include <cstdio>
#include <cstdlib>
#include <string>

static void usage(FILE* out)
{
    fprintf(out,
            "Usage: zephrin2d-import [options] INPUT -o DIR\n"
            "\n"
            "Imports an Aseprite sprite sheet (the JSON of \"Export Sprite Sheet\", hash or\n"
            "array form) as an actor, or a Tiled orthogonal map (.tmx or Tiled's JSON) as a\n"
            "scene. The kind is read from the content. Writes DIR/NAME.json (the actor or\n"
            "the scene), DIR/NAME-sheet.json (the texture sheet its billboards name) and\n"
            "the sheet's pages DIR/NAME-sheet-0.png, ...\n"
            "\n"
            "Options:\n"
            "  -o, --output DIR      the directory written to (made when missing)\n"
            "  --name NAME           NAME of the files, the picture names' prefix and the\n"
            "                        animation of untagged frames (default: INPUT's name\n"
            "                        without extension)\n"
            "  --once                animations hold on their last cel instead of looping\n"
            "  --palette MODE        auto, 8, 4 or off: paletted pages when their colours\n"
            "                        allow (default auto)\n"
            "  --max-size N          largest page side, a power of two (default 1024)\n"
            "  -h, --help            show this help\n"
            "\n"
            "Problems are reported as FILE:LINE:COLUMN: error: message.\n"
            "Exit status: 0 success, 1 refused input, 2 bad usage.\n");
}

static int badUsage(const std::string& message)
{
    fprintf(stderr, "zephrin2d-import: %s (see --help)\n", message.c_str());
    return 2;
}

int main(int argc, char** argv)
{
    tImportOptions options;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i], value;
        const size_t eq = arg.compare(0, 2, "--") == 0 ? arg.find('=') : std::string::npos;
        const bool hasValue = eq != std::string::npos;
        if (hasValue) {
            value = arg.substr(eq + 1);
            arg.resize(eq);
        }
        auto needValue = [&]() {
            if (hasValue)
                return true;
            if (i + 1 >= argc)
                return false;
            value = argv[++i];
            return true;
        };
        if (arg == "-h" || arg == "--help") {
            usage(stdout);
            return 0;
        } else if (arg == "--once") {
            options.once = true;
        } else if (arg == "-o" || arg == "--output" || arg == "--name" || arg == "--palette" ||
                   arg == "--max-size") {
            if (!needValue() || value.empty())
                return badUsage(arg + " needs a value");
            if (arg == "--name") {
                if (value.find('/') != std::string::npos)
                    return badUsage("--name takes a name, not a path");
                options.name = value;
            } else if (arg == "--palette") {
                if (value == "auto")
                    options.pack.palette = SheetPacker::ePalette::Auto;
                else if (value == "8")
                    options.pack.palette = SheetPacker::ePalette::Bits8;
                else if (value == "4")
                    options.pack.palette = SheetPacker::ePalette::Bits4;
                else if (value == "off")
                    options.pack.palette = SheetPacker::ePalette::Off;
                else
                    return badUsage("--palette takes auto, 8, 4 or off");
            } else if (arg == "--max-size") {
                char* end = nullptr;
                const long n = strtol(value.c_str(), &end, 10);
                if (*end || n < 16 || n > 2048 || (n & (n - 1)))
                    return badUsage("--max-size takes a power of two from 16 to 2048");
                options.pack.maxSize = static_cast<int>(n);
            } else {
                options.outDir = value;
            }
        } else if (arg.size() > 1 && arg[0] == '-') {
            return badUsage("unknown option " + arg);
        } else if (options.input.empty()) {
            options.input = arg;
        } else {
            return badUsage("only one input file is taken");
        }
    }
    if (options.input.empty())
        return badUsage("no input file");
    if (options.outDir.empty())
        return badUsage("no output directory (-o DIR)");
    while (options.outDir.size() > 1 && options.outDir.back() == '/')
        options.outDir.pop_back();

    Diagnostics diag;
    std::vector<std::string> report;
    const int status = runImport(options, diag, report);
    for (const std::string& line : diag.lines())
        fprintf(stderr, "%s\n", line.c_str());
    for (const std::string& line : report)
        printf("%s\n", line.c_str());
    return status;
}
