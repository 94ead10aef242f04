#include "CSceneLoaderJson.h"

#include "Avatar2DPiece.h"
#include "CActor2D.h"
#include "CBillboard.h"
#include "CSprite.h"
#include "CSpriteCel.h"
#include "CLoadReport.h"
#include "tDefinitionTable.h"

#include <BaseUtils.h>
#include <DebugMPI.h>
#include <QJN.h>
#include <SystemData.h>

namespace {

const char* const kFile = "Zephrin2D/Src/CSceneLoaderJson";

#define CHECK(cond, ...) BaseUtils::Assert((cond), kFile, __LINE__, __VA_ARGS__)

const Tadwick::Vell::CDebugMPI& debug()
{
    static Tadwick::Vell::CDebugMPI d(0x286);
    return d;
}

tFixed fixedOf(const QJN::Value& v) { return tFixed::fromFloat(v.asDouble()); }

/// The definition-number rule on an element object's "ID".
template <class T>
bool earlierDefinition(const QJN::Value& value, std::vector<boost::shared_ptr<T> >& table,
                       boost::shared_ptr<T>& found, const char* wrongMessage)
{
    return earlierDefinition(static_cast<unsigned int>(value["ID"].asInt()), table, found, debug(), wrongMessage);
}

// The keys each kind reads besides the common ones; 3 is also an actor file.
const char* const* keysOf(int elementType)
{
    static const char* const kBillboard[] = {"URL", 0};
    static const char* const kSprite[] = {"Children", 0};
    static const char* const kCel[] = {"Children", "Duration", "Operations", "Label", 0};
    static const char* const kActor[] = {"Animation", 0};
    static const char* const kPiece[] = {"Component", "Variation", 0};
    static const char* const kNone[] = {0};
    switch (elementType) {
    case 0: return kBillboard;
    case 1: return kSprite;
    case 2: return kCel;
    case 3: return kActor;
    case 4:
    case 5: return kPiece;
    default: return kNone;
    }
}

const char* kindName(int elementType)
{
    static const char* const kNames[] = {"a billboard", "a sprite", "a sprite cel", "an actor", "an avatar piece",
                                         "an avatar piece"};
    return elementType >= 0 && elementType <= 5 ? kNames[elementType] : "an element";
}

} // namespace

void CSceneLoaderJson::reportUnknownKeys(const QJN::Value& value, int elementType)
{
    static const char* const kCommon[] = {"ElementType", "ID", "Position", "Rotation", "Scale", "Reg", "Color", "Name", 0};
    const std::vector<std::string> names = value.getMemberNames();
    for (size_t i = 0; i < names.size(); ++i) {
        bool known = false;
        for (const char* const* k = kCommon; *k && !known; ++k)
            known = names[i] == *k;
        for (const char* const* k = keysOf(elementType); *k && !known; ++k)
            known = names[i] == *k;
        if (!known)
            CLoadReport::add(tLoadProblem::BAD_CONTENT, Glib::ustring(),
                             "unknown key \"" + names[i] + "\" in " + kindName(elementType) + ": it is not read");
    }
}

void CSceneLoaderJson::remember(const QJN::Value& value, const boost::shared_ptr<CGraphicElement>& element)
{
    const QJN::Value name = value["Name"];
    if (name.isString() && element)
        mNames[Glib::ustring(name.asString()).collate_key()] = element;
}

boost::shared_ptr<CGraphicElement> CSceneLoaderJson::find(const Glib::ustring& name) const
{
    const std::map<std::string, boost::shared_ptr<CGraphicElement> >::const_iterator it = mNames.find(name.collate_key());
    return it == mNames.end() ? boost::shared_ptr<CGraphicElement>() : it->second;
}

CSceneLoaderJson::CSceneLoaderJson() : mCostume(0), mTextureSheet(0) {}

CSceneLoaderJson::~CSceneLoaderJson() {}

void CSceneLoaderJson::setCostume(AvatarCostume* costume) { mCostume = costume; }
void CSceneLoaderJson::setTextureSheet(CTextureSheet* sheet) { mTextureSheet = sheet; }
void CSceneLoaderJson::setDefaultPath(Glib::ustring path) { mDefaultPath = path; }

