// Compiled by tests/fixed-conversions.cmake: as it is it must compile; with
// FROM_DOUBLE or FROM_FLOAT defined it must not.
#include "tFixed.h"

static_assert(tFixed::fromFloat(1.5).raw() == 0x18000, "fromFloat");
static_assert((1.5_x).raw() == 0x18000 && (2_x).raw() == 0x20000, "literals");

int main()
{
    tFixed b(2);
    tFixed c(static_cast<short>(3));
    tFixed d(4u);
#if defined(FROM_DOUBLE)
    tFixed a(1.5);
#elif defined(FROM_FLOAT)
    tFixed a = 1.5f;
#else
    tFixed a = tFixed::fromFloat(1.5);
#endif
    return (a + b + c + d).toInt() == 10 ? 0 : 1;
}
