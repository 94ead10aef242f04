#ifndef ZEPHRIN2D_TOOLS_CONTENTMODEL_H
#define ZEPHRIN2D_TOOLS_CONTENTMODEL_H

#include <json/json.h>

#include <string>
#include <vector>

/// What the content files hold, as the library's loaders read them: the kinds
/// of file and of element, every key of every object (its JSON type, arity,
/// range, default, whether it is required and what it means) and where a
/// named image is looked for. The tools read content through this one table;
/// the JSON Schemas and the key reference of docs/formats.md are tested
/// against it. The loaders keep their own code.
namespace ContentModel {

enum class FileKind { Unknown, Scene, Actor, Sheet, Costume, Dataset };

/// The values of "ElementType".
enum class ElementKind { Billboard = 0, Sprite = 1, SpriteCel = 2, Actor = 3, AvatarPiece = 4, AvatarPieceToo = 5 };

/// The objects that hold keys.
enum class Object {
    Billboard, Sprite, SpriteCel, AnimationCel, Actor, AvatarPiece, Operation, ActorFile,
    Sheet, Bitmap, Picture, Costume, LOD, Component, Variation, Audio, Count
};

/// A value's JSON type; IntegerOrNames is an operation's "Oparg" (an integer,
/// or for Play Audio an array of 1 or 2 audio names).
enum class Type { Integer, Number, String, Array, IntegerOrNames };

/// Numbers become 16.16 fixed point: what lies outside this range cannot be represented.
const double kFixedMin = -32768.0;
const double kFixedMax = 32767.0;

struct tKey
{
    const char* name;
    Type type;
    Type itemType;       ///< arrays: the items' type (Array for objects)
    unsigned minItems;   ///< arrays
    unsigned maxItems;
    long long min;       ///< integers, or the integer items of an array
    long long max;
    const char* byDefault;  ///< the value taken when absent, as JSON text; null when none
    bool required;
    const char* meaning;
    const char* itemNoun;   ///< arrays of objects: what they hold ("element objects")
};

/// The keys an object takes, in the order the documentation lists them.
const std::vector<tKey>& keys(Object object);
/// One key of an object, or null when the object has no such key.
const tKey* key(Object object, const std::string& name);
/// "a billboard", "an LOD", ...: the object named in messages.
const char* describe(Object object);
/// The object an element of this "ElementType" is (Object::Count for none).
Object objectOf(long long elementType);
/// Whether the value is an element type the loaders make something of.
bool isElementKind(long long elementType);

/// The member of an object, or a null value when v is no object or lacks it
/// (never the exception jsoncpp raises for a member of a non-object).
const Json::Value& member(const Json::Value& v, const char* name);

/// Whether a JSON number is an integer the loaders read as one.
bool isInteger(const Json::Value& v);
/// Whether v has the key's type, arity and item types (not its range).
bool hasShape(const Json::Value& v, const tKey& key);

/// The kind of a JSON document (a jsoncpp or a platform JSON value): an array
/// is a scene, an object with "Animation" an actor, with "ImageData" a
/// texture sheet, with "LODList" a costume.
template <class TValue> FileKind kindOf(const TValue& root)
{
    if (root.isArray())
        return FileKind::Scene;
    if (!root.isObject())
        return FileKind::Unknown;
    return root.isMember("Animation") ? FileKind::Actor
         : root.isMember("ImageData") ? FileKind::Sheet
         : root.isMember("LODList") ? FileKind::Costume
         : FileKind::Unknown;
}
/// The kind of a file: a name ending in ".dsetBin" or content starting with
/// the dataset magic number is a dataset, else Unknown (read the JSON).
FileKind datasetKindOf(const std::string& path);
/// The kind a --kind value names (Unknown for anything else).
FileKind kindNamed(const std::string& name);
const char* kindName(FileKind kind);

/// The file name a billboard image is loaded from when the sheet does not
/// have it: the prefix followed by the name, joined as written.
std::string billboardFile(const std::string& prefix, const std::string& name);
/// The prefix of a scene's billboard names: the default path when one is
/// given, else the scene file's directory.
std::string scenePrefix(const std::string& scenePath, bool hasDefaultPath, const std::string& defaultPath);
/// The prefix of an actor file's (or actor dataset's) billboard names: its own directory.
std::string actorPrefix(const std::string& actorPath);
/// A costume LOD's texture file when it is sought beside a dataset at
/// datasetPath or through the art lookup; empty when it is found nowhere.
std::string foundCostumeTexture(const std::string& datasetPath, const std::string& uri);
/// A texture sheet's bitmap file, as the sheet loads it.
std::string sheetBitmapFile(const std::string& sheetPath, const std::string& bitmap);
/// A costume LOD's texture file, as the costume loads it (beside the costume, then the art lookup).
std::string costumeTextureFile(const std::string& costumePath, const std::string& uri);

} // namespace ContentModel

#endif