CSceneLoaderJson::tElementList CSceneLoaderJson::parseJsonFile(const char* path)
{
    debug().DebugOut(3, "CSceneLoaderJson::parseJsonValue Opening file %s\n", path ? path : "");
    const CLoadReport::tScope scope(path ? path : "", true);
    tElementList result;
    QJN::CJSonFile file(Glib::ustring(path ? path : ""), 0);
    file.Load();
    const QJN::Value& root = file.getRoot();
    CHECK(root.isArray(), "CSceneLoaderJson::parseJsonValue outermost container is not an array");
    if (!root.isArray())
        return result;
    for (unsigned int i = 0; i < root.size(); ++i) {
        const QJN::Value entry = root[i];
        if (entry["ElementType"].asInt() != 3) {
            result.push_back(parseJsonValue(entry));
            continue;
        }
        const unsigned int id = static_cast<unsigned int>(entry["ID"].asInt());
        if (id < mActors.size()) {
            boost::shared_ptr<CActor2D> copy(new CActor2D(*mActors[id]));
            mActorList.push_back(copy);
            parseGraphicElementPortion(entry, copy.get());
            remember(entry, copy);
        } else {
            mActorList.push_back(parseActor2D(entry));
        }
        result.push_back(mActorList.back());
    }
    return result;
}

boost::shared_ptr<CGraphicElement> CSceneLoaderJson::parseJsonValue(const QJN::Value& value)
{
    const bool object = value.isObject();
    const bool hasType = value.isMember("ElementType");
    const bool intType = value["ElementType"].isInt();
    CHECK(object, "CSceneLoaderJson::parseJsonValue value is not an object");
    CHECK(hasType, "CSceneLoaderJson::parseJsonValue value does not have a ElementType");
    CHECK(intType, "CSceneLoaderJson::parseJsonValue value ElementType is not an int");
    if (!object || !hasType || !intType)
        return boost::shared_ptr<CGraphicElement>();
    switch (value["ElementType"].asInt()) {
    case 0: return parseBillboard(value);
    case 1: return parseSprite(value);
    case 2: return parseSpriteCel(value);
    case 3:
        debug().DebugOut(3, "CSceneLoaderJson::parseJsonValue embedded Actor");
        return parseActor2D(value);
    case 4:
    case 5: return parseAvatarPiece(value);
    default:
        CLoadReport::add(tLoadProblem::BAD_CONTENT, Glib::ustring(),
                         Glib::ustring::compose("unknown \"ElementType\" %1: the entry loads as nothing",
                                                value["ElementType"].asInt()));
        return boost::shared_ptr<CGraphicElement>();
    }
}

