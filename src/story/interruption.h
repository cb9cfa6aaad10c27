#pragma once

/// How the program leaves the terminal and the disk when a signal ends it: SIGINT, SIGTERM or SIGHUP, unless
/// whoever started it has these ignored.
namespace Interruption {

/// From now on such a signal ends the line of a bar first.
void listen();
/// Whether the cursor stands behind a bar on the standard error.
void setBarShown(bool isShown);

/// While there is one, a signal waits: a file is being put in its place, and nothing half done may stay.
class Delay
{
public:
    Delay();
    ~Delay();
    Delay(const Delay &) = delete;
    Delay &operator=(const Delay &) = delete;
};

} // namespace Interruption
