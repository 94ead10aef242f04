#include "ContentModel.h"

#include "CAvatarCostume.h"
#include "CTextureSheet.h"
#include "Paths.h"

#include <cstring>
#include <fstream>

namespace ContentModel {

namespace {

const long long kIntMax = 2147483647LL;
const long long kIntMin = -kIntMax - 1;

/// Builds a key: t() a scalar, a() an array; then the optional parts.
struct K : tKey
{
    K(const char* n, Type t, const char* m)
        : tKey{n, t, Type::Array, 0, 0, t == Type::Integer ? kIntMin : 0, t == Type::Integer ? kIntMax : 0, 0, false,
               m, 0}
    {
    }
    K& req() { required = true; return *this; }
    K& def(const char* d) { byDefault = d; return *this; }
    K& range(long long lo, long long hi) { min = lo; max = hi; return *this; }
    K& items(Type t, unsigned lo, unsigned hi, const char* noun = 0)
    {
        itemType = t;
        minItems = lo;
        maxItems = hi;
        itemNoun = noun;
        if (t == Type::Integer && min == 0 && max == 0)
            range(kIntMin, kIntMax);
        return *this;
    }
};

const unsigned kAny = 0xFFFFFFFFu;

std::vector<tKey> join(std::initializer_list<std::vector<tKey> > parts)
{
    std::vector<tKey> all;
    for (const std::vector<tKey>& p : parts)
        all.insert(all.end(), p.begin(), p.end());
    return all;
}

const std::vector<tKey> kHeader = {
    K("ElementType", Type::Integer, "which element the object makes; see the element types").req().range(0, 5),
    K("ID", Type::Integer, "definition number within the kind; see [Definition numbers](#definition-numbers)")
        .req().range(0, kIntMax),
};

const std::vector<tKey> kGraphic = {
    K("Position", Type::Array, "x and y in pixels from the bottom left, y up; z is the depth (-1.0 to 10.0 is "
                               "visible, greater is nearer). Two numbers keep z")
        .items(Type::Number, 2, 3).def("[0, 0, 0]"),
    K("Rotation", Type::Number, "degrees, counter-clockwise, about the registration point").def("0"),
    K("Scale", Type::Array, "x and y scale about the registration point").items(Type::Number, 2, 2).def("[1, 1]"),
    K("Reg", Type::Array, "registration point: the local point placed at \"Position\", pivot of rotation and scale")
        .items(Type::Number, 2, 2).def("[0, 0]"),
    K("Color", Type::Array, "red, green, blue, alpha: the element's colour ([drawing.md](drawing.md))")
        .items(Type::Integer, 4, 4).range(0, 255).def("[255, 255, 255, 255]"),
    K("Name", Type::String, "names the element, so that a program can find it by name"),
};

const std::vector<tKey> kChildren = {
    K("Children", Type::Array, "attached in order, placed relative to their parent")
        .items(Type::Array, 0, kAny, "element objects").def("[]"),
};

const std::vector<tKey> kCel = {
    K("Duration", Type::Integer, "how long the cel shows, in milliseconds (kept as 16 bits)").req().range(0, 65535),
    K("Operations", Type::Array, "run by an actor that shows the cel, in order")
        .items(Type::Array, 0, kAny, "operation objects").def("[]"),
};

const std::vector<tKey> kAnimation = {
    K("Animation", Type::Array, "the actor's cels in playing order").req().items(Type::Array, 0, kAny, "cel objects"),
};

const std::vector<tKey> kSchema = {
    K("$schema", Type::String, "for editors; ignored by the loaders and tools"),
};

std::vector<tKey> formatTable(Object object);

std::vector<tKey> table(Object object)
{
    switch (object) {
    case Object::Billboard:
        return join({kHeader, kGraphic,
                     {K("URL", Type::String, "a texture-sheet picture name or a PNG file name; see [Image "
                                             "names](#image-names)").req()}});
    case Object::Sprite: return join({kHeader, kGraphic, kChildren});
    case Object::SpriteCel: return join({kHeader, kGraphic, kChildren, kCel});
    case Object::AnimationCel: {
        std::vector<tKey> keys = join({kHeader, kGraphic, kChildren, kCel,
                                       {K("Label", Type::String, "starts the animation of this name at this cel; "
                                                                 "the following unlabelled cels belong to it")}});
        keys[0] = K("ElementType", Type::Integer, "not read in an actor's cel").range(0, 5);
        return keys;
    }
    case Object::Actor: return join({kHeader, kGraphic, kAnimation});
    case Object::AvatarPiece:
        return join({kHeader, kGraphic,
                     {K("Component", Type::String, "a component (body part) name of the costume").req(),
                      K("Variation", Type::String, "a variation name of that component; an unknown one shows the "
                                                   "component's first variation").req()}});
    case Object::Operation:
        return {K("Opcode", Type::Integer, "the code below").req().range(1, 5),
                K("Oparg", Type::IntegerOrNames, "the argument, kept as 16 bits").range(0, 65535).def("0")};
    case Object::ActorFile: return join({kGraphic, kAnimation, kSchema});
    default: return formatTable(object);
    }
}

/// Texture sheets and costumes.
std::vector<tKey> formatTable(Object object)
{
    switch (object) {
    case Object::Sheet:
        return join({{K("ImageData", Type::Array, "one object per bitmap").req().items(Type::Array, 0, kAny,
                                                                                       "bitmap objects")},
                     kSchema});
    case Object::Bitmap:
        return {K("Bitmap", Type::String, "the PNG file, relative to the sheet file's directory, or absolute when it "
                                          "starts with \"/\"").req(),
                K("Images", Type::Array, "the pictures cut from this bitmap").req().items(Type::Array, 0, kAny,
                                                                                          "picture objects")};
    case Object::Picture:
        return {K("Name", Type::String, "the name billboards give; a later picture of the same name replaces the "
                                        "earlier").req(),
                K("P1", Type::Array, "one corner in bitmap pixels, y down from the top row").req()
                    .items(Type::Integer, 2, 2),
                K("P2", Type::Array, "the opposite corner").req().items(Type::Integer, 2, 2),
                K("RegPoint", Type::Array, "moves the picture left by x and up by y (y downwards, as in \"P1\")")
                    .items(Type::Integer, 2, 2).def("[0, 0]"),
                K("CropRect", Type::Array, "the first value adds to \"RegPoint\"'s x, the fourth to its y; the "
                                           "middle two are not read").items(Type::Integer, 4, 4).def("[0, 0, 0, 0]")};
    case Object::Costume:
        return join({{K("LODList", Type::Array, "the levels of detail").req().items(Type::Array, 0, kAny,
                                                                                    "LOD objects"),
                      K("AudioList", Type::Array, "named audio clips").items(Type::Array, 0, kAny, "audio objects")
                          .def("[]")},
                     kSchema});
    case Object::LOD:
        return {K("Size", Type::Integer, "the LOD's size; pieces are scaled by 100 / \"Size\", so each LOD shows at "
                                         "the same size").req().range(1, kIntMax),
                K("TextureURI", Type::String, "the PNG: beside the costume file first, then as an art name; absolute "
                                              "when it starts with \"/\"").req(),
                K("ComponentList", Type::Array, "the components of this LOD").req()
                    .items(Type::Array, 0, kAny, "component objects")};
    case Object::Component:
        return {K("Name", Type::String, "the name avatar pieces give as \"Component\"").req(),
                K("Variations", Type::Array, "the first is the fallback for an unknown variation name").req()
                    .items(Type::Array, 1, kAny, "variation objects")};
    case Object::Variation:
        return {K("Name", Type::String, "the name avatar pieces give as \"Variation\"").req(),
                K("RectLeft", Type::Number, "left edge in texture pixels").req(),
                K("RectTop", Type::Number, "top edge in texture pixels, y down from the top row").req(),
                K("RectRight", Type::Number, "right edge in texture pixels").req(),
                K("RectBottom", Type::Number, "bottom edge in texture pixels, y down").req(),
                K("RegPointX", Type::Number, "registration point from the rectangle's left edge").def("0"),
                K("RegPointY", Type::Number, "registration point from the rectangle's top edge, y down").def("0")};
    case Object::Audio:
        return {K("Name", Type::String, "the clip's name").req(), K("URI", Type::String, "the clip's file").req()};
    default: return {};
    }
}

} // namespace

const std::vector<tKey>& keys(Object object)
{
    static std::vector<std::vector<tKey> > tables;
    if (tables.empty())
        for (int o = 0; o < static_cast<int>(Object::Count); ++o)
            tables.push_back(table(static_cast<Object>(o)));
    static const std::vector<tKey> none;
    return object < Object::Count ? tables[static_cast<size_t>(object)] : none;
}

const tKey* key(Object object, const std::string& name)
{
    for (const tKey& k : keys(object))
        if (name == k.name)
            return &k;
    return 0;
}

const char* describe(Object object)
{
    static const char* const names[] = {"a billboard", "a sprite", "a sprite cel", "a cel of \"Animation\"",
                                        "an actor", "an avatar piece", "an operation", "an actor",
                                        "a texture sheet", "a bitmap entry", "a picture", "a costume",
                                        "an LOD", "a component", "a variation", "an audio entry"};
    return object < Object::Count ? names[static_cast<size_t>(object)] : "an object";
}

Object objectOf(long long elementType)
{
    switch (elementType) {
    case static_cast<int>(ElementKind::Billboard): return Object::Billboard;
    case static_cast<int>(ElementKind::Sprite): return Object::Sprite;
    case static_cast<int>(ElementKind::SpriteCel): return Object::SpriteCel;
    case static_cast<int>(ElementKind::Actor): return Object::Actor;
    case static_cast<int>(ElementKind::AvatarPiece):
    case static_cast<int>(ElementKind::AvatarPieceToo): return Object::AvatarPiece;
    default: return Object::Count;
    }
}

bool isElementKind(long long elementType) { return objectOf(elementType) != Object::Count; }

const Json::Value& member(const Json::Value& v, const char* name)
{
    static const Json::Value null;
    if (!v.isObject())
        return null;
    const Json::Value* found = v.find(name, name + std::strlen(name));
    return found ? *found : null;
}

bool isInteger(const Json::Value& v) { return (v.type() == Json::intValue || v.type() == Json::uintValue) && v.isInt(); }

namespace {

bool isOfType(const Json::Value& v, Type type)
{
    switch (type) {
    case Type::Integer: return isInteger(v);
    case Type::Number: return v.isNumeric();
    case Type::String: return v.isString();
    case Type::IntegerOrNames: return isInteger(v) || v.isArray();
    default: return v.isArray() || v.isObject();
    }
}

} // namespace

bool hasShape(const Json::Value& v, const tKey& key)
{
    if (key.type != Type::Array)
        return isOfType(v, key.type);
    if (!v.isArray() || v.size() < key.minItems || v.size() > key.maxItems)
        return false;
    for (Json::ArrayIndex i = 0; i < v.size(); ++i)
        if (!isOfType(v[i], key.itemType))
            return false;
    return true;
}

FileKind datasetKindOf(const std::string& path)
{
    static const std::string extension = ".dsetBin";
    if (path.size() >= extension.size() && path.compare(path.size() - extension.size(), extension.size(), extension) == 0)
        return FileKind::Dataset;
    char magic[4] = {0};
    std::ifstream in(path.c_str(), std::ios::binary);
    return in.read(magic, 4) && std::memcmp(magic, "ZDST", 4) == 0 ? FileKind::Dataset : FileKind::Unknown;
}

FileKind kindNamed(const std::string& name)
{
    for (FileKind k : {FileKind::Scene, FileKind::Actor, FileKind::Sheet, FileKind::Costume, FileKind::Dataset})
        if (name == kindName(k))
            return k;
    return FileKind::Unknown;
}

const char* kindName(FileKind kind)
{
    switch (kind) {
    case FileKind::Scene: return "scene";
    case FileKind::Actor: return "actor";
    case FileKind::Sheet: return "sheet";
    case FileKind::Costume: return "costume";
    case FileKind::Dataset: return "dataset";
    default: return "unknown";
    }
}

std::string billboardFile(const std::string& prefix, const std::string& name) { return prefix + name; }

std::string scenePrefix(const std::string& scenePath, bool hasDefaultPath, const std::string& defaultPath)
{
    return hasDefaultPath ? defaultPath : directoryOf(scenePath);
}

std::string actorPrefix(const std::string& actorPath) { return directoryOf(actorPath); }

std::string sheetBitmapFile(const std::string& sheetPath, const std::string& bitmap)
{
    return CTextureSheet::bitmapPath(sheetPath, bitmap).raw();
}

std::string foundCostumeTexture(const std::string& datasetPath, const std::string& uri)
{
    const std::string file = costumeTextureFile(datasetPath, uri);
    std::ifstream in(file.c_str());
    return in ? file : std::string();
}

std::string costumeTextureFile(const std::string& costumePath, const std::string& uri)
{
    return AvatarCostume::texturePath(costumePath, uri).raw();
}

} // namespace ContentModel
