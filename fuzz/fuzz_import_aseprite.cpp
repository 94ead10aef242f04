// Aseprite sprite-sheet JSON through the importer, up to the actor text and
// the cut frames. "meta.image" may name any PNG of the example art.
#include "Aseprite.h"
#include "FuzzSupport.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    Fuzz::scratchDir();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = Fuzz::writeFile("fuzz-aseprite.json", data, size);
    Diagnostics diag;
    JsonDocument doc;
    if (!doc.load(path, diag) || !isAsepriteSheet(doc.root()))
        return 0;
    tAsepriteOptions options;
    options.name = "fuzz";
    tImportResult result;
    importAseprite(doc, options, result, diag);
    return 0;
}
