#ifndef ZEPHRIN2D_IMPORT_ACTORJSON_H
#define ZEPHRIN2D_IMPORT_ACTORJSON_H

#include <map>
#include <string>
#include <vector>

/// Definition numbers of one scene or actor file: each element kind counts
/// its own definitions, in file order.
struct tDefinitionCounts
{
    int billboards = 0;
    int sprites = 0;
    int cels = 0;
    int actors = 0;
    std::map<std::string, int> billboardOf;  ///< picture name -> its billboard's number

    /// A billboard of the sheet picture: defined at its first use, referred to
    /// by its number alone after.
    std::string billboard(const std::string& picture);
};

struct tCelPlan
{
    std::string picture;
    int duration = 0;  ///< milliseconds
};

struct tAnimationPlan
{
    std::string label;
    std::vector<tCelPlan> cels;
    bool hold = false;  ///< hold on the last cel; otherwise loop to the first
};

/// The "Animation" array of an actor: the planned cels in order, each animation
/// labelled at its first cel and ended by a jump back to it (or a hold).
std::string animationArray(const std::vector<tAnimationPlan>& animations, tDefinitionCounts& ids);

#endif
