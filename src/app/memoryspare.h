#pragma once

#include <QtGlobal>

#include <cstddef>
#include <memory>

/// Memory that nobody uses until there is no other, for a last copy of the document. It is never written to
/// before, so that it takes addresses and no memory. One object at a time.
class MemorySpare
{
public:
    MemorySpare();
    ~MemorySpare();
    MemorySpare(const MemorySpare &) = delete;
    MemorySpare &operator=(const MemorySpare &) = delete;

    /// Lets it be enough for a document of so many bytes, as far as the system has so much to give. Nothing
    /// if there is no object.
    static void fit(qsizetype documentBytes);
    /// Gives it away for good.
    void release();

private:
    void resizeFor(qsizetype documentBytes);

    std::size_t size = 0; // 0 if it is given away
    std::unique_ptr<char[]> bytes;
};
