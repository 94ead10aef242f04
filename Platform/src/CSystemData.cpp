// Placeholder: replaced by the platform's asset lookup.
#include "SystemData.h"

CSystemData* CSystemData::mInstance = 0;

CSystemData::CSystemData() {}
CSystemData* CSystemData::Instance()
{
    if (!mInstance)
        mInstance = new CSystemData();
    return mInstance;
}
void CSystemData::Destroy() { delete mInstance; mInstance = 0; }
Glib::ustring CSystemData::FindArt(const Glib::ustring& name) const { return name; }
Glib::ustring CSystemData::FindAudio(const Glib::ustring& name) const { return name; }
void CSystemData::AddArtPath(const Glib::ustring&) {}
void CSystemData::AddAudioPath(const Glib::ustring&) {}
void CSystemData::ClearPaths() {}
Glib::ustring CSystemData::GetLibraryArtDirectory() const { return ""; }
