#ifndef ZEPHRIN2D_FUZZ_FUZZIMPORT_H
#define ZEPHRIN2D_FUZZ_FUZZIMPORT_H

#include "FuzzSupport.h"
#include "MapImporter.h"

/// What the map importers' targets share: external tilesets in the scratch
/// directory ("tiles.tsx" and "tiles.json", 16 x 16 tiles of sheet.png), and
/// the scene made from whatever map a reader gave.
namespace FuzzImport {

inline void writeTilesets()
{
    Fuzz::writeFile("tiles.tsx", "<tileset name=\"tiles\" tilewidth=\"16\" tileheight=\"16\" spacing=\"0\" "
                                 "tilecount=\"64\" columns=\"8\"><image source=\"sheet.png\"/>"
                                 "<tile id=\"1\"><animation><frame tileid=\"2\" duration=\"100\"/></animation></tile>"
                                 "</tileset>");
    Fuzz::writeFile("tiles.json", "{\"name\": \"tiles\", \"tilewidth\": 16, \"tileheight\": 16, \"image\": \"sheet.png\","
                                  " \"tiles\": [{\"id\": 1, \"animation\": [{\"tileid\": 2, \"duration\": 100}]}]}");
}

inline void importMap(bool read, const tTiledMap& map, Diagnostics& diag)
{
    tImportResult result;
    if (read && !diag.failed())
        importTiledMap(map, result, diag);
}

} // namespace FuzzImport

#endif
