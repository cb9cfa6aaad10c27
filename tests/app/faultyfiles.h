#pragma once

#include <QString>

#include <functional>
#include <vector>

/// Lets calls into the operating system fail for the files below one folder and its own handle, during its
/// lifetime.
///
/// The program that links faultyfiles.cpp must export its symbols, so that Qt's calls come here first. One
/// object at a time.
class FaultyFiles
{
public:
    enum class Call {
        createUnnamed, // a file that gets its name later
        create,        // a new file under a name that is free
        openForWriting,
        read,
        write,
        sync,
        rename,     // or giving a name to an unnamed file
        exchange,   // of two names, which is a rename as well
        moveToFree, // a name that nobody has, which is a rename as well
        secondName, // for a file that has one, which counts as a rename as well
        close,
        giveAway,     // to another owner or group
        setAttribute, // access lists as well
    };

    static constexpr int endOfFile = -1; // instead of an error: a read finds nothing more

    struct Fault
    {
        Call call = Call::write;
        int first = 1;        // the first call of its kind that fails, counted from 1
        int error = 0;        // what it fails with; 0: a read or write takes half, all else works
        bool lasting = false; // the calls after that one fail as well
        std::function<void()> meanwhile{}; // instead: what happens just before the call, which works
    };

    FaultyFiles(const QString &folder, std::vector<Fault> faults);
    ~FaultyFiles();
    FaultyFiles(const FaultyFiles &) = delete;
    FaultyFiles &operator=(const FaultyFiles &) = delete;

    /// How many calls of that kind there were.
    int calls(Call call) const;
    /// How many calls the fault at that place of the list has changed.
    int hits(int fault = 0) const;
};
