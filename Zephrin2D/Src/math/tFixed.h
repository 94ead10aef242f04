#ifndef ZEPHRIN2D_TFIXED_H
#define ZEPHRIN2D_TFIXED_H

#include <stdint.h>
#include <type_traits>

/// Signed 16.16 fixed point: value x 65536 in a 32-bit integer (1.0 is 0x10000).
///
/// Addition and subtraction wrap; multiplication takes the 64-bit product
/// shifted right by 16 (rounding toward minus infinity); comparisons compare
/// the raw integers. Integers enter shifted left by 16.
///
/// Floating-point values enter only explicitly: tFixed::fromFloat(1.5) or the
/// literal 1.5_x. tFixed(1.5) does not compile (it would silently be 1.0).
class tFixed
{
public:
    constexpr tFixed() : mRaw(0) {}
    constexpr explicit tFixed(int integer) : mRaw(static_cast<int32_t>(static_cast<uint32_t>(integer) << 16)) {}
    template <typename T, typename = std::enable_if_t<std::is_floating_point<T>::value>>
    tFixed(T) = delete; // use fromFloat() or the _x literal

    static constexpr tFixed fromRaw(int32_t raw) { tFixed f; f.mRaw = raw; return f; }
    /// value x 65536, truncated toward zero (how files give numbers);
    /// out-of-range values clamp to MIN_X / MAX_X, NaN gives 0.
    static constexpr tFixed fromFloat(double value)
    {
        const double scaled = value * 65536.0;
        if (!(scaled == scaled))
            return tFixed();
        if (scaled >= 2147483647.0)
            return fromRaw(0x7FFFFFFF);
        if (scaled <= -2147483648.0)
            return fromRaw(static_cast<int32_t>(0x80000000u));
        return fromRaw(static_cast<int32_t>(scaled));
    }
    /// The same as fromFloat().
    static constexpr tFixed fromDouble(double value) { return fromFloat(value); }

    constexpr int32_t raw() const { return mRaw; }
    /// For tools and logs only: drawing never uses floating point.
    double toDouble() const { return mRaw / 65536.0; }
    constexpr int32_t toInt() const { return mRaw >> 16; }

    constexpr tFixed operator+(tFixed o) const { return fromRaw(static_cast<int32_t>(static_cast<uint32_t>(mRaw) + static_cast<uint32_t>(o.mRaw))); }
    constexpr tFixed operator-(tFixed o) const { return fromRaw(static_cast<int32_t>(static_cast<uint32_t>(mRaw) - static_cast<uint32_t>(o.mRaw))); }
    constexpr tFixed operator-() const { return fromRaw(static_cast<int32_t>(0u - static_cast<uint32_t>(mRaw))); }
    constexpr tFixed operator*(tFixed o) const { return fromRaw(static_cast<int32_t>((static_cast<int64_t>(mRaw) * o.mRaw) >> 16)); }
    /// Widens to 64 bits: (a << 16) / b. Dividing by zero saturates toward the
    /// sign of a (zero for 0 / 0) rather than trapping.
    constexpr tFixed operator/(tFixed o) const
    {
        if (o.mRaw == 0)
            return fromRaw(mRaw > 0 ? 0x7FFFFFFF : mRaw < 0 ? static_cast<int32_t>(0x80000000u) : 0);
        return fromRaw(static_cast<int32_t>((static_cast<int64_t>(mRaw) * 65536) / o.mRaw));
    }

    tFixed& operator+=(tFixed o) { return *this = *this + o; }
    tFixed& operator-=(tFixed o) { return *this = *this - o; }
    tFixed& operator*=(tFixed o) { return *this = *this * o; }

    constexpr bool operator==(tFixed o) const { return mRaw == o.mRaw; }
    constexpr bool operator!=(tFixed o) const { return mRaw != o.mRaw; }
    constexpr bool operator<(tFixed o) const { return mRaw < o.mRaw; }
    constexpr bool operator<=(tFixed o) const { return mRaw <= o.mRaw; }
    constexpr bool operator>(tFixed o) const { return mRaw > o.mRaw; }
    constexpr bool operator>=(tFixed o) const { return mRaw >= o.mRaw; }

private:
    int32_t mRaw;
};

inline constexpr tFixed MINUS_ONE_X = tFixed::fromRaw(static_cast<int32_t>(0xFFFF0000u));
inline constexpr tFixed ZERO_X = tFixed::fromRaw(0);
inline constexpr tFixed ONE_X = tFixed::fromRaw(0x00010000);
inline constexpr tFixed DEGREES90_X = tFixed::fromRaw(0x005A0000);
inline constexpr tFixed DEGREES180_X = tFixed::fromRaw(0x00B40000);
inline constexpr tFixed DEGREES270_X = tFixed::fromRaw(0x010E0000);
inline constexpr tFixed DEGREES360_X = tFixed::fromRaw(0x01680000);
inline constexpr tFixed PI_X = tFixed::fromRaw(0x0003243F);
inline constexpr tFixed SQRT2_X = tFixed::fromRaw(0x00016A09);
inline constexpr tFixed ONE_HALF_X = tFixed::fromRaw(0x00008000);
inline constexpr tFixed ONE_POINT_FIVE_X = tFixed::fromRaw(0x00018000);
inline constexpr tFixed EPSILON_X = tFixed::fromRaw(0x00000001);
inline constexpr tFixed MAX_X = tFixed::fromRaw(0x7FFFFFFF);
inline constexpr tFixed MIN_X = tFixed::fromRaw(static_cast<int32_t>(0x80000000u));

/// 1.5_x is tFixed::fromFloat(1.5); 2_x is tFixed(2).
constexpr tFixed operator""_x(long double value) { return tFixed::fromFloat(static_cast<double>(value)); }
constexpr tFixed operator""_x(unsigned long long value) { return tFixed(static_cast<int>(value)); }

/// sin(i x 0.25 degrees) x 65536, rounded, for i = 0 ... 359.
extern const uint16_t sin_table[360];

/// Angles are in degrees.
tFixed sin(tFixed degrees);
/// Exactly sin(degrees + 90.0), the addition wrapping.
tFixed cos(tFixed degrees);
/// sin / cos; where the cosine is 0 (90.0, 270.0, ...), the largest value of
/// the sine's sign, reported, rather than a trap.
tFixed tan(tFixed degrees);
/// floor(sqrt(raw x 65536)), the raw value read as unsigned.
tFixed sqrt(tFixed value);

#endif
