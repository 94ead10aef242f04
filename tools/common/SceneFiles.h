#ifndef ZEPHRIN2D_TOOLS_SCENEFILES_H
#define ZEPHRIN2D_TOOLS_SCENEFILES_H

#include "CActorManager.h"
#include "CGraphicElement.h"
#include "CommandLine.h"

#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>
#include <vector>

class AvatarCostume;
class CTextureSheet;

/// The files a scene is drawn from, as the render tool and the viewer take them.
struct SceneOptions : ContentOptions
{
    std::string scene;  ///< the scene file (a JSON array of elements)

    /// What billboard file names are put behind: --default-path when given,
    /// else the scene file's directory (with its slash).
    std::string billboardPrefix() const;
    /// The arguments that make zephrin2d-check look at these files as they are loaded.
    std::string checkArguments() const;
};

/// A scene loaded from its files, registered for drawing, its actors updated
/// each frame. reload() reads every file again.
class SceneFiles
{
public:
    explicit SceneFiles(const SceneOptions& options);
    ~SceneFiles();

    /// False (with error) when the scene file gives nothing; the scene is then empty.
    bool load(std::string& error);
    void unload();
    bool reload(std::string& error);

    void step(int dtMs);
    void draw();

    size_t elementCount() const { return mElements.size(); }
    size_t actorCount() const { return mActors.size(); }

private:
    SceneFiles(const SceneFiles&);
    SceneFiles& operator=(const SceneFiles&);
    bool loadFiles(std::string& error);

    SceneOptions mOptions;
    std::unique_ptr<CTextureSheet> mSheet;
    std::unique_ptr<AvatarCostume> mCostume;
    std::vector<boost::shared_ptr<CGraphicElement> > mElements;
    std::vector<boost::shared_ptr<CBaseActor> > mActors;
    std::unique_ptr<CActorManager> mManager;
    bool mArtPathAdded;
};

#endif
