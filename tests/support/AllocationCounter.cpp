#include "AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<unsigned long> gAllocations(0);
std::atomic<long> gLiveBytes(0);

void* allocate(std::size_t size)
{
    void* p = std::malloc(size ? size : 1);
    if (p) {
        gAllocations.fetch_add(1, std::memory_order_relaxed);
        gLiveBytes.fetch_add(static_cast<long>(malloc_usable_size(p)), std::memory_order_relaxed);
    }
    return p;
}

void release(void* p)
{
    if (p)
        gLiveBytes.fetch_sub(static_cast<long>(malloc_usable_size(p)), std::memory_order_relaxed);
    std::free(p);
}

} // namespace

unsigned long AllocationCounter::count() { return gAllocations.load(std::memory_order_relaxed); }
long AllocationCounter::liveBytes() { return gLiveBytes.load(std::memory_order_relaxed); }

void* operator new(std::size_t size)
{
    if (void* p = allocate(size))
        return p;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size);
}

void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* p) noexcept { release(p); }
void operator delete(void* p, std::size_t) noexcept { release(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { release(p); }
void operator delete[](void* p) noexcept { release(p); }
void operator delete[](void* p, std::size_t) noexcept { release(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { release(p); }
