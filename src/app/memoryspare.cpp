#include "app/memoryspare.h"

#include <new>
#include <utility>

namespace {

constexpr std::size_t least = std::size_t(32) << 20;
// A text as it is and as the file has it, the file's bytes in a buffer that grows, and those of an older copy
// that they are compared with.
constexpr std::size_t timesTheDocument = 6;

MemorySpare *present = nullptr;

} // namespace

MemorySpare::MemorySpare() : size(least), bytes(new char[least]) { present = this; }

MemorySpare::~MemorySpare() { present = nullptr; }

void MemorySpare::fit(qsizetype documentBytes)
{
    if (present)
        present->resizeFor(documentBytes);
}

void MemorySpare::release()
{
    bytes.reset();
    size = 0;
}

void MemorySpare::resizeFor(qsizetype documentBytes)
{
    const std::size_t wanted = least + timesTheDocument * std::size_t(documentBytes);
    if (size == 0 || (wanted <= size && wanted > size / 2))
        return;
    std::unique_ptr<char[]> other(new (std::nothrow) char[wanted]);
    if (!other)
        return; // what there is is better than nothing
    bytes = std::move(other);
    size = wanted;
}
