#ifndef ZEPHRIN2D_TVECT_H
#define ZEPHRIN2D_TVECT_H

#include "tFixed.h"

/// A 2D position, size, scale, registration point or texture coordinate.
struct tVect2
{
    tFixed x;
    tFixed y;

    tVect2 operator+(const tVect2& o) const { return tVect2{x + o.x, y + o.y}; }
    tVect2 operator-(const tVect2& o) const { return tVect2{x - o.x, y - o.y}; }
    bool operator==(const tVect2& o) const { return x == o.x && y == o.y; }
    bool operator!=(const tVect2& o) const { return !(*this == o); }
};

/// An element position: z is the depth handed to GL (greater is nearer).
struct tVect3
{
    tFixed x;
    tFixed y;
    tFixed z;

    tVect3 operator+(const tVect3& o) const { return tVect3{x + o.x, y + o.y, z + o.z}; }
    tVect3 operator-(const tVect3& o) const { return tVect3{x - o.x, y - o.y, z - o.z}; }
    bool operator==(const tVect3& o) const { return x == o.x && y == o.y && z == o.z; }
    bool operator!=(const tVect3& o) const { return !(*this == o); }
};

/// Four 8-bit channels in exactly this memory order, so that an array of
/// tColor is a GL colour array of 4 unsigned bytes per vertex.
struct tColor
{
    uint8_t r;
    uint8_t g;
    uint8_t b;
    uint8_t a;

    bool operator==(const tColor& o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
    bool operator!=(const tColor& o) const { return !(*this == o); }
};

static_assert(sizeof(tFixed) == 4, "tFixed is one 32-bit integer");
static_assert(sizeof(tVect2) == 8 && sizeof(tVect3) == 12, "vectors are packed fixed-point values");
static_assert(sizeof(tColor) == 4, "tColor is four bytes");

inline constexpr tVect2 VECT2_0 = {ZERO_X, ZERO_X};
inline constexpr tVect2 VECT2_I = {ONE_X, ZERO_X};
inline constexpr tVect2 VECT2_J = {ZERO_X, ONE_X};
inline constexpr tVect3 VECT3_0 = {ZERO_X, ZERO_X, ZERO_X};
inline constexpr tVect3 VECT3_I = {ONE_X, ZERO_X, ZERO_X};
inline constexpr tVect3 VECT3_J = {ZERO_X, ONE_X, ZERO_X};
inline constexpr tVect3 VECT3_K = {ZERO_X, ZERO_X, ONE_X};

#endif
