#ifndef ZEPHRIN2D_TDSETCOSTUME_H
#define ZEPHRIN2D_TDSETCOSTUME_H

#include <stdint.h>

// Costume dataset records; pointers are 32-bit addresses inside the dataset,
// fixed up when it is loaded. See docs/dataset-format.md.

struct tDsetCostumeVariation  // 28 bytes
{
    uint32_t name;
    int32_t left, top, right, bottom;  // 16.16
    int32_t regX, regY;                // 16.16
};

struct tDsetCostumeComponent  // 12 bytes
{
    uint32_t name;
    uint32_t variationCount;
    uint32_t variations;
};

struct tDsetCostumeLOD  // 16 bytes
{
    int32_t size;
    uint32_t textureURI;
    uint32_t componentCount;
    uint32_t components;
};

struct tDsetCostumeAudio  // 8 bytes
{
    uint32_t name;
    uint32_t uri;
};

struct tDsetCostume  // 20 bytes: the root record
{
    uint32_t magic;  // "COST"
    uint32_t lodCount;
    uint32_t lods;
    uint32_t audioCount;
    uint32_t audio;
};

enum { DSET_COSTUME_MAGIC = 0x54534F43 };

static_assert(sizeof(tDsetCostumeVariation) == 28, "variation record is 28 bytes");
static_assert(sizeof(tDsetCostumeComponent) == 12, "component record is 12 bytes");
static_assert(sizeof(tDsetCostumeLOD) == 16, "LOD record is 16 bytes");
static_assert(sizeof(tDsetCostumeAudio) == 8, "audio record is 8 bytes");
static_assert(sizeof(tDsetCostume) == 20, "costume record is 20 bytes");

#endif
