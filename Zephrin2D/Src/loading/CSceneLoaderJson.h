#ifndef ZEPHRIN2D_CSCENELOADERJSON_H
#define ZEPHRIN2D_CSCENELOADERJSON_H

#include <boost/shared_ptr.hpp>
#include <glibmm/ustring.h>
#include <map>
#include <vector>

namespace QJN { class Value; }
class AvatarCostume;
class Avatar2DPiece;
class CActor2D;
class CBillboard;
class CGraphicElement;
class CSprite;
class CSpriteCel;
class CTextureSheet;

/// Turns a JSON scene file into live elements.
///
/// The file is an array of element objects ("ElementType" 0 billboard,
/// 1 sprite, 2 sprite cel, 3 actor, 4 and 5 avatar piece). Each kind keeps a
/// definition table: an "ID" below the table's size refers to the earlier
/// definition (the same object is returned and no other key is read); any
/// other ID defines the next element of that kind. Top-level actors are
/// copied, so each placement has its own transform. Structural faults go to
/// the assertion service; the loader then takes the safest fallback it has.
class CSceneLoaderJson
{
public:
    typedef std::vector<boost::shared_ptr<CGraphicElement> > tElementList;

    CSceneLoaderJson();
    virtual ~CSceneLoaderJson();

    void setCostume(AvatarCostume* costume);
    void setTextureSheet(CTextureSheet* sheet);
    /// A prefix put in front of billboard file names (plain concatenation).
    void setDefaultPath(Glib::ustring path);

    /// One entry per entry of the file's outermost array, in file order (an
    /// unknown ElementType gives an empty reference).
    tElementList parseJsonFile(const char* path);
    boost::shared_ptr<CGraphicElement> parseJsonValue(const QJN::Value& value);

    void parseGraphicElementPortion(const QJN::Value& value, CGraphicElement* element);
    void parseSpritePortion(const QJN::Value& value, CSprite* sprite);
    boost::shared_ptr<CBillboard> parseBillboard(const QJN::Value& value);
    boost::shared_ptr<CSprite> parseSprite(const QJN::Value& value);
    boost::shared_ptr<CSpriteCel> parseSpriteCel(const QJN::Value& value);
    boost::shared_ptr<CActor2D> parseActor2D(const QJN::Value& value);
    boost::shared_ptr<Avatar2DPiece> parseAvatarPiece(const QJN::Value& value);

    /// Appends the cels of an "Animation" array to actor, starting an
    /// animation at every cel that has a "Label".
    void parseAnimation(const QJN::Value& animation, CActor2D* actor);

    const std::vector<boost::shared_ptr<CActor2D> >& getActors() const { return mActorList; }

    /// The element an object's "Name" names (the last of that name wins), or
    /// an empty reference. Names live here, not in the elements: an unnamed
    /// element costs nothing more. A reference to an earlier definition
    /// ("ID" below the count) reads no "Name", except at the top level of a
    /// file, where an actor placement is a copy of its own.
    boost::shared_ptr<CGraphicElement> find(const Glib::ustring& name) const;
    /// Puts each key that the kind (an "ElementType"; 3 also an actor file)
    /// does not read in the load report (CLoadReport).
    void reportUnknownKeys(const QJN::Value& value, int elementType);

private:
    CSceneLoaderJson(const CSceneLoaderJson&);
    CSceneLoaderJson& operator=(const CSceneLoaderJson&);

    std::vector<boost::shared_ptr<CActor2D> > mActorList;
    AvatarCostume* mCostume;
    CTextureSheet* mTextureSheet;
    Glib::ustring mDefaultPath;
    std::vector<boost::shared_ptr<CBillboard> > mBillboards;
    std::vector<boost::shared_ptr<CSprite> > mSprites;
    std::vector<boost::shared_ptr<CSpriteCel> > mSpriteCels;
    std::vector<boost::shared_ptr<CActor2D> > mActors;
    std::vector<boost::shared_ptr<Avatar2DPiece> > mAvatarPieces;
    std::map<std::string, boost::shared_ptr<CGraphicElement> > mNames;

    void remember(const QJN::Value& value, const boost::shared_ptr<CGraphicElement>& element);
};

#endif