void CSceneLoaderJson::parseGraphicElementPortion(const QJN::Value& value, CGraphicElement* element)
{
    if (!element)
        return;
    if (value.isMember("Position")) {
        const QJN::Value p = value["Position"];
        CHECK(p.isArray(), "CSceneLoaderJson::parseGraphicElementPortion Position is not Array");
        if (p.size() == 2) {
            CHECK(p[0u].isDouble(), "CSceneLoaderJson::parseGraphicElementPortion position 2 first item not a double %d", p[0u].type());
            CHECK(p[1u].isDouble(), "CSceneLoaderJson::parseGraphicElementPortion position 2 second item not a double %d", p[1u].type());
            element->moveTo(tVect2{fixedOf(p[0u]), fixedOf(p[1u])});
        } else if (p.size() == 3) {
            CHECK(p[0u].isDouble(), "CSceneLoaderJson::parseGraphicElementPortion position 3 first item not a double");
            CHECK(p[1u].isDouble(), "CSceneLoaderJson::parseGraphicElementPortion position 3 second item not a double");
            CHECK(p[2u].isDouble(), "CSceneLoaderJson::parseGraphicElementPortion position 3 third item not a double");
            element->moveTo(tVect3{fixedOf(p[0u]), fixedOf(p[1u]), fixedOf(p[2u])});
        } else {
            CHECK(false, "CSceneLoaderJson::parseGraphicElementPortion invalid number of elements for position");
        }
    }
    if (value.isMember("Rotation")) {
        const QJN::Value r = value["Rotation"];
        CHECK(r.isDouble(), "CSceneLoaderJson::parseGraphicElementPortion Rotation not a double");
        element->rotateTo(fixedOf(r));
    }
    if (value.isMember("Scale")) {
        const QJN::Value s = value["Scale"];
        CHECK(s.isArray(), "CSceneLoaderJson::parseGraphicElementPortion Scale is not Array");
        CHECK(s.size() == 2, "CSceneLoaderJson::parseGraphicElementPortion Scale is not 2 double");
        CHECK(s[0u].isDouble(), "CSceneLoaderJson::parseGraphicElementPortion Scale first item not a double");
        CHECK(s[1u].isDouble(), "CSceneLoaderJson::parseGraphicElementPortion Scale second item not a double");
        if (s.size() == 2)
            element->scaleTo(tVect2{fixedOf(s[0u]), fixedOf(s[1u])});
    }
    if (value.isMember("Reg")) {
        const QJN::Value r = value["Reg"];
        CHECK(r.isArray(), "CSceneLoaderJson::parseGraphicElementPortion reg_point is not Array");
        CHECK(r.size() == 2, "CSceneLoaderJson::parseGraphicElementPortion reg_point does not have 2 elements");
        CHECK(r[0u].isDouble(), "CSceneLoaderJson::parseGraphicElementPortion reg_point first element not double");
        CHECK(r[1u].isDouble(), "CSceneLoaderJson::parseGraphicElementPortion reg_point second element not double");
        if (r.size() == 2)
            element->moveRegTo(tVect2{fixedOf(r[0u]), fixedOf(r[1u])});
    }
    if (value.isMember("Color")) {
        const QJN::Value c = value["Color"];
        CHECK(c.isArray(), "CSceneLoaderJson::parseGraphicElementPortion color is not Array");
        CHECK(c.size() == 4, "CSceneLoaderJson::parseGraphicElementPortion color does not have 4 elements");
        CHECK(c[0u].isInt(), "CSceneLoaderJson::parseGraphicElementPortion color first element is not int");
        CHECK(c[1u].isInt(), "CSceneLoaderJson::parseGraphicElementPortion color second element is not int");
        CHECK(c[2u].isInt(), "CSceneLoaderJson::parseGraphicElementPortion color third element is not int");
        CHECK(c[3u].isInt(), "CSceneLoaderJson::parseGraphicElementPortion color forth element is not int");
        if (c.size() == 4)
            element->setColor(tColor{static_cast<uint8_t>(c[0u].asInt()), static_cast<uint8_t>(c[1u].asInt()),
                                     static_cast<uint8_t>(c[2u].asInt()), static_cast<uint8_t>(c[3u].asInt())});
    }
}

void CSceneLoaderJson::parseSpritePortion(const QJN::Value& value, CSprite* sprite)
{
    parseGraphicElementPortion(value, sprite);
    if (!value.isMember("Children"))
        return;
    const QJN::Value children = value["Children"];
    CHECK(children.isArray(), "CSceneLoaderJson::parseSpritePortion Children is not an array");
    if (!children.isArray())
        return;
    for (unsigned int i = 0; i < children.size(); ++i) {
        boost::shared_ptr<CGraphicElement> child = parseJsonValue(children[i]);
        // An unknown element type gives nothing to attach.
        if (child)
            sprite->attach(child);
    }
}

