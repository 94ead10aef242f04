#include "ImageCheck.h"

#include "ContentModel.h"
#include "Paths.h"

#include <QJN.h>
#include <SystemData.h>

#include <set>
#include <sys/stat.h>

namespace {

bool isFile(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

/// The picture names of a sheet; its missing bitmaps are missing images too.
void sheetNames(const std::string& sheetPath, std::set<std::string>& names, std::vector<std::string>& missing)
{
    QJN::CJSonFile file(sheetPath, 0);
    if (!file.Load()) {
        missing.push_back(sheetPath + ": the texture sheet cannot be read");
        return;
    }
    const QJN::Value bitmaps = file.getRoot()["ImageData"];
    for (unsigned int i = 0; i < bitmaps.size(); ++i) {
        const std::string bitmap = bitmaps[i]["Bitmap"].asString();
        const std::string path = ContentModel::sheetBitmapFile(sheetPath, bitmap);
        if (!isFile(path))
            missing.push_back(sheetPath + ": ImageData[" + std::to_string(i) + "].Bitmap: image \"" + bitmap +
                              "\" not found at " + path);
        const QJN::Value images = bitmaps[i]["Images"];
        for (unsigned int k = 0; k < images.size(); ++k)
            names.insert(images[k]["Name"].asString());
    }
}

} // namespace

bool checkImages(DsetCompiler::tKind kind, const std::string& jsonPath, const std::string& datasetPath,
                 const std::vector<std::string>& sheetPaths, std::vector<std::string>& missing)
{
    const size_t before = missing.size();
    QJN::CJSonFile file(jsonPath, 0);
    file.Load();
    const QJN::Value root = file.getRoot();
    const std::string dir = directoryOf(datasetPath);
    if (kind == DsetCompiler::KIND_COSTUME) {
        const QJN::Value lods = root["LODList"];
        for (unsigned int i = 0; i < lods.size(); ++i) {
            const std::string uri = lods[i]["TextureURI"].asString();
            const bool absolute = !uri.empty() && uri[0] == '/';
            if (!ContentModel::foundCostumeTexture(datasetPath, uri).empty())
                continue;
            missing.push_back(jsonPath + ": LODList[" + std::to_string(i) + "].TextureURI: image \"" + uri +
                              "\" not found" +
                              (absolute ? "" : " beside the dataset (" + dir + uri + ") nor in the art directories"));
        }
        return missing.size() == before;
    }
    std::set<std::string> names;
    std::string sheets;
    for (const std::string& sheetPath : sheetPaths) {
        sheetNames(sheetPath, names, missing);
        sheets += (sheets.empty() ? "" : " nor ") + sheetPath;
    }
    const QJN::Value cels = root["Animation"];
    for (unsigned int i = 0; i < cels.size(); ++i) {
        const QJN::Value children = cels[i]["Children"];
        for (unsigned int k = 0; k < children.size(); ++k) {
            const QJN::Value child = children[k];
            if (ContentModel::objectOf(child["ElementType"].asInt()) != ContentModel::Object::Billboard ||
                !child["URL"].isString())
                continue;
            const std::string url = child["URL"].asString();
            if (names.count(url) || isFile(ContentModel::billboardFile(ContentModel::actorPrefix(datasetPath), url)))
                continue;
            missing.push_back(jsonPath + ": Animation[" + std::to_string(i) + "].Children[" + std::to_string(k) +
                              "].URL: image \"" + url + "\" not found: " +
                              (sheets.empty() ? "no texture sheet given (--sheet), " : "not in " + sheets + ", ") +
                              "no file " + dir + url);
        }
    }
    return missing.size() == before;
}
