#ifndef ZEPHRIN2D_TOOLS_ACTORCOMPARE_H
#define ZEPHRIN2D_TOOLS_ACTORCOMPARE_H

#include <string>

class CActor2D;

/// Whether two actors hold the same content: transform and colour, cels
/// (durations, operation lists, chunk vertices, texture coordinates, indices
/// and textures) and animations (labels, offsets, order). On a difference,
/// why says where.
bool sameActor(CActor2D& a, CActor2D& b, std::string& why);

#endif