boost::shared_ptr<CBillboard> CSceneLoaderJson::parseBillboard(const QJN::Value& value)
{
    CHECK(value.isMember("ID"), "CSceneLoaderJson::parseBillboard no ID number");
    CHECK(value["ID"].isInt(), "CSceneLoaderJson::parseBillboard ID is not an integer");
    boost::shared_ptr<CBillboard> billboard;
    if (earlierDefinition(value, mBillboards, billboard, "CSceneLoaderJson::parseBillboard ID number is wrong, got %d, expected %d\n"))
        return billboard;
    billboard.reset(new CBillboard());
    mBillboards.push_back(billboard);
    reportUnknownKeys(value, 0);
    remember(value, billboard);
    parseGraphicElementPortion(value, billboard.get());
    CHECK(value.isMember("URL"), "CSceneLoaderJson::parseBillboard no URL");
    CHECK(value["URL"].isString(), "CSceneLoaderJson::parseBillboard URL is not a string");
    const Glib::ustring url = value["URL"].asString();
    const uint64_t before = CLoadReport::mark();
    if (!mTextureSheet || !billboard->loadTexture(url, mTextureSheet)) {
        billboard->loadTexture(mDefaultPath + url, 0);
        // A name the sheet lacks is no problem when it is a file.
        std::vector<tLoadProblem> since = CLoadReport::since(before);
        bool found = true;
        for (size_t i = 0; i < since.size(); ++i)
            found = found && since[i].reason != tLoadProblem::NOT_FOUND;
        if (found)
            CLoadReport::forget(before, tLoadProblem::PICTURE_MISSING);
    }
    billboard->setVisibility(true);
    return billboard;
}

boost::shared_ptr<CSprite> CSceneLoaderJson::parseSprite(const QJN::Value& value)
{
    CHECK(value.isMember("ID"), "CSceneLoaderJson::parseSprite no ID number");
    CHECK(value["ID"].isInt(), "CSceneLoaderJson::parseSprite ID is not an integer");
    boost::shared_ptr<CSprite> sprite;
    if (earlierDefinition(value, mSprites, sprite, "CSceneLoaderJson::parseSprite ID number is wrong, got %d, expected %d\n"))
        return sprite;
    sprite.reset(new CSprite());
    mSprites.push_back(sprite);
    reportUnknownKeys(value, 1);
    remember(value, sprite);
    parseSpritePortion(value, sprite.get());
    return sprite;
}

boost::shared_ptr<CSpriteCel> CSceneLoaderJson::parseSpriteCel(const QJN::Value& value)
{
    CHECK(value.isMember("ID"), "CSceneLoaderJson::parseSpriteCel no ID number");
    CHECK(value["ID"].isInt(), "CSceneLoaderJson::parseSpriteCel ID is not an integer");
    boost::shared_ptr<CSpriteCel> cel;
    if (earlierDefinition(value, mSpriteCels, cel, "CSceneLoaderJson::parseSpriteCel ID number is wrong, got %d, expected %d\n"))
        return cel;
    cel.reset(new CSpriteCel());
    mSpriteCels.push_back(cel);
    reportUnknownKeys(value, 2);
    remember(value, cel);
    parseSpritePortion(value, cel.get());

    CHECK(value.isMember("Duration"), "CSceneLoaderJson::parseSpriteCel no member Duration");
    const QJN::Value duration = value["Duration"];
    CHECK(duration.isInt() && duration.asInt() >= 0, "CSceneLoaderJson::parseSpriteCel Duration is not an unsigned int");
    cel->duration = static_cast<unsigned short>(duration.asUInt());

    if (!value.isMember("Operations"))
        return cel;
    const QJN::Value ops = value["Operations"];
    for (unsigned int i = 0; i < ops.size(); ++i) {
        const QJN::Value op = ops[i];
        const int n = static_cast<int>(i);
        CHECK(op.isMember("Opcode"), "CSceneLoaderJson::parseSpriteCel Operation %d no member Opcode", n);
        CHECK(op["Opcode"].isInt(), "CSceneLoaderJson::parseSpriteCel Operation %d Opcode is not an int", n);
        const int opcode = op["Opcode"].asInt();
        unsigned int oparg = 0;
        if (op.isMember("Oparg")) {
            const QJN::Value arg = op["Oparg"];
            if (opcode == operation::PLAY_AUDIO) {
                if (arg.isInt()) {
                    oparg = static_cast<unsigned int>(arg.asInt());
                } else if (arg.isArray()) {
                    Glib::ustring first, second;
                    if (arg.size() == 1) {
                        CHECK(arg[0u].isString(), "CSceneLoaderJson::parseSpriteCel Operation %d, Play Audio Oparg First element not a String", n);
                        first = CSystemData::Instance()->FindAudio(arg[0u].asString());
                    } else if (arg.size() == 2) {
                        CHECK(arg[0u].isString(), "CSceneLoaderJson::parseSpriteCel Operation %d, Play Audio Oparg First element not a String", n);
                        CHECK(arg[1u].isString(), "CSceneLoaderJson::parseSpriteCel Operation %d, Play Audio Oparg Second element not a String", n);
                        first = CSystemData::Instance()->FindAudio(arg[0u].asString());
                        second = arg[1u].asString();
                    } else {
                        CHECK(false, "CSceneLoaderJson::parseSpriteCel Operation %d, Play Audio Oparg Array is not size 1 or 2", n);
                    }
                } else {
                    CHECK(false, "CSceneLoaderJson::parseSpriteCel Operation %d, Play Audio Oparg is not an Int or an Array", n);
                }
            } else {
                CHECK(arg.isInt(), "CSceneLoaderJson::parseSpriteCel Operation %d Oparg is not an int", n);
                oparg = static_cast<unsigned int>(arg.asInt());
            }
        }
        operation record;
        record.opcode = opcode;
        record.oparg = static_cast<unsigned short>(oparg);
        cel->pushBackOperation(record);
    }
    return cel;
}

