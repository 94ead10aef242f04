#include "SceneFiles.h"

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

bool SceneOptions::splitValue(std::string& arg, std::string& value)
{
    const size_t eq = arg.find('=');
    if (eq == std::string::npos)
        return false;
    value = arg.substr(eq + 1);
    arg = arg.substr(0, eq);
    return true;
}

int SceneOptions::parse(int argc, char** argv, int& i, std::string& error)
{
    std::string arg = argv[i];
    std::string value;
    const bool hasValue = splitValue(arg, value);
    std::string actor;
    std::string* target = arg == "--sheet" ? &sheet
                        : arg == "--actor" ? &actor
                        : arg == "--costume" ? &costume
                        : arg == "--art-path" ? &artPath
                        : arg == "--default-path" ? &defaultPath
                        : 0;
    if (!target)
        return 0;
    if (!hasValue) {
        if (i + 1 >= argc) {
            error = arg + " needs a value";
            return -1;
        }
        value = argv[++i];
    }
    if (value.empty() && arg != "--default-path") {
        error = arg + " needs a value";
        return -1;
    }
    *target = value;
    if (arg == "--actor")
        actors.push_back(value);
    if (arg == "--default-path")
        hasDefaultPath = true;
    return 1;
}

std::string SceneOptions::billboardPrefix() const
{
    if (hasDefaultPath)
        return defaultPath;
    const size_t slash = scene.rfind('/');
    return slash == std::string::npos ? std::string() : scene.substr(0, slash + 1);
}

std::string SceneOptions::checkArguments() const
{
    std::string args;
    const std::pair<const char*, const std::string*> options[] = {
        {"--sheet", &sheet}, {"--costume", &costume}, {"--art-path", &artPath}};
    for (const auto& option : options)
        if (!option.second->empty())
            args += std::string(option.first) + " " + *option.second + " ";
    if (hasDefaultPath)
        args += "--default-path '" + defaultPath + "' ";
    return args + scene;
}

const char* SceneOptions::help()
{
    return "  --sheet FILE        a texture-sheet description for the scene's billboards\n"
           "  --costume FILE      an avatar costume (JSON or .dsetBin) for avatar pieces\n"
           "  --art-path DIR      a directory searched for art (before ZEPHRIN2D_ART_PATH)\n"
           "  --default-path P    prefix of billboard file names (plain concatenation;\n"
           "                      default: the scene file's directory)\n"
           "  --actor FILE        also an actor file (JSON or .dsetBin), at its own\n"
           "                      position, with the sheet and costume; repeatable\n";
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
    if (!readable(mOptions.scene)) {
        error = mOptions.scene + ": cannot be read";
        return false;
    }
    const std::string* files[2] = {&mOptions.sheet, &mOptions.costume};
    for (const std::string* file : files)
        if (!file->empty() && !readable(*file))
            std::fprintf(stderr, "%s: cannot be read\n", file->c_str());
    if (!mOptions.artPath.empty() && !mArtPathAdded) {
        CSystemData::Instance()->AddArtPath(mOptions.artPath);
        mArtPathAdded = true;
    }
    CSceneLoaderJson loader;
    if (!mOptions.sheet.empty()) {
        mSheet.reset(new CTextureSheet(mOptions.sheet));
        loader.setTextureSheet(mSheet.get());
    }
    if (!mOptions.costume.empty()) {
        mCostume.reset(new AvatarCostume());
        mCostume->addFromFile(mOptions.costume, 0, 0);
        loader.setCostume(mCostume.get());
    }
    loader.setDefaultPath(mOptions.billboardPrefix());
    CSceneLoaderJson::tElementList elements = loader.parseJsonFile(mOptions.scene.c_str());
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
        error = mOptions.scene + ": no element loaded";
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
