// zephrin2d-import: Aseprite sprite sheets become actors, Tiled maps become scenes.
#include "CommandLine.h"
#include "Importer.h"

#include <cstdio>
#include <string>

static const char* const kAbout =
    "Imports an Aseprite sprite sheet (the JSON of \"Export Sprite Sheet\", hash or\n"
    "array form) as an actor, or a Tiled orthogonal map (.tmx or Tiled's JSON) as a\n"
    "scene. The kind is read from the content. Writes DIR/NAME.json (the actor or\n"
    "the scene), DIR/NAME-sheet.json (the texture sheet its billboards name) and\n"
    "the sheet's pages DIR/NAME-sheet-0.png, ...\n";

int main(int argc, char** argv)
{
    tImportOptions options;
    std::vector<std::string> inputs;
    int palette = 0;
    CommandLine line("zephrin2d-import", "INPUT -o DIR", kAbout);
    line.text("--output", "DIR", "the directory written to (made when missing)", options.outDir, "-o");
    line.add({"--name", "", "NAME",
              "NAME of the files, the picture names' prefix and the\nanimation of untagged frames (default: INPUT's "
              "name\nwithout extension)",
              [&options](const std::string& v) {
                  options.name = v;
                  return v.empty() ? "--name needs a value"
                         : v.find('/') != std::string::npos ? "--name takes a name, not a path" : "";
              }});
    line.flag("--once", "animations hold on their last cel instead of looping", options.once);
    line.choice("--palette", "auto, 8, 4 or off: paletted pages when their colours\nallow (default auto)",
                {"auto", "8", "4", "off"}, palette);
    line.maxSize(options.pack.maxSize);
    line.operands("input file", 1, 1, inputs);
    line.epilog("Problems are reported as FILE:LINE:COLUMN: error: message.\n"
                "Exit status: 0 success, 1 refused input, 2 bad usage.\n");
    int status = 0;
    if (!line.parse(argc, argv, status))
        return status;
    if (options.outDir.empty())
        return line.usageError("no output directory (-o DIR)");
    options.input = inputs[0];
    const SheetPacker::ePalette palettes[] = {SheetPacker::ePalette::Auto, SheetPacker::ePalette::Bits8,
                                              SheetPacker::ePalette::Bits4, SheetPacker::ePalette::Off};
    options.pack.palette = palettes[palette];
    while (options.outDir.size() > 1 && options.outDir.back() == '/')
        options.outDir.pop_back();

    Diagnostics diag("zephrin2d-import");
    std::vector<std::string> report;
    status = runImport(options, diag, report);
    for (const std::string& text : diag.lines())
        fprintf(stderr, "%s\n", text.c_str());
    for (const std::string& text : report)
        printf("%s\n", text.c_str());
    return status;
}
