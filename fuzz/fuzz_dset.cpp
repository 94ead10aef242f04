// Datasets through the dataset loaders: CActor2D::loadDset (the chunk path),
// AvatarCostume::addFromDset, and the element path of CSceneLoaderDset over
// the cels of an actor dataset.
#include "Avatar2DPiece.h"
#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "CDsetReader.h"
#include "CSceneLoaderDset.h"
#include "CSpriteCel.h"
#include "FuzzSupport.h"
#include "tDsetRecords.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    Fuzz::initGL();
    Fuzz::costume();
    Fuzz::sheet();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = Fuzz::writeDataset("fuzz", data, size);

    boost::shared_ptr<CActor2D> actor(new CActor2D);
    if (actor->loadDset(path, Fuzz::costume(), Fuzz::sheet()))
        Fuzz::exercise(actor, 3);
    actor.reset();

    AvatarCostume costume;
    costume.addFromDset(path);
    for (const tAvatarLOD& lod : costume.getLODs()) {
        costume.setLOD(lod.size);
        for (const std::string& key : lod.componentOrder) {
            const tAvatarComponent& component = lod.components.at(key);
            boost::shared_ptr<Avatar2DPiece> piece(new Avatar2DPiece);
            piece->setPiece(component.name, component.variations.empty() ? Glib::ustring() : component.variations[0].name);
            piece->setCostume(&costume);
            Fuzz::exercise(piece, 1);
        }
    }

    CSceneLoaderDset loader;
    loader.setCostume(Fuzz::costume());
    loader.setTextureSheet(Fuzz::sheet());
    loader.setDefaultPath(Fuzz::scratchDir() + "/");
    void* root = 0;
    boost::shared_ptr<CDataset> dataset = loader.LoadDset(path, root);
    const CDsetReader* reader = loader.getReader();
    const tDsetActor* record = root && reader ? reader->record<tDsetActor>(root) : 0;
    if (record && record->magic == DSET_ACTOR_MAGIC) {
        const tDsetSpriteCel* cels = reader->array<tDsetSpriteCel>(record->cels, record->celCount);
        for (uint32_t i = 0; cels && i < record->celCount && i < 64; ++i)
            Fuzz::exercise(loader.parseSpriteCel(&cels[i]), 1);
    }
    return 0;
}
