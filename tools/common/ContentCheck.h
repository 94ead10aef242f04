#ifndef ZEPHRIN2D_CHECK_CONTENTCHECK_H
#define ZEPHRIN2D_CHECK_CONTENTCHECK_H

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
    enum Kind { Unknown, Scene, Actor, Sheet, Costume, Dataset };

    /// The kind a --kind value names (Unknown for anything else).
    static Kind kindOf(const std::string& name);

    /// The options give the sheet, costume, art path and default path that
    /// the tools would load the files with.
    ContentCheck(Diagnostics& report, const SceneOptions& options);

    /// The errors of the scene file of options, found quietly (nothing is
    /// printed, no listener is told); first is the first one.
    static int errorsIn(const SceneOptions& options, std::string& first);

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

private:
    struct tCel;
    enum Table { Billboards, Sprites, Cels, Actors, Pieces, TableCount };

    void error(const Json::Value& at, const std::string& message);
    void warning(const Json::Value& at, const std::string& message);
    void keyError(const Json::Value& object, const std::string& key, Diagnostics::Severity severity,
                  const std::string& message);

    void loadSheetNames();
    void loadCostumeComponents();

    void checkScene(const Json::Value& root);
    void checkActorFile(const Json::Value& root);
    void checkSheet(const Json::Value& root);
    void checkCostume(const Json::Value& root);

    void element(const Json::Value& v);
    bool definition(const Json::Value& v, Table table, const char* what);
    void billboard(const Json::Value& v);
    void sprite(const Json::Value& v);
    void cel(const Json::Value& v, bool inActor, std::vector<tCel>* jumps);
    void actor(const Json::Value& v, bool topLevel);
    void animation(const Json::Value& list);
    void piece(const Json::Value& v);
    void operations(const Json::Value& list, std::vector<tCel>* jumps);
    void graphic(const Json::Value& v);
    void children(const Json::Value& v);

    /// Unknown keys (with the nearest known one), then the known keys' presence.
    void keys(const Json::Value& object, const char* what, const std::vector<const char*>& known);
    bool require(const Json::Value& object, const char* key, const char* what);
    bool isInteger(const Json::Value& v) const;
    bool stringMember(const Json::Value& object, const char* key, const char* what, bool required, std::string& out);
    bool integerMember(const Json::Value& object, const char* key, bool required, const char* what, long long& out);
    void numberArray(const Json::Value& object, const char* key, size_t sizeA, size_t sizeB, bool integers,
                     bool required, const char* what);
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

    // The file being checked.
    const JsonDocument* mDoc = 0;
    std::string mPath;
    std::string mPrefix;
    std::vector<std::string> mDefinedAt[TableCount];
    bool mToldNoCostume = false;
};

#endif
