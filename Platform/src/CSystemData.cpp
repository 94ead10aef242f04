#include "SystemData.h"

#include <cstdlib>
#include <dlfcn.h>
#include <sys/stat.h>

CSystemData* CSystemData::mInstance = 0;

namespace {

bool exists(const std::string& path)
{
    struct stat info;
    return !path.empty() && stat(path.c_str(), &info) == 0 && !S_ISDIR(info.st_mode);
}

/// The art directory beside this library's own file, so that an installed
/// tree still finds its art after being moved.
std::string artBesideLibrary()
{
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(&artBesideLibrary), &info) || !info.dli_fname)
        return std::string();
    const std::string library = info.dli_fname;
    const size_t slash = library.rfind('/');
    if (slash == std::string::npos)
        return std::string();
    return library.substr(0, slash + 1) + ZEPHRIN2D_ART_DIR_FROM_LIBRARY;
}

void appendEnvironmentList(const char* variable, std::vector<Glib::ustring>& dirs)
{
    const char* value = getenv(variable);
    if (!value)
        return;
    std::string list(value);
    size_t start = 0;
    while (start <= list.size()) {
        size_t end = list.find(':', start);
        if (end == std::string::npos)
            end = list.size();
        if (end > start)
            dirs.push_back(list.substr(start, end - start));
        start = end + 1;
    }
}

} // namespace

CSystemData::CSystemData()
{
    appendEnvironmentList("ZEPHRIN2D_ART_PATH", mEnvArtPaths);
    appendEnvironmentList("ZEPHRIN2D_AUDIO_PATH", mEnvAudioPaths);
}

CSystemData* CSystemData::Instance()
{
    if (!mInstance)
        mInstance = new CSystemData;
    return mInstance;
}

void CSystemData::Destroy()
{
    delete mInstance;
    mInstance = 0;
}

Glib::ustring CSystemData::FindArt(const Glib::ustring& name) const
{
    std::vector<Glib::ustring> dirs(mArtPaths);
    dirs.insert(dirs.end(), mEnvArtPaths.begin(), mEnvArtPaths.end());
    dirs.push_back(GetLibraryArtDirectory());
    return find(name, dirs);
}

Glib::ustring CSystemData::FindAudio(const Glib::ustring& name) const
{
    std::vector<Glib::ustring> dirs(mAudioPaths);
    dirs.insert(dirs.end(), mEnvAudioPaths.begin(), mEnvAudioPaths.end());
    dirs.insert(dirs.end(), mArtPaths.begin(), mArtPaths.end());
    dirs.insert(dirs.end(), mEnvArtPaths.begin(), mEnvArtPaths.end());
    dirs.push_back(GetLibraryArtDirectory());
    return find(name, dirs);
}

void CSystemData::AddArtPath(const Glib::ustring& directory)
{
    if (!directory.empty())
        mArtPaths.push_back(directory);
}

void CSystemData::AddAudioPath(const Glib::ustring& directory)
{
    if (!directory.empty())
        mAudioPaths.push_back(directory);
}

void CSystemData::ClearPaths()
{
    mArtPaths.clear();
    mAudioPaths.clear();
}

Glib::ustring CSystemData::GetLibraryArtDirectory() const
{
    static const std::string candidates[] = {artBesideLibrary(), ZEPHRIN2D_INSTALLED_ART_DIR};
    for (const std::string& dir : candidates)
        if (exists(dir + "/missingAsset.png"))
            return dir;
    return ZEPHRIN2D_SOURCE_ART_DIR;
}

Glib::ustring CSystemData::find(const Glib::ustring& name, const std::vector<Glib::ustring>& dirs) const
{
    const std::string raw = name.raw();
    if (raw.empty())
        return Glib::ustring();
    if (exists(raw))
        return name;
    if (raw[0] == '/')
        return Glib::ustring();
    for (size_t i = 0; i < dirs.size(); ++i) {
        std::string candidate = dirs[i].raw();
        if (candidate.empty())
            continue;
        if (candidate[candidate.size() - 1] != '/')
            candidate += '/';
        candidate += raw;
        if (exists(candidate))
            return candidate;
    }
    return Glib::ustring();
}
