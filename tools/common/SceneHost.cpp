#include "SceneHost.h"

#include "CActor2D.h"
#include "CActorManager.h"
#include "CAvatarCostume.h"
#include "CBaseActor.h"
#include "CDrawManager.h"
#include "CGraphicElement.h"
#include "CSceneLoaderJson.h"
#include "CTextureSheet.h"

#include <BaseUtils.h>
#include <SystemData.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <sys/stat.h>

namespace {

bool isRegularFile(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool isDirectory(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// Counts the assertions of a load and keeps the first, still printing each
// one as the default handler would.
class AssertionWatch
{
public:
    AssertionWatch()
    {
        mPrevious = BaseUtils::SetAssertHandler([this](const char* file, int line, const std::string& message) {
            if (mCount++ == 0)
                mFirst = message;
            if (mPrevious)
                mPrevious(file, line, message);
            else
                std::fprintf(stderr, "ASSERT %s:%d: %s\n", file, line, message.c_str());
        });
    }
    ~AssertionWatch() { BaseUtils::SetAssertHandler(mPrevious); }

    int count() const { return mCount; }
    const std::string& first() const { return mFirst; }

private:
    BaseUtils::tAssertHandler mPrevious;
    int mCount = 0;
    std::string mFirst;
};

} // namespace

int SceneOptions::parse(int argc, char** argv, int& i, std::string& error)
{
    std::string arg = argv[i];
    if (arg.size() < 2 || arg[0] != '-') {
        if (!scene.empty()) {
            error = "one scene file at most, got '" + scene + "' and '" + arg + "'";
            return -1;
        }
        scene = arg;
        return 1;
    }
    std::string value;
    bool hasValue = false;
    const size_t eq = arg.find('=');
    if (eq != std::string::npos) {
        value = arg.substr(eq + 1);
        arg = arg.substr(0, eq);
        hasValue = true;
    }
    if (arg != "--sheet" && arg != "--costume" && arg != "--art-path" && arg != "--default-path")
        return 0;
    if (!hasValue) {
        if (i + 1 >= argc) {
            error = arg + " needs a value";
            return -1;
        }
        value = argv[++i];
    }
    // An empty default path is meaningful: billboard names are then used as written.
    if (value.empty() && arg != "--default-path") {
        error = arg + " needs a value";
        return -1;
    }
    if (arg == "--sheet") {
        sheet = value;
    } else if (arg == "--costume") {
        costume = value;
    } else if (arg == "--art-path") {
        if (!isDirectory(value)) {
            error = "--art-path needs a directory, got '" + value + "'";
            return -1;
        }
        artPaths.push_back(value);
    } else {
        defaultPath = value;
        hasDefaultPath = true;
    }
    return 1;
}

const char* SceneOptions::help()
{
    return "  --sheet FILE        a texture-sheet description; billboards look their image up\n"
           "                      in it first\n"
           "  --costume FILE      an avatar costume (JSON or .dsetBin, every LOD) for avatar pieces\n"
           "  --art-path DIR      a directory searched for art (may be given more than once)\n"
           "  --default-path P    prefix put in front of billboard file names, by plain\n"
           "                      concatenation (default: the scene file's directory and '/')\n";
}

SceneHost::SceneHost(const SceneOptions& options) : mOptions(options)
{
    // Art paths stay for the life of the process; adding them once keeps a
    // reload from growing the search list.
    for (const std::string& dir : mOptions.artPaths)
        CSystemData::Instance()->AddArtPath(dir);
}

SceneHost::~SceneHost() { unload(); }

bool SceneHost::load()
{
    unload();
    mError.clear();
    mAssertions = 0;
    bool ok = false;
    {
        AssertionWatch watch;
        try {
            ok = loadFiles();
        } catch (const std::exception& e) {
            mError = mOptions.scene + ": loading stopped: " + e.what();
        } catch (...) {
            mError = mOptions.scene + ": loading stopped by an unknown exception";
        }
        mAssertions = watch.count();
        if (!ok && mError.empty())
            mError = mOptions.scene + ": " + (watch.count() ? watch.first() : std::string("nothing to draw"));
    }
    if (!ok)
        unload();
    return ok;
}

bool SceneHost::loadFiles()
{
    if (mOptions.scene.empty()) {
        mError = "no scene file given";
        return false;
    }
    if (!isRegularFile(mOptions.scene)) {
        mError = mOptions.scene + ": cannot be read";
        return false;
    }
    if (!mOptions.sheet.empty() && !isRegularFile(mOptions.sheet)) {
        mError = mOptions.sheet + ": texture sheet cannot be read";
        return false;
    }
    if (!mOptions.costume.empty() && !isRegularFile(mOptions.costume)) {
        mError = mOptions.costume + ": costume cannot be read";
        return false;
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
    std::string prefix = mOptions.defaultPath;
    if (!mOptions.hasDefaultPath) {
        const size_t slash = mOptions.scene.rfind('/');
        prefix = slash == std::string::npos ? std::string() : mOptions.scene.substr(0, slash + 1);
    }
    loader.setDefaultPath(prefix);

    const CSceneLoaderJson::tElementList elements = loader.parseJsonFile(mOptions.scene.c_str());

    mActorManager.reset(new CActorManager());
    auto addActor = [this](const boost::shared_ptr<CBaseActor>& actor) {
        if (actor && std::find(mActors.begin(), mActors.end(), actor) == mActors.end()) {
            mActors.push_back(actor);
            mActorManager->add(actor);
        }
    };
    for (const boost::shared_ptr<CActor2D>& actor : loader.getActors())
        addActor(actor);
    for (const boost::shared_ptr<CGraphicElement>& element : elements) {
        if (!element)
            continue;
        mElements.push_back(element);
        CDrawManager::Instance()->add(element);
        addActor(boost::dynamic_pointer_cast<CBaseActor>(element));
    }
    return !mElements.empty();
}

void SceneHost::unload()
{
    for (const boost::shared_ptr<CGraphicElement>& element : mElements)
        CDrawManager::Instance()->remove(element);
    const bool hadAny = !mElements.empty();
    mElements.clear();
    mActors.clear();
    mActorManager.reset();
    mCostume.reset();
    mSheet.reset();
    if (hadAny)
        CDrawManager::Instance()->shrinkAll();
}

bool SceneHost::reload() { return load(); }

void SceneHost::step(int dtMs)
{
    if (!mActorManager)
        return;
    try {
        mActorManager->update(dtMs);
    } catch (const std::exception& e) {
        // An actor that throws (a jump past its last cel) is the content's
        // fault: keep the picture, stop animating.
        mError = mOptions.scene + ": animation stopped: " + e.what();
        mActorManager.reset();
    }
}

void SceneHost::draw() { CDrawManager::Instance()->drawAll(); }
