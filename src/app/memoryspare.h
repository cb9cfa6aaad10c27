#pragma once

#include <QtGlobal>

#include <cstddef>
#include <cstdlib>
#include <memory>

/// Memory that nobody uses until there is no other, for a copy of the document that would be lost. It is
/// never written to before, so that it takes addresses and no memory. One object at a time.
class MemorySpare
{
public:
    MemorySpare();
    ~MemorySpare();
    MemorySpare(const MemorySpare &) = delete;
    MemorySpare &operator=(const MemorySpare &) = delete;

    /// Lends it out during its own lifetime; it is taken back as far as there is so much left. Nothing if
    /// there is no spare memory. One loan at a time.
    class Loan
    {
    public:
        Loan();
        ~Loan();
        Loan(const Loan &) = delete;
        Loan &operator=(const Loan &) = delete;
    };

    /// Lets it be enough for a document of so many bytes, as far as the system has so much to give. Nothing
    /// if there is no object.
    static void fit(qsizetype documentBytes);
    /// Gives it away for good.
    void release();

private:
    struct Freeing
    {
        void operator()(void *memory) const { std::free(memory); }
    };
    enum class State { held, lent, givenAway };

    void resize();

    State state = State::held;
    std::size_t wanted;
    std::size_t size = 0; // of what is held
    std::unique_ptr<void, Freeing> bytes;
};