void CSceneLoaderJson::parseAnimation(const QJN::Value& animation, CActor2D* actor)
{
    for (unsigned int i = 0; i < animation.size(); ++i) {
        const QJN::Value entry = animation[i];
        // The label is checked before the cel is parsed.
        const bool labelled = entry.isMember("Label");
        if (labelled)
            CHECK(entry["Label"].isString(), "CSceneLoaderJson::parseActor2D SpriteCel %d Label is not a string",
                  static_cast<int>(i));
        boost::shared_ptr<CSpriteCel> cel = parseSpriteCel(entry);
        if (labelled)
            actor->appendSpriteCelStart(cel, entry["Label"].asString());
        else
            actor->appendSpriteCel(cel);
    }
}

boost::shared_ptr<CActor2D> CSceneLoaderJson::parseActor2D(const QJN::Value& value)
{
    CHECK(value.isMember("ID"), "CSceneLoaderJson::parseSpriteCel no ID number");
    CHECK(value["ID"].isInt(), "CSceneLoaderJson::parseSpriteCel ID is not an integer");
    boost::shared_ptr<CActor2D> actor;
    if (earlierDefinition(value, mActors, actor, "CSceneLoaderJson::parseActor2D ID number is wrong, got %d, expected %d\n"))
        return actor;
    actor.reset(new CActor2D());
    mActors.push_back(actor);
    reportUnknownKeys(value, 3);
    remember(value, actor);
    parseGraphicElementPortion(value, actor.get());
    CHECK(value.isMember("Animation"), "CSceneLoaderJson::parseActor2D no member Animation");
    CHECK(value["Animation"].isArray(), "CSceneLoaderJson::parseActor2D Animation is not array");
    // The members of a mistyped "Animation" object are not cels.
    if (value["Animation"].isArray())
        parseAnimation(value["Animation"], actor.get());
    return actor;
}

boost::shared_ptr<Avatar2DPiece> CSceneLoaderJson::parseAvatarPiece(const QJN::Value& value)
{
    CHECK(mCostume != 0, "CSceneLoaderJson::parseBillboard - no costume defined, probably tried to load with parseSpritePortion");
    CHECK(value.isMember("ID"), "CSceneLoaderJson::parseAvatarPiece no ID number");
    CHECK(value["ID"].isInt(), "CSceneLoaderJson::parseAvatarPiece ID is not an integer");
    boost::shared_ptr<Avatar2DPiece> piece;
    if (earlierDefinition(value, mAvatarPieces, piece, "CSceneLoaderJson::parseAvatarPiece ID number is wrong, got %d, expected %d\n"))
        return piece;
    piece.reset(new Avatar2DPiece());
    mAvatarPieces.push_back(piece);
    reportUnknownKeys(value, 4);
    remember(value, piece);
    parseGraphicElementPortion(value, piece.get());
    CHECK(value.isMember("Component"), "CSceneLoaderJson::parseAvatarPiece no Component.");
    CHECK(value.isMember("Variation"), "CSceneLoaderJson::parseAvatarPiece no Variation.");
    piece->setPiece(value["Component"].asString(), value["Variation"].asString());
    piece->setCostume(mCostume);
    return piece;
}
