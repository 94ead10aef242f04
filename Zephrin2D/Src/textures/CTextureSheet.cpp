#include "CTextureSheet.h"
#include "CLoadReport.h"

#include "CTexture.h"
#include "CTextureManager.h"

#include <DebugMPI.h>
#include <QJN.h>

namespace {

const Tadwick::Vell::CDebugMPI& debug()
{
    static Tadwick::Vell::CDebugMPI d(0x28C);
    return d;
}

tVect2 readPoint(const QJN::Value& v)
{
    return tVect2{tFixed(v[0].asInt()), tFixed(v[1].asInt())};
}

} // namespace

CTextureSheet::CTextureSheet() {}

CTextureSheet::CTextureSheet(const Glib::ustring& path)
{
    addFromJson(path);
}

CTextureSheet::~CTextureSheet() {}

void CTextureSheet::addFromJson(const Glib::ustring& path)
{
    debug().DebugOut(3, "Adding file to textureMap: [%s]...\n", path.c_str());
    const CLoadReport::tScope scope(path, true);
    QJN::CJSonFile file(path);
    file.Load();
    const QJN::Value bitmaps = file.getRoot()["ImageData"];
    if (!bitmaps.isArray())
        CLoadReport::add(tLoadProblem::BAD_CONTENT, Glib::ustring(), "not a texture sheet: no \"ImageData\" array");
    debug().DebugOut(3, "loading Bitmaps... (%d total)\n", static_cast<int>(bitmaps.size()));

    for (unsigned int b = 0; b < bitmaps.size(); ++b) {
        const QJN::Value bitmap = bitmaps[b];
        const QJN::Value name = bitmap["Bitmap"];
        boost::shared_ptr<CTexture> texture;
        if (name.isString() && !name.asString().empty()) {
            texture = CTextureManager::Instance()->load(bitmapPath(path, name.asString()), true, false, false);
            if (texture)
                mBitmaps.push_back(texture);
        } else {
            debug().DebugOut(3, "CTextureSheet: bitmap %u of %s names no file\n", b, path.c_str());
        }

        const QJN::Value images = bitmap["Images"];
        for (unsigned int i = 0; i < images.size(); ++i) {
            const QJN::Value image = images[i];
            if (!image["Name"].isString()) {
                debug().DebugOut(3, "CTextureSheet: picture %u of bitmap %u in %s has no name\n", i, b, path.c_str());
                continue;
            }
            const Glib::ustring pictureName = image["Name"].asString();
            const std::string key = pictureName.collate_key();
            tTextureSheetElement& e = textureMap[key];
            mNames[key] = pictureName;
            e.p1 = readPoint(image["P1"]);
            e.p2 = readPoint(image["P2"]);
            e.reg = readPoint(image["RegPoint"]);
            const QJN::Value crop = image["CropRect"];
            for (int k = 0; k < 4; ++k)
                e.cropRect[k] = tFixed(crop[k].asInt());
            e.texture = texture;
        }
    }
}

Glib::ustring CTextureSheet::bitmapPath(const Glib::ustring& sheetPath, const Glib::ustring& bitmap)
{
    if (!bitmap.empty() && bitmap[0] == '/')
        return bitmap;
    const Glib::ustring::size_type slash = sheetPath.rfind('/');
    return (slash == Glib::ustring::npos ? Glib::ustring() : sheetPath.substr(0, slash + 1)) + bitmap;
}

tTextureSheetElement CTextureSheet::getElement(const Glib::ustring& name)
{
    std::map<std::string, tTextureSheetElement>::const_iterator it = textureMap.find(name.collate_key());
    if (it != textureMap.end())
        return it->second;
    debug().DebugOut(3, "could not find %s\n", name.c_str());
    return tTextureSheetElement();
}

tVect2 CTextureSheet::getPictureSize(const Glib::ustring& name) const
{
    std::map<std::string, tTextureSheetElement>::const_iterator it = textureMap.find(name.collate_key());
    if (it == textureMap.end())
        return VECT2_0;
    const tVect2 d = it->second.p2 - it->second.p1;
    return tVect2{d.x < ZERO_X ? -d.x : d.x, d.y < ZERO_X ? -d.y : d.y};
}

void CTextureSheet::debugDump()
{
    const Tadwick::Vell::CDebugMPI& d = debug();
    d.DebugOut(3, "Current contents of Texture Sheet object:\n");
    d.DebugOut(3, "--------------------------------------------------\n");
    for (std::map<std::string, tTextureSheetElement>::const_iterator it = textureMap.begin(); it != textureMap.end();
         ++it) {
        const tTextureSheetElement& e = it->second;
        // The picture's name: the collation key itself is binary in most locales.
        d.DebugOut(3, "%s :\n", mNames[it->first].c_str());
        d.DebugOut(3, "  p1:  [%f, %f]\n", e.p1.x.toDouble(), e.p1.y.toDouble());
        d.DebugOut(3, "  p2:  [%f, %f]\n", e.p2.x.toDouble(), e.p2.y.toDouble());
        d.DebugOut(3, "  reg: [%f, %f]\n", e.reg.x.toDouble(), e.reg.y.toDouble());
        d.DebugOut(3, "  cropRect: [%f, %f]-[%f, %f]\n", e.cropRect[0].toDouble(), e.cropRect[1].toDouble(),
                   e.cropRect[2].toDouble(), e.cropRect[3].toDouble());
    }
}
