#ifndef ZEPHRIN2D_IMPORT_ASEPRITE_H
#define ZEPHRIN2D_IMPORT_ASEPRITE_H

#include "JsonDocument.h"
#include "Paths.h"
#include "ImportResult.h"

/// Aseprite's sprite-sheet JSON ("hash" or "array" frames): one actor, one
/// animation per frame tag, the frames in no tag an animation named `name`.
struct tAsepriteOptions
{
    std::string name;   ///< picture prefix and the name of the untagged animation
    bool once = false;  ///< hold on the last cel instead of looping
};

/// True when the document looks like an Aseprite sheet.
bool isAsepriteSheet(const Json::Value& root);
bool importAseprite(const JsonDocument& doc, const tAsepriteOptions& options, tImportResult& result,
                    Diagnostics& diag);

#endif
