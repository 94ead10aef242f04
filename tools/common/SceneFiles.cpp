#include "SceneFiles.h"

#include "Paths.h"

#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "CBaseActor.h"
#include "CDrawManager.h"
#include "CSceneLoaderJson.h"
#include "CTextureSheet.h"

#include <SystemData.h>

#include <cstdio>
#include <exception>
#include <sys/stat.h>

namespace {

bool readable(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

} // namespace

std::string SceneOptions::billboardPrefix() const
{
    if (hasDefaultPath)
        return defaultPath;
    return directoryOf(scene);
}

std::string SceneOptions::checkArguments() const
{
    std::string args;
    for (const std::string& sheet : sheets)
        args += "--sheet " + sheet + " ";
    if (!costume.empty())
        args += "--costume " + costume + " ";
    for (const std::string& dir : artPaths)
        args += "--art-path " + dir + " ";
    for (const std::string& actor : actors)
        args += "--actor " + actor + " ";
    if (hasDefaultPath)
        args += "--default-path '" + defaultPath + "' ";
    return args + scene;
}

SceneFiles::SceneFiles(const SceneOptions& options) : mOptions(options), mArtPathAdded(false) {}

SceneFiles::~SceneFiles() { unload(); }

bool SceneFiles::load(std::string& error)
{
    // The library reports bad content and never throws; a tool still must not die of a surprise.
    try {
        return loadFiles(error);
    } catch (const std::exception& e) {
        unload();
        error = mOptions.scene + ": " + e.what();
        return false;
    }
}

bool SceneFiles::loadFiles(std::string& error)
{
    unload();
    // Actor files alone make a scene too.
    if ((!mOptions.scene.empty() || mOptions.actors.empty()) && !readable(mOptions.scene)) {
        error = mOptions.scene + ": cannot be read";
        return false;
    }
    std::vector<std::string> files = mOptions.sheets;
    files.push_back(mOptions.costume);
    for (const std::string& file : files)
        if (!file.empty() && !readable(file))
            std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
    if (!mArtPathAdded) {
        for (const std::string& dir : mOptions.artPaths)
            CSystemData::Instance()->AddArtPath(dir);
        mArtPathAdded = true;
    }
    CSceneLoaderJson loader;
    if (!mOptions.sheets.empty()) {
        mSheet.reset(new CTextureSheet());
        for (const std::string& sheet : mOptions.sheets)
            mSheet->addFromJson(sheet);
        loader.setTextureSheet(mSheet.get());
    }
    if (!mOptions.costume.empty()) {
        mCostume.reset(new AvatarCostume());
        mCostume->addFromFile(mOptions.costume, 0, 0);
        loader.setCostume(mCostume.get());
    }
    loader.setDefaultPath(mOptions.billboardPrefix());
    CSceneLoaderJson::tElementList elements;
    if (!mOptions.scene.empty())
        elements = loader.parseJsonFile(mOptions.scene.c_str());
    for (const std::string& file : mOptions.actors) {
        boost::shared_ptr<CActor2D> actor(new CActor2D());
        if (actor->loadFile(file, mCostume.get(), mSheet.get()))
            elements.push_back(actor);
        else
            std::fprintf(stderr, "%s: the actor does not load\n", file.c_str());
    }
    mManager.reset(new CActorManager());
    for (size_t i = 0; i < elements.size(); ++i) {
        if (!elements[i])
            continue;
        mElements.push_back(elements[i]);
        CDrawManager::Instance()->add(elements[i]);
        boost::shared_ptr<CBaseActor> actor = boost::dynamic_pointer_cast<CBaseActor>(elements[i]);
        if (actor) {
            mActors.push_back(actor);
            mManager->add(actor);
        }
    }
    if (mElements.empty()) {
        error = (mOptions.scene.empty() ? mOptions.actors[0] : mOptions.scene) + ": no element loaded";
        return false;
    }
    return true;
}

void SceneFiles::unload()
{
    for (size_t i = 0; i < mElements.size(); ++i)
        CDrawManager::Instance()->remove(mElements[i]);
    mElements.clear();
    mActors.clear();
    mManager.reset();
    mCostume.reset();
    mSheet.reset();
    CDrawManager::Instance()->shrinkAll();
}

bool SceneFiles::reload(std::string& error) { return load(error); }

void SceneFiles::step(int dtMs)
{
    try {
        if (mManager)
            mManager->update(dtMs);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s: the scene stops: %s\n", mOptions.scene.c_str(), e.what());
        mManager.reset();
    }
}

void SceneFiles::draw() { CDrawManager::Instance()->drawAll(); }
