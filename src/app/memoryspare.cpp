#include "app/memoryspare.h"

namespace {

constexpr std::size_t least = std::size_t(32) << 20;
// A text as it is and as the file has it, the file's bytes in a buffer that grows, and those of an older copy
// that they are compared with.
constexpr std::size_t timesTheDocument = 6;

MemorySpare *present = nullptr;

} // namespace

MemorySpare::MemorySpare() : wanted(least)
{
    resize();
    present = this;
}

MemorySpare::~MemorySpare() { present = nullptr; }

void MemorySpare::fit(qsizetype documentBytes)
{
    if (!present)
        return;
    present->wanted = least + timesTheDocument * std::size_t(documentBytes);
    present->resize();
}

void MemorySpare::release()
{
    state = State::givenAway;
    bytes.reset();
    size = 0;
}

void MemorySpare::resize()
{
    if (state != State::held || (wanted <= size && wanted > size / 2))
        return;
    // Never the old and the new one at once, and where there is not so much the old one stays, or as much as
    // there is, which is better than nothing.
    for (std::size_t tried = wanted; tried >= least && (tried == wanted || tried > size); tried /= 2) {
        if (void *resized = std::realloc(bytes.get(), tried)) {
            static_cast<void>(bytes.release());
            bytes.reset(resized);
            size = tried;
            return;
        }
    }
}

MemorySpare::Loan::Loan()
{
    if (!present || present->state != State::held)
        return;
    present->release();
    present->state = State::lent;
}

MemorySpare::Loan::~Loan()
{
    if (!present || present->state != State::lent)
        return;
    present->state = State::held;
    present->resize();
}
