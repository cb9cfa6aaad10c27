#include "app/failingmemory.h"

#ifdef FABLEGRID_CAN_FAIL_MEMORY

#include <atomic>
#include <cerrno>
#include <cstdlib>

extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
}

namespace {

std::atomic<std::size_t> limit = 0; // 0: nothing is refused
std::atomic<int> toGrant = 0;
std::atomic<int> refused = 0;

bool isRefused(std::size_t size)
{
    if (limit == 0 || size < limit || toGrant-- > 0)
        return false;
    ++refused;
    errno = ENOMEM;
    return true;
}

} // namespace

// The library's own names for these stay reachable under others.
extern "C" __attribute__((visibility("default"))) void *malloc(std::size_t size) noexcept
{
    return isRefused(size) ? nullptr : __libc_malloc(size);
}

extern "C" __attribute__((visibility("default"))) void *realloc(void *memory, std::size_t size) noexcept
{
    return isRefused(size) ? nullptr : __libc_realloc(memory, size);
}

FailingMemory::FailingMemory(std::size_t much, int granted)
{
    refused = 0;
    toGrant = granted;
    limit = much;
}

FailingMemory::~FailingMemory() { limit = 0; }

int FailingMemory::refusals() const { return refused; }

#endif
