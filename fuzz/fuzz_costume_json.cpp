// Costume descriptions through AvatarCostume::addFromJson, and pieces shown from them.
#include "Avatar2DPiece.h"
#include "CAvatarCostume.h"
#include "FuzzSupport.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    Fuzz::initGL();
    Fuzz::scratchDir();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = Fuzz::writeFile("fuzz-costume.json", data, size);
    AvatarCostume all;
    all.addFromJson(path, 0, 0);
    int requested[] = {50, 1, 9999, -3, 200};
    AvatarCostume some;
    some.addFromJson(path, requested, 5);
    some.addFromFile(path, requested, -1);
    all.debugDump();
    for (const tAvatarLOD& lod : all.getLODs()) {
        all.setLOD(lod.size);
        for (const std::string& key : lod.componentOrder) {
            const tAvatarComponent& component = lod.components.at(key);
            const Glib::ustring variation = component.variations.empty() ? Glib::ustring() : component.variations.back().name;
            boost::shared_ptr<Avatar2DPiece> piece(new Avatar2DPiece);
            piece->setPiece(component.name, variation);
            piece->setCostume(&all);
            Fuzz::exercise(piece, 1);
            piece->setPiece(component.name, "no such variation");
        }
    }
    all.getAvatarTexturePiece("no such component", "x");
    all.getAudioURI("giggle");
    all.clear();
    return 0;
}
