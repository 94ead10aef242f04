// The content checker over every kind of file. A first byte of 0 to 5 picks
// the kind (detected from the content, scene, actor, sheet, costume,
// dataset), with its top bit set the example texture sheet is given with
// --sheet too, and the rest is the file (for a dataset, in the dset target's
// form). Any other input is a file whose kind is detected.
#include "ContentCheck.h"
#include "FuzzSupport.h"

#include <fstream>

namespace {
const ContentCheck::Kind KINDS[] = {ContentCheck::Unknown, ContentCheck::Scene,   ContentCheck::Actor,
                                    ContentCheck::Sheet,   ContentCheck::Costume, ContentCheck::Dataset};
}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    Fuzz::initGL();
    std::ifstream in(std::string(Z2D_EXAMPLES_DIR) + "/art/sheet.json", std::ios::binary);
    Fuzz::writeFile("sheet.json", std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const uint8_t first = size ? data[0] : 0xFF;
    const bool chosen = (first & 0x7F) < 6;
    Fuzz::Reader in(data, size);
    const uint8_t choice = chosen ? in.byte() : 0;
    const ContentCheck::Kind kind = KINDS[choice & 0x7F];
    const std::string path = kind == ContentCheck::Dataset
                                 ? Fuzz::writeDataset("fuzz-check", in.rest(), in.restSize())
                                 : Fuzz::writeFile("fuzz-check.json", in.rest(), in.restSize());
    SceneOptions options;
    options.scene = path;
    if (choice & 0x80)
        options.sheets.push_back(Fuzz::scratchDir() + "/sheet.json");
    Diagnostics report;
    ContentCheck check(report, options);
    check.check(path, kind);
    return 0;
}
