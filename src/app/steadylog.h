#pragma once

/// Writes the program's log to the standard error output without ever waiting for whoever is to read it.
///
/// Whoever started the program may have tied the log to a pipe that nobody reads, or may have stopped the
/// terminal. What is not taken then waits in memory, up to a limit; lines beyond it, or without memory, are
/// lost, which one line tells when the others have been taken. The lines themselves are Qt's, to the last
/// byte.
class SteadyLog
{
public:
    /// From now on, for the whole program. One object at a time; it may be made before the application.
    SteadyLog();
    /// Gives a slow reader some time for the rest, and the log back to Qt.
    ~SteadyLog();
    SteadyLog(const SteadyLog &) = delete;
    SteadyLog &operator=(const SteadyLog &) = delete;

    /// Gives a slow reader that time before the program ends in another way. Nothing if there is no object.
    static void waitForTheReader();

    static constexpr int mostWaiting = 16 << 20; // bytes
};
