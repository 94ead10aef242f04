#ifndef ZEPHRIN2D_IMPORT_IMPORTER_H
#define ZEPHRIN2D_IMPORT_IMPORTER_H

#include "JsonDocument.h"
#include "Paths.h"
#include "SheetPacker.h"

#include <string>
#include <vector>

/// zephrin2d-import's work: read an Aseprite sheet or a Tiled map, write
/// DIR/NAME.json (an actor or a scene) and the texture sheet its billboards
/// name, DIR/NAME-sheet.json with its pages DIR/NAME-sheet-0.png, ...
struct tImportOptions
{
    std::string input;
    std::string outDir;
    std::string name;  ///< default: the input's file name without extension
    bool once = false;
    SheetPacker::tOptions pack;
};

/// Exit status: 0 when everything was written, 1 when the input is refused
/// (the reasons in diag). report gets what was made.
int runImport(const tImportOptions& options, Diagnostics& diag, std::vector<std::string>& report);

#endif
