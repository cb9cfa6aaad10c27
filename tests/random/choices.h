#pragma once

#include <QByteArray>

#include <random>
#include <utility>

/// Where a sequence of random edits takes its decisions from: a seed, or bytes that a fuzzer made up.
class Choices
{
public:
    /// One seed means the same decisions everywhere.
    static Choices fromSeed(quint32 seed)
    {
        Choices choices;
        choices.generator.seed(seed);
        choices.isSeeded = true;
        return choices;
    }
    /// Once the bytes are used up, isExhausted() says so and every further number is 0.
    static Choices fromBytes(QByteArray source)
    {
        Choices choices;
        choices.bytes = std::move(source);
        return choices;
    }

    bool isExhausted() const { return !isSeeded && at >= bytes.size(); }

    /// What was decided so far, as bytes from which the same decisions can be read.
    const QByteArray &record() const { return decided; }

    /// A number from 0 to `bound` - 1; `bound` is positive and at most 65536.
    int below(int bound)
    {
        const bool isShort = bound <= 256;
        int number = 0;
        if (isSeeded) {
            // Not std::uniform_int_distribution: what that makes of a seed is each library's own affair.
            number = int((quint64(generator()) * quint64(bound)) >> 32);
        } else {
            const int first = nextByte();
            number = (isShort ? first : first << 8 | nextByte()) % bound;
        }
        if (!isShort)
            decided += char(number >> 8);
        decided += char(number & 0xff);
        return number;
    }
    bool oneIn(int count) { return below(count) == 0; }
    /// Any element of a list that has some.
    template <typename List>
    decltype(auto) anyOf(const List &list)
    {
        return list[static_cast<typename List::size_type>(below(int(list.size())))];
    }

private:
    Choices() = default;
    int nextByte() { return at < bytes.size() ? quint8(bytes.at(at++)) : 0; }

    std::mt19937 generator;
    bool isSeeded = false;
    QByteArray bytes;
    QByteArray decided;
    qsizetype at = 0;
};
