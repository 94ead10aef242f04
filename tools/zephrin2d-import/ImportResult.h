#ifndef ZEPHRIN2D_IMPORT_IMPORTRESULT_H
#define ZEPHRIN2D_IMPORT_IMPORTRESULT_H

#include "ImageIO.h"

#include <string>
#include <vector>

/// One picture for the texture sheet. The registration point is in pixels
/// from the picture's top-left corner, y downwards, as drawing tools give it.
struct tImportPicture
{
    std::string name;
    ImageIO::tImage image;
    int regX = 0;
    int regY = 0;
};

/// What an importer makes: the pictures to pack and the actor or scene JSON
/// whose billboards name them.
struct tImportResult
{
    std::vector<tImportPicture> pictures;
    std::string content;   ///< the JSON text
    std::string kind;      ///< "actor" or "scene"
    std::vector<std::string> notes;  ///< what was made, for standard output
};

#endif
