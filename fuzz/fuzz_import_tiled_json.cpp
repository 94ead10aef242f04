// Maps in Tiled's JSON form through the reader and the scene writer.
// Tilesets may be embedded, or "tiles.tsx" / "tiles.json".
#include "FuzzImport.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    FuzzImport::writeTilesets();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = Fuzz::writeFile("fuzz-map.json", data, size);
    Diagnostics diag;
    JsonDocument doc;
    if (!doc.load(path, diag) || !isTiledJsonMap(doc.root()))
        return 0;
    tTiledMap map;
    FuzzImport::importMap(readTiledJsonMap(doc, map, diag), map, diag);
    return 0;
}
