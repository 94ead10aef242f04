#ifndef ZEPHRIN2D_CTEXTURESHEET_H
#define ZEPHRIN2D_CTEXTURESHEET_H

#include "tVect.h"

#include <boost/shared_ptr.hpp>
#include <glibmm/ustring.h>
#include <map>
#include <string>
#include <vector>

class CTexture;

/// One picture of a texture sheet: a rectangle of a shared bitmap texture.
/// Coordinates are pixels, y downwards from the bitmap's top row.
struct tTextureSheetElement
{
    tVect2 p1;          ///< first corner inside the bitmap
    tVect2 p2;          ///< opposite corner
    tVect2 reg;         ///< registration point
    tFixed cropRect[4]; ///< crop rectangle, in file order
    boost::shared_ptr<CTexture> texture;  ///< empty when the bitmap could not be loaded
};

/// A texture atlas: named pictures cut from bitmaps, described by JSON files
/// of the form
///
///     {"ImageData": [{"Bitmap": "sheet.png",
///                     "Images": [{"Name": "hero", "P1": [0, 0], "P2": [32, 32],
///                                 "RegPoint": [16, 0], "CropRect": [0, 0, 0, 0]}]}]}
///
/// where each bitmap is named relative to the description's directory. The
/// sheet keeps the bitmaps' textures alive while it exists.
class CTextureSheet
{
public:
    CTextureSheet();
    explicit CTextureSheet(const Glib::ustring& path);
    ~CTextureSheet();

    /// Adds the pictures of one description; a picture of a name already
    /// present replaces it. Whatever the file lacks is read as zero.
    void addFromJson(const Glib::ustring& path);
    /// The file a description at sheetPath loads for its "Bitmap": relative
    /// to the description's directory, an absolute name as it is.
    static Glib::ustring bitmapPath(const Glib::ustring& sheetPath, const Glib::ustring& bitmap);
    /// A copy of the named picture; all zero with an empty texture when unknown.
    tTextureSheetElement getElement(const Glib::ustring& name);
    /// Width and height in pixels of the picture of that name (from P1 to
    /// P2, whichever corner comes first); (0, 0), quietly, when there is none.
    tVect2 getPictureSize(const Glib::ustring& name) const;
    /// Lists every picture on the debug service (level 3).
    void debugDump();

    size_t getElementCount() const { return textureMap.size(); }

private:
    CTextureSheet(const CTextureSheet&);
    CTextureSheet& operator=(const CTextureSheet&);

    std::map<std::string, tTextureSheetElement> textureMap;
    std::map<std::string, Glib::ustring> mNames;
    std::vector<boost::shared_ptr<CTexture> > mBitmaps;
};

#endif
