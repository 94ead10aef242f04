// JSON scene files through CSceneLoaderJson (with a costume and a texture
// sheet), then every element put on screen.
#include "CGraphicElement.h"
#include "CSceneLoaderJson.h"
#include "FuzzSupport.h"

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
    const std::string path = Fuzz::writeFile("fuzz-scene.json", data, size);
    CSceneLoaderJson::tElementList elements;
    {
        CSceneLoaderJson loader;
        loader.setCostume(Fuzz::costume());
        loader.setTextureSheet(Fuzz::sheet());
        loader.setDefaultPath(Fuzz::scratchDir() + "/");
        elements = loader.parseJsonFile(path.c_str());
    }
    // The loader is gone: what it handed out must stand on its own.
    for (const boost::shared_ptr<CGraphicElement>& element : elements)
        Fuzz::exercise(element, 2);
    return 0;
}
