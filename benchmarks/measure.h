#pragma once

#include <QString>

#include <functional>
#include <vector>

/// Times and the unit in which they are told.
namespace Measure {

/// Milliseconds that `work` takes; the smallest thing to be measured is some microseconds.
double milliseconds(const std::function<void()> &work);
/// Carries out `step`, and nothing else; under callgrind its instructions are kept under that name.
void count(const QString &name, const std::function<void()> &step);
double median(std::vector<double> values);

/// U: milliseconds for laying out a text of 60 words in a reused document, 400 wide, in the description's
/// font. The median of many, taken in the same process as what is compared with it.
double unit();

/// Memory of this process that is resident now, in KiB; 0 where the system does not tell.
double residentKiB();
/// Gives back what an earlier work has freed, which is not of the next one.
void giveMemoryBack();

} // namespace Measure

/// One row of a result: some work on a graph of so many events.
struct Row
{
    enum class Kind { time, memory };

    QString work;
    int events = 0;
    double value = 0; // milliseconds, KiB for memory
    Kind kind = Kind::time;
    double units = 0; // the same in U, 0 for memory
};
