#ifndef ZEPHRIN2D_TOOLS_SCENEHOST_H
#define ZEPHRIN2D_TOOLS_SCENEHOST_H

#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>
#include <vector>

class AvatarCostume;
class CActorManager;
class CBaseActor;
class CGraphicElement;
class CTextureSheet;

/// The files a host tool draws a scene from. Every tool that shows scenes
/// takes them with the same options:
///
///     SCENE.json  --sheet SHEET.json  --costume COSTUME.json
///     --art-path DIR  --default-path PREFIX
struct SceneOptions
{
    std::string scene;
    std::string sheet;
    std::string costume;
    std::vector<std::string> artPaths;
    std::string defaultPath;
    bool hasDefaultPath = false;

    /// Looks at argv[i]. Returns 1 when it was a scene option or the scene
    /// file (i then points at the last word used), 0 when it is none of them
    /// (the caller tries its own options), -1 on a bad one (error says why).
    /// Values are given as "--name value" or "--name=value".
    int parse(int argc, char** argv, int& i, std::string& error);

    /// The lines that --help prints for these options.
    static const char* help();
};

/// A scene file loaded for a host: its top-level elements registered with
/// the draw manager, its actors updated each step.
///
///     SceneHost scene(options);
///     scene.load();
///     while (running) {
///         scene.step(dtMs);
///         CGraphics2D::Instance()->clearBuffer();
///         scene.draw();
///         CGraphics2D::Instance()->swapBuffer();
///     }
///
/// A scene that cannot be loaded leaves the host with an empty scene and a
/// message in error(); it never ends the program. The graphics context must
/// exist before load(), and the host must be destroyed (or unload()ed)
/// before the context is cleaned up.
class SceneHost
{
public:
    explicit SceneHost(const SceneOptions& options);
    ~SceneHost();

    /// Reads every file. False when the scene gave nothing to draw.
    bool load();
    /// Takes every element out of the draw manager and releases it.
    void unload();
    /// unload(), then load() from the files as they are on disk now.
    bool reload();

    void step(int dtMs);
    void draw();

    const std::string& error() const { return mError; }
    /// Failed assertions and library messages seen during the last load.
    int assertionCount() const { return mAssertions; }

    size_t elementCount() const { return mElements.size(); }
    size_t actorCount() const { return mActors.size(); }
    const std::vector<boost::shared_ptr<CGraphicElement> >& elements() const { return mElements; }
    const SceneOptions& options() const { return mOptions; }

private:
    SceneHost(const SceneHost&);
    SceneHost& operator=(const SceneHost&);

    bool loadFiles();

    SceneOptions mOptions;
    std::string mError;
    int mAssertions = 0;
    std::unique_ptr<CTextureSheet> mSheet;
    std::unique_ptr<AvatarCostume> mCostume;
    std::vector<boost::shared_ptr<CGraphicElement> > mElements;
    std::vector<boost::shared_ptr<CBaseActor> > mActors;
    std::unique_ptr<CActorManager> mActorManager;
};

#endif
