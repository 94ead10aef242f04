#include "ActorCompare.h"

#include "CActor2D.h"

#include <boost/shared_ptr.hpp>
#include <string>

bool verifyActor(const std::string& jsonPath, const std::string& dsetPath, std::string& error)
{
    boost::shared_ptr<CActor2D> fromJson(new CActor2D());
    boost::shared_ptr<CActor2D> fromDset(new CActor2D());
    if (!fromJson->loadJson(jsonPath, 0, 0)) {
        error = jsonPath + ": the actor does not load";
        return false;
    }
    if (!fromDset->loadDset(dsetPath, 0, 0)) {
        error = dsetPath + ": the dataset does not load";
        return false;
    }
    return sameActor(*fromJson, *fromDset, error);
}
