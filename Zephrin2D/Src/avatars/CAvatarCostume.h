#ifndef ZEPHRIN2D_CAVATARCOSTUME_H
#define ZEPHRIN2D_CAVATARCOSTUME_H

#include "tVect.h"

#include <boost/shared_ptr.hpp>
#include <glibmm/ustring.h>
#include <map>
#include <string>
#include <vector>

class Avatar2DPiece;
class CTexture;
class CDataset;
namespace QJN { class Value; }

/// The size against which an LOD's size is measured: a piece is drawn at
/// AVATAR_BASE_SIZE / size of its texture pixels, the same on-screen size at every LOD.
inline constexpr tFixed AVATAR_BASE_SIZE = tFixed::fromRaw(6553600);

/// One variation of a component: its rectangle in the LOD's texture (pixels,
/// y downwards from the top row) and its registration point.
struct tAvatarVariation
{
    Glib::ustring name;
    tFixed left, top, right, bottom;
    tFixed regX, regY;
};

struct tAvatarComponent
{
    Glib::ustring name;
    std::vector<tAvatarVariation> variations;
};

/// One level of detail: a texture and the components cut from it.
struct tAvatarLOD
{
    int size;
    Glib::ustring textureURI;
    boost::shared_ptr<CTexture> texture;
    std::map<std::string, tAvatarComponent> components;  ///< by collation key of the name
    std::vector<std::string> componentOrder;             ///< keys in file order
};

/// What a piece needs to show one variation at the current LOD.
struct tAvatarTexturePiece
{
    bool valid;
    int lodSize;
    boost::shared_ptr<CTexture> texture;
    tAvatarVariation variation;
};

/// A catalogue of interchangeable pieces with levels of detail.
///
/// For each LOD: a texture and, per component (a body part), named
/// variations with their rectangle in that texture and their registration
/// point; beside that, named audio clips. Loaded from a costume JSON file or
/// a dataset; avatar pieces take their image from it.
class AvatarCostume
{
public:
    enum { MAX_REQUESTED_LODS = 30 };

    AvatarCostume();
    ~AvatarCostume();

    /// A ".dsetBin" path goes to addFromDset, anything else to addFromJson.
    void addFromFile(const Glib::ustring& path, int* lods, int count);
    /// Loads the LODs that the requested sizes map to (every LOD when count is 0 or less).
    void addFromJson(const Glib::ustring& path, int* lods, int count);
    void addFromDset(const Glib::ustring& path);

    /// The LOD size a requested size maps to: the smallest size not below it
    /// (and below 9999), else the largest; -1 when sizes is empty.
    static int mapLOD(int requested, const std::vector<int>& sizes);
    /// The file an LOD's "TextureURI" loads from: beside the costume file
    /// when it is there, else the art file of that name, else the name beside
    /// the costume (which then fails to load); an absolute name as it is.
    static Glib::ustring texturePath(const Glib::ustring& costumePath, const Glib::ustring& uri);

    /// Selects the LOD whose size is lod (or the one it maps to among those
    /// loaded); the pieces showing this costume rebuild themselves.
    void setLOD(int lod);
    int getLOD() const { return mLOD; }

    tAvatarTexturePiece getAvatarTexturePiece(const Glib::ustring& component, const Glib::ustring& variation);

    const std::vector<tAvatarLOD>& getLODs() const { return mLODs; }
    const std::map<std::string, std::pair<Glib::ustring, Glib::ustring> >& getAudio() const { return mAudio; }
    Glib::ustring getAudioURI(const Glib::ustring& name) const;

    void clear();
    void debugDump();

private:
    friend class Avatar2DPiece;
    void attachPiece(Avatar2DPiece* piece);
    void detachPiece(Avatar2DPiece* piece);

    AvatarCostume(const AvatarCostume&);
    AvatarCostume& operator=(const AvatarCostume&);

    const tAvatarLOD* currentLOD() const;
    void addAudio(const Glib::ustring& name, const Glib::ustring& uri);
    tAvatarLOD* addLOD(int size, const Glib::ustring& textureURI, const Glib::ustring& texturePath);

    int mLOD;
    std::vector<tAvatarLOD> mLODs;
    std::map<std::string, std::pair<Glib::ustring, Glib::ustring> > mAudio;  ///< key -> (name, URI)
    std::vector<boost::shared_ptr<CDataset> > mDatasets;
    std::vector<Avatar2DPiece*> mPieces;
};

#endif
