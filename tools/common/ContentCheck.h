#ifndef ZEPHRIN2D_CHECK_CONTENTCHECK_H
#define ZEPHRIN2D_CHECK_CONTENTCHECK_H

#include "ContentModel.h"
#include "ImageCheck.h"
#include "JsonDocument.h"
#include "Diagnostics.h"
#include "SceneFiles.h"

#include <map>
#include <set>
#include <string>
#include <vector>

/// Checks scene, actor, texture-sheet and costume files against what the
/// loaders read, and the images they name as the loaders resolve them.
class ContentCheck
{
public:
    using Kind = ContentModel::FileKind;
    static constexpr Kind Unknown = Kind::Unknown, Scene = Kind::Scene, Actor = Kind::Actor, Sheet = Kind::Sheet,
                          Costume = Kind::Costume, Dataset = Kind::Dataset;

    /// The kind a --kind value names (Unknown for anything else).
    static Kind kindOf(const std::string& name) { return ContentModel::kindNamed(name); }

    /// The options give the sheet, costume, art path and default path that
    /// the tools would load the files with.
    ContentCheck(Diagnostics& report, const SceneOptions& options);

    /// The errors of the files of options (scene, sheet, costume, actors), found
    /// quietly (nothing is printed, no listener is told); first is the first one.
    static int errorsIn(const SceneOptions& options, std::string& first);
    /// checkAll, quietly, into found.
    static void quietly(const ContentOptions& options, const std::vector<std::string>& files, Kind kind,
                        Diagnostics& found);

    /// Checks the sheet, costume and actor files of the options, then files
    /// (kind Unknown: each by its content); each file once.
    void checkAll(const std::vector<std::string>& files, Kind kind);
    /// Checks one file; Unknown detects the kind from the content.
    void check(const std::string& path, Kind kind);

    /// A billboard's image name, as the loaders resolve it: the sheet first,
    /// then the file prefix + name. Problems go to file at line, column.
    void checkBillboardImage(const std::string& name, const std::string& prefix, const std::string& file, int line,
                             int column);
    /// An avatar piece's component and variation against the costume.
    void checkPiece(const std::string& component, const std::string& variation, const std::string& file, int line,
                    int column);
    /// A Play Audio name, looked up as the loaders do.
    void checkAudio(const std::string& name, const std::string& file, int line, int column);
    /// An image file that must exist and be a usable PNG; what it is used for names it in messages.
    void checkImageFile(const std::string& path, const std::string& usedFor, const std::string& file, int line,
                        int column);

    /// What a --costume dataset holds, for checkPiece: component to variations of its first LOD.
    void setCostumeComponents(const std::map<std::string, std::vector<std::string> >& components)
    {
        mCostumeComponents = components;
    }
    /// The kind the options give path as (--sheet, --costume, --actor), Unknown for none.
    Kind roleOf(const std::string& path) const;
    /// Reports a file given as one kind that holds another, at file 1:1; false when kinds agree.
    bool wrongKind(const std::string& path, Kind role, Kind held);

private:
    struct tCel;
    enum Table { Billboards, Sprites, Cels, Actors, Pieces, TableCount };
    using Object = ContentModel::Object;

    void error(const Json::Value& at, const std::string& message);
    void warning(const Json::Value& at, const std::string& message);
    void keyError(const Json::Value& object, const std::string& key, Diagnostics::Severity severity,
                  const std::string& message);

    void loadSheetNames();
    void loadCostumeComponents();

    void checkJson(const std::string& path, Kind kind);
    void checkScene(const Json::Value& root);
    void checkActorFile(const Json::Value& root);
    void checkSheet(const Json::Value& root);
    void checkPicture(const Json::Value& picture, const std::string& bitmapFile,
                      std::map<std::string, std::string>& names);
    void checkCostume(const Json::Value& root);
    void checkLOD(const Json::Value& lod);
    void checkVariation(const Json::Value& variation, const std::string& component, const std::string& textureFile);
    /// Whether [left, right] x [top, bottom] lies within the image at imageFile (true when its size is unknown).
    bool fitsImage(const std::string& imageFile, double left, double top, double right, double bottom,
                   std::string& size);

    void element(const Json::Value& v);
    bool definition(const Json::Value& v, Table table, const char* what);
    void billboard(const Json::Value& v);
    void sprite(const Json::Value& v);
    void cel(const Json::Value& v, bool inActor, std::vector<tCel>* jumps);
    void actor(const Json::Value& v, bool topLevel);
    void animation(const Json::Value& list);
    void piece(const Json::Value& v);
    void operations(const Json::Value& list, std::vector<tCel>* jumps);
    void colors(const Json::Value& v);
    void children(const Json::Value& v);

    /// Unknown keys, each with the nearest known one; extra keys are known as well.
    void keys(const Json::Value& object, Object kind, std::initializer_list<const char*> extra = {});
    /// Every key of the model present with the wrong type, shape or a number
    /// fixed point cannot hold, and every required one missing (but those handled).
    void members(const Json::Value& object, Object kind, std::initializer_list<const char*> handled = {});
    void shape(const Json::Value& object, const ContentModel::tKey& key);
    bool require(const Json::Value& object, const char* key, const char* what);
    bool isInteger(const Json::Value& v) const { return ContentModel::isInteger(v); }
    bool stringMember(const Json::Value& object, const char* key, const char* what, bool required, std::string& out);
    bool integerMember(const Json::Value& object, const char* key, bool required, const char* what, long long& out);
    bool objectArray(const Json::Value& object, const char* key, bool required, const char* what);
    std::string placeText(const Json::Value& v) const;

    Diagnostics& mReport;
    SceneOptions mOptions;
    ImageCheck mImages;
    std::set<std::string> mSheetNames;  ///< collation keys
    bool mHasSheet = false;
    std::map<std::string, std::vector<std::string> > mCostumeComponents;
    bool mHasCostume = false;
    bool mCostumeLoaded = false;
    bool mCostumeUsable = true;
    std::set<std::string> mChecked;

    // The file being checked.
    const JsonDocument* mDoc = 0;
    std::string mPath;
    std::string mPrefix;
    std::vector<std::string> mDefinedAt[TableCount];
    bool mToldNoCostume = false;
};

#endif
