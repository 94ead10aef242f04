// Texture-sheet descriptions through CTextureSheet, and billboards cut from them.
#include "CBillboard.h"
#include "CTextureSheet.h"
#include "FuzzSupport.h"

#include <QJN.h>

#include <vector>

namespace {

// The picture names of the description, as far as it can be read.
std::vector<std::string> pictureNames(const std::string& text)
{
    std::vector<std::string> names;
    QJN::CJSonFile file("names", 0);
    file.LoadFromString(text);
    const QJN::Value bitmaps = file.getRoot()["ImageData"];
    for (unsigned int b = 0; b < bitmaps.size() && names.size() < 8; ++b) {
        const QJN::Value images = bitmaps[b]["Images"];
        for (unsigned int i = 0; i < images.size() && names.size() < 8; ++i)
            names.push_back(images[i]["Name"].asString());
    }
    return names;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    Fuzz::initGL();
    Fuzz::scratchDir();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string path = Fuzz::writeFile("fuzz-sheet.json", text);
    CTextureSheet sheet;
    sheet.addFromJson(path);
    sheet.addFromJson(path);  // every name again: replacements
    sheet.debugDump();
    for (const std::string& name : pictureNames(text)) {
        tTextureSheetElement e = sheet.getElement(name);
        boost::shared_ptr<CBillboard> billboard(new CBillboard(name, &sheet, true));
        billboard->moveTo(tVect2{e.reg.x, e.p2.y});
        Fuzz::exercise(billboard, 1);
    }
    sheet.getElement("no such picture");
    return 0;
}
