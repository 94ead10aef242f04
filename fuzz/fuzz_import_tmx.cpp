// .tmx maps (XML) through the reader and the scene writer. Tilesets may be
// embedded, or "tiles.tsx" / "tiles.json"; images any PNG of the example art.
#include "FuzzImport.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    FuzzImport::writeTilesets();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = Fuzz::writeFile("fuzz-map.tmx", data, size);
    Diagnostics diag;
    tTiledMap map;
    FuzzImport::importMap(readTmxMap(path, map, diag), map, diag);
    return 0;
}
