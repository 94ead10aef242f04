#include "ActorCompare.h"

#include "CActor2D.h"

#include <boost/shared_ptr.hpp>
#include <string>

class AvatarCostume;
class CTextureSheet;

bool verifyActor(const std::string& jsonPath, const std::string& dsetPath, AvatarCostume* costume,
                 CTextureSheet* sheet, std::string& error)
{
    boost::shared_ptr<CActor2D> fromJson(new CActor2D());
    boost::shared_ptr<CActor2D> fromDset(new CActor2D());
    if (!fromJson->loadJson(jsonPath, costume, sheet)) {
        error = jsonPath + ": the actor does not load";
        return false;
    }
    if (!fromDset->loadDset(dsetPath, costume, sheet)) {
        error = dsetPath + ": the dataset does not load";
        return false;
    }
    return sameActor(*fromJson, *fromDset, error);
}
