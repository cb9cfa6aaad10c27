#pragma once

#include <QByteArray>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

/// A terminal that nobody looks at.
class Pty
{
public:
    Pty()
    {
        if (openpty(&ours, &theirs, nullptr, nullptr, nullptr) != 0 ||
            fcntl(ours, F_SETFL, O_NONBLOCK) != 0 || fcntl(ours, F_SETFD, FD_CLOEXEC) != 0)
            qFatal("there is no terminal");
    }
    ~Pty()
    {
        close(theirs);
        close(ours);
    }
    Pty(const Pty &) = delete;
    Pty &operator=(const Pty &) = delete;

    /// All that was written there so far.
    const QByteArray &seen()
    {
        QByteArray some(4096, '\0');
        for (auto count = read(ours, some.data(), std::size_t(some.size())); count > 0;
             count = read(ours, some.data(), std::size_t(some.size())))
            all += some.first(count);
        return all;
    }

    int ours = -1;   // where is typed and looked
    int theirs = -1; // of the program

private:
    QByteArray all;
};
