#pragma once

#include <QElapsedTimer>

class Console;

/// A bar on the terminal for work that takes more than a second; it goes with this object. Where nobody sits
/// before the errors there is none.
class Progress
{
public:
    /// `console` must outlive this object.
    explicit Progress(Console &console);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// So much is done, from 0 to 1.
    void reached(double part);

private:
    Console &shown;
    QElapsedTimer since;
    int lastPercent = -1; // -1 while there is no bar
};
