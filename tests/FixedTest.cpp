#include "TestSupport.h"
#include "tFixed.h"
#include "tMatrix23.h"
#include "tRect2.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

tFixed raw(int32_t r) { return tFixed::fromRaw(r); }
tFixed deg(double d) { return tFixed::fromFloat(d); }

TEST(Fixed, ArithmeticWrapsAndRoundsTowardMinusInfinity)
{
    struct { const char* what; tFixed got; int32_t want; } cases[] = {
        {"integer entry", tFixed(100), 0x640000},
        {"negative integer entry", tFixed(-1), static_cast<int32_t>(0xFFFF0000u)},
        {"add wraps", MAX_X + EPSILON_X, MIN_X.raw()},
        {"sub wraps", MIN_X - EPSILON_X, MAX_X.raw()},
        {"half times half", ONE_HALF_X * ONE_HALF_X, 0x4000},
        {"product floors positive", raw(3) * ONE_HALF_X, 1},
        {"product floors negative", raw(-3) * ONE_HALF_X, -2},
        {"1.5 * -2", ONE_POINT_FIVE_X * tFixed(-2), -3 * 65536},
        {"fromFloat truncates toward zero", deg(-0.25), static_cast<int32_t>(0xFFFFC000u)},
        {"fromFloat below epsilon", deg(1.0 / 131072.0), 0},
        {"fromFloat negative below epsilon", deg(-1.0 / 131072.0), 0},
        {"division widens", tFixed(300) / tFixed(200), 0x18000},
        {"x / 0 saturates", ONE_X / ZERO_X, MAX_X.raw()},
        {"-x / 0 saturates", MINUS_ONE_X / ZERO_X, MIN_X.raw()},
        {"0 / 0", ZERO_X / ZERO_X, 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.got.raw(), c.want) << c.what;
    EXPECT_TRUE(MIN_X < MAX_X);
    EXPECT_TRUE(MINUS_ONE_X < ZERO_X);
}

TEST(Fixed, SineSpecialCasesAndFolding)
{
    struct { const char* what; tFixed angle; int32_t want; } cases[] = {
        {"0", ZERO_X, 0},
        {"90 exact", DEGREES90_X, 0x10000},
        {"30", tFixed(30), 32768},
        {"-30", tFixed(-30), -32768},
        {"390", tFixed(390), 32768},
        {"270", DEGREES270_X, -0x10000},
        {"180", DEGREES180_X, 0},
        {"150 folds onto 30", tFixed(150), 32768},
        {"89.75 is the last entry", raw(359 << 14), 65535},
        {"89.9 interpolates toward 1.0", raw((359 << 14) + 0x2000), 65535},
    };
    for (const auto& c : cases)
        EXPECT_EQ(sin(c.angle).raw(), c.want) << c.what;
    EXPECT_EQ(sin(MIN_X).raw(), sin(raw(static_cast<int32_t>(0x805A0000u))).raw());
    EXPECT_EQ(cos(ZERO_X).raw(), 0x10000);
    EXPECT_EQ(cos(MAX_X).raw(), sin(MAX_X + DEGREES90_X).raw()) << "the addition wraps";
    EXPECT_EQ(tan(tFixed(45)).raw() >> 4, 0x10000 >> 4);
    EXPECT_EQ(tan(ZERO_X).raw(), 0);
    AssertCapture asserts;
    EXPECT_EQ(tan(DEGREES90_X).raw(), MAX_X.raw());
    EXPECT_EQ(tan(DEGREES270_X).raw(), MIN_X.raw());
    EXPECT_TRUE(asserts.has("tan - the cosine of the angle 0x010E0000 (raw 16.16 degrees) is 0: the result saturates\n"));
}

TEST(Fixed, SineWithinTwoUnitsEverywhere)
{
    for (int q = -720 * 4; q <= 720 * 4; ++q) {
        const double d = q * 0.25;
        const double want = std::sin(d * M_PI / 180.0) * 65536.0;
        EXPECT_NEAR(sin(raw(q * 16384)).raw(), want, 2.0) << d << " degrees";
        EXPECT_NEAR(cos(raw(q * 16384)).raw(), std::cos(d * M_PI / 180.0) * 65536.0, 2.0) << d << " degrees";
    }
}

TEST(Fixed, SineTableIsRoundedQuarterDegrees)
{
    for (int i = 0; i < 360; ++i)
        EXPECT_EQ(sin_table[i], std::lround(std::sin(i * 0.25 * M_PI / 180.0) * 65536.0)) << "entry " << i;
}

TEST(Fixed, SqrtIsFloorOfTrueRoot)
{
    for (uint32_t v : {0u, 1u, 2u, 3u, 0xFFFFu, 0x10000u, 0x12345u, 0x20000u, 0x40000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        const uint64_t n = static_cast<uint64_t>(v) << 16;  // below 2^48: r * r fits
        uint64_t r = static_cast<uint64_t>(std::sqrt(static_cast<long double>(v) * 65536.0L));
        while (r * r > n) --r;
        while ((r + 1) * (r + 1) <= n) ++r;
        EXPECT_EQ(static_cast<uint32_t>(sqrt(raw(static_cast<int32_t>(v))).raw()), r) << std::hex << v;
    }
}

TEST(Rect2, IntersectionIsInclusiveAndUnchecked)
{
    const tRect2 a{tFixed(0), tFixed(0), tFixed(10), tFixed(10)};
    const tRect2 corner{tFixed(10), tFixed(10), tFixed(20), tFixed(20)};
    const tRect2 apart{tFixed(11), tFixed(0), tFixed(20), tFixed(5)};
    EXPECT_TRUE(a.HasIntersection(corner));
    const tRect2 i = a.FindIntersection(corner);
    EXPECT_EQ((std::vector<tFixed>{i.left, i.bottom, i.right, i.top}), std::vector<tFixed>(4, tFixed(10)));
    EXPECT_FALSE(a.HasIntersection(apart));
    const tRect2 inverted = a.FindIntersection(apart);
    EXPECT_GT(inverted.left, inverted.right);
}

TEST(Matrix23, TransformsTable)
{
    struct
    {
        const char* what;
        tVect2 reg, scale;
        tFixed rotation;
        tVect3 position, point, want;
    } cases[] = {
        {"translation only", VECT2_0, {ONE_X, ONE_X}, ZERO_X, {tFixed(5), tFixed(6), tFixed(7)},
         {tFixed(1), tFixed(1), ZERO_X}, {tFixed(6), tFixed(7), tFixed(7)}},
        {"quarter turn", VECT2_0, {ONE_X, ONE_X}, DEGREES90_X, {tFixed(5), tFixed(6), ZERO_X},
         VECT3_I, {tFixed(5), tFixed(7), ZERO_X}},
        {"quarter turn of y", VECT2_0, {ONE_X, ONE_X}, DEGREES90_X, VECT3_0, VECT3_J, {MINUS_ONE_X, ZERO_X, ZERO_X}},
        {"reg lands on position", {tFixed(10), tFixed(10)}, {ONE_X, ONE_X}, ZERO_X,
         {tFixed(3), tFixed(4), ZERO_X}, {tFixed(10), tFixed(10), ZERO_X}, {tFixed(3), tFixed(4), ZERO_X}},
        {"scale about reg", {tFixed(2), tFixed(2)}, {tFixed(2), tFixed(3)}, ZERO_X, VECT3_0,
         {tFixed(3), tFixed(3), ONE_X}, {tFixed(2), tFixed(3), ONE_X}},
    };
    for (const auto& c : cases) {
        tMatrix23 m(c.reg, c.scale, c.rotation, c.position);
        EXPECT_EQ(m * c.point, c.want) << c.what;
    }
    tMatrix23 identity;
    const tVect3 p3{ONE_X, ONE_X, tFixed(3)};
    EXPECT_EQ(identity * p3, p3);
}

TEST(Matrix23, EachProductRoundedSeparately)
{
    // 0.5 * 3 raw and 0.5 * 3 raw each floor to 1 raw: summed after rounding gives 2 + m02, not 3.
    tMatrix23 m;
    m.m00 = ONE_HALF_X;
    m.m01 = ONE_HALF_X;
    tVect3 p = m * tVect3{raw(3), raw(3), ZERO_X};
    EXPECT_EQ(p.x.raw(), 2);
    // setTransform rounds m-values first, then each reg product.
    tMatrix23 r(tVect2{raw(-1), raw(-1)}, tVect2{ONE_HALF_X, ONE_HALF_X}, ZERO_X, VECT3_0);
    EXPECT_EQ(r.m02.raw(), 1) << "0.5 x -1 raw floors to -1";
    EXPECT_EQ(r.m12.raw(), 1);
}

} // namespace
