#ifndef ZEPHRIN2D_TESTS_ALLOCATIONCOUNTER_H
#define ZEPHRIN2D_TESTS_ALLOCATIONCOUNTER_H

/// Counts every call of the global operator new in the test executable
/// (replaced in AllocationCounter.cpp), so that a test can check that a
/// steady-state path allocates nothing.
namespace AllocationCounter {

/// Calls of operator new so far.
unsigned long count();
/// Bytes obtained through operator new and not yet given back.
long liveBytes();

} // namespace AllocationCounter

#endif
