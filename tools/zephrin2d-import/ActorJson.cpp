#include "ActorJson.h"

#include "JsonText.h"

namespace {
const int GOTO_AND_PLAY = 1;
const int GOTO_AND_STOP = 2;
}

std::string tDefinitionCounts::billboard(const std::string& picture)
{
    auto found = billboardOf.find(picture);
    if (found != billboardOf.end())
        return JsonText::Object().set("ElementType", 0).set("ID", found->second).text();
    billboardOf[picture] = billboards;
    return JsonText::Object().set("ElementType", 0).set("ID", billboards++).setString("URL", picture).text();
}

std::string animationArray(const std::vector<tAnimationPlan>& animations, tDefinitionCounts& ids)
{
    std::string cels;
    int offset = 0;
    for (const tAnimationPlan& animation : animations) {
        const int first = offset;
        for (size_t i = 0; i < animation.cels.size(); ++i, ++offset) {
            JsonText::Object cel;
            cel.set("ID", ids.cels++);
            if (i == 0)
                cel.setString("Label", animation.label);
            cel.set("Duration", animation.cels[i].duration);
            if (i + 1 == animation.cels.size()) {
                const std::string jump = animation.hold
                    ? JsonText::Object().set("Opcode", GOTO_AND_STOP).set("Oparg", offset).text()
                    : JsonText::Object().set("Opcode", GOTO_AND_PLAY).set("Oparg", first).text();
                cel.set("Operations", JsonText::array(jump));
            }
            cel.set("Children", JsonText::array(ids.billboard(animation.cels[i].picture)));
            if (!cels.empty())
                cels += ", ";
            cels += cel.text();
        }
    }
    return JsonText::array(cels);
}
