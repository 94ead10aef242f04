// Loads one piece of content one way, for callgrind: the files are written
// and the textures cached first, and only the load itself (from opening the
// file to the finished actor or list of elements) is instrumented. Run it as
//   valgrind --tool=callgrind --instr-atstart=no Zephrin2DLoadCount actor dset
// and read the totals from callgrind's output file; it prints nothing.
#include "CActor2D.h"
#include "CSceneLoaderJson.h"
#include "LoadFiles.h"

#include <boost/make_shared.hpp>
#include <stdio.h>
#include <string.h>
#include <valgrind/callgrind.h>

namespace {

using namespace LoadFiles;

int usage(FILE* out, int status)
{
    fprintf(out, "usage: Zephrin2DLoadCount CONTENT WAY\n"
                 "  CONTENT  actor (%d cels) or scene (%d billboards)\n"
                 "  WAY      json or dset\n",
            ACTOR_CELS, SCENE_ELEMENTS);
    return status;
}

/// The loaded content is released after the count stops: only loading is counted.
size_t load(bool actor, bool dataset, const tLoadFiles& f)
{
    if (actor) {
        boost::shared_ptr<CActor2D> a;
        CALLGRIND_START_INSTRUMENTATION;
        a = boost::make_shared<CActor2D>();
        if (dataset)
            a->loadDset(f.actorDset.c_str(), 0, 0);
        else
            a->loadJson(f.actorJson.c_str(), 0, 0);
        CALLGRIND_STOP_INSTRUMENTATION;
        return a->getCelCount();
    }
    std::vector<boost::shared_ptr<CGraphicElement> > elements;
    CSceneLoaderJson loader;
    CALLGRIND_START_INSTRUMENTATION;
    if (dataset) {
        elements = loadSceneDset(f.sceneDset);
    } else {
        loader.setDefaultPath(defaultPath());
        elements = loader.parseJsonFile(f.scene.c_str());
    }
    CALLGRIND_STOP_INSTRUMENTATION;
    return elements.size();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && strcmp(argv[1], "--help") == 0)
        return usage(stdout, 0);
    if (argc != 3 || (strcmp(argv[1], "actor") != 0 && strcmp(argv[1], "scene") != 0) ||
        (strcmp(argv[2], "json") != 0 && strcmp(argv[2], "dset") != 0))
        return usage(stderr, 2);
    const bool actor = strcmp(argv[1], "actor") == 0;
    const bool dataset = strcmp(argv[2], "dset") == 0;
    const tLoadFiles& f = files();
    if (dataset && (actor ? f.actorDset : f.sceneDset).empty()) {
        fprintf(stderr, "Zephrin2DLoadCount: dataset not written: %s\n", f.error.c_str());
        return 1;
    }
    LoadContext context;
    const size_t loaded = load(actor, dataset, f);
    if (loaded != static_cast<size_t>(actor ? ACTOR_CELS : SCENE_ELEMENTS)) {
        fprintf(stderr, "Zephrin2DLoadCount: loaded %zu of %d\n", loaded, actor ? ACTOR_CELS : SCENE_ELEMENTS);
        return 1;
    }
    return 0;
}
