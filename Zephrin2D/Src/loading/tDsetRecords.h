#ifndef ZEPHRIN2D_TDSETRECORDS_H
#define ZEPHRIN2D_TDSETRECORDS_H

#include <stdint.h>

// Scene and actor dataset records, laid out exactly as they are read.
// Integers are little-endian; fixed-point fields are 16.16; pointer fields
// are 32-bit addresses inside the dataset, fixed up when it is loaded (0 is
// null). See docs/dataset-format.md.

struct tDsetColor  // 4 bytes
{
    uint8_t red;
    uint8_t green;
    uint8_t blue;
    uint8_t alpha;
};

struct tDsetGraphicElement  // 36 bytes
{
    int32_t positionX, positionY, positionZ;
    int32_t rotation;
    int32_t scaleX, scaleY;
    int32_t regX, regY;
    tDsetColor color;
};

struct tDsetBillboard  // 44 bytes
{
    uint16_t id;
    uint16_t padding;
    uint32_t url;
    tDsetGraphicElement element;
};

struct tDsetAvatarPiece  // 48 bytes
{
    uint16_t id;
    uint16_t padding;
    uint32_t component;
    uint32_t variation;
    tDsetGraphicElement element;
};

struct tDsetOperation  // 12 bytes
{
    int16_t opcode;
    uint16_t oparg;
    uint32_t audioName1;  // Play Audio only
    uint32_t audioName2;
};

struct tDsetSpriteCel  // 32 bytes
{
    uint32_t label;       // the animation starting at this cel, or null
    uint16_t id;
    uint16_t duration;
    uint32_t operationCount;
    uint32_t operations;
    uint32_t billboardCount;
    uint32_t billboards;
    uint32_t avatarPieceCount;
    uint32_t avatarPieces;
};

struct tDsetActor  // 48 bytes: the root record of an actor dataset
{
    uint32_t magic;  // "ACTR"
    tDsetGraphicElement element;
    uint32_t celCount;
    uint32_t cels;
};

enum { DSET_ACTOR_MAGIC = 0x52544341 };

static_assert(sizeof(tDsetColor) == 4, "colour record is 4 bytes");
static_assert(sizeof(tDsetGraphicElement) == 36, "graphic element record is 36 bytes");
static_assert(sizeof(tDsetBillboard) == 44, "billboard record is 44 bytes");
static_assert(sizeof(tDsetAvatarPiece) == 48, "avatar piece record is 48 bytes");
static_assert(sizeof(tDsetOperation) == 12, "operation record is 12 bytes");
static_assert(sizeof(tDsetSpriteCel) == 32, "sprite cel record is 32 bytes");
static_assert(sizeof(tDsetActor) == 48, "actor record is 48 bytes");

#endif
