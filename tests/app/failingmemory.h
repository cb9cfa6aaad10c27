#pragma once

#include <cstddef>

#if defined(__GLIBC__) && !defined(FABLEGRID_SANITIZED) // which hands out memory itself
#define FABLEGRID_CAN_FAIL_MEMORY
#endif

/// Lets the system refuse memory to whoever asks for much at once, during its lifetime: the first `granted`
/// times it still gives it. One object at a time.
///
/// The program that links failingmemory.cpp must export its symbols, so that Qt's calls come here first.
class FailingMemory
{
public:
    FailingMemory(std::size_t much, int granted);
    ~FailingMemory();
    FailingMemory(const FailingMemory &) = delete;
    FailingMemory &operator=(const FailingMemory &) = delete;

    /// How often memory was refused.
    int refusals() const;
};
