// Actor files through CActor2D::loadJson, then played through every animation.
#include "CActor2D.h"
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
    const std::string path = Fuzz::writeFile("fuzz-actor.json", data, size);
    boost::shared_ptr<CActor2D> actor(new CActor2D);
    if (actor->loadJson(path, Fuzz::costume(), Fuzz::sheet())) {
        Fuzz::exercise(actor, 4);
        // A copy shares the cels' chunks and must play on its own.
        boost::shared_ptr<CActor2D> copy(new CActor2D(*actor));
        actor.reset();
        Fuzz::exercise(copy, 2);
    }
    return 0;
}
