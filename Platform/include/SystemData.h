#ifndef ZEPHRIN2D_PLATFORM_SYSTEMDATA_H
#define ZEPHRIN2D_PLATFORM_SYSTEMDATA_H

#include <glibmm/ustring.h>
#include <vector>

/// Asset lookup: turns art and audio names into full paths.
///
/// Searched in order: the directories the host added, then those of
/// ZEPHRIN2D_ART_PATH (colon-separated), then the library's own art
/// directory (which holds "missingAsset.png"). Audio is looked for first in
/// the host's audio directories and ZEPHRIN2D_AUDIO_PATH, then along the art
/// list. The environment is read when the instance is made. A name that
/// already is an existing path comes back unchanged. A name found nowhere gives "".
class CSystemData
{
public:
    static CSystemData* Instance();
    static void Destroy();

    Glib::ustring FindArt(const Glib::ustring& name) const;
    Glib::ustring FindAudio(const Glib::ustring& name) const;

    void AddArtPath(const Glib::ustring& directory);
    void AddAudioPath(const Glib::ustring& directory);
    void ClearPaths();

    /// The library's own art directory (installed, or the source tree's when not installed).
    Glib::ustring GetLibraryArtDirectory() const;

private:
    CSystemData();
    Glib::ustring find(const Glib::ustring& name, const std::vector<Glib::ustring>& dirs) const;

    std::vector<Glib::ustring> mArtPaths;
    std::vector<Glib::ustring> mAudioPaths;
    std::vector<Glib::ustring> mEnvArtPaths;
    std::vector<Glib::ustring> mEnvAudioPaths;
    static CSystemData* mInstance;
};

#endif
