// The content the load benchmarks and Zephrin2DLoadCount read: a scene of
// 5,000 billboards and an actor of 500 cels, each as JSON and as a dataset
// (the same records), written once into the peer art directory.
#ifndef ZEPHRIN2D_BENCH_LOADFILES_H
#define ZEPHRIN2D_BENCH_LOADFILES_H

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

class CTexture;
class CGraphicElement;

namespace LoadFiles {

const int SCENE_ELEMENTS = 5000;
const int ACTOR_CELS = 500;

struct tLoadFiles
{
    std::string scene;       ///< JSON scene: an array of billboards
    std::string sceneDset;   ///< the same billboards, named by a sprite-cel root record
    std::string actorJson;
    std::string actorDset;
    std::string error;       ///< why a dataset was not written (its path is then empty)
};

const tLoadFiles& files();

/// The art directory with a trailing slash: the default path of both scene loaders.
std::string defaultPath();

/// The scene dataset's billboards as live elements, one per record, as the
/// JSON scene loader gives them.
std::vector<boost::shared_ptr<CGraphicElement> > loadSceneDset(const std::string& path);

/// A 16x16 context with the 8 scene textures cached, so loads measure the
/// loaders' own work (reading, parsing, building elements and chunks).
class LoadContext
{
public:
    LoadContext();
    ~LoadContext();

private:
    std::vector<boost::shared_ptr<CTexture> > mTextures;
};

} // namespace LoadFiles

#endif
