#include <tests/raster/AllocationHook.h>

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
std::size_t allocations = 0, inUse = 0, most = 0, failAt = never;
bool failed = false;

void* allocate(std::size_t size, std::size_t alignment)
{
    if (allocations >= failAt) {
        failed = true;
        return nullptr;
    }
    void* memory = alignment > alignof(std::max_align_t)
        ? std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment)
        : std::malloc(size ? size : 1);
    if (memory) {
        ++allocations;
        inUse += malloc_usable_size(memory);
        most = std::max(most, inUse);
    }
    return memory;
}

void* allocateOrThrow(std::size_t size, std::size_t alignment = 0)
{
    if (void* memory = allocate(size, alignment))
        return memory;
    throw std::bad_alloc();
}

void release(void* memory)
{
    if (memory)
        inUse -= malloc_usable_size(memory);
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, std::align_val_t a) { return allocateOrThrow(size, std::size_t(a)); }
void* operator new[](std::size_t size, std::align_val_t a) { return allocateOrThrow(size, std::size_t(a)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size, 0); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size, 0); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }

namespace vxr::test {

std::size_t Allocations::count() { return allocations; }
std::size_t Allocations::bytesInUse() { return inUse; }
std::size_t Allocations::mostBytes() { return most; }
void Allocations::watch() { most = inUse; }

void Allocations::failAfter(std::size_t others)
{
    failed = false;
    failAt = allocations + others;
}

bool Allocations::stopFailing()
{
    failAt = never;
    return failed;
}

} // namespace vxr::test
